// STEP exchange: what a file keeps, what is refused, files in and out of drawings.
#include <algorithm>
#include <filesystem>
#include <numbers>

#include "tests/platform/modeler/step_testing.h"

namespace {

namespace fs = std::filesystem;
constexpr double kPi = std::numbers::pi;

TEST_F(OdModelerStep, AssemblyKeepsStructureNamesPlacementsAndColours) {
  const OdModelerAssembly made = cart();
  const OdModelerAssembly got = readStep(writeStep(made));
  ASSERT_EQ(got.products.size(), 3u) << "a product is read once, however many times it occurs";
  ASSERT_EQ(got.roots.size(), 1u);
  const OdModelerProduct& top = got.products[got.roots[0].product];
  ASSERT_EQ(top.occurrences.size(), 3u);
  for (std::size_t i = 0; i < 3; ++i) {
    const OdModelerOccurrence& want = made.products[0].occurrences[i];
    const OdModelerProduct& product = got.products[top.occurrences[i].product];
    EXPECT_EQ(top.occurrences[i].name, want.name);
    EXPECT_TRUE(top.occurrences[i].placement.isEqualTo(want.placement, OdGeTol(1e-9)));
    EXPECT_EQ(product.name, made.products[want.product].name);
    ASSERT_EQ(product.bodies.size(), made.products[want.product].bodies.size());
    for (std::size_t k = 0; k < product.bodies.size(); ++k) {
      const OdModelerBodyAttributes& kept = product.bodies[k]->attributes();
      const OdModelerBodyAttributes& given = made.products[want.product].bodies[k]->attributes();
      EXPECT_EQ(kept.color, given.color);
      EXPECT_TRUE(given.name.isEmpty() || kept.name == given.name);
      ASSERT_EQ(kept.faceColors.size(), given.faceColors.size());
      for (const auto& [face, color] : kept.faceColors) {
        EXPECT_EQ(face, faceTowards(*product.bodies[k], OdGeVector3d::kZAxis));
        EXPECT_EQ(color, (OdModelerColor{250, 128, 3}));
      }
    }
  }
}

TEST_F(OdModelerStep, SameAssemblyGivesTheSameFile) {
  const auto colorful = [] {
    OdModelerAssembly a = cart();
    for (OdUInt8 i = 0; i < 12; ++i) {
      OdModelerBodyAttributes style;
      for (OdUInt8 face = 1; face <= 6; ++face) style.faceColors[face] = {face, i, 0};
      a.products.push_back({L"part", L"part", {box(1.0 + i, 2.0, 3.0)->withAttributes(style)}, {}});
      a.products[0].occurrences.push_back({i + 3u, {}, L"", {}});
    }
    return a;
  };
  const std::string first = read(writeStep(colorful()));
  std::vector<std::string> clutter;  // so that nothing comes to lie where it lay before
  for (std::size_t i = 0; i < 4; ++i) {
    for (std::size_t k = 1; k < 2000; ++k) clutter.emplace_back((k * 7919 + i) % 600, ' ');
    ASSERT_EQ(read(writeStep(colorful())), first) << "repetition " << i;
  }
  EXPECT_EQ(std::distance(fs::directory_iterator(m_folder.path()), fs::directory_iterator()), 1)
      << "no other file is left";
}

TEST_F(OdModelerStep, OddNamesComeBackAndEqualOnesGetUniqueIds) {
  OdModelerAssembly a;
  a.products = {{L"Gehäuse 'A' \x8F74\x627F \\ x", L"", {}, {{1, {}, L"1", {}}, {2, {}, L"2", {}}}},
                {L"Bolt", L"x", {box(1.0, 1.0, 1.0)}, {}},
                {L"BOLT", L"y", {box(2.0, 1.0, 1.0)}, {}}};
  a.roots = {{0, {}, L"", {}}};
  const OdModelerAssembly got = readStep(writeStep(a));
  ASSERT_EQ(got.products.size(), 3u);
  EXPECT_EQ(got.products[0].name, a.products[0].name);
  EXPECT_EQ(got.products[1].uniqueId, L"Bolt");
  EXPECT_EQ(got.products[2].uniqueId, L"BOLT~2");
}

TEST_F(OdModelerStep, InchFilesArriveInMillimetres) {
  std::string text = read(writeStep(part(box(1.0, 2.0, 3.0))));
  const std::string milli = "( LENGTH_UNIT() NAMED_UNIT(*) SI_UNIT(.MILLI.,.METRE.) )";
  const std::size_t at = text.find(milli);
  ASSERT_NE(at, std::string::npos);
  text.replace(at, milli.size(),
               "( CONVERSION_BASED_UNIT('INCH',#900001) LENGTH_UNIT() NAMED_UNIT(#900002) )");
  text.insert(text.find("ENDSEC;\nEND-ISO"),
              "#900001=LENGTH_MEASURE_WITH_UNIT(LENGTH_MEASURE(25.4),#900003);\n"
              "#900002=DIMENSIONAL_EXPONENTS(1.,0.,0.,0.,0.,0.,0.);\n"
              "#900003=(LENGTH_UNIT() NAMED_UNIT(*) SI_UNIT(.MILLI.,.METRE.));\n");
  const OdModelerAssembly inch = readStep(write("inch.stp", text));
  EXPECT_EQ(inch.sourceUnit.name, L"inch");
  EXPECT_NEAR(inch.sourceUnit.millimetres, 25.4, 1e-9);
  EXPECT_NEAR(inch.products.at(0).bodies.at(0)->massProperties().volume, 6.0 * 25.4 * 25.4 * 25.4,
              1e-3);
}

TEST_F(OdModelerStep, ScaledAndMirroredPlacementsAreWrittenAsGeometry) {
  OdModelerAssembly a = part(box(1.0, 2.0, 3.0));
  const OdGeMatrix3d placements[] = {
      OdGeMatrix3d::translation({30.0, 0.0, 0.0}) * OdGeMatrix3d::mirroring(OdGePlane::kYZPlane),
      OdGeMatrix3d::scaling(2.0)};
  a.products.push_back(
      {L"pair",
       L"pair",
       {},
       {{0, {}, L"", {}}, {0, placements[0], L"", {}}, {0, placements[1], L"", {}}}});
  a.roots[0].product = 1;
  const OdModelerAssembly got = readStep(writeStep(a));
  const OdModelerProduct& top = got.products.at(got.roots.at(0).product);
  ASSERT_EQ(top.occurrences.size(), 3u);
  for (std::size_t i = 0; i < 2; ++i) {
    const OdModelerOccurrence& each = top.occurrences[i + 1];
    const OdModelerBodyPtr placed = moved(got.products[each.product].bodies.at(0), each.placement);
    const OdModelerBodyPtr want = moved(a.products[0].bodies[0], placements[i]);
    EXPECT_TRUE(placed->extents().isEqualTo(want->extents(), OdGeTol(1e-6)));
    EXPECT_NEAR(placed->massProperties().volume, want->massProperties().volume, 1e-6);
  }
}

TEST_F(OdModelerStep, FilesThatAreNoStepAreRefusedWithTheirName) {
  const std::string good = read(writeStep(cart()));
  const std::pair<OdString, OdResult> rows[] = {
      {path("missing.stp"), eFileNotFound},
      {OdString(m_folder.path().string()), eFileAccess},
      {write("empty.stp", ""), eModelerError},
      {write("cut.stp", good.substr(0, good.size() / 2)), eModelerError},
      {write("shell.stp", "ISO-10303-21;\nHEADER;\nENDSEC;\nDATA;\nENDSEC;\nEND-ISO-10303-21;\n"),
       eModelerError},
      {write("noise.stp", "ISO-10303-21;\n#1=((((;;'\n\x01\xFF END-ISO-10303-21;\n"),
       eModelerError},
  };
  for (const auto& [file, code] : rows) {
    OdModelerAssembly result = cart();
    const OdStatus status = odModeler().importStep(file, result);
    EXPECT_EQ(status.code, code) << file.utf8() << ": " << status.text.utf8();
    EXPECT_GE(status.text.find(file), 0);
    EXPECT_EQ(status.text.find(L'\n'), -1);
    EXPECT_EQ(result.products.size(), 3u);
  }
}

TEST_F(OdModelerStep, ExportThatCannotBeDoneLeavesTheOldFile) {
  const OdString old = write("old.stp", "precious");
  OdModelerAssembly broken = cart();
  broken.products[1].occurrences.push_back({0, {}, L"", {}});
  EXPECT_EQ(odModeler().exportStep(old, broken).code, eInvalidInput);
  EXPECT_EQ(odModeler().exportStep(old, {}).code, eInvalidInput);
  EXPECT_EQ(exportStepFromDatabase(m_database, old).code, eInvalidInput) << "an empty drawing";
  EXPECT_EQ(read(old), "precious");
  const OdStatus status = odModeler().exportStep(path("no/such/folder.stp"), cart());
  EXPECT_EQ(status.code, eFileWriteError) << status.text.utf8();
}

TEST_F(OdModelerStep, AssemblyBecomesBlocksAndReferencesAndASecondOneNamesOfItsOwn) {
  OdStepReport report;
  ASSERT_TRUE(succeeded(importStepIntoDatabase(m_database, writeStep(cart()), &report)));
  EXPECT_EQ(report.solids, 3u) << "a product is read once";
  EXPECT_EQ(report.occurrences, 4u);
  EXPECT_EQ(report.lines.size(), 1u) << "the cart needs another block name";
  const OdDbObjectId block = blockId(L"cart_ no_1");
  ASSERT_FALSE(block.isNull());
  EXPECT_EQ(blockRecord(block)->comments(), L"cart: no/1");
  const auto wheels = entities<OdDbBlockReference>(block);
  ASSERT_EQ(wheels.size(), 3u);
  EXPECT_TRUE(wheels[1]->blockTransform().isEqualTo(cart().products[0].occurrences[1].placement,
                                                    OdGeTol(1e-9)));
  EXPECT_EQ(wheels[0]->xData(kOdStepRegApp)->next()->getString(), L"left");
  const auto solids = entities<OdDb3dSolid>(blockId(L"wheel"));
  ASSERT_EQ(solids.size(), 1u);
  EXPECT_EQ(solids[0]->color(), OdCmColor::fromRGB(20, 40, 60));
  EXPECT_EQ(solids[0]->getFaceColor(faceTowards(*solids[0]->body(), OdGeVector3d::kZAxis)),
            OdCmColor::fromRGB(250, 128, 3));
  ASSERT_TRUE(succeeded(importStepIntoDatabase(m_database, path("made.stp"))));
  EXPECT_FALSE(blockId(L"wheel~2").isNull());
}

TEST_F(OdModelerStep, ImportIsOneStepOfUndoAndAFailedOneNone) {
  m_database->clearUndo();
  m_database->startUndoRecord();
  EXPECT_EQ(importStepIntoDatabase(m_database, path("missing.stp")).code, eFileNotFound);
  EXPECT_FALSE(m_database->hasUndo());
  ASSERT_TRUE(succeeded(importStepIntoDatabase(m_database, writeStep(cart()))));
  ASSERT_EQ(m_database->undo(), eOk);
  EXPECT_TRUE(entities<OdDbEntity>(m_database->getModelSpaceId()).empty());
  EXPECT_TRUE(blockId(L"wheel").isNull());
  ASSERT_EQ(m_database->redo(), eOk);
  EXPECT_EQ(entities<OdDb3dSolid>(blockId(L"wheel")).size(), 1u);
}

TEST_F(OdModelerStep, ADrawingWithContentKeepsItsUnitAndIsWrittenInMillimetres) {
  addSolid(box(1.0, 1.0, 1.0));
  m_database->setINSUNITS(OdDb::kUnitsInches);
  const OdString file = writeStep(part(box(25.4, 25.4, 25.4)));
  ASSERT_TRUE(succeeded(importStepIntoDatabase(m_database, file)));
  EXPECT_EQ(m_database->getINSUNITS(), OdDb::kUnitsInches);
  const auto solids = entities<OdDb3dSolid>(m_database->getModelSpaceId());
  ASSERT_EQ(solids.size(), 2u);
  EXPECT_NEAR(solids[1]->body()->massProperties().volume, 1.0, 1e-6);
  ASSERT_TRUE(succeeded(exportStepFromDatabase(m_database, path("out.stp"))));
  double volume = 0.0;
  for (const OdModelerProduct& product : readStep(path("out.stp")).products) {
    for (const OdModelerBodyPtr& body : product.bodies) volume += body->massProperties().volume;
  }
  EXPECT_NEAR(volume, 2.0 * 25.4 * 25.4 * 25.4, 1e-2);
}

TEST_F(OdModelerStep, ExportWritesBlocksOnceAndRespectsTheirOrigins) {
  ASSERT_TRUE(succeeded(importStepIntoDatabase(m_database, writeStep(cart()))));
  blockRecord(blockId(L"wheel"), OdDb::kForWrite)->setOrigin({100.0, 0.0, 0.0});
  ASSERT_TRUE(succeeded(exportStepFromDatabase(m_database, path("out.stp"))));
  const OdModelerAssembly got = readStep(path("out.stp"));
  EXPECT_EQ(std::ranges::count(got.products, L"wheel", &OdModelerProduct::name), 1);
  OdGeExtents3d drawn;
  const auto wheels = entities<OdDbBlockReference>(blockId(L"cart_ no_1"));
  ASSERT_EQ(wheels[0]->getGeomExtents(drawn), eOk);
  const OdModelerOccurrence& left = got.products.at(0).occurrences.at(0);
  const OdModelerBodyPtr written = moved(got.products[left.product].bodies.at(0), left.placement);
  EXPECT_TRUE(written->extents().isEqualTo(drawn, OdGeTol(1e-6)));
}

// car -> wheel x 2, car -> axle -> wheel
TEST_F(OdModelerStep, SharedProductsAreSoundAndCyclesAreNot) {
  OdModelerAssembly car;
  car.products = {{L"car", L"", {}, {{1, {}, L"", {}}, {1, {}, L"", {}}, {2, {}, L"", {}}}},
                  {L"wheel", L"", {box(1.0, 1.0, 1.0)}, {}},
                  {L"axle", L"", {}, {{1, {}, L"spare", {}}}}};
  car.roots = {{0, {}, L"car", {}}};
  EXPECT_TRUE(succeeded(car.check()));
  OdModelerAssembly broken[] = {car, car, car, car, car};
  broken[0].products[1].occurrences.push_back({0, {}, L"", {}});
  broken[1].products[1].occurrences.push_back({1, {}, L"", {}});
  broken[2].products[0].occurrences[0].product = 3;
  broken[3].products[1].bodies.push_back(nullptr);
  broken[4].roots[0].product = 9;
  for (const OdModelerAssembly& each : broken) {
    EXPECT_EQ(each.check().code, eInvalidInput);
    EXPECT_FALSE(each.check().text.isEmpty());
  }
}

TEST_F(OdModelerStep, DeepChainsNeedNoDeepStack) {
  OdModelerAssembly chain;
  constexpr OdUInt32 kDepth = 200000;
  chain.products.resize(kDepth);
  for (OdUInt32 i = 0; i + 1 < kDepth; ++i) {
    chain.products[i].occurrences.push_back({i + 1, {}, L"", {}});
  }
  EXPECT_TRUE(succeeded(chain.check()));
  chain.products.back().occurrences.push_back({0, {}, L"", {}});
  EXPECT_EQ(chain.check().code, eInvalidInput);
}

}  // namespace
