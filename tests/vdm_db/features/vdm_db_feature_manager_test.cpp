// Tests of feature managers: the list, walks, passes, audit, clone and merge.
#include "platform/filer/id_filer.h"
#include "tests/support/dump_drawing.h"
#include "tests/vdm_db/features/feature_testing.h"
#include "vdm_db/drawing_utils/vdm_block_utils.h"
#include "vdm_db/drawing_utils/vdm_db_reverse_id_mapping.h"
#include "vdm_db/features/vdm_db_sheet_metal_context_pe.h"
#include "vdm_db/features/vdm_naming_service.h"
#include "vdm_db/features/vdm_sheet_metal_source.h"
#include "vdm_db/references/vdm_dependencies_replacement_map.h"

/// A sheet-metal context as far as managers look at it.
class SheetContext : public OdDbObject, public VdmSheetMetalSource {
 public:
  OD_RX_DECLARE_MEMBERS(SheetContext)
  VdmProperties bag;
  const VdmProperties& sheetMetalProperties() const override { return bag; }
};
OD_RX_DEFINE_DB(SheetContext, OdDbObject, L"SheetContext", 33, 55, 0, L"SHEETCONTEXT", L"tests")

namespace {

class SheetHost : public OdRxObjectImpl<VdmDbSheetMetalContextPE> {
 public:
  std::string calls;
  bool changesGeometry = false;

  OdResult loadBendTable(const VdmDbSheetMetalContext*, const OdString&) override { return eOk; }
  OdResult getBendTable(OdArray<OdString>&) override { return eOk; }
  OdResult getBendDeduction(const VdmDbSheetMetalContext*, double, double, double&) override {
    return eOk;
  }
  OdResult getDieWidths(const VdmDbSheetMetalContext*, OdArray<double>&) override { return eOk; }
  bool hasBendTable(const VdmDbSheetMetalContext*) override { return false; }
  bool isSheetMetal(const VdmDbSheetMetalContext*, const OdDbObjectId&) override { return false; }
  OdResult unfold(const VdmDbSheetMetalContext*, const OdDbObjectId&, OdDbObjectIdArray&) override {
    return eOk;
  }
  bool updateRecognition(OdDbObject*, const OdDbObjectIdArray&) override { return note('r'); }
  bool updateGeometry(OdDbObject*, const OdDbObjectIdArray&) override {
    return note('g') || changesGeometry;
  }
  bool updateUnfolding(OdDbObject*, const OdDbObjectIdArray&) override { return note('u'); }

 private:
  bool note(char call) {
    calls += call;
    return false;
  }
};

}  // namespace

class VdmDbFeatureManagerTest : public RegisteredClass<SheetContext>, public FeatureTest {
 protected:
  OdDbObjectId addContext(OdDbObjectId managerId, double thickness) {
    const OdSmartPtr<SheetContext> context = SheetContext::createObject();
    context->bag.setProperty(L"Thickness", thickness);
    context->bag.setProperty(L"ThicknessVar", m_carrier, OdDb::kHardPointerRef);
    const OdDbObjectId id = m_drawing->addOdDbObject(context);
    edit<VdmDbFeatureManager>(managerId)->setSheetMetalContext(id);
    return id;
  }
};

TEST_F(VdmDbFeatureManagerTest, OwnsCarriersThatOwnReactorsThatPointAtDependencies) {
  const OdDbObjectId id = addHole();
  refer(id, {{1, -1, {1}}});
  const OdDbObjectId reactor = hole(id)->reactors()[0];
  const OdDbObjectId dependency = open<VdmDbPersIdReactor>(reactor)->persIds()[0];
  const auto typeOf = [](OdDbObjectId object, OdDbObjectId referred) {
    OdDbIdFiler filer;
    open<OdDbObject>(object)->dwgOutFields(&filer);
    for (const OdDbFiledId& filed : filer.ids()) {
      if (filed.id == referred) return static_cast<int>(filed.type);
    }
    return -1;
  };
  EXPECT_EQ(typeOf(m_features, id), OdDb::kHardOwnershipRef);
  EXPECT_EQ(typeOf(id, reactor), OdDb::kHardOwnershipRef);
  EXPECT_EQ(typeOf(reactor, dependency), OdDb::kSoftPointerRef);
  EXPECT_EQ(typeOf(m_manager, dependency), OdDb::kHardOwnershipRef);
}

TEST_F(VdmDbFeatureManagerTest, StatusOfAllButThoseThatOnlyNotify) {
  const OdDbObjectId notifies = addHole(L"A");
  const OdDbObjectId both = addHole(L"B");
  hole(notifies, OdDb::kForWrite)->setStatus(VdmFeature::StatusNotifyEntities);
  hole(both, OdDb::kForWrite)
      ->setStatus(static_cast<VdmFeature::Status>(VdmFeature::StatusNotifyEntities |
                                                  VdmFeature::StatusInitialized));
  EXPECT_EQ(manager()->updateFeaturesStatus(VdmFeature::StatusInitialized), eOk);
  EXPECT_EQ(hole(notifies)->getStatus(), VdmFeature::StatusNotifyEntities);
  EXPECT_EQ(hole(both)->getStatus(), VdmFeature::StatusInitialized);
}

TEST_F(VdmDbFeatureManagerTest, AReadOnlyDrawingTakesNoStatus) {
  addHole();
  saveAs(m_drawing, path("model.vdm"));
  OdDbReadOptions options;
  options.mode = OdDbStoreOpenMode::kReadOnly;
  const OdDbDatabasePtr drawing = DrawingVerbs::read(m_host, path("model.vdm"), options);
  const VdmDbFeatureManagerPtr opened =
      open<VdmDbFeatureManager>(drawing->getOdDbObjectId(m_features.getHandle()));
  EXPECT_EQ(raisedBy([&] { opened->updateFeaturesStatus(VdmFeature::StatusNotifyEntities); }),
            eReadOnlyDatabase);
}

TEST_F(VdmDbFeatureManagerTest, NamesOfErasedFeaturesComeBackWithThem) {
  addHole(L"Hole_1");
  const OdDbObjectId second = addHole(L"Hole_2");
  const auto isTaken = [this] { return manager()->namingService().checkNameCollision(L"Hole_2"); };
  {
    OdDbTransaction transaction(m_drawing);
    edit<VdmDbFeatureData>(second)->erase();
    EXPECT_FALSE(isTaken());
  }
  EXPECT_TRUE(isTaken()) << "after an abort";
  m_drawing->startUndoRecord();
  edit<VdmDbFeatureData>(second)->erase();
  EXPECT_FALSE(isTaken());
  for (int round = 0; round < 2; ++round) {
    ASSERT_EQ(m_drawing->undo(), eOk);
    EXPECT_TRUE(isTaken());
    ASSERT_EQ(m_drawing->redo(), eOk);
    EXPECT_FALSE(isTaken());
  }
}

TEST_F(VdmDbFeatureManagerTest, MakesAndFindsFeatures) {
  EXPECT_EQ(VdmDbFeatureManager::getInstance(m_modelSpace, false), m_features);
  EXPECT_EQ(manager(OdDb::kForRead)->blockId(), m_modelSpace);
  EXPECT_TRUE(manager()->createFeatureData(nullptr, L"", false, false).isNull());
  EXPECT_TRUE(manager()->createFeatureData(OdDbLine::desc(), L"", false, false).isNull());
  EXPECT_TRUE(VdmDbFeatureManager::createObject()
                  ->createFeatureData(HoleFeature::desc(), L"", false, false)
                  .isNull());
  OdDbObjectId hole = addHole();
  OdDbObjectId plain = manager()->createFeatureData(VdmFeature::desc(), L"p", false, false);
  const OdDbObjectId gone = addHole();
  edit<VdmDbFeatureData>(gone)->erase();
  EXPECT_TRUE(manager()->getFeatures({}).isEmpty());
  EXPECT_EQ(manager()->getFeatures({HoleFeature::desc()}), OdDbObjectIdArray{hole});
  EXPECT_EQ(manager()->getFeatures({HoleFeature::desc(), VdmFeature::desc()}),
            (OdDbObjectIdArray{hole, plain}));
  reopenWith({&hole, &plain});
  EXPECT_TRUE(manager()->getFeatures({VdmFeature::desc()}).isEmpty());
  EXPECT_FALSE(hole.isResident() || plain.isResident());
  OdDbObjectIdArray walked;
  VdmDbIterator<VdmFeature> it = manager(OdDb::kForRead)->newFeatureIterator();
  for (const VdmDbIterator<VdmFeature> copy = it; !it.done(); it.next()) {
    walked.append(it.objectId());
  }
  EXPECT_EQ(walked, (OdDbObjectIdArray{hole, plain}));
  EXPECT_THROW((void)it.objectId(), OdError_InvalidIndex);
  EXPECT_EQ(manager()->getFeatures({VdmFeature::desc()}).size(), 2u);
}

// The ids lead nowhere for the time of the query: only what lies behind them is looked at.
TEST_F(VdmDbFeatureManagerTest, ClassesAreFoundWithoutAnOpen) {
  const OdDbObjectIdArray ids{addHole(), addHole()};
  const VdmDbFeatureManagerPtr features = manager();
  const auto redirect = [&](OdDbIdRecord* owner, auto change) {
    for (const OdDbObjectId& id : ids) {
      id.idRecord()->owner = owner;
      (id.idRecord()->*change)(OdDbIdRecord::kRedirected);
    }
  };
  redirect(nullptr, &OdDbIdRecord::set);
  EXPECT_TRUE(ids[0].openObject().isNull());
  EXPECT_EQ(features->getFeatures({OdDbLine::desc(), HoleFeature::desc()}), ids);
  redirect(m_features.idRecord(), &OdDbIdRecord::clear);
}

// What is remembered of the list agrees with a walk over its records, whatever happens to them.
TEST_F(VdmDbFeatureManagerTest, ClassesAreFoundAfterAnythingThatCarriersGoThrough) {
  OdDbObjectIdArray ids;
  const auto expectFound = [&](const char* when) {
    for (OdRxClass* cls : {HoleFeature::desc(), VdmFeature::desc()}) {
      OdDbObjectIdArray expected;
      for (const OdDbObjectId& id : manager(OdDb::kForRead)->featureIds()) {
        if (!id.isResident() || id.isErased()) continue;
        if (cls == VdmFeature::desc() || id.openAs<HoleFeature>().get() != nullptr) {
          expected.append(id);
        }
      }
      const VdmDbFeatureManagerPtr features = manager(OdDb::kForRead);
      EXPECT_EQ(features->getFeatures({cls}), expected) << when;
      EXPECT_EQ(features->getFeatures({cls}), expected) << when << ", asked again";
    }
  };
  for (int i = 0; i < 20; ++i) {
    ids.append(i % 2 == 0 ? addHole()
                          : manager()->createFeatureData(VdmFeature::desc(), L"", false, false));
    expectFound("one more");
  }
  m_drawing->startUndoRecord();
  {
    const auto carrier = edit<VdmDbFeatureData>(ids[3]);
    expectFound("open for write");
    carrier->erase();
    expectFound("erased and open");
  }
  expectFound("erased");
  ASSERT_EQ(m_drawing->undo(), eOk);
  expectFound("back");
  ASSERT_EQ(m_drawing->redo(), eOk);
  expectFound("erased again");
  edit<VdmDbFeatureData>(ids[4])->swapIdWith(ids[5]);
  expectFound("exchanged");
  reopenWith({&ids[6], &ids[7]});
  expectFound("read from a file");
  EXPECT_FALSE(VdmFeature::open(ids[6]).isNull());
  expectFound("one in memory");
  m_drawing->startUndoRecord();
  edit<VdmDbFeatureData>(ids[6])->erase();
  expectFound("that one erased");
}

TEST_F(VdmDbFeatureManagerTest, EachStepIsUndoneByteForByte) {
  expectUndoable([this] { addHole(); });
  expectUndoable([this] {
    addHole(L"a");
    addHole(L"b");
    manager()->needEvaluate(true);
    manager()->needEvaluate(true);
  });
  expectUndoable([this] { manager()->evaluate(); });
  EXPECT_FALSE(manager(OdDb::kForRead)->isNeedEvaluate());
  expectUndoable([this] { manager()->doAudit(); });
  EXPECT_TRUE(manager(OdDb::kForRead)->featureIds().isEmpty());
}

TEST_F(VdmDbFeatureManagerTest, AuditTakesWhatHasLostItsReason) {
  const OdDbObjectId sound = addHole(), empty = addHole(), needy = addHole(), other = addHole();
  for (const OdDbObjectId& id : {sound, needy, other}) refer(id, {{1, 7, {1}}});
  hole(other, OdDb::kForWrite)->addReactor(TellingReactor::desc(), 0);
  const OdDbObjectId lost = hole(needy)->reactors()[0];
  edit<VdmDbPersIdReactor>(lost)->removePersIds();
  edit<VdmDbPersIdReactor>(hole(other)->reactors()[0])->removePersIds();
  HoleFeature::required = false;
  manager()->doAudit();
  EXPECT_EQ(manager()->featureIds(), (OdDbObjectIdArray{sound, other}));
  EXPECT_TRUE(empty.isErased() && needy.isErased() && lost.isErased());
  EXPECT_EQ(HoleFeature::asked.back(), std::make_pair(1, 7));
  EXPECT_EQ(hole(other)->reactors().size(), 1u);
  TellingReactor::sound = false;
  manager()->doAudit();
  EXPECT_EQ(manager()->featureIds(), OdDbObjectIdArray{sound});
}

TEST_F(VdmDbFeatureManagerTest, PassesRunWhenThereIsAReason) {
  const VdmDependenciesReplacementMap nothing;
  auto flags = static_cast<EPostprocessingOperationType>(7);
  EXPECT_FALSE(manager()->update({}));
  addHole();
  EXPECT_FALSE(manager()->updateFeatures(nothing, false, false, flags));
  EXPECT_EQ(flags, 7);

  addContext(m_features, 2.0);
  const OdSmartPtr<SheetHost> host(new SheetHost, kOdRxObjAttach);
  SheetContext::desc()->addX(VdmDbSheetMetalContextPE::desc(), host);
  VdmDependenciesReplacementMap map;
  map.appendModifiedEnt(m_carrier);
  host->changesGeometry = true;
  EXPECT_TRUE(manager()->updateFeatures(map, false, false, flags));
  EXPECT_EQ(host->calls, "rg");
  EXPECT_EQ(flags, PostprocessBit1);
  EXPECT_FALSE(manager()->updateFeatures(map, false, false, flags));
  EXPECT_EQ(host->calls, "rgu");
  EXPECT_EQ(flags, PostprocessNone);
  SheetContext::desc()->delX(VdmDbSheetMetalContextPE::desc());

  EXPECT_EQ(manager()->getVariables(true, nullptr), OdDbObjectIdArray{m_carrier});
  EXPECT_EQ(manager()->deleteSheetMetalContext(), eOk);
  EXPECT_EQ(manager()->deleteSheetMetalContext(), eWrongObjectType);
}

TEST_F(VdmDbFeatureManagerTest, ACloneOfTheBlockTakesTheFeaturesOfItsEntities) {
  const OdDbObjectId taken = addHole(L"taken"), refused = addHole(L"refused"),
                     far = addHole(L"far");
  refer(taken, {{1, 7, {1}}});
  refer(refused, {{1, 7, {2}}});
  hole(refused, OdDb::kForWrite)->depth = -1;
  for (const OdDb::DeepCloneType context : {OdDb::kDcObjects, OdDb::kDcInsertCopy}) {
    OdDbIdMappingPtr mapping = OdDbIdMapping::createObject(context);
    const OdDbObjectId block = addBlock(m_drawing, context == OdDb::kDcObjects ? L"A" : L"B");
    ASSERT_EQ(m_drawing->deepCloneObjects({m_carrier}, block, *mapping, /*deferXlation=*/true),
              eOk);
    edit<OdDbBlockTableRecord>(block)->createExtensionDictionary();
    const OdDbObjectId target = open<OdDbBlockTableRecord>(block)->extensionDictionary();
    const OdDbObjectId source = m_features.ownerId();
    ASSERT_EQ(m_drawing->deepCloneObjects({source}, target, *mapping), eOk);
    const OdDbObjectId clone = vdmu::findClone(*mapping, m_features);
    ASSERT_FALSE(clone.isNull());
    const OdDbObjectIdArray ids = open<VdmDbFeatureManager>(clone)->featureIds();
    EXPECT_EQ(ids.size(), context == OdDb::kDcObjects ? 1u : 3u);
    ASSERT_FALSE(hole(ids[0]).isNull());
    EXPECT_EQ(hole(ids[0])->name(), OdString(L"taken"));
    ASSERT_EQ(hole(ids[0])->getFeatureEntities(1, false).size(), 1u);
    EXPECT_EQ(hole(ids[0])->getFeatureEntities(1, false)[0].objectIds()[0],
              vdmu::findClone(*mapping, m_carrier));
    EXPECT_EQ(manager()->featureIds(), (OdDbObjectIdArray{taken, refused, far}));
  }
}

TEST_F(VdmDbFeatureManagerTest, MergingMovesFeaturesOfClones) {
  const OdDbObjectId other = VdmDbFeatureManager::getInstance(addBlock(m_drawing, L"A"), true);
  const OdDbObjectId stays = addHole(L"stays"), moves = addHole(L"moves");
  refer(moves, {{1, 7, {1}}});
  const OdDbObjectId context = addContext(m_features, 2.0);
  const OdDbIdMappingPtr mapping = OdDbIdMapping::createObject();
  mapping->assign(OdDbIdPair(m_other, m_carrier, true));
  VdmDbReverseIdMapping reverse(*mapping);
  std::unordered_set<OdDbObjectId> merged;
  std::map<OdDbObjectId, OdDbObjectId> replaced;
  const auto merge = [&](OdDbObjectId target, OdDbObjectId source) {
    edit<VdmDbFeatureManager>(target)->mergeManagers(edit<VdmDbFeatureManager>(source), *mapping,
                                                     reverse, merged, false, replaced);
  };
  expectUndoable([&] { merge(other, m_features); });
  EXPECT_EQ(replaced[m_features], other);
  EXPECT_TRUE(m_features.isErased() && stays.isErased());
  EXPECT_EQ(open<VdmDbFeatureManager>(other)->featureIds(), OdDbObjectIdArray{moves});
  EXPECT_EQ(hole(moves)->featureManagerId(), other);
  EXPECT_EQ(open<VdmDbFeatureManager>(other)->sheetMetalContext(), context);

  const OdDbObjectId alike = VdmDbFeatureManager::getInstance(addBlock(m_drawing, L"C"), true);
  addContext(alike, 2.0 + 0.9e-10);
  expectUndoable([&] { merge(alike, other); });
  EXPECT_EQ(open<VdmDbFeatureManager>(alike)->featureIds(), OdDbObjectIdArray{moves});
  ASSERT_EQ(m_drawing->undo(), eOk);

  const OdDbObjectId third = VdmDbFeatureManager::getInstance(addBlock(m_drawing, L"B"), true);
  addContext(third, 2.0 + 1.1e-10);
  merge(third, other);
  EXPECT_TRUE(open<VdmDbFeatureManager>(third)->featureIds().isEmpty());
  EXPECT_TRUE(moves.isErased() && context.isErased());
  EXPECT_EQ(replaced.count(m_carrier), 1u);
}
