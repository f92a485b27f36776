// Tests of features and their carriers: state, status, filing, erasing, queries.
#include <cstring>

#include "platform/filer/dxf_text_filer.h"
#include "tests/support/dump_drawing.h"
#include "tests/vdm_db/features/feature_testing.h"
#include "vdm_db/features/vdm_db_sheet_metal_context_pe.h"
#include "vdm_db/features/vdm_feature_external_pe.h"
#include "vdm_db/features/vdm_feature_pe.h"
#include "vdm_db/features/vdm_feature_results.h"

class VdmDbFeatureDataTest : public FeatureTest {};

TEST_F(VdmDbFeatureDataTest, OnlyFeatureClassesMakeCarriers) {
  EXPECT_TRUE(VdmDbFeatureData::create(nullptr, L"a").isNull());
  EXPECT_TRUE(VdmDbFeatureData::create(OdDbLine::desc(), L"a").isNull());
  const VdmDbFeatureDataPtr carrier = VdmDbFeatureData::create(HoleFeature::desc(), L"a");
  EXPECT_EQ(carrier->adapterClass(), HoleFeature::desc());
  EXPECT_EQ(carrier->featureType(), OdString(L"HoleFeature"));
  EXPECT_EQ(VdmFeature::cast(carrier.get())->name(), OdString(L"a"));
  EXPECT_EQ(VdmFeature::cast(carrier.get())->getStatus(), 0);
  EXPECT_EQ(VdmDbFeatureData().adapterClass(), OdRxObject::desc());
}

// Where a virtual function stands in the table of its class, by the common C++ ABI.
template <class Function>
static std::ptrdiff_t slotOf(Function function) {
  std::ptrdiff_t place = 0;
  std::memcpy(&place, &function, sizeof place);
  return place / static_cast<std::ptrdiff_t>(sizeof(void*));
}

// Classes of other modules are compiled against these places.
TEST_F(VdmDbFeatureDataTest, VirtualOperationsKeepTheirSlots) {
  using F = VdmFeature;
  const std::ptrdiff_t first = slotOf(&F::name);
  const std::pair<std::ptrdiff_t, int> rows[] = {{slotOf(&F::masks), 2},
                                                 {slotOf(&F::prepareUpdateData), 6},
                                                 {slotOf(&F::validate), 9},
                                                 {slotOf(&F::mustBeCloned), 12},
                                                 {slotOf(&F::isNeedEvaluate), 16},
                                                 {slotOf(&F::dxfInFields), 21},
                                                 {slotOf(&F::isRequiredDependency), 22},
                                                 {slotOf(&F::onDeepClone), 26},
                                                 {slotOf(&F::currentEdition), 29},
                                                 {slotOf(&F::attach), 31}};
  for (const auto& [slot, place] : rows) EXPECT_EQ(slot - first, place);
  using Sheet = VdmDbSheetMetalContextPE;
  EXPECT_EQ(slotOf(&Sheet::updateGeometry) - slotOf(&Sheet::updateRecognition), 2);
}

TEST_F(VdmDbFeatureDataTest, AFeatureHoldsItsCarrierInTheModeOfTheOpen) {
  const OdDbObjectId id = addHole();
  const HoleFeaturePtr reading = hole(id);
  EXPECT_TRUE(reading->getDbObject()->isReadEnabled());
  EXPECT_FALSE(reading->getDbObject()->isWriteEnabled());
  EXPECT_EQ(raisedBy([&] { reading->setName(L"b"); }), eNotOpenForWrite);
  {
    const VdmFeaturePtr writing = VdmFeature::open(id, OdDb::kForWrite);
    EXPECT_TRUE(reading->getDbObject()->isWriteEnabled());
    EXPECT_EQ(writing->setName(L"b"), eOk);
  }
  EXPECT_FALSE(reading->getDbObject()->isWriteEnabled());
  VdmFeaturePtr loose = HoleFeature::createObject();
  EXPECT_EQ(raisedBy([&] { (void)loose->name(); }), eNotOpenForRead);
  EXPECT_EQ(reading->featureManagerId(), m_features);
}

TEST_F(VdmDbFeatureDataTest, StateSurvivesAFileAndUndo) {
  OdDbObjectId id = addHole();
  expectUndoable([&] {
    const HoleFeaturePtr writing = hole(id, OdDb::kForWrite);
    writing->setName(L"deep");  // records the depth, too
    writing->depth = 12.5;
    refer(id, {{1, 7, {1, 2}}});
  });
  reopenWith({&id});
  EXPECT_EQ(hole(id)->depth, 12.5);
  EXPECT_EQ(hole(id)->name(), OdString(L"deep"));
  EXPECT_EQ(hole(id)->getFeatureEntities(1, false).size(), 2u);
  HoleFeature::edition = 0;
  const OdDbObjectId other = addHole();
  EXPECT_FALSE(open<VdmDbFeatureData>(other)->getReadProperties().hasProperty(L"Edition"));
}

// Class not loaded, and class too old for the bag: the same data comes out that went in.
TEST_F(VdmDbFeatureDataTest, AnUnknownOrNewerFeatureKeepsItsBagAndComesBack) {
  HoleFeature::edition = 2;
  OdDbObjectId id = addHole(L"kept");
  {
    const HoleFeaturePtr writing = hole(id, OdDb::kForWrite);
    writing->setName(L"kept too");
    writing->depth = 3;
  }
  for (const bool unloaded : {true, false}) {
    const std::string before = dumpDrawing(m_drawing);
    if (unloaded) {
      TellingReactor::rxUninit();
      HoleFeature::rxUninit();
    } else {
      HoleFeature::edition = 1;
    }
    for (int round = 0; round < 2; ++round) {
      reopenWith({&id});
      const VdmDbFeatureDataPtr carrier = open<VdmDbFeatureData>(id);
      EXPECT_EQ(carrier->adapterClass(), VdmFeature::desc());
      EXPECT_EQ(VdmFeature::open(id)->name(), OdString(L"kept too"));
      EXPECT_EQ(carrier->featureType(), OdString(L"HoleFeature"));
      EXPECT_EQ(VdmFeature::open(id, OdDb::kForWrite)->setName(L"kept too"), eOk);
    }
    if (unloaded) {
      HoleFeature::rxInit();
      TellingReactor::rxInit();
    }
    HoleFeature::edition = 2;
    reopenWith({&id});
    ASSERT_FALSE(hole(id).isNull());
    EXPECT_EQ(hole(id)->depth, 3);
    EXPECT_EQ(firstDifference(before, dumpDrawing(m_drawing)), "");
  }
}

TEST_F(VdmDbFeatureDataTest, DxfNeedsItsMarker) {
  const VdmDbFeatureDataPtr made = VdmDbFeatureData::create(HoleFeature::desc(), L"dxf");
  OdDbTextDxfFiler written;
  made->dxfOutFields(&written);
  const auto readText = [](std::string text, std::string_view from, std::string_view to) {
    text.replace(text.find(from), from.size(), to);
    OdDbTextDxfFiler reader(text, nullptr);
    const VdmDbFeatureDataPtr carrier = VdmDbFeatureData::createObject();
    const OdResult result = carrier->dxfInFields(&reader);
    return std::make_pair(result, HoleFeature::cast(carrier.get()));
  };
  // Bags are written with a mark (255) that only other readers take.
  const auto [result, read] = readText(written.text(), "255", "1");
  EXPECT_EQ(result, eOk);
  EXPECT_EQ(read->name(), OdString(L"dxf"));
  EXPECT_EQ(readText(written.text(), "VdmDbFeature", "Other").first, eNotApplicable);
}

TEST_F(VdmDbFeatureDataTest, StatusRules) {
  const OdDbObjectId id = addHole();
  refer(id, {{1, -1, {1}}});
  const auto set = [&](int status) {
    EXPECT_EQ(hole(id, OdDb::kForWrite)->setStatus(static_cast<VdmFeature::Status>(status)), eOk);
    return static_cast<int>(hole(id)->getStatus());
  };
  edit<VdmDbConstraintManager>(m_constraints)->setStatus(VdmDbConstraintManager::kUpToDate);
  EXPECT_EQ(set(0x61), 0x61);
  EXPECT_TRUE(manager(OdDb::kForRead)->isNeedEvaluate());
  EXPECT_EQ(set(8), 0x61);
  EXPECT_EQ(status(), VdmDbConstraintManager::kUpToDate);
  hole(id, OdDb::kForWrite)->evaluate();
  EXPECT_EQ(hole(id)->getStatus(), 0x61);
  EXPECT_EQ(set(0), 0);
  EXPECT_EQ(set(8), 8);
  EXPECT_NE(status(), VdmDbConstraintManager::kUpToDate);
  EXPECT_EQ(manager()->updateFeaturesStatus(VdmFeature::StatusNeedEvaluate), eOk);
  EXPECT_EQ(hole(id)->getStatus(), 8);
  EXPECT_EQ(set(0x41), 0x41);
  manager()->evaluate();
  EXPECT_EQ(hole(id)->getStatus(), 1);
  EXPECT_FALSE(manager(OdDb::kForRead)->isNeedEvaluate());
  expectUndoable([&] { set(0x40); });
}

TEST_F(VdmDbFeatureDataTest, ErasingTakesReactorsAndUndoBringsAllBack) {
  const OdDbObjectId id = addHole();
  refer(id, {{1, 7, {1, 2}}});
  const OdDbObjectIdArray reactors = hole(id)->reactors();
  const OdDbObjectId dependency = hole(id)->getAllDependencies(false)[0];
  expectUndoable([&] { edit<VdmDbFeatureData>(id)->erase(); });
  EXPECT_TRUE(id.isErased());
  EXPECT_TRUE(reactors[0].isErased());
  EXPECT_FALSE(open<VdmDbObjectDependency>(dependency)->isWatched());
  EXPECT_TRUE(manager(OdDb::kForRead)->newFeatureIterator().done());
}

TEST_F(VdmDbFeatureDataTest, ACarrierWithoutAFeatureSaysSoAndIsErased) {
  const OdDbObjectId id = m_drawing->addOdDbObject(VdmDbFeatureData::createObject(), m_features);
  m_drawing->startUndoRecord();
  EXPECT_EQ(edit<VdmDbFeatureData>(id)->erase(), kVdmNoFeature);
  EXPECT_TRUE(id.isErased());
  ASSERT_EQ(m_drawing->undo(), eOk);
  EXPECT_FALSE(id.isErased());
  ASSERT_EQ(m_drawing->redo(), eOk);
  EXPECT_TRUE(id.isErased());
}

// ---- Queries

class Shape : public VdmFeaturePE {
 public:
  OD_RX_DECLARE_MEMBERS(Shape)
};
OD_RX_DEFINE(Shape, VdmFeaturePE, L"Shape")

class Outside : public OdRxObject {
 public:
  OD_RX_DECLARE_MEMBERS(Outside)
};
OD_RX_DEFINE(Outside, OdRxObject, L"Outside")

namespace {

class OutsideSource : public OdRxObjectImpl<VdmFeatureExternalPE> {
 public:
  OdRxObjectPtr queryFeature(const VdmFeature*) override { return Outside::createObject(); }
  OdRxObjectPtr queryFeatureData(const VdmDbFeatureData*) override { return OdRxObjectPtr(); }
};

}  // namespace

TEST_F(VdmDbFeatureDataTest, ExtensionsAreBoundToTheFeatureThatIsAsked) {
  Shape::rxInit();
  Outside::rxInit();
  HoleFeature::desc()->addX(Shape::desc(), Shape::createObject());
  Outside::desc()->addX(VdmFeatureExternalPE::desc(),
                        OdRxObjectPtr(new OutsideSource, kOdRxObjAttach));
  const OdDbObjectId id = addHole();
  {
    const OdSmartPtr<Shape> one = id.openAs<Shape>();
    const OdSmartPtr<Shape> two = id.openAs<Shape>();
    EXPECT_EQ(one->objectId(), id);
    EXPECT_NE(one.get(), two.get());
    EXPECT_EQ(one->feature(), two->feature());
    EXPECT_TRUE(Shape::cast(Shape::createObject().get())->objectId().isNull());
    EXPECT_FALSE(Outside::cast(hole(id).get()).isNull());
    EXPECT_TRUE(id.openAs<Outside>().isNull());
    EXPECT_FALSE(open<VdmDbFeatureData>(id)->isWriteEnabled());
  }
  HoleFeature::desc()->delX(Shape::desc());
  Outside::rxUninit();
  Shape::rxUninit();
}
