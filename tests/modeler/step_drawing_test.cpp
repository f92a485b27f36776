// STEP files in and out of drawings.
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <numbers>

#include "platform/modeler/step_drawing.h"
#include "tests/modeler/drawing_fixture.h"

namespace {

namespace fs = std::filesystem;
constexpr double kPi = std::numbers::pi;

class OdStepDrawing : public DrawingTest {
 protected:
  OdStepDrawing()
      : m_folder(fs::temp_directory_path() / ("step_drawing_" + std::to_string(getpid()))) {
    fs::create_directories(m_folder);
  }
  ~OdStepDrawing() override { fs::remove_all(m_folder); }

  OdString path(const char* name) const { return OdString((m_folder / name).string()); }

  OdString writeCart() const {
    OdModelerAssembly a;
    OdModelerBodyAttributes style;
    const OdModelerBodyPtr wheel = cylinder(10.0, 4.0);
    style.color = OdModelerColor{20, 40, 60};
    style.faceColors[faceTowards(*wheel, OdGeVector3d::kZAxis)] = {250, 128, 3};
    a.products = {
        {L"cart: no/1",
         L"",
         {},
         {{1, {}, L"left", {}}, {1, OdGeMatrix3d::translation({0.0, 50.0, 0.0}), L"right", {}}}},
        {L"wheel", L"", {wheel->withAttributes(style)}, {}}};
    a.products[0].uniqueId = L"c";
    a.products[1].uniqueId = L"w";
    a.roots = {{0, {}, L"", {}}};
    EXPECT_TRUE(succeeded(odModeler().exportStep(path("cart.stp"), a)));
    return path("cart.stp");
  }
  OdDbObjectId blockId(const wchar_t* name) const {
    return OdDbBlockTable::cast(m_database->getBlockTableId().safeOpenObject())->getAt(name);
  }

  fs::path m_folder;
};

TEST_F(OdStepDrawing, AssemblyBecomesBlocksAndReferences) {
  OdStepReport report;
  ASSERT_TRUE(succeeded(importStepIntoDatabase(m_database, writeCart(), &report)));
  EXPECT_EQ(report.products, 2u);
  EXPECT_EQ(report.solids, 1u) << "a product is read once";
  EXPECT_EQ(report.occurrences, 3u);
  EXPECT_EQ(report.sourceUnit, L"millimetre");
  EXPECT_EQ(report.lines.size(), 1u) << "the cart needs another block name";
  const OdDbObjectId cart = blockId(L"cart_ no_1");
  ASSERT_FALSE(cart.isNull());
  EXPECT_EQ(blockRecord(cart)->comments(), L"cart: no/1");
  const auto roots = entities<OdDbBlockReference>(m_database->getModelSpaceId());
  ASSERT_EQ(roots.size(), 1u);
  EXPECT_EQ(roots[0]->blockTableRecord(), cart);
  const auto wheels = entities<OdDbBlockReference>(cart);
  ASSERT_EQ(wheels.size(), 2u);
  EXPECT_TRUE(wheels[1]->blockTransform().isEqualTo(OdGeMatrix3d::translation({0.0, 50.0, 0.0})));
  EXPECT_EQ(wheels[0]->xData(kOdStepRegApp)->next()->getString(), L"left");
  const auto solids = entities<OdDb3dSolid>(blockId(L"wheel"));
  ASSERT_EQ(solids.size(), 1u);
  EXPECT_EQ(solids[0]->color(), OdCmColor::fromRGB(20, 40, 60));
  const OdModelerBodyPtr body = solids[0]->body();
  EXPECT_EQ(solids[0]->getFaceColor(faceTowards(*body, OdGeVector3d::kZAxis)),
            OdCmColor::fromRGB(250, 128, 3));
}

TEST_F(OdStepDrawing, ImportIsOneStepOfUndoAndAFailedOneNone) {
  m_database->clearUndo();
  m_database->startUndoRecord();
  EXPECT_EQ(importStepIntoDatabase(m_database, path("missing.stp")).code, eFileNotFound);
  EXPECT_FALSE(m_database->hasUndo());
  ASSERT_TRUE(succeeded(importStepIntoDatabase(m_database, writeCart())));
  ASSERT_EQ(m_database->undo(), eOk);
  EXPECT_TRUE(entities<OdDbEntity>(m_database->getModelSpaceId()).empty());
  EXPECT_TRUE(blockId(L"wheel").isNull());
  ASSERT_EQ(m_database->redo(), eOk);
  EXPECT_EQ(entities<OdDb3dSolid>(blockId(L"wheel")).size(), 1u);
}

TEST_F(OdStepDrawing, SecondImportGetsNamesOfItsOwn) {
  const OdString file = writeCart();
  ASSERT_TRUE(succeeded(importStepIntoDatabase(m_database, file)));
  ASSERT_TRUE(succeeded(importStepIntoDatabase(m_database, file)));
  EXPECT_FALSE(blockId(L"wheel~2").isNull());
  EXPECT_EQ(entities<OdDbBlockReference>(m_database->getModelSpaceId()).size(), 2u);
}

TEST_F(OdStepDrawing, ADrawingWithContentKeepsItsUnit) {
  addSolid(box(1.0, 1.0, 1.0));
  m_database->setINSUNITS(OdDb::kUnitsInches);
  OdModelerAssembly part;
  part.products = {{L"part", L"part", {box(25.4, 25.4, 25.4)}, {}}};
  part.roots = {{0, {}, L"", {}}};
  ASSERT_TRUE(succeeded(odModeler().exportStep(path("part.stp"), part)));
  ASSERT_TRUE(succeeded(importStepIntoDatabase(m_database, path("part.stp"))));
  EXPECT_EQ(m_database->getINSUNITS(), OdDb::kUnitsInches);
  const auto solids = entities<OdDb3dSolid>(m_database->getModelSpaceId());
  ASSERT_EQ(solids.size(), 2u);
  EXPECT_NEAR(solids[1]->body()->massProperties().volume, 1.0, 1e-6);
}

TEST_F(OdStepDrawing, ExportWritesBlocksOnceAndInMillimetres) {
  ASSERT_TRUE(succeeded(importStepIntoDatabase(m_database, writeCart())));
  m_database->setINSUNITS(OdDb::kUnitsCentimeters);
  addSolid(box(1.0, 1.0, 1.0));
  OdStepReport report;
  ASSERT_TRUE(succeeded(exportStepFromDatabase(m_database, path("out.stp"), &report)));
  OdModelerAssembly got;
  ASSERT_TRUE(succeeded(odModeler().importStep(path("out.stp"), got)));
  unsigned wheels = 0;
  double volume = 0.0;
  for (const OdModelerProduct& product : got.products) {
    if (product.name == L"wheel") ++wheels;
    for (const OdModelerBodyPtr& body : product.bodies) volume += body->massProperties().volume;
    if (product.name != L"cart: no/1") continue;
    ASSERT_EQ(product.occurrences.size(), 2u);
    EXPECT_EQ(product.occurrences[1].name, L"right");
    EXPECT_NEAR(product.occurrences[1].placement.getCsOrigin().y, 500.0, 1e-6);
  }
  EXPECT_EQ(wheels, 1u);
  EXPECT_NEAR(volume, 1000.0 * (400.0 * kPi + 1.0), 1e-2);
}

TEST_F(OdStepDrawing, BlockOriginsAreTakenIntoAccount) {
  ASSERT_TRUE(succeeded(importStepIntoDatabase(m_database, writeCart())));
  blockRecord(blockId(L"wheel"), OdDb::kForWrite)->setOrigin({100.0, 0.0, 0.0});
  ASSERT_TRUE(succeeded(exportStepFromDatabase(m_database, path("out.stp"))));
  OdModelerAssembly got;
  ASSERT_TRUE(succeeded(odModeler().importStep(path("out.stp"), got)));
  OdGeExtents3d drawn;
  const auto wheels = entities<OdDbBlockReference>(blockId(L"cart_ no_1"));
  ASSERT_EQ(wheels[0]->getGeomExtents(drawn), eOk);
  const OdModelerOccurrence& left = got.products.at(0).occurrences.at(0);
  const OdModelerBodyPtr written = moved(got.products[left.product].bodies.at(0), left.placement);
  EXPECT_TRUE(written->extents().isEqualTo(drawn, OdGeTol(1e-6)));
}

TEST_F(OdStepDrawing, AnEmptyDrawingIsNotExported) {
  EXPECT_EQ(exportStepFromDatabase(m_database, path("none.stp")).code, eInvalidInput);
  EXPECT_FALSE(fs::exists(m_folder / "none.stp"));
}

TEST_F(OdStepDrawing, RealPartsComeInWithTheirColours) {
  const char* folder = std::getenv("VDM_STEP_DIR");
  if (folder == nullptr) GTEST_SKIP() << "VDM_STEP_DIR is not set";
  for (const fs::directory_entry& file : fs::directory_iterator(folder)) {
    const std::string suffix = file.path().extension().string();
    if (suffix != ".stp" && suffix != ".step") continue;
    SCOPED_TRACE(file.path().string());
    OdDbDatabasePtr drawing = m_services.createDatabase();
    OdStepReport report;
    ASSERT_TRUE(
        succeeded(importStepIntoDatabase(drawing, OdString(file.path().string()), &report)));
    EXPECT_GE(report.solids, 1u);
    EXPECT_EQ(drawing->getINSUNITS(), OdDb::kUnitsMillimeters);
    EXPECT_EQ(entities<OdDb3dSolid>(drawing->getModelSpaceId()).size(), report.solids);
  }
}

}  // namespace
