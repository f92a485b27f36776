// What a STEP file says about its parts comes into the drawing and out again.
#include "platform/db/layer_table.h"
#include "platform/db/units.h"
#include "tests/platform/modeler/step_testing.h"

namespace {

class OdModelerStepKeeping : public OdModelerStep {
 protected:
  OdDbObjectId layer(const wchar_t* name, const OdCmColor& color) const {
    OdDbLayerTablePtr table =
        m_database->getLayerTableId().safeOpenAs<OdDbLayerTable>(OdDb::kForWrite);
    OdDbLayerTableRecordPtr record = OdDbLayerTableRecord::createObject();
    record->setName(name);
    record->setColor(color);
    return table->add(record);
  }
  OdModelerAssembly exported(const OdStepExportOptions& options = {}) {
    m_report = {};
    EXPECT_TRUE(succeeded(exportStepFromDatabase(m_database, path("out.stp"), &m_report, options)));
    return readStep(path("out.stp"));
  }
  static OdModelerAssembly twoBodies() {
    OdModelerAssembly a;
    a.products = {
        {L"pair", L"pair", {box(1.0, 1.0, 1.0), box(1.0, 1.0, 1.0, {5.0, 0.0, 0.0})}, {}}};
    a.roots = {{0, {}, L"", {}}};
    return a;
  }
  OdStepReport m_report;
};

TEST_F(OdModelerStepKeeping, ProductNameOfSeveralBodies) {
  ASSERT_TRUE(succeeded(importStepIntoDatabase(m_database, writeStep(twoBodies()))));
  OdModelerAssembly got = exported();
  ASSERT_EQ(got.products.size(), 1u);
  EXPECT_EQ(got.products[0].name, L"pair");
  EXPECT_EQ(got.products[0].bodies.size(), 2u);
  // More in the same space is still that product.
  addSolid(box(1.0, 1.0, 1.0, {9.0, 0.0, 0.0}));
  got = exported();
  EXPECT_EQ(got.products[0].name, L"pair");
  EXPECT_EQ(got.products[0].bodies.size(), 3u);
}

TEST_F(OdModelerStepKeeping, ADrawingOfOneSolidIsThatSolid) {
  addSolid(colored(box(1.0, 1.0, 1.0), {1, 2, 3}, L"bracket"));
  EXPECT_EQ(exported().products[0].name, L"bracket");
}

TEST_F(OdModelerStepKeeping, Layers) {
  OdModelerAssembly made = twoBodies();
  made.products[0].layers = {L"outer: 1", L"inner"};
  OdStepReport report;
  ASSERT_TRUE(succeeded(importStepIntoDatabase(m_database, writeStep(made), &report)));
  const auto solids = entities<OdDb3dSolid>(m_database->getModelSpaceId());
  ASSERT_EQ(solids.size(), 2u);
  EXPECT_EQ(solids[0]->layer(), L"outer_ 1");
  EXPECT_EQ(solids[1]->layer(), L"inner");
  EXPECT_TRUE(mentions(report.lines, L"layer 'outer: 1' is layer 'outer_ 1'"));
  const OdModelerAssembly got = exported();
  EXPECT_EQ(got.products[0].layerOf(0), L"outer_ 1");
  EXPECT_EQ(got.products[0].layerOf(1), L"inner");
  // One body, which is the whole product; and a layer that the drawing has already.
  made = part(cylinder(1.0, 2.0));
  made.products[0].layers = {L"INNER"};
  ASSERT_TRUE(succeeded(importStepIntoDatabase(m_database, writeStep(made))));
  EXPECT_EQ(entities<OdDb3dSolid>(m_database->getModelSpaceId())[2]->layer(), L"inner");
}

TEST_F(OdModelerStepKeeping, ColoursOfEntitiesAndOfTheirLayers) {
  layer(L"red", OdCmColor::fromRGB(255, 0, 0));
  layer(L"plain", OdCmColor::fromIndex(7));
  struct Row {
    const wchar_t* layer;
    OdCmColor color;
    std::optional<OdModelerColor> shown;
  };
  const Row rows[] = {
      {L"red", OdCmColor(), OdModelerColor{255, 0, 0}},
      {L"red", OdCmColor::fromRGB(1, 2, 3), OdModelerColor{1, 2, 3}},
      {L"plain", OdCmColor::fromIndex(3), OdModelerColor{0, 255, 0}},
      {L"plain", OdCmColor(), std::nullopt},
  };
  double size = 1.0;
  for (const Row& row : rows) {
    OdDb3dSolidPtr each = solid(addSolid(box(size, 1.0, 1.0)), OdDb::kForWrite);
    each->setLayer(row.layer);
    each->setColor(row.color);
    size += 1.0;
  }
  const OdModelerAssembly got = exported();
  ASSERT_EQ(got.products[0].bodies.size(), std::size(rows));
  for (std::size_t i = 0; i < std::size(rows); ++i) {
    EXPECT_EQ(got.products[0].bodies[i]->attributes().color, rows[i].shown) << i;
    EXPECT_EQ(got.products[0].layerOf(i), rows[i].layer) << i;
  }
}

TEST_F(OdModelerStepKeeping, UnitsGoThroughTheDrawing) {
  OdModelerAssembly made = cart();
  for (const double millimetres : {25.4, 10.0, 1000.0, 304.8}) {
    made.sourceUnit = {L"", millimetres};
    const OdDbDatabasePtr drawing = m_services.createDatabase();
    ASSERT_TRUE(succeeded(importStepIntoDatabase(drawing.get(), writeStep(made))));
    EXPECT_NEAR(oddbMetresPerUnit(drawing->getINSUNITS()) * 1e3, millimetres, 1e-9);
    const OdString file = path("units.stp");
    ASSERT_TRUE(succeeded(exportStepFromDatabase(drawing.get(), file)));
    const OdModelerAssembly got = readStep(file);
    EXPECT_NEAR(got.sourceUnit.millimetres, millimetres, 1e-9);
    const OdModelerProduct& top = got.products[got.roots[0].product];
    ASSERT_EQ(top.occurrences.size(), 3u);
    EXPECT_TRUE(top.occurrences[1].placement.isEqualTo(made.products[0].occurrences[1].placement,
                                                       OdGeTol(1e-6)));
    EXPECT_NEAR(got.products[top.occurrences[1].product].bodies[0]->massProperties().volume,
                made.products[1].bodies[0]->massProperties().volume, 1e-3);
  }
  // A unit that drawings do not have.
  made.sourceUnit = {L"", 17.0};
  const std::string text =
      replaced(read(writeStep(made)), "SI_UNIT(.MILLI.,.METRE.)", "SI_UNIT(.PICO.,.METRE.)");
  const OdDbDatabasePtr drawing = m_services.createDatabase();
  if (importStepIntoDatabase(drawing.get(), write("pico.stp", text)).ok()) {
    EXPECT_EQ(drawing->getINSUNITS(), OdDb::kUnitsMillimeters);
  }
}

TEST_F(OdModelerStepKeeping, HeaderHasTheDateThatWasGivenOrAFixedOne) {
  addSolid(colored(box(1.0, 1.0, 1.0), {1, 2, 3}, L"B\xFCgel"));
  OdModelerAssembly got = exported({L"2026-01-31T12:00:00", L"a program 1.0"});
  EXPECT_EQ(got.header.timeStamp, L"2026-01-31T12:00:00");
  EXPECT_EQ(got.header.originatingSystem, L"a program 1.0");
  EXPECT_EQ(got.header.name, L"B\xFCgel");
  got = exported();
  const std::string first = read(path("out.stp"));
  exported();
  EXPECT_EQ(read(path("out.stp")), first);
  EXPECT_EQ(got.header.timeStamp, L"1970-01-01T00:00:00");
}

TEST_F(OdModelerStepKeeping, WhatTheFileCannotHoldIsReported) {
  const OdDbObjectId id = addSolid(box(1.0, 1.0, 1.0));
  exported();
  EXPECT_TRUE(m_report.leftOut.isEmpty());
  OdDb3dSolidPtr entity = solid(id, OdDb::kForWrite);
  entity->createExtensionDictionary();
  entity->setLineWeight(OdDb::kLnWt025);
  entity->setVisibility(OdDb::kInvisible);
  entity.release();
  exported();
  for (const wchar_t* line : {L"1 entity's extension dictionary", L"1 entity's line type or weight",
                              L"1 entity's invisibility"}) {
    EXPECT_TRUE(mentions(m_report.leftOut, line)) << OdString(line).utf8();
  }
  EXPECT_EQ(m_report.leftOut.size(), 3u);
}

}  // namespace
