// Tests of drawables, their overrules and the drawing of entities.
#include "platform/gi/drawable.h"

#include <gmock/gmock.h>

#include <cmath>
#include <filesystem>

#include "platform/base/error.h"
#include "platform/cloning/xref_man.h"
#include "platform/db/dictionary.h"
#include "platform/db/display_attributes.h"
#include "platform/db/layer_table.h"
#include "platform/db/material.h"
#include "platform/entities/line.h"
#include "platform/gi/drawable_overrule.h"
#include "platform/storage/sqlite_record_store.h"
#include "tests/gi/recording_draw.h"
#include "tests/modeler/drawing_fixture.h"

namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

/// Writes its name in front of what comes behind it.
class NamedOverrule : public OdGiDrawableOverrule {
 public:
  explicit NamedOverrule(std::string name) : m_name(std::move(name)) {}
  bool worldDraw(const OdGiDrawable* subject, OdGiWorldDraw* context) override {
    static_cast<RecordingDraw*>(context)->lines.push_back(m_name);
    return OdGiDrawableOverrule::worldDraw(subject, context);
  }

 private:
  std::string m_name;
};

class DrawableTest : public DrawingTest {
 protected:
  template <class T>
  static OdSmartPtr<T> edit(const OdDbObjectId& id) {
    return id.safeOpenAs<T>(OdDb::kForWrite);
  }
  [[nodiscard]] OdDbObjectId modelSpace() const { return m_database->getModelSpaceId(); }
  static OdDbObjectId addLine(const OdDbObjectId& block) {
    const OdDbLinePtr line = OdDbLine::createObject();
    line->setEndPoint({1, 0, 0});
    return edit<OdDbBlockTableRecord>(block)->appendOdDbEntity(line);
  }
  [[nodiscard]] OdDbObjectId addBlock(const wchar_t* name) const {
    const OdDbBlockTableRecordPtr block = OdDbBlockTableRecord::createObject();
    block->setName(name);
    return edit<OdDbBlockTable>(m_database->getBlockTableId())->add(block);
  }
  static OdDbObjectId show(const OdDbObjectId& owner, const OdDbObjectId& block,
                           const OdGeVector3d& at) {
    const OdDbBlockReferencePtr reference = OdDbBlockReference::createObject();
    reference->setBlockTableRecord(block);
    reference->setPosition(OdGePoint3d::kOrigin + at);
    return edit<OdDbBlockTableRecord>(owner)->appendOdDbEntity(reference);
  }
  [[nodiscard]] OdDbObjectId addLayer(const wchar_t* name, OdUInt16 color) const {
    const OdDbLayerTableRecordPtr layer = OdDbLayerTableRecord::createObject();
    layer->setName(name);
    layer->setColor(OdCmColor::fromIndex(color));
    return edit<OdDbLayerTable>(m_database->getLayerTableId())->add(layer);
  }
  static Lines drawn(const OdDbObjectId& id) {
    const OdDbObjectPtr object = id.safeOpenObject();
    return RecordingDraw::of(object);
  }
};

TEST_F(DrawableTest, OverrulesRunInTheirOrderAndEndAtTheObject) {
  const OdDbObjectId line = addLine(modelSpace());
  OdStaticRxObject<NamedOverrule> general("general");
  OdStaticRxObject<NamedOverrule> second("second");
  OdStaticRxObject<NamedOverrule> first("first");
  OdRxOverrule::addOverrule(OdDbEntity::desc(), &general);
  OdRxOverrule::addOverrule(OdDbLine::desc(), &second);
  OdRxOverrule::addOverrule(OdDbLine::desc(), &first);
  EXPECT_THAT(linesOf(drawn(line), {"first", "second", "general", "poly"}),
              ElementsAre("first", "second", "general", "polyline 0 0 0 to 1 0 0"));
  OdRxOverrule::setIsOverruling(false);
  EXPECT_THAT(linesOf(drawn(line), {"first", "general", "poly"}),
              ElementsAre("polyline 0 0 0 to 1 0 0"));
  OdRxOverrule::setIsOverruling(true);
  OdRxOverrule::removeOverrule(OdDbLine::desc(), &first);
  OdRxOverrule::removeOverrule(OdDbLine::desc(), &second);
  OdRxOverrule::removeOverrule(OdDbEntity::desc(), &general);
}

TEST_F(DrawableTest, ReferencesDrawTheirBlocksWhereTheyStand) {
  const OdDbObjectId part = addBlock(L"part");
  const OdDbObjectId unit = addBlock(L"unit");
  const OdDbObjectId line = addLine(part);
  edit<OdDbBlockTableRecord>(part)->setOrigin({1, 0, 0});
  show(unit, part, {0, 10, 0});
  const OdDbObjectId turned = show(modelSpace(), unit, {100, 0, 0});
  edit<OdDbBlockReference>(turned)->setRotation(std::acos(-1.0));
  const OdDbObjectPtr reference = turned.safeOpenObject();
  const Lines lines = linesOf(RecordingDraw::of(reference), {"poly"});
  ASSERT_EQ(lines.size(), 1u);
  EXPECT_TRUE(lines[0].starts_with("polyline 101 -10 ")) << lines[0];
  edit<OdDbEntity>(line)->setVisibility(OdDb::kInvisible);
  EXPECT_THAT(linesOf(drawn(modelSpace()), {"poly"}), IsEmpty());
}

TEST_F(DrawableTest, ExternalReferencesShowTheOtherDrawingOnceItIsOpen) {
  OdDbHostAppServices services(createSqliteStoreFactory());
  const OdDbDatabasePtr part = services.createDatabase();
  addLine(part->getModelSpaceId());
  const OdString path(std::filesystem::absolute("part.vdm").string());
  ASSERT_TRUE(part->saveAs(path).ok());
  const OdDbDatabasePtr host = services.createDatabase();
  OdDbObjectId block;
  ASSERT_EQ(OdDbXRefMan::attach(host, path, L"part", block), eOk);
  const OdDbObjectId reference = show(host->getModelSpaceId(), block, {5, 0, 0});
  EXPECT_THAT(drawn(reference), Contains("polyline 5 0 0 to 6 0 0"));
  ASSERT_EQ(OdDbXRefMan::unload(edit<OdDbBlockTableRecord>(block)), eOk);
  bool complete = true;
  const OdDbObjectPtr unloaded = reference.safeOpenObject();
  EXPECT_THAT(linesOf(RecordingDraw::of(unloaded, kOdGiStandardDisplay, &complete), {"poly"}),
              IsEmpty());
  EXPECT_FALSE(complete);
}

TEST_F(DrawableTest, SolidsAnnounceFacesAndEdgesWithTheirColours) {
  const OdDbObjectId id = addSolid(cylinder(5, 10));
  edit<OdDb3dSolid>(id)->setFaceColor(2, OdCmColor::fromRGB(1, 2, 3));
  const Lines faces = linesOf(drawn(id), {"marker", "color"});
  // A cylinder has three faces, two circles and a seam, which is not drawn.
  ASSERT_GE(faces.size(), 8u);
  EXPECT_THAT(Lines(faces.begin(), faces.begin() + 7),
              ElementsAre("color layer", "marker 5", "color layer", "marker 9", "color 1 2 3",
                          "marker 13", "color layer"));
  EXPECT_EQ(linesOf(faces, {"marker 6", "marker 10", "marker 14"}).size(), 2u);
  EXPECT_EQ(linesOf(drawn(id), {"poly"}).size(), 2u);
  edit<OdDb3dSolid>(id)->setBody(colored(cylinder(5, 10), {9, 8, 7}));
  EXPECT_EQ(linesOf(drawn(id), {"color 9 8 7"}).size(), 3u);
  edit<OdDb3dSolid>(id)->setColorIndex(4);
  EXPECT_THAT(linesOf(drawn(id), {"color 9 8 7"}), IsEmpty());
}

TEST_F(DrawableTest, BodiesAreMeshedOnce) {
  const OdModelerBodyPtr body = box(1, 2, 3);
  std::shared_ptr<const OdModelerMesh> first;
  std::shared_ptr<const OdModelerMesh> second;
  EXPECT_EQ(body->displayMeshSize(), 0u);
  ASSERT_TRUE(succeeded(body->displayMesh(first)));
  ASSERT_TRUE(succeeded(body->displayMesh(second)));
  EXPECT_EQ(first, second);
  EXPECT_GT(body->displayMeshSize(), first->faces.size() * 2 * sizeof(OdGePoint3d));
}

TEST_F(DrawableTest, AttributesAreSettledThroughReferences) {
  Lines ignored;
  OdStaticRxObject<RecordingTraits> own(ignored);
  const OdDbObjectId red = addLayer(L"red", 1);
  const OdDbObjectId green = addLayer(L"green", 3);
  own.setLayer(red);
  OdDbDisplayAttributes block = oddbSettleDisplay(own, nullptr);
  EXPECT_EQ(block.color.colorIndex(), 1);
  // In a block: layer "0" is the reference's, by block is what the reference was settled to.
  own.setLayer(m_database->getLayerZeroId());
  EXPECT_EQ(oddbSettleDisplay(own, &block).layer, red);
  EXPECT_EQ(oddbSettleDisplay(own, &block).color.colorIndex(), 1);
  own.setLayer(green);
  EXPECT_EQ(oddbSettleDisplay(own, &block).color.colorIndex(), 3);
  own.setColor(0);
  own.setLineWeight(OdDb::kLnWtByBlock);
  block.lineWeight = OdDb::kLnWt025;
  EXPECT_EQ(oddbSettleDisplay(own, &block).color.colorIndex(), 1);
  EXPECT_EQ(oddbSettleDisplay(own, &block).lineWeight, OdDb::kLnWt025);
  EXPECT_EQ(oddbSettleDisplay(own, nullptr).color.colorIndex(), 7);
  edit<OdDbLayerTableRecord>(red)->setIsOff(true);
  EXPECT_TRUE(oddbSettleDisplay(own, &block).visible);  // off hides what is on the layer itself
  edit<OdDbLayerTableRecord>(red)->setIsFrozen(true);
  EXPECT_FALSE(oddbSettleDisplay(own, &block).visible);
}

TEST_F(DrawableTest, AContextThatAbortsEndsADrawing) {
  addLine(modelSpace());
  OdStaticRxObject<RecordingDraw> draw(kOdGiStandardDisplay);
  draw.aborts = true;
  const OdDbObjectPtr space = modelSpace().safeOpenObject();
  EXPECT_FALSE(space->worldDraw(&draw));
  EXPECT_THAT(draw.lines, IsEmpty());
}

TEST(OdCmEntityColorTest, TheTableGoesRoundTheHues) {
  struct Row {
    OdUInt16 index;
    OdUInt8 red, green, blue;
  };
  constexpr Row kRows[] = {{1, 255, 0, 0},     {5, 0, 0, 255},      {8, 128, 128, 128},
                           {10, 255, 0, 0},    {11, 255, 128, 128}, {30, 255, 128, 0},
                           {90, 0, 255, 0},    {170, 0, 0, 255},    {174, 0, 0, 128},
                           {210, 255, 0, 255}, {250, 51, 51, 51},   {255, 255, 255, 255}};
  for (const Row& row : kRows) {
    EXPECT_EQ(OdCmEntityColor::fromIndex(row.index).toRGB(),
              OdCmEntityColor::fromRGB(row.red, row.green, row.blue))
        << row.index;
  }
}

TEST_F(DrawableTest, MaterialsAreKeptInTheirDictionary) {
  EXPECT_TRUE(m_database->getMaterialDictionaryId(false).isNull());
  const OdDbObjectId dictionary = m_database->getMaterialDictionaryId();
  EXPECT_EQ(m_database->getMaterialDictionaryId(false), dictionary);
  const OdDbMaterialPtr steel = OdDbMaterial::createObject();
  steel->setDiffuse(OdCmColor::fromRGB(90, 95, 99));
  steel->setShininess(0.75);
  EXPECT_THROW(steel->setOpacity(1.5), OdError);
  EXPECT_THROW(steel->setDiffuse(OdCmColor(OdCmColor::kByBlock)), OdError);
  edit<OdDbDictionary>(dictionary)->setAt(L"steel", steel);
  const OdDbMaterialPtr copy = OdDbMaterial::createObject();
  copy->copyFrom(steel);
  EXPECT_EQ(copy->diffuse(), OdCmColor::fromRGB(90, 95, 99));
  EXPECT_EQ(copy->shininess(), 0.75);
  EXPECT_EQ(copy->opacity(), 1.0);
}

}  // namespace
