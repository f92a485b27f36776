// Entities: properties, transforming, viewports, colours.
#include "platform/db/entity.h"

#include <cmath>

#include "platform/db/layer_table.h"
#include "platform/entities/viewport.h"
#include "tests/platform_db/db_testing.h"

namespace {

class OdDbEntityTest : public DbTest {
 protected:
  OdDbObjectId m_line = addLine(m_database->getModelSpaceId());
};

class GraphicsListener : public OdDbObjectReactor {
 public:
  void modifiedGraphics(const OdDbObject*) override { ++count; }
  int count = 0;
};

TEST_F(OdDbEntityTest, LayersAreGivenByNameOrId) {
  const OdDbLayerTableRecordPtr made = OdDbLayerTableRecord::createObject();
  made->setName("Walls");
  const OdDbObjectId walls = edit<OdDbLayerTable>(m_database->getLayerTableId())->add(made);
  const OdDbLinePtr line = edit<OdDbLine>(m_line);
  line->setLayer("WALLS");
  EXPECT_EQ(line->layerId(), walls);
  line->setLayer(m_database->getLayerZeroId());
  EXPECT_EQ(line->layer(), OdString("0"));
  const auto byId = [&](const OdDbObjectId& id) { return raisedBy([&] { line->setLayer(id); }); };
  EXPECT_EQ(raisedBy([&] { line->setLayer("nowhere"); }), eKeyNotFound);
  EXPECT_EQ(raisedBy([&] { OdDbLine::createObject()->setLayer("0"); }), eNoDatabase);
  EXPECT_EQ(byId({}), eNullObjectId);
  EXPECT_EQ(byId(m_line), eWrongObjectType);
  EXPECT_EQ(byId(m_host.createDatabase()->getLayerZeroId()), eWrongDatabase);
  const OdDbLinePtr other = OdDbLine::createObject();
  line->setLayer(walls);
  line->setColorIndex(3);
  other->setPropertiesFrom(line);
  EXPECT_EQ(other->layerId(), walls);
  EXPECT_EQ(other->colorIndex(), 3);
}

TEST_F(OdDbEntityTest, PropertiesAreUndoneTogether) {
  m_database->startUndoRecord();
  const std::string before = stateOf(m_line);
  {
    const OdDbLinePtr line = edit<OdDbLine>(m_line);
    line->setColor(OdCmColor::fromRGB(1, 2, 3));
    line->setLineWeight(OdDb::kLnWt025);
    line->setVisibility(OdDb::kInvisible);
    line->setEndPoint({7, 7, 7});
    line->setNormal({1, 0, 0});
    EXPECT_EQ(raisedBy([&] { line->setLineWeight(OdDb::LineWeight(212)); }), eInvalidInput);
    EXPECT_EQ(raisedBy([&] { line->setEndPoint({0, 0, HUGE_VAL}); }), eInvalidInput);
  }
  expectTruncationsFail(m_line);
  expectUndone(m_line, before);
}

TEST_F(OdDbEntityTest, GraphicsListenersHearOfVisibleChangesOnly) {
  GraphicsListener listener;
  edit<OdDbLine>(m_line)->addReactor(&listener);
  edit<OdDbLine>(m_line)->setStartPoint({0, 0, 0});
  EXPECT_EQ(listener.count, 0) << "nothing changed";
  edit<OdDbLine>(m_line)->setStartPoint({1, 1, 1});
  EXPECT_EQ(listener.count, 1);
  edit<OdDbLine>(m_line)->createExtensionDictionary();
  EXPECT_EQ(listener.count, 1);
  edit<OdDbLine>(m_line)->recordGraphicsModified();
  EXPECT_EQ(listener.count, 2);
  edit<OdDbLine>(m_line)->removeReactor(&listener);
}

TEST_F(OdDbEntityTest, TransformingChecksTheMatrix) {
  const OdDbLinePtr line = edit<OdDbLine>(m_line);
  ASSERT_EQ(line->transformBy(OdGeMatrix3d::translation({0, 2, 0})), eOk);
  EXPECT_EQ(line->endPoint(), OdGePoint3d(1, 2, 0));
  EXPECT_EQ(line->transformBy(OdGeMatrix3d::scaling(0.0)), eDegenerateGeometry);
  EXPECT_EQ(line->transformBy(OdGeMatrix3d::translation({HUGE_VAL, 0, 0})), eInvalidInput);
  EXPECT_EQ(line->endPoint(), OdGePoint3d(1, 2, 0));
}

TEST_F(OdDbEntityTest, ViewportsKeepASoundView) {
  const OdDbViewportPtr viewport = OdDbViewport::createObject();
  viewport->setHeight(100);
  viewport->setCustomScale(0.5);
  EXPECT_DOUBLE_EQ(viewport->viewHeight(), 200);
  viewport->setViewDirection({1, 1, 1});
  for (const double bad : {0.0, -1.0, HUGE_VAL}) {
    EXPECT_EQ(raisedBy([&] { viewport->setWidth(bad); }), eInvalidInput);
    EXPECT_EQ(raisedBy([&] { viewport->setHeight(bad); }), eInvalidInput);
    EXPECT_EQ(raisedBy([&] { viewport->setViewHeight(bad); }), eInvalidInput);
    EXPECT_EQ(raisedBy([&] { viewport->setCustomScale(bad); }), eInvalidInput);
  }
  EXPECT_EQ(raisedBy([&] { viewport->setViewDirection({}); }), eDegenerateGeometry);
  EXPECT_EQ(raisedBy([&] { viewport->setViewTarget({0, HUGE_VAL, 0}); }), eInvalidInput);
  ASSERT_EQ(viewport->transformBy(OdGeMatrix3d::scaling(2.0)), eOk);
  EXPECT_DOUBLE_EQ(viewport->height(), 200);
  const OdDbViewportPtr copy = OdDbViewport::createObject();
  copy->copyFrom(viewport);
  EXPECT_EQ(copy->viewDirection(), OdGeVector3d(1, 1, 1));
  const OdDbObjectId id =
      edit<OdDbBlockTableRecord>(m_database->getPaperSpaceId())->appendOdDbEntity(viewport);
  expectTruncationsFail(id);
}

TEST(OdCmColorTest, MethodsExcludeEachOther) {
  OdCmColor color = OdCmColor::fromRGB(255, 0, 7);
  EXPECT_EQ(color.colorIndex(), 0);
  color.setColorIndex(5);
  EXPECT_TRUE(color.isByACI());
  EXPECT_EQ(color.red(), 0);
  EXPECT_NE(color, OdCmColor::fromRGB(5, 0, 0));
  color.setColorIndex(0);
  EXPECT_TRUE(color.isByBlock());
  EXPECT_EQ(raisedBy([&] { color.setColorIndex(257); }), eInvalidInput);
  EXPECT_EQ(raisedBy([&] { color.setColorMethod(OdCmColor::ColorMethod(1)); }), eInvalidInput);

  OdDbFilerBuffer buffer;
  OdDbMemoryFiler filer(OdDbDwgFiler::kCopyFiler, buffer);
  OdCmColor::fromRGB(1, 2, 3).dwgOut(&filer);
  filer.startReading(0, 0);
  EXPECT_EQ(color.dwgIn(&filer), eOk);
  EXPECT_EQ(color, OdCmColor::fromRGB(1, 2, 3));
  buffer.bytes[0] = 0;
  filer.startReading(0, 0);
  EXPECT_EQ(color.dwgIn(&filer), eCorruptData);
}

}  // namespace
