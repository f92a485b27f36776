// Tests of feature colours: the draw overrule of solids, its material, marked blocks and hooks.
#include <gmock/gmock.h>

#include "platform/cloning/xref_man.h"
#include "platform/db/block_table_record.h"
#include "platform/db/layer_table.h"
#include "tests/support/model_testing.h"
#include "tests/support/recording_draw.h"
#include "tests/support/solid_drawing_testing.h"
#include "vdm_db/drawing_utils/vdm_auto_save_solid_properties.h"
#include "vdm_db/feature_display/vdm_db_3d_solid_draw_overrule.h"
#include "vdm_db/feature_display/vdm_db_3d_solid_feature_coloring.h"
#include "vdm_db/features/vdm_db_feature_manager.h"
#include "vdm_db/features/vdm_feature.h"
#include "vdm_db/features/vdm_feature_color_pe.h"
#include "vdm_db/features/vdm_feature_colors.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr int kRed = 1;
constexpr int kBlue = 2;
constexpr int kColorless = 4;
constexpr int kTag = 77;

/// Red for the mask kRed, blue for kBlue.
class Painter : public OdRxObjectImpl<VdmFeatureColorPE> {
 public:
  bool overrideColor(int mask, OdCmEntityColor& color) override {
    if (mask == kRed) color.setRGB(255, 0, 0);
    if (mask == kBlue) color.setRGB(0, 0, 255);
    return mask == kRed || mask == kBlue;
  }
};

class FeatureColorTest : public virtual SolidRuntime, public ModelTest {
 protected:
  FeatureColorTest() {
    odInstallOcctModeler();
    const OdRxObjectPtr painter(new Painter, kOdRxObjAttach);
    VdmFeature::desc()->addX(VdmFeatureColorPE::desc(), painter);
    vdmu::GetFEATURECOLORS::setImpl([] { return true; });
  }
  ~FeatureColorTest() override {
    vdmu::GetFEATURECOLORS::setImpl(nullptr);
    VdmDb3dSolidFeatureColoring::setMethodOverwriteAttr(nullptr);
    VdmDb3dSolidFeatureColoring::setMethodRecoverAttr(nullptr);
    VdmFeature::desc()->delX(VdmFeatureColorPE::desc());
    odSetModeler(nullptr);
  }

  static OdDbObjectId addBox(const OdDbObjectId& block) {
    const OdDb3dSolidPtr solid = OdDb3dSolid::createObject();
    EXPECT_TRUE(solid->createBox(1, 2, 3).ok());
    return addTo(block, solid);
  }
  /// A feature of the solid's block that refers to one of its faces.
  static void paint(const OdDbObjectId& solid, OdGsMarker faceIndex, int mask) {
    const OdDbObjectId block = solid.openObject()->ownerId();
    VdmDbConstraintManager::getInstance(block, /*create=*/true);
    const OdDbObjectIdArray ids =
        edit<VdmDbPersIdManager>(VdmDbPersIdManager::getInstance(block, /*create=*/true))
            ->append({face(solid, faceIndex)}, nullptr);
    const OdDbObjectId carrier =
        edit<VdmDbFeatureManager>(VdmDbFeatureManager::getInstance(block, /*create=*/true))
            ->createFeatureData(VdmFeature::desc(), L"paint", false, false);
    const VdmFeaturePtr feature = VdmFeature::open(carrier, OdDb::kForWrite);
    edit<VdmDbPersIdReactor>(feature->addReactor(VdmDbPersIdReactor::desc(), mask, kTag))
        ->addPersIds(ids);
  }
  static bool needsOverride(const OdDbObjectId& id, OdGiRegenType type = kOdGiStandardDisplay) {
    return VdmDb3dSolidDrawOverrule::needDrawOverride(open<OdDb3dSolid>(id), type);
  }
  static Lines drawn(const OdDbObjectId& id, OdGiRegenType type = kOdGiStandardDisplay) {
    return RecordingDraw::of(open<OdDb3dSolid>(id), type);
  }
  static std::string material(const OdDbObjectId& id) {
    return "material " + std::string(OdString(id.getHandle().ascii()).utf8());
  }
};

TEST_F(FeatureColorTest, AFaceIsDrawnInItsFeaturesColourAndTheOthersInTheirOwn) {
  const OdDbObjectId solid = addBox(m_modelSpace);
  paint(solid, 2, kRed);
  edit<OdDb3dSolid>(solid)->setFaceColor(3, OdCmColor::fromRGB(9, 9, 9));
  const Lines lines = linesOf(drawn(solid), {"marker", "color", "material", "shell"});
  const std::string paintWith =
      material(VdmDb3dSolidDrawOverrule::findFeatureColorMaterial(m_drawing));
  ASSERT_GE(lines.size(), 14u);
  EXPECT_THAT(Lines(lines.begin(), lines.begin() + 14),
              ElementsAre("color layer", "material 0",                           // the solid's own
                          "marker 5", "color layer", "shell of 2",               // face 1
                          "color 255 0 0", paintWith, "marker 9", "shell of 2",  // face 2
                          "color layer", "material 0", "marker 13",              // back again
                          "color 9 9 9", "shell of 2"));                         // face 3
}

TEST_F(FeatureColorTest, TheFirstFeatureThatAnswersDecides) {
  const OdDbObjectId solid = addBox(m_modelSpace);
  paint(solid, 1, kColorless);
  EXPECT_THAT(linesOf(drawn(solid), {"color 255", "color 0 0 255"}), IsEmpty());
  paint(solid, 1, kBlue);
  paint(solid, 1, kRed);
  EXPECT_THAT(linesOf(drawn(solid), {"color 255", "color 0 0 255"}), ElementsAre("color 0 0 255"));
}

TEST_F(FeatureColorTest, WhatIsNotToBePaintedIsDrawnPlainly) {
  const OdDbObjectId solid = addBox(m_modelSpace);
  EXPECT_FALSE(needsOverride(solid));  // nothing refers to it
  paint(solid, 1, kRed);
  EXPECT_TRUE(needsOverride(solid));
  EXPECT_FALSE(needsOverride(solid, kOdGiForExtents));
  EXPECT_THAT(linesOf(drawn(solid, kOdGiForExtents), {"color 255"}), IsEmpty());
  EXPECT_FALSE(needsOverride(addBox(m_modelSpace)));
  EXPECT_FALSE(VdmDb3dSolidDrawOverrule::needDrawOverride(nullptr, kOdGiStandardDisplay));
  const OdDb3dSolidPtr loose = OdDb3dSolid::createObject();
  EXPECT_FALSE(VdmDb3dSolidDrawOverrule::needDrawOverride(loose, kOdGiStandardDisplay));
  for (bool (*method)() : {static_cast<bool (*)()>(nullptr), +[] { return false; }}) {
    vdmu::GetFEATURECOLORS::setImpl(method);
    EXPECT_FALSE(needsOverride(solid));
    EXPECT_THAT(linesOf(drawn(solid), {"color 255"}), IsEmpty());
  }
}

TEST_F(FeatureColorTest, AHostCanHoldThePaintBack) {
  class Busy : public OdDbHostAppServices {
   public:
    bool isBusy = false;
    bool isReadyForDisplay(const OdDbDatabase*) override { return !isBusy; }
  };
  Busy busy;
  const OdDbDatabasePtr drawing = busy.createDatabase();
  const OdDbObjectId solid = addBox(drawing->getModelSpaceId());
  paint(solid, 1, kRed);
  EXPECT_TRUE(needsOverride(solid));
  busy.isBusy = true;
  EXPECT_FALSE(needsOverride(solid));
}

TEST_F(FeatureColorTest, ExternalDrawingsKeepTheirColours) {
  const OdDbObjectId solid = addBox(m_modelSpace);
  paint(solid, 1, kRed);
  ASSERT_TRUE(m_drawing->saveAs(path("part.vdm")).ok());
  const OdDbDatabasePtr host = m_host.createDatabase();
  const OdDbObjectId block = attach(host, "part.vdm", L"part");
  addReference(host->getModelSpaceId(), block);
  const OdDbDatabase* external = open<OdDbBlockTableRecord>(block)->xrefDatabase();
  ASSERT_NE(external, nullptr);
  EXPECT_FALSE(needsOverride(external->getOdDbObjectId(solid.getHandle())));
  EXPECT_TRUE(needsOverride(solid));
}

TEST_F(FeatureColorTest, BlocksShowColoursOnceTheyAreMarked) {
  const OdDbObjectId block = addBlock(m_drawing, L"part");
  const OdDbObjectId solid = addBox(block);
  paint(solid, 1, kRed);
  using Coloring = VdmDb3dSolidFeatureColoring;
  EXPECT_FALSE(Coloring::isOverridenColorForBlock(block));
  EXPECT_THAT(linesOf(drawn(solid), {"color 255"}), IsEmpty());
  expectUndoable([&] { Coloring::overrideColorForBlock(block, true); });
  EXPECT_TRUE(Coloring::isOverridenColorForBlock(block));
  EXPECT_EQ(linesOf(drawn(solid), {"color 255"}).size(), 1u);
  m_drawing->startUndoRecord();
  Coloring::overrideColorForBlock(block, true);  // nothing to do
  Coloring::overrideColorForBlock(block, false);
  EXPECT_FALSE(Coloring::isOverridenColorForBlock(block));
  EXPECT_FALSE(open<OdDbBlockTableRecord>(block)->hasXData());
  EXPECT_FALSE(Coloring::isOverridenColorForBlock(solid));
  EXPECT_FALSE(Coloring::isOverridenColorForBlock({}));
}

TEST_F(FeatureColorTest, TheMaterialIsMadeOnce) {
  using Overrule = VdmDb3dSolidDrawOverrule;
  const OdDbDatabasePtr drawing = m_host.createDatabase();
  EXPECT_TRUE(Overrule::findFeatureColorMaterial(drawing).isNull());
  const OdDbObjectId made = Overrule::createFeatureColorMaterial(drawing);
  ASSERT_FALSE(made.isNull());
  EXPECT_EQ(Overrule::createFeatureColorMaterial(drawing), made);
  EXPECT_EQ(Overrule::findFeatureColorMaterial(drawing), made);
  const OdDbDictionaryPtr materials = edit<OdDbDictionary>(drawing->getMaterialDictionaryId());
  EXPECT_EQ(materials->numEntries(), 1u);
  // One that was renamed by a user is not taken for it.
  ASSERT_TRUE(materials->setName(materials->nameAt(made), L"paint"));
  EXPECT_TRUE(Overrule::findFeatureColorMaterial(drawing).isNull());
  EXPECT_TRUE(Overrule::createFeatureColorMaterial(nullptr).isNull());
}

int g_overwritten = 0;
int g_recovered = 0;

TEST_F(FeatureColorTest, HooksRunInPairsForPaintedSolids) {
  using Coloring = VdmDb3dSolidFeatureColoring;
  const OdDbObjectId plain = addBox(m_modelSpace);
  const OdDbObjectId painted = addBox(m_modelSpace);
  paint(painted, 1, kRed);
  g_overwritten = g_recovered = 0;
  { const Coloring::AutoApplyColor nothingIsSet(painted); }
  Coloring::setMethodOverwriteAttr([](const OdDbObjectId&) { ++g_overwritten; });
  Coloring::setMethodRecoverAttr([](const OdDbObjectId&) { ++g_recovered; });
  for (const OdDbObjectId& id : {plain, OdDbObjectId(), m_modelSpace}) {
    const Coloring::AutoApplyColor guard(id);
    EXPECT_EQ(g_overwritten, 0);
  }
  EXPECT_EQ(g_recovered, 0);
  {
    const Coloring::AutoApplyColor guard(painted);
    EXPECT_EQ(g_overwritten, 1);
    EXPECT_EQ(g_recovered, 0);
  }
  EXPECT_EQ(g_recovered, 1);
  Coloring::restoreColorAndMaterialAttr(painted, true);
  Coloring::restoreColorAndMaterialAttr(painted, false);
  Coloring::restoreColorAndMaterialAttr(plain, true);
  EXPECT_EQ(g_recovered, 2);
  Coloring::setOverriddenAttr(plain);
  EXPECT_EQ(g_overwritten, 2);
}

TEST_F(FeatureColorTest, PropertiesAreKeptWhileASolidIsWorkedOn) {
  const OdDb3dSolidPtr solid = edit<OdDb3dSolid>(addBox(m_modelSpace));
  solid->setColorIndex(3);
  {
    const vdmu::AutoSaveSolidProperties guard(solid);
    solid->setColorIndex(5);
    solid->setLineWeight(OdDb::kLnWt211);
    solid->setVisibility(OdDb::kInvisible);
  }
  EXPECT_EQ(solid->colorIndex(), 3);
  EXPECT_EQ(solid->lineWeight(), OdDb::kLnWtByLayer);
  EXPECT_EQ(solid->visibility(), OdDb::kVisible);
  { const vdmu::AutoSaveSolidProperties nothing(nullptr); }
}

}  // namespace
