// Tests of model objects: attaching, dependencies by path, transforms, events, record.
#include "vdm_db/model/vdm_db_object.h"

#include "platform/cloning/xref_man.h"
#include "tests/support/model_testing.h"

namespace {

class VdmDbObjectTest : public ModelTest {
 protected:
  VdmDbObjectTest() { m_object = VdmDbObject::getInstance(m_carrier, m_constraints); }

  VdmDbObjectPtr object(OdDb::OpenMode mode = OdDb::kForWrite) const {
    return open<VdmDbObject>(m_object, mode);
  }
  void solved() const {
    edit<VdmDbConstraintManager>(m_constraints)->setStatus(VdmDbConstraintManager::kUpToDate);
  }
  void redrawCarrier() const { edit<OdDbEntity>(m_carrier)->recordGraphicsModified(); }

  OdDbObjectId m_object;
};

TEST_F(VdmDbObjectTest, AnEntityHasOneThatItsManagerOwns) {
  EXPECT_EQ(VdmDbObject::getInstance(m_carrier, m_constraints), m_object);
  EXPECT_TRUE(VdmDbObject::getInstance(m_other, m_carrier).isNull());
  EXPECT_EQ(VdmDbObject::openVdmDbObject(m_carrier)->objectId(), m_object);
  EXPECT_EQ(object()->attachedEntityId(), m_carrier);
  EXPECT_EQ(object()->ownerId(), m_constraints);
  EXPECT_EQ(object()->name(), L"PATHCARRIER_1");
  EXPECT_EQ(modelObject(m_other)->name(), L"PATHCARRIER_2");
}

TEST_F(VdmDbObjectTest, IsErasedWithItsEntityAndComesBackWithIt) {
  object()->append(face(m_carrier, 1));
  solved();
  expectUndoable([this] { edit<OdDbEntity>(m_carrier)->erase(); });
  EXPECT_TRUE(m_object.isErased());
  EXPECT_FALSE(open<VdmDbConstraintManager>(m_constraints)->vdmDbObjects().contains(m_object));
  ASSERT_EQ(m_drawing->undo(), eOk);
  const OdDbObjectId dependency = object()->constraintDependencies()[0];
  expectUndoable([this] { object()->eraseWithSubObjects(); });
  EXPECT_TRUE(dependency.isErased());
  EXPECT_FALSE(open<OdDbEntity>(m_carrier)->hasPersistentReactor(m_object));
  EXPECT_TRUE(m_assertions.empty());
}

TEST_F(VdmDbObjectTest, MakesConstraintDependenciesOfItsEntityOnce) {
  OdDbObjectIdArray ids;
  VdmIndexMap attributes;
  attributes.set(OdDbSubentId(OdDb::kFaceSubentType, 1), {4, 5});
  expectUndoable([&] {
    object()->setName(L"");
    object()->setName(L"Lid");
    object()->setAttributes(attributes);
    object()->append({face(m_carrier, 1), face(m_carrier, 2), face(m_carrier, 1), face(m_other, 1)},
                     ids);
  });
  EXPECT_EQ(object()->name(), L"Lid");
  EXPECT_EQ(object()->attributes(), attributes);
  ASSERT_EQ(ids.size(), 4u);
  EXPECT_EQ(ids[2], ids[0]);
  EXPECT_TRUE(ids[3].isNull());
  EXPECT_EQ(object()->constraintDependencies(), OdDbObjectIdArray({ids[0], ids[1]}));
  EXPECT_EQ(ids[1].ownerId(), m_object);
  EXPECT_EQ(object()->append(face(m_carrier, 2)), ids[1]);
  expectUndoable([&] { object()->removeConstraintDependencies({ids[0], m_other}); });
  EXPECT_TRUE(ids[0].isErased());
  EXPECT_EQ(object()->dependencies(), OdDbObjectIdArray{ids[1]});
}

TEST_F(VdmDbObjectTest, FindsDependenciesWhereTheyStandNow) {
  const OdDbObjectId first = addDependency(face(m_carrier, 1));
  const OdDbObjectId second = addDependency(face(m_carrier, 2));
  const auto find = [this](OdGsMarker index) {
    return object(OdDb::kForRead)->getPersIdDependency(face(m_carrier, index));
  };
  EXPECT_EQ(find(2), second);
  EXPECT_EQ(find(1), first);
  m_drawing->startUndoRecord();
  edit<VdmDbObjectDependency>(first)->setLinkObject(face(m_carrier, 3));
  EXPECT_TRUE(find(1).isNull());
  EXPECT_EQ(find(3), first);
  ASSERT_EQ(m_drawing->undo(), eOk);
  EXPECT_EQ(find(1), first);
  const OdDbObjectId third = addDependency(face(m_carrier, 3));
  EXPECT_EQ(find(3), third);
  m_drawing->startUndoRecord();
  edit<OdDbObject>(second)->erase();
  EXPECT_TRUE(find(2).isNull());
  ASSERT_EQ(m_drawing->undo(), eOk);
  EXPECT_EQ(find(2), second);
}

TEST_F(VdmDbObjectTest, FindsDependenciesInDrawingsThatWereLoadedAgain) {
  const OdDbHandle inPart = writePart("part.vdm");
  const OdDbObjectId block = attach(m_drawing, "part.vdm", L"PART");
  const OdDbObjectId insert = addReference(m_modelSpace, block);
  const auto pathOf = [&](OdGsMarker index) {
    const OdDbDatabase* part = open<OdDbBlockTableRecord>(block)->xrefDatabase();
    return OdDbFullSubentPath({insert, part->getOdDbObjectId(inPart)},
                              OdDbSubentId(OdDb::kFaceSubentType, index));
  };
  OdDbObjectIdArray ids;
  for (OdGsMarker i = 1; i <= 3; ++i) ids.append(addDependency(pathOf(i)));
  const OdDbObjectId ofConstraint = modelObject(insert, OdDb::kForWrite)->append(pathOf(2));
  std::vector<OdDbDatabasePtr> others;  // in the memory of what is closed
  for (int round = 0; round < 3; ++round) {
    ASSERT_EQ(OdDbXRefMan::unload(edit<OdDbBlockTableRecord>(block)), eOk);
    EXPECT_FALSE(modelObject(insert)->getPersIdDependency({insert, OdDbSubentId()}).isValid());
    for (int i = 0; i < 4; ++i) others.push_back(m_host.createDatabase());
    ASSERT_EQ(OdDbXRefMan::load(edit<OdDbBlockTableRecord>(block)), eOk);
    for (OdGsMarker i = 1; i <= 3; ++i) {
      const OdDbObjectId wanted = ids[OdUInt32(i) - 1];
      EXPECT_EQ(modelObject(insert)->getPersIdDependency(pathOf(i)), wanted);
      EXPECT_EQ(addDependency(pathOf(i)), wanted) << "made a second time";
    }
    EXPECT_EQ(modelObject(insert)->getConstraintDependency(pathOf(2)), ofConstraint);
  }
  EXPECT_EQ(listed().size(), 3u);
}

TEST_F(VdmDbObjectTest, StaysInMemoryAsLongAsItKeepsWhatFilesDoNot) {
  OdGeMatrix3d move = OdGeMatrix3d::translation({1, 2, 3});
  modelObject(m_other)->constrainerNotify(false);
  const OdDbObjectId silent = modelObject(m_other)->objectId();
  object()->addTransform(move);
  solved();
  saveAs(m_drawing, path("model.vdm"));
  m_drawing->pageOut(0);
  EXPECT_TRUE(m_object.isResident() && silent.isResident());
  EXPECT_EQ(object(OdDb::kForRead)->getTransform(), move);
  EXPECT_EQ(status(), VdmDbConstraintManager::kUpToDate);
  object()->clearTransform();
  modelObject(m_other)->constrainerNotify(true);
  edit<VdmDbConstraintManager>(m_constraints)->setStatus(VdmDbConstraintManager::kNotEvaluated);
  ASSERT_EQ(m_drawing->save().code, eOk);
  m_drawing->pageOut(0);
  EXPECT_FALSE(m_object.isResident() || silent.isResident() || m_constraints.isResident());
}

TEST_F(VdmDbObjectTest, ListsPersistentIdsOnceAndOnlyOfTheirManager) {
  OdDbObjectIdArray ids;
  for (int i = 1; i <= 40; ++i) ids.append(addDependency(face(m_carrier, i)));
  expectUndoable([&] {
    EXPECT_FALSE(object()->addPersIdDependency(ids[3], m_manager));
    EXPECT_TRUE(object()->removePersIdDependency(ids[3], m_manager));
    EXPECT_EQ(object()->removePersIdDependencies({ids[39], ids[0], ids[3], ids[0]}), 2u);
    EXPECT_TRUE(object()->addPersIdDependency(ids[3], OdDbObjectId()));
  });
  EXPECT_EQ(object()->persIdDependencies().size(), 38u);
  EXPECT_EQ(object()->persIdDependencies().last(), ids[3]);
  EXPECT_FALSE(object()->addPersIdDependency(ids[0], m_constraints));
  EXPECT_EQ(m_assertions, std::vector<std::string>{"dependency.ownerId() == manager"});
  expectUndoable([&] { object()->removePersIdDependencies(); });
  EXPECT_FALSE(object()->hasDependencies());
}

TEST_F(VdmDbObjectTest, PassesOnWhatMattersToSomebody) {
  solved();
  redrawCarrier();
  EXPECT_EQ(m_objectHost->changes, 1);
  EXPECT_EQ(status(), VdmDbConstraintManager::kUpToDate);  // nobody depends on it
  const OdDbObjectId reactor = addDependency(face(m_other, 1));
  edit<OdDbEntity>(m_carrier)->addPersistentReactor(reactor);
  EXPECT_FALSE(object()->isWatched());
  const OdDbObjectId feature = watch({reactor});
  EXPECT_TRUE(object()->isWatched());
  {
    OdDbTransaction transaction(m_drawing);
    edit<OdDbObject>(feature)->erase();
    edit<OdDbObject>(reactor)->addPersistentReactor(feature);  // a place left over
    EXPECT_FALSE(object()->isWatched()) << "an erased reactor watches nothing";
  }
  EXPECT_TRUE(object()->isWatched());
  edit<VdmDbPersIdReactor>(feature)->removePersIds();
  solved();
  object()->append(face(m_carrier, 1));
  m_objectHost->matters = false;
  redrawCarrier();
  m_objectHost->matters = true;
  object()->constrainerNotify(false);
  redrawCarrier();
  EXPECT_EQ(status(), VdmDbConstraintManager::kUpToDate);
  object()->notifyAboutModifications(true);
  EXPECT_EQ(status(), VdmDbConstraintManager::kPartlyModified);
  object()->constrainerNotify(true);
  solved();
  const int changes = m_objectHost->changes;
  m_drawing->startUndoRecord();
  object()->triggerObjectRedraw();
  EXPECT_EQ(m_objectHost->changes, changes + 1);
  EXPECT_EQ(status(), VdmDbConstraintManager::kPartlyModified);
  ASSERT_EQ(m_drawing->undo(), eOk);
  EXPECT_EQ(m_objectHost->changes, changes + 1);  // undoing tells nobody
}

TEST_F(VdmDbObjectTest, SumsTransformsUntilTheHostClosesTheSum) {
  OdGeMatrix3d move = OdGeMatrix3d::translation({1, 2, 3});
  OdGeMatrix3d turn = OdGeMatrix3d::rotation(1.0, OdGeVector3d::kZAxis);
  OdGeMatrix3d sum;
  EXPECT_FALSE(object()->getTransformForSolver(sum));
  object()->addTransform(move);
  m_drawing->startUndoRecord();
  object()->addTransform(turn);
  EXPECT_TRUE(object()->getTransformForSolver(sum));
  EXPECT_EQ(sum, turn * move);
  m_objectHost->closesTransforms = true;
  object()->addTransform(move);
  EXPECT_FALSE(object()->canTransformBeApplied());
  object()->addTransform(turn);
  EXPECT_TRUE(object()->getTransform().isEqualTo(turn));
  ASSERT_EQ(m_drawing->undo(), eOk);
  EXPECT_EQ(object()->getTransform(), move);
  EXPECT_TRUE(object()->canTransformBeApplied());
  ASSERT_EQ(m_drawing->redo(), eOk);
  EXPECT_FALSE(object()->canTransformBeApplied());
  m_drawing->startUndoRecord();
  object(OdDb::kForRead)->clearTransform();
  m_drawing->startUndoRecord();
  object(OdDb::kForRead)->clearTransform();  // identity by now: no step
  ASSERT_EQ(m_drawing->undo(), eOk);
  EXPECT_FALSE(object()->canTransformBeApplied());  // closed as it was
}

TEST_F(VdmDbObjectTest, ReadsEveryVersionOfItsRecord) {
  for (OdUInt8 version = 2; version <= 6; ++version) {
    VersionedFiler filer(version == 2 ? OdDbDwgFiler::kPageFiler : OdDbDwgFiler::kFileFiler, 33);
    OdDbObject().dwgOutFields(&filer);
    if (version == 2) {  // the transform stands ahead
      for (int i = 0; i < 16; ++i) filer.wrDouble(i);
      filer.wrBool(false);
    }
    filer.wrUInt8(version);
    filer.wrInt32(1);
    filer.wrHardOwnershipId(m_other);
    filer.wrSoftPointerId(m_carrier);
    if (version == 3 || version == 4) {
      filer.wrInt32(1);
      filer.wrString(L"NAME");
      filer.wrString(L"Lid");
    }
    if (version == 5) object()->setName(L"Lid"), filer.wrInt32(0);
    if (version >= 4) filer.wrInt32(1), filer.wrUInt8('f'), filer.wrInt32(0), filer.wrInt32(0);
    if (version == 2) filer.wrInt16(0);
    const VdmDbObjectPtr read = VdmDbObject::createObject();
    EXPECT_EQ(read->dwgInFields(&filer.rewound()), version == 6 ? eCorruptData : eOk);
    EXPECT_EQ(read->constraintDependencies().size(), version == 6 ? 0u : 1u);
    if (version == 6) continue;
    EXPECT_EQ(filer.bytesLeft(), 0u);
    EXPECT_EQ(read->attachedEntityId(), m_carrier);
    EXPECT_EQ(read->name(), version == 3 || version == 4 ? L"Lid" : L"");
    EXPECT_EQ(read->hasAttributes(), version >= 4);
    EXPECT_EQ(read->getTransform()(3, 3), version == 2 ? 15.0 : 1.0);
  }
}

TEST_F(VdmDbObjectTest, OnlyAWatchedOneNotifiesItsManager) {
  solved();
  object()->notifyAboutModifications(/*modified=*/true);
  EXPECT_EQ(status(), VdmDbConstraintManager::kUpToDate);
  object()->append(face(m_carrier, 1));
  solved();
  object()->notifyAboutModifications(/*modified=*/true);
  EXPECT_EQ(status(), VdmDbConstraintManager::kPartlyModified);
}

}  // namespace
