// Tests of dependencies: links, undo steps, forms of the record.
#include "vdm_db/model/vdm_db_object_dependency.h"

#include "platform/cloning/id_mapping.h"
#include "platform/filer/id_filer.h"
#include "tests/support/model_testing.h"
#include "vdm_db/references/vdm_path_utils.h"

namespace {

/// The ids that are filed to a drawing file.
class FileIds : public OdDbIdFiler {
 public:
  [[nodiscard]] FilerType filerType() const override { return kFileFiler; }
};

class VdmDbObjectDependencyTest : public ModelTest {
 protected:
  VdmDbObjectDependencyTest() { m_dependency->setLinkObject(face(m_carrier, 12)); }

  /// The record behind the fields of OdDbObject.
  VersionedFiler& record(OdInt32 version = 33) {
    m_filer = std::make_unique<VersionedFiler>(OdDbDwgFiler::kCopyFiler, version);
    m_dependency->dwgOutFields(m_filer.get());
    m_filer->rewound();
    OdDbObject().dwgInFields(m_filer.get());
    return *m_filer;
  }
  /// Reads a record that `write` adds behind the object's own fields and the id.
  OdResult readBack(VdmDbObjectDependency* dependency,
                    const std::function<void(OdDbDwgFiler*)>& write) {
    VersionedFiler filer(OdDbDwgFiler::kCopyFiler, 33);
    OdDbObject().dwgOutFields(&filer);
    filer.wrSoftPointerId(m_carrier);
    write(&filer);
    return dependency->dwgInFields(&filer.rewound());
  }

  VdmDbObjectDependencyPtr m_dependency = VdmDbObjectDependency::createObject();
  std::unique_ptr<VersionedFiler> m_filer;
};

TEST_F(VdmDbObjectDependencyTest, APlainReferenceIsFiledInTheOldestForm) {
  m_dependency->propertiesForWrite().setProperty(L"free", 1.5);
  for (const OdInt32 tag : {0, 5}) {
    m_dependency->setEntityTag(tag);
    for (const OdInt32 version : {29, 33}) {
      VersionedFiler& filer = record(version);
      EXPECT_EQ(filer.rdSoftPointerId(), m_carrier);
      if (tag == 5 && version == 33) {
        EXPECT_EQ(filer.rdInt32(), -1);
        EXPECT_EQ(filer.rdInt32(), 3);
        continue;
      }
      EXPECT_EQ(filer.rdInt32(), 1);
      EXPECT_EQ(filer.rdInt32(), 12);
      EXPECT_EQ(filer.bytesLeft(), 0u);
    }
  }
}

TEST_F(VdmDbObjectDependencyTest, ReadsEveryFormAndRefusesLaterOnes) {
  const auto fresh = [] { return VdmDbObjectDependency::createObject(); };
  VdmDbObjectDependencyPtr read = fresh();
  read->propertiesForWrite().setProperty(L"free", 1.5);
  read->setBodyHash(4);
  EXPECT_EQ(readBack(read, [](OdDbDwgFiler* f) { f->wrInt32(2), f->wrInt32(7); }), eOk);
  EXPECT_EQ(read->getLinkObject(false), OdDbFullSubentPath(m_carrier, {OdDb::kEdgeSubentType, 7}));
  EXPECT_EQ(read->bodyHash(), 0);
  EXPECT_EQ(read->properties().size(), 2u);  // a state, not an addition

  m_dependency->setEntityTag(8);
  m_dependency->propertiesForWrite().setProperty(L"free", 1.5);
  for (const OdInt32 version : {0, 1, 2, 3, 4}) {
    read = fresh();
    const OdResult result = readBack(read, [this, version](OdDbDwgFiler* filer) {
      filer->wrInt32(-1);
      filer->wrInt32(version);
      if (version == 2) filer->wrInt32(0);  // no string properties
      if (version == 3) m_dependency->properties().dwgOutFields(filer);
      m_dependency->compoundId().dwgOutFields(filer, nullptr);
      filer->wrInt32(1);
      filer->wrInt32(12);
    });
    EXPECT_EQ(result, version == 4 ? eUnsupportedVersion : version == 2 ? eNotApplicable : eOk);
    if (result != eOk) continue;
    EXPECT_EQ(read->getLinkObject(false), face(m_carrier, 12));
    EXPECT_EQ(read->entityTag(), version == 3 ? 8 : 0);
    EXPECT_EQ(read->properties().hasProperty(L"free"), version == 3);
  }
  for (const auto& [type, index] : {std::pair(1, -1), std::pair(-1, -7)}) {
    const auto write = [t = type, i = index](OdDbDwgFiler* f) {
      f->wrInt32(t), f->wrInt32(i);
      if (t >= 0) return;
      f->wrBool(false), f->wrInt32(-2), f->wrInt32(0);
    };
    EXPECT_EQ(readBack(fresh(), write), eCorruptData);
  }
}

TEST_F(VdmDbObjectDependencyTest, UndoGivesBackWhatTheFileFormLacks) {
  const OdDbObjectId id = m_drawing->addOdDbObject(m_dependency, m_manager);
  const OdDbFullSubentPath far = face(m_carrier, (OdGsMarker{5} << 32) - 9);
  m_dependency->setLinkObject(far);
  m_dependency->propertiesForWrite().setProperty(L"free", 1.5);
  for (const bool wholeState : {false, true}) {
    m_drawing->startUndoRecord();
    if (wholeState) m_dependency->propertiesForWrite().removeProperty(L"free");
    m_dependency->setLinkObject(face(m_other, 1));
    m_dependency->setBodyHash(77);
    m_dependency->setEntityTag(-5);
    ASSERT_EQ(m_drawing->undo(), eOk);
    EXPECT_EQ(placeOf(id), far);
    EXPECT_TRUE(m_dependency->properties().hasProperty(L"free"));
    EXPECT_EQ(m_dependency->bodyHash(), 0);
    ASSERT_EQ(m_drawing->redo(), eOk);
    EXPECT_EQ(m_dependency->entityTag(), -5);
    ASSERT_EQ(m_drawing->undo(), eOk);
  }
}

TEST_F(VdmDbObjectDependencyTest, WritersRecordWhatTheyChangeAndNothingForNoChange) {
  m_dependency = nullptr;
  const OdDbObjectId id = addDependency(face(m_carrier, 1));
  expectUndoable([&] {
    const VdmDbObjectDependencyPtr dependency = edit<VdmDbObjectDependency>(id);
    dependency->setEntityTag(3);
    dependency->setLinkObject(face(m_other, 2));
    VdmCompoundObjectId nested;
    nested.setFullPath({m_carrier, m_other}, false);
    dependency->setCompoundId(nested);
  });
  m_drawing->startUndoRecord();
  const OdUInt32 steps = m_drawing->numUndoSteps();
  const OdUInt64 generation = VdmDbObjectDependency::linkGeneration();
  edit<VdmDbObjectDependency>(id)->setLinkObject(placeOf(id));
  EXPECT_EQ(m_drawing->numUndoSteps(), steps);
  EXPECT_EQ(VdmDbObjectDependency::linkGeneration(), generation);
  const VdmDbObjectDependencyPtr reader = open<VdmDbObjectDependency>(id);
  EXPECT_EQ(raisedBy([&] { reader->setLinkObject(placeOf(id)); }), eNotOpenForWrite);
  EXPECT_EQ(raisedBy([&] { reader->setEntityTag(reader->entityTag()); }), eNotOpenForWrite);
}

TEST_F(VdmDbObjectDependencyTest, APathThroughAnUnreferencedDrawingKeepsItsBeginning) {
  const OdDbHandle handle = writePart("part.vdm");
  const OdDbObjectId block = attach(m_drawing, "part.vdm", L"PART");
  const OdDbObjectId top = addReference(m_modelSpace, block);
  const OdDbDatabase* part = open<OdDbBlockTableRecord>(block)->xrefDatabase();
  m_dependency->setLinkObject(
      {OdDbObjectIdArray{top, part->getOdDbObjectId(handle)}, OdDbSubentId()});
  const OdDbHandle dependency = m_drawing->addOdDbObject(m_dependency, m_manager).getHandle();
  m_dependency = nullptr;
  const OdDbHandle topHandle = top.getHandle();
  const OdDbHandle blockHandle = block.getHandle();
  reopen();
  EXPECT_EQ(open<OdDbBlockTableRecord>(m_drawing->getOdDbObjectId(blockHandle))->xrefStatus(),
            OdDb::kXrfUnresolved);
  EXPECT_EQ(vdmu::strFSPFromDependency(m_drawing->getOdDbObjectId(dependency), false),
            L"0x" + topHandle.ascii() + L"," + handle.ascii());
  reopen();
  const OdDbObjectId erased = m_drawing->getOdDbObjectId(topHandle);
  edit<OdDbObject>(erased)->erase();
  OdDbFullSubentPath present;
  EXPECT_EQ(open<VdmDbObjectDependency>(m_drawing->getOdDbObjectId(dependency))
                ->getLinkObject(present, /*openErased=*/true),
            vdmu::ePathXrefUnreferenced);
  EXPECT_EQ(present.objectIds(), OdDbObjectIdArray{erased});
  EXPECT_EQ(vdmu::strFSPFromDependency(m_carrier, false), L"invalid path");
}

TEST_F(VdmDbObjectDependencyTest, FilesKeepTheEntityAliveAndOtherFilersDoNot) {
  FileIds inFile;
  OdDbIdFiler elsewhere;
  m_dependency->dwgOutFields(&inFile);
  m_dependency->dwgOutFields(&elsewhere);
  ASSERT_EQ(inFile.ids().size(), 1u);
  ASSERT_EQ(elsewhere.ids().size(), 1u);
  EXPECT_EQ(inFile.ids()[0].type, OdDb::kHardPointerRef);
  EXPECT_EQ(elsewhere.ids()[0].type, OdDb::kSoftPointerRef);
}

TEST_F(VdmDbObjectDependencyTest, ClonesKeepTheSideStringsOfEveryPath) {
  for (const OdDbObjectIdArray& ids :
       {OdDbObjectIdArray{m_carrier}, OdDbObjectIdArray{m_carrier, m_other}}) {
    VdmCompoundObjectId path;
    path.setFullPath(ids, /*keepLonger=*/false);
    path.setSideStrings({OdString(L"left"), OdString()});
    const VdmDbObjectDependencyPtr source = VdmDbObjectDependency::createObject();
    source->setCompoundId(path);
    const OdDbObjectId id = m_drawing->addOdDbObject(source, m_manager);
    const OdDbIdMappingPtr mapping = OdDbIdMapping::createObject(OdDb::kDcObjects);
    ASSERT_EQ(m_drawing->deepCloneObjects({id}, m_manager, *mapping), eOk);
    OdDbIdPair pair(id);
    ASSERT_TRUE(mapping->compute(pair));
    const VdmDbObjectDependencyPtr clone = open<VdmDbObjectDependency>(pair.value());
    EXPECT_EQ(clone->compoundId().sideStrings(), path.sideStrings());
    EXPECT_EQ(clone->compoundId().size(), ids.size());
  }
}

TEST_F(VdmDbObjectDependencyTest, AnErasedReactorWatchesNothing) {
  const OdDbObjectId id = addDependency(face(m_carrier, 1));
  const OdDbObjectId watcher = addLine(m_modelSpace);
  edit<VdmDbObjectDependency>(id)->addPersistentReactor(watcher);
  EXPECT_TRUE(open<VdmDbObjectDependency>(id)->isWatched());
  edit<OdDbLine>(watcher)->erase();
  EXPECT_TRUE(open<VdmDbObjectDependency>(id)->hasPersistentReactor(watcher));
  EXPECT_FALSE(open<VdmDbObjectDependency>(id)->isWatched());
}

}  // namespace
