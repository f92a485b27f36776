// STEP exchange: what a file keeps, what is refused, real parts.
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <numbers>
#include <stdexcept>

#include "tests/modeler/modeler_fixture.h"

namespace {

namespace fs = std::filesystem;
constexpr double kPi = std::numbers::pi;

class OdModelerStep : public ModelerTest {
 protected:
  OdModelerStep()
      : m_folder(fs::temp_directory_path() / ("step_test_" + std::to_string(getpid()))) {
    fs::create_directories(m_folder);
  }
  ~OdModelerStep() override { fs::remove_all(m_folder); }

  OdString path(const char* name) const { return OdString((m_folder / name).string()); }
  OdString write(const char* name, const std::string& content) const {
    std::ofstream(m_folder / name, std::ios::binary) << content;
    return path(name);
  }
  static std::string read(const OdString& file) {
    std::ifstream stream(std::string(file.utf8()), std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
  }

  // cart -> wheel (left, turned right), cart -> load; the load has two solids in two colours.
  static OdModelerAssembly cart() {
    OdModelerBodyAttributes style;
    const OdModelerBodyPtr wheel = cylinder(10.0, 4.0);
    style.color = OdModelerColor{20, 40, 60};
    style.faceColors[faceTowards(*wheel, OdGeVector3d::kZAxis)] = {250, 128, 3};
    OdModelerAssembly a;
    const OdGeMatrix3d right =
        OdGeMatrix3d::translation({0.0, 50.0, 0.0}) * OdGeMatrix3d::rotation(0.5, {1.0, 1.0, 0.0});
    a.products = {{L"cart",
                   L"cart",
                   {},
                   {{1, {}, L"left", {}}, {1, right, L"right", {}}, {2, {}, L"top", {}}}},
                  {L"wheel", L"wheel", {wheel->withAttributes(style)}, {}},
                  {L"load",
                   L"load",
                   {colored(box(5.0, 5.0, 5.0), {255, 0, 0}, L"crate"),
                    colored(box(5.0, 5.0, 5.0, {20.0, 0.0, 0.0}), {0, 255, 0}, L"chest")},
                   {}}};
    a.roots = {{0, {}, L"cart", {}}};
    return a;
  }
  OdModelerAssembly roundTrip(const OdModelerAssembly& assembly) const {
    OdModelerAssembly result;
    EXPECT_TRUE(succeeded(odModeler().exportStep(path("trip.stp"), assembly)));
    EXPECT_TRUE(succeeded(odModeler().importStep(path("trip.stp"), result)));
    return result;
  }
  static const OdModelerProduct& named(const OdModelerAssembly& a, const wchar_t* name) {
    for (const OdModelerProduct& product : a.products) {
      if (product.name == name) return product;
    }
    throw std::runtime_error("product missing");
  }

  fs::path m_folder;
};

TEST_F(OdModelerStep, AssemblyKeepsStructureNamesPlacementsAndColours) {
  const OdModelerAssembly made = cart();
  const OdModelerAssembly got = roundTrip(made);
  ASSERT_EQ(got.products.size(), 3u) << "a product is read once, however many times it occurs";
  ASSERT_EQ(got.roots.size(), 1u);
  EXPECT_EQ(got.products[got.roots[0].product].name, L"cart");
  const OdModelerProduct& top = named(got, L"cart");
  ASSERT_EQ(top.occurrences.size(), 3u);
  EXPECT_TRUE(top.bodies.empty());
  for (std::size_t i = 0; i < 3; ++i) {
    const OdModelerOccurrence& want = made.products[0].occurrences[i];
    EXPECT_EQ(top.occurrences[i].name, want.name);
    EXPECT_EQ(got.products[top.occurrences[i].product].name, made.products[want.product].name);
    EXPECT_TRUE(top.occurrences[i].placement.isEqualTo(want.placement, OdGeTol(1e-9)));
  }
  const OdModelerBodyPtr& wheel = named(got, L"wheel").bodies.at(0);
  EXPECT_NEAR(wheel->massProperties().volume, 400.0 * kPi, 1e-4);
  EXPECT_EQ(wheel->attributes().color, (OdModelerColor{20, 40, 60}));
  ASSERT_EQ(wheel->attributes().faceColors.size(), 1u);
  EXPECT_EQ(wheel->attributes().faceColors.at(faceTowards(*wheel, OdGeVector3d::kZAxis)),
            (OdModelerColor{250, 128, 3}));
  const OdModelerProduct& load = named(got, L"load");
  ASSERT_EQ(load.bodies.size(), 2u);
  EXPECT_EQ(load.bodies[0]->attributes().color, (OdModelerColor{255, 0, 0}));
  EXPECT_EQ(load.bodies[1]->attributes().color, (OdModelerColor{0, 255, 0}));
  EXPECT_EQ(load.bodies[0]->attributes().name, L"crate");
  EXPECT_EQ(load.bodies[1]->attributes().name, L"chest");
  EXPECT_NEAR(load.bodies[1]->extents().minPoint().x, 20.0, 1e-6);
}

TEST_F(OdModelerStep, SameAssemblyGivesTheSameFile) {
  const auto colorful = [] {
    OdModelerAssembly a = cart();
    for (OdUInt32 i = 0; i < 12; ++i) {
      OdModelerBodyAttributes style;
      for (OdUInt32 face = 1; face <= 6; ++face) {
        style.faceColors[face] = {static_cast<OdUInt8>(40 * face), static_cast<OdUInt8>(i), 0};
      }
      style.color = OdModelerColor{20, 40, 60};
      a.products.push_back({L"part", L"part", {box(1.0 + i, 2.0, 3.0)->withAttributes(style)}, {}});
      a.products[0].occurrences.push_back({i + 3, {}, L"", {}});
    }
    return a;
  };
  ASSERT_TRUE(succeeded(odModeler().exportStep(path("a.stp"), colorful())));
  const std::string first = read(path("a.stp"));
  std::vector<std::string> clutter;  // so that nothing comes to lie where it lay before
  for (std::size_t i = 0; i < 4; ++i) {
    for (std::size_t k = 1; k < 2000; ++k) clutter.emplace_back((k * 7919 + i) % 600, ' ');
    ASSERT_TRUE(succeeded(odModeler().exportStep(path("a.stp"), colorful())));
    ASSERT_EQ(read(path("a.stp")), first) << "repetition " << i;
  }
  EXPECT_EQ(std::distance(fs::directory_iterator(m_folder), fs::directory_iterator()), 1)
      << "nothing else is left behind";
}

TEST_F(OdModelerStep, NamesOutsideOfAsciiAndWithQuotesComeBack) {
  OdModelerAssembly a;
  a.products = {{L"Gehäuse 'A' \x8F74\x627F \\ x", L"", {box(1.0, 2.0, 3.0)}, {}}};
  a.roots = {{0, {}, L"", {}}};
  EXPECT_EQ(roundTrip(a).products.at(0).name, a.products[0].name);
}

TEST_F(OdModelerStep, EqualAndEmptyNamesGetUniqueIds) {
  OdModelerAssembly a;
  a.products = {{L"top", L"t", {}, {{1, {}, L"1", {}}, {2, {}, L"2", {}}}},
                {L"Bolt", L"x", {box(1.0, 1.0, 1.0)}, {}},
                {L"BOLT", L"y", {box(2.0, 1.0, 1.0)}, {}}};
  a.roots = {{0, {}, L"", {}}};
  const OdModelerAssembly got = roundTrip(a);
  ASSERT_EQ(got.products.size(), 3u);
  EXPECT_EQ(got.products[1].uniqueId, L"Bolt");
  EXPECT_EQ(got.products[2].uniqueId, L"BOLT~2");
}

TEST_F(OdModelerStep, InchFilesArriveInMillimetres) {
  OdModelerAssembly a;
  a.products = {{L"part", L"part", {box(1.0, 2.0, 3.0)}, {}}};
  a.roots = {{0, {}, L"", {}}};
  ASSERT_TRUE(succeeded(odModeler().exportStep(path("mm.stp"), a)));
  std::string text = read(path("mm.stp"));
  const std::string milli = "( LENGTH_UNIT() NAMED_UNIT(*) SI_UNIT(.MILLI.,.METRE.) )";
  const std::size_t at = text.find(milli);
  ASSERT_NE(at, std::string::npos);
  text.replace(at, milli.size(),
               "( CONVERSION_BASED_UNIT('INCH',#900001) LENGTH_UNIT() NAMED_UNIT(#900002) )");
  text.insert(text.find("ENDSEC;\nEND-ISO"),
              "#900001=LENGTH_MEASURE_WITH_UNIT(LENGTH_MEASURE(25.4),#900003);\n"
              "#900002=DIMENSIONAL_EXPONENTS(1.,0.,0.,0.,0.,0.,0.);\n"
              "#900003=(LENGTH_UNIT() NAMED_UNIT(*) SI_UNIT(.MILLI.,.METRE.));\n");
  OdModelerAssembly inch;
  ASSERT_TRUE(succeeded(odModeler().importStep(write("inch.stp", text), inch)));
  EXPECT_EQ(inch.sourceUnit.name, L"inch");
  EXPECT_NEAR(inch.sourceUnit.millimetres, 25.4, 1e-9);
  EXPECT_NEAR(inch.products.at(0).bodies.at(0)->massProperties().volume, 6.0 * 25.4 * 25.4 * 25.4,
              1e-3);
  OdModelerAssembly mm;
  ASSERT_TRUE(succeeded(odModeler().importStep(path("mm.stp"), mm)));
  EXPECT_EQ(mm.sourceUnit.name, L"millimetre");
  EXPECT_EQ(mm.sourceUnit.millimetres, 1.0);
  EXPECT_NEAR(mm.products.at(0).bodies.at(0)->massProperties().volume, 6.0, 1e-6);
}

TEST_F(OdModelerStep, ScaledAndMirroredPlacementsAreWrittenAsGeometry) {
  OdModelerAssembly a;
  const OdGeMatrix3d mirror =
      OdGeMatrix3d::translation({30.0, 0.0, 0.0}) * OdGeMatrix3d::mirroring(OdGePlane::kYZPlane);
  a.products = {{L"pair",
                 L"pair",
                 {},
                 {{1, {}, L"plain", {}},
                  {1, mirror, L"mirrored", {}},
                  {1, OdGeMatrix3d::scaling(2.0), L"big", {}}}},
                {L"part", L"part", {box(1.0, 2.0, 3.0)}, {}}};
  a.roots = {{0, {}, L"", {}}};
  const OdModelerAssembly got = roundTrip(a);
  const OdModelerProduct& top = named(got, L"pair");
  ASSERT_EQ(top.occurrences.size(), 3u);
  const auto placed = [&](std::size_t i) {
    return moved(got.products[top.occurrences[i].product].bodies.at(0),
                 top.occurrences[i].placement);
  };
  EXPECT_NEAR(placed(1)->extents().minPoint().x, 29.0, 1e-6);
  EXPECT_NEAR(placed(1)->massProperties().volume, 6.0, 1e-6);
  EXPECT_NEAR(placed(2)->massProperties().volume, 48.0, 1e-6);
}

TEST_F(OdModelerStep, FilesThatAreNoStepAreRefusedWithTheirName) {
  ASSERT_TRUE(succeeded(odModeler().exportStep(path("good.stp"), cart())));
  const std::string good = read(path("good.stp"));
  struct Row {
    OdString file;
    OdResult code;
  };
  const Row rows[] = {
      {path("missing.stp"), eFileNotFound},
      {OdString(m_folder.string()), eFileAccess},
      {write("empty.stp", ""), eModelerError},
      {write("text.stp", "solid cube\nendsolid\n"), eModelerError},
      {write("cut.stp", good.substr(0, good.size() / 2)), eModelerError},
      {write("shell.stp", "ISO-10303-21;\nHEADER;\nENDSEC;\nDATA;\nENDSEC;\nEND-ISO-10303-21;\n"),
       eModelerError},
      {write("noise.stp", "ISO-10303-21;\n#1=((((;;'\n\x01\xFF END-ISO-10303-21;\n"),
       eModelerError},
  };
  for (const Row& row : rows) {
    OdModelerAssembly result = cart();
    const OdModelerStatus status = odModeler().importStep(row.file, result);
    EXPECT_EQ(status.code, row.code) << row.file.utf8() << ": " << status.text.utf8();
    EXPECT_GE(status.text.find(row.file), 0);
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
  EXPECT_EQ(read(old), "precious");
  const OdModelerStatus status = odModeler().exportStep(path("no/such/folder.stp"), cart());
  EXPECT_EQ(status.code, eFileWriteError) << status.text.utf8();
}

// Real parts, where there are any: whole import, then the same geometry back.
TEST_F(OdModelerStep, RealPartsImportSoundAndSurviveTheRoundTrip) {
  const char* folder = std::getenv("VDM_STEP_DIR");
  if (folder == nullptr) GTEST_SKIP() << "VDM_STEP_DIR is not set";
  unsigned parts = 0;
  for (const fs::directory_entry& file : fs::directory_iterator(folder)) {
    const std::string suffix = file.path().extension().string();
    if (suffix != ".stp" && suffix != ".step") continue;
    SCOPED_TRACE(file.path().string());
    ++parts;
    OdModelerAssembly assembly;
    ASSERT_TRUE(succeeded(odModeler().importStep(OdString(file.path().string()), assembly)));
    double volume = 0.0;
    OdModelerAssembly again = roundTrip(assembly);
    for (const OdModelerProduct& product : assembly.products) {
      for (const OdModelerBodyPtr& body : product.bodies) {
        volume += body->massProperties().volume;
        EXPECT_EQ(bytesOf(bodyOf(bytesOf(body))), bytesOf(body));
        if (body->kind() == OdModelerBodyKind::kSolid) {
          EXPECT_TRUE(succeeded(body->check()));
        }
      }
    }
    const double total = volume;
    EXPECT_GT(total, 1.0);
    for (const OdModelerProduct& product : again.products) {
      for (const OdModelerBodyPtr& body : product.bodies) volume -= body->massProperties().volume;
    }
    EXPECT_NEAR(volume, 0.0, total * 1e-5);
  }
  EXPECT_GT(parts, 0u) << "no STEP file in the folder";
}

}  // namespace
