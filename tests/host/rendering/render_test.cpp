// Tests of pictures and display models.
#include "host/rendering/render.h"

#include <gmock/gmock.h>
#include <png.h>

#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <nlohmann/json.hpp>

#include "host/rendering/region_trace.h"
#include "platform/entities/line.h"
#include "platform/gi/drawable_overrule.h"
#include "platform/gi/stroke_font.h"
#include "platform/gi/world_draw.h"
#include "tests/support/solid_drawing_testing.h"
#include "tests/support/test_folder.h"

namespace rendering {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

struct Picture {
  int width = 0;
  int height = 0;
  std::vector<std::uint8_t> bytes;

  [[nodiscard]] RenderColor at(int x, int y) const {
    const auto i = static_cast<std::size_t>(y * width + x) * 3;
    return {bytes[i], bytes[i + 1], bytes[i + 2]};
  }
};

Picture readPng(const fs::path& path) {
  png_image image{};
  image.version = PNG_IMAGE_VERSION;
  Picture picture;
  if (png_image_begin_read_from_file(&image, path.c_str()) == 0) return picture;
  image.format = PNG_FORMAT_RGB;
  picture.width = static_cast<int>(image.width);
  picture.height = static_cast<int>(image.height);
  picture.bytes.resize(PNG_IMAGE_SIZE(image));
  png_image_finish_read(&image, nullptr, picture.bytes.data(), 0, nullptr);
  return picture;
}

nlohmann::json jsonOf(const std::string& glb) {
  std::uint32_t size = 0;
  std::memcpy(&size, glb.data() + 12, sizeof size);
  return nlohmann::json::parse(glb.substr(20, size));
}

/// A new folder that is the current one for the time of a test.
class WorkingFolder {
 protected:
  WorkingFolder() : m_before(fs::current_path()) { fs::current_path(m_folder.path()); }
  ~WorkingFolder() { fs::current_path(m_before); }

 private:
  fs::path m_before;
  const TestFolder m_folder;
};

class RenderTest : public WorkingFolder, public DrawingTest {
 protected:
  RenderTest() {
    m_options.width = 200;
    m_options.height = 100;
    m_options.viewDirection = {0, 0, 1};
    m_options.warnings = &m_warnings;
  }

  OdDbObjectId addBox(OdGeVector3d at, const OdCmColor& color) {
    const OdDbObjectId id = addSolid(box(10, 10, 10, at));
    solid(id, OdDb::kForWrite)->setColor(color);
    return id;
  }
  /// A reference to a new block with one box.
  OdDbObjectId addReferences(const std::vector<OdGeMatrix3d>& placements) {
    const OdDbObjectId block = addBlock(m_database, L"part");
    const OdDbObjectId partId = addSolid(box(1, 2, 3), block);
    for (const OdGeMatrix3d& placement : placements) {
      addReference(m_database->getModelSpaceId(), block, placement);
    }
    return partId;
  }

  RenderOptions m_options;
  std::vector<std::string> m_warnings;
};

TEST_F(RenderTest, PicturesShowTheNearestSurfaceInItsColour) {
  addBox({0, 0, 0}, OdCmColor::fromRGB(250, 0, 0));
  addBox({5, 0, 20}, OdCmColor::fromRGB(0, 0, 250));  // covers the right half of the other
  ASSERT_EQ(renderPng(*m_database, "a.png", m_options), "");
  const Picture picture = readPng("a.png");
  ASSERT_EQ(picture.width, 200);
  ASSERT_EQ(picture.height, 100);
  EXPECT_EQ(picture.at(2, 2), m_options.background);
  EXPECT_GT(picture.at(50, 50).red, 150);
  EXPECT_LT(picture.at(50, 50).blue, 10);  // a highlight is white
  for (const int x : {80, 110, 140}) {
    EXPECT_GT(picture.at(x, 50).blue, 150) << x;
    EXPECT_LT(picture.at(x, 50).red, 10) << x;
  }
}

TEST_F(RenderTest, SeenFromTheFrontZPointsUp) {
  addBox({0, 0, 0}, OdCmColor::fromRGB(250, 0, 0));
  addBox({0, 0, 20}, OdCmColor::fromRGB(0, 0, 250));
  m_options.viewDirection = {0, -1, 0};
  ASSERT_EQ(renderPng(*m_database, "a.png", m_options), "");
  const Picture picture = readPng("a.png");
  EXPECT_GT(picture.at(100, 20).blue, picture.at(100, 20).red + 50);
  EXPECT_GT(picture.at(100, 80).red, picture.at(100, 80).blue + 50);
}

TEST_F(RenderTest, SurfacesHideLinesThatAreFartherAway) {
  addBox({0, 0, 0}, OdCmColor::fromRGB(250, 0, 0));
  const OdDbObjectId line = addLine(m_database->getModelSpaceId(), {2, 20, 5}, {8, 20, 5});
  edit<OdDbEntity>(line)->setColor(OdCmColor::fromRGB(0, 250, 0));
  m_options.viewDirection = {0, -1, 0};
  const auto hasGreen = [&] {
    EXPECT_EQ(renderPng(*m_database, "a.png", m_options), "");
    const Picture picture = readPng("a.png");
    for (int y = 0; y < picture.height; ++y) {
      for (int x = 0; x < picture.width; ++x) {
        if (picture.at(x, y).green > picture.at(x, y).red + 50) return true;
      }
    }
    return false;
  };
  m_options.background = {255, 255, 255};
  EXPECT_FALSE(hasGreen());
  edit<OdDbEntity>(line)->transformBy(OdGeMatrix3d::translation({0, -25, 0}));
  EXPECT_TRUE(hasGreen());
}

TEST_F(RenderTest, SmallOccurrencesHaveNoDarkOutlines) {
  addSolid(box(100, 100, 100));
  addSolid(box(4, 4, 4, {150, 50, 0}));
  ASSERT_EQ(renderPng(*m_database, "a.png", m_options), "");
  const Picture picture = readPng("a.png");
  const auto numDark = [&](int fromX, int toX) {
    int count = 0;
    for (int y = 0; y < picture.height; ++y) {
      for (int x = fromX; x < toX; ++x) count += picture.at(x, y).red < 60 ? 1 : 0;
    }
    return count;
  };
  EXPECT_GT(numDark(0, 140), 100);
  EXPECT_EQ(numDark(140, 200), 0);
}

TEST_F(RenderTest, TheSameDrawingGivesTheSameBytes) {
  addBox({0, 0, 0}, OdCmColor::fromIndex(3));
  addSolid(cylinder(3, 30));
  m_options.viewDirection = {1, -1, 1};
  m_options.labels = {{{0, 0, 30}, "top", {}}};
  using Render = std::string (*)(OdDbDatabase&, const std::string&, const RenderOptions&);
  for (const Render render : {Render(&renderPng), Render(&renderSvg), Render(&renderGlb)}) {
    ASSERT_EQ(render(*m_database, "one", m_options), "");
    ASSERT_EQ(render(*m_database, "two", m_options), "");
    EXPECT_EQ(readBytes("one"), readBytes("two"));
  }
}

TEST_F(RenderTest, TheExtensionSaysWhichFormatAFileHas) {
  EXPECT_EQ(rendererFor("a.b/c.PNG"), &renderPng);
  EXPECT_EQ(rendererFor("c.svg"), &renderSvg);
  EXPECT_EQ(rendererFor("c.Glb"), &renderGlb);
  for (const char* other : {"png", "a.png/b", "c.step", ""}) EXPECT_EQ(rendererFor(other), nullptr);
  EXPECT_THAT(renderFile(*m_database, "c.bmp", m_options), HasSubstr("'c.bmp' ends in none of"));
  EXPECT_FALSE(fs::exists("c.bmp"));
}

TEST_F(RenderTest, SvgHoldsOutlinesAndLabels) {
  addBox({0, 0, 0}, OdCmColor::fromRGB(250, 0, 0));
  m_options.width = 600;
  m_options.labels = {{{5, 5, 10}, "A<B & \"C\"", {1, 2, 3}}, {{9, 5, 10}, "other", {}}};
  ASSERT_EQ(renderSvg(*m_database, "a.svg", m_options), "");
  const std::string svg = readBytes("a.svg");
  EXPECT_THAT(svg, HasSubstr(">A&lt;B &amp; \"C\"</text>"));
  EXPECT_THAT(svg, HasSubstr("fill=\"#010203\""));
  EXPECT_THAT(svg, HasSubstr(">other</text>"));
  EXPECT_THAT(svg, HasSubstr("fill-rule=\"evenodd\""));
  const auto sizeWithoutEdges = [&] {
    m_options.showEdges = false;
    EXPECT_EQ(renderSvg(*m_database, "b.svg", m_options), "");
    return fs::file_size("b.svg");
  };
  EXPECT_LT(sizeWithoutEdges(), svg.size());
}

TEST_F(RenderTest, ModelsShareTheMeshOfABlock) {
  OdGeMatrix3d sheared;
  sheared(0, 1) = 0.5;
  const OdDbObjectId part =
      addReferences({OdGeMatrix3d(), OdGeMatrix3d::translation({10, 0, 0}), sheared});
  ASSERT_EQ(renderGlb(*m_database, "a.glb", m_options), "");
  const std::string file = readBytes("a.glb");
  EXPECT_EQ(file.substr(0, 4), "glTF");
  std::uint32_t size = 0;
  std::memcpy(&size, file.data() + 8, sizeof size);
  EXPECT_EQ(size, file.size());
  const nlohmann::json model = jsonOf(file);
  // The sheared one cannot be placed by a node and has points of its own.
  ASSERT_EQ(model["nodes"].size(), 4u);
  EXPECT_EQ(model["nodes"][1]["mesh"], model["nodes"][2]["mesh"]);
  EXPECT_EQ(model["nodes"][2]["matrix"][12], 10.0);
  EXPECT_NE(model["nodes"][3]["mesh"], model["nodes"][1]["mesh"]);
  EXPECT_FALSE(model["nodes"][3].contains("matrix"));
  const std::string handle(OdString(part.getHandle().ascii()).utf8());
  EXPECT_EQ(model["meshes"][0]["name"], handle);
  EXPECT_TRUE(model["nodes"][1]["name"].get<std::string>().ends_with("/" + handle));
  EXPECT_EQ(model["accessors"][0]["max"], (std::vector<double>{1, 2, 3}));
  EXPECT_EQ(model["nodes"][0]["matrix"][0], 0.001);
}

TEST_F(RenderTest, ModelsHaveLinearColoursAndFrontsOutside) {
  OdGeMatrix3d mirrored = OdGeMatrix3d::scaling(OdGeScale3d(-1, 1, 1));
  mirrored(0, 1) = 0.5;  // written in world coordinates
  const OdDbObjectId part = addReferences({mirrored});
  solid(part, OdDb::kForWrite)->setColor(OdCmColor::fromRGB(188, 10, 255));
  ASSERT_EQ(renderGlb(*m_database, "a.glb", m_options), "");
  const std::string file = readBytes("a.glb");
  const nlohmann::json model = jsonOf(file);
  const auto& color = model["materials"][0]["pbrMetallicRoughness"]["baseColorFactor"];
  EXPECT_NEAR(color[0].get<double>(), 0.503, 0.001);
  EXPECT_NEAR(color[1].get<double>(), 10.0 / 255 / 12.92, 1e-6);
  EXPECT_EQ(color[2], 1.0);
  // A triangle turns anticlockwise when it is seen from where its normal points.
  std::uint32_t jsonSize = 0;
  std::memcpy(&jsonSize, file.data() + 12, sizeof jsonSize);
  const auto bytesOfView = [&](const nlohmann::json& accessor) {
    const auto& view =
        model["bufferViews"]
             [model["accessors"][accessor.get<std::size_t>()]["bufferView"].get<std::size_t>()];
    return file.data() + 28 + jsonSize + view["byteOffset"].get<std::size_t>();
  };
  const auto& primitive = model["meshes"][0]["primitives"][0];
  const char* const positions = bytesOfView(primitive["attributes"]["POSITION"]);
  const char* const normals = bytesOfView(primitive["attributes"]["NORMAL"]);
  std::uint32_t corners[3];
  std::memcpy(corners, bytesOfView(primitive["indices"]), sizeof corners);
  const auto vectorAt = [](const char* values, std::uint32_t index) {
    float value[3];
    std::memcpy(value, values + sizeof value * index, sizeof value);
    return OdGeVector3d(double(value[0]), double(value[1]), double(value[2]));
  };
  const OdGeVector3d first = vectorAt(positions, corners[0]);
  const OdGeVector3d turn = (vectorAt(positions, corners[1]) - first)
                                .crossProduct(vectorAt(positions, corners[2]) - first);
  EXPECT_GT(turn.dotProduct(vectorAt(normals, corners[0])), 0.0);
}

/// Draws a square of a red and a blue triangle, then a red outline.
class SquareOverrule : public OdGiDrawableOverrule {
 public:
  bool worldDraw(const OdGiDrawable*, OdGiWorldDraw* context) override {
    const OdGePoint3d points[] = {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}};
    const std::array<OdUInt32, 3> triangles[] = {{0, 1, 2}, {0, 2, last}};
    const OdCmEntityColor colors[] = {OdCmEntityColor::fromIndex(1), OdCmEntityColor::fromIndex(5)};
    context->geometry().shell({points, {}, triangles, {colors, {}}});
    context->subEntityTraits().setColor(1);
    context->subEntityTraits().setFillType(OdGiFillType::kFillNever);
    context->geometry().polygon(points);
    return true;
  }
  OdUInt32 last = 3;
};

TEST_F(RenderTest, TrianglesOfAShellMayDifferInColour) {
  addLine(m_database->getModelSpaceId());
  OdStaticRxObject<SquareOverrule> square;
  OdRxOverrule::addOverrule(OdDbLine::desc(), &square);
  ASSERT_EQ(renderGlb(*m_database, "a.glb", m_options), "");
  const nlohmann::json model = jsonOf(readBytes("a.glb"));
  EXPECT_EQ(model["meshes"][0]["primitives"].size(), 3u);  // red, blue, the outline
  EXPECT_EQ(model["meshes"][0]["primitives"][2]["mode"], 3);
  EXPECT_EQ(model["accessors"][0]["count"], 3);
  // An index that is not there spoils the entity, not the run.
  square.last = 4;
  EXPECT_THAT(renderGlb(*m_database, "b.glb", m_options), HasSubstr("nothing to draw"));
  EXPECT_EQ(m_warnings.size(), 1u);
  OdRxOverrule::removeOverrule(OdDbLine::desc(), &square);
}

TEST_F(RenderTest, RefusalsNameTheReasonAndLeaveTheFileAlone) {
  std::ofstream("a.png") << "old";
  EXPECT_THAT(renderPng(*m_database, "a.png", m_options), HasSubstr("'*Model_Space'"));
  addBox({0, 0, 0}, OdCmColor());
  m_options.width = 9000;
  EXPECT_THAT(renderPng(*m_database, "a.png", m_options), HasSubstr("9000"));
  m_options.width = 200;
  m_options.viewDirection = {};
  EXPECT_THAT(renderPng(*m_database, "a.png", m_options), HasSubstr("view direction"));
  m_options.viewDirection = {0, 1, 0};
  m_options.block = m_database->getLayerZeroId();
  EXPECT_THAT(renderPng(*m_database, "a.png", m_options), HasSubstr("as block"));
  EXPECT_EQ(readBytes("a.png"), "old");
  m_options.block = {};
  EXPECT_THAT(renderPng(*m_database, "missing/a.png", m_options), HasSubstr("'missing/a.png'"));
  EXPECT_EQ(std::distance(fs::directory_iterator("."), {}), 1);
}

TEST_F(RenderTest, WhatCannotBeDrawnIsToldAndTheRestDrawn) {
  addBox({0, 0, 0}, OdCmColor());
  const OdDbObjectId broken = addReferences({OdGeMatrix3d::translation({50, 0, 0})});
  OdDbObjectId reference;
  for (const auto& each : entities<OdDbBlockReference>(m_database->getModelSpaceId())) {
    reference = each->objectId();
  }
  // The block is erased with its solid still shown.
  solid(broken, OdDb::kForWrite)->setBody(nullptr);
  blockRecord(reference.safeOpenAs<OdDbBlockReference>()->blockTableRecord(), OdDb::kForWrite)
      ->erase();
  ASSERT_EQ(renderPng(*m_database, "a.png", m_options), "");
  ASSERT_EQ(m_warnings.size(), 1u);
  EXPECT_THAT(m_warnings[0],
              HasSubstr(std::string(OdString(reference.getHandle().ascii()).utf8())));
}

TEST(RegionTraceTest, RegionsHaveClosedOutlinesAndHoles) {
  Raster raster(12, 12, {});
  const auto square = [&](double from, double to, double depth, std::uint32_t part) {
    const LitPoint a{{from, from, depth}}, b{{to, from, depth}}, c{{to, to, depth}},
        d{{from, to, depth}};
    const LitPoint upper[3] = {a, b, c};
    const LitPoint lower[3] = {a, c, d};
    const RenderColor color{static_cast<std::uint8_t>(part), 0, 0};
    raster.triangle(upper, color, part, true);
    raster.triangle(lower, color, part, true);
  };
  square(1, 11, 0.0, 1);
  square(4, 8, 5.0, 2);
  square(4, 8, -5.0, 3);  // hidden
  const TracedPicture picture = traceRegions(raster, 1.0, 0.9);
  ASSERT_EQ(picture.regions.size(), 2u);
  const auto area = [](const std::vector<OutlinePoint>& loop) {
    double twice = 0.0;
    for (std::size_t i = 0; i < loop.size(); ++i) {
      const OutlinePoint& a = loop[i];
      const OutlinePoint& b = loop[(i + 1) % loop.size()];
      twice += a.x * b.y - a.y * b.x;
    }
    return twice / 2;
  };
  ASSERT_EQ(picture.regions[0].loops.size(), 2u);
  EXPECT_EQ(area(picture.regions[0].loops[0]), 100.0);
  EXPECT_EQ(area(picture.regions[0].loops[1]), -16.0);
  ASSERT_EQ(picture.regions[1].loops.size(), 1u);
  EXPECT_EQ(picture.regions[1].loops[0].size(), 4u);
  EXPECT_EQ(area(picture.regions[1].loops[0]), 16.0);
  // Both squares differ from the surface under them.
  EXPECT_EQ(picture.outlines.size(), 4u);
}

TEST(VectorFontTest, TextIsAsWideAsItsCharacters) {
  EXPECT_EQ(odgiLayOutText("").width, 0.0);
  EXPECT_LT(odgiLayOutText("ii").width, odgiLayOutText("MM").width);
  EXPECT_THAT(odgiLayOutText(" ").strokes, IsEmpty());
  EXPECT_EQ(odgiLayOutText("\xE6\xBC\xA2").strokes.size(), 1u);  // a box
  for (char c = '!'; c <= '~'; ++c) {
    const OdGiTextStrokes glyph = odgiLayOutText(OdString(std::string(1, c)));
    ASSERT_FALSE(glyph.strokes.empty()) << c;
    for (const auto& stroke : glyph.strokes) {
      EXPECT_GE(stroke.size(), 2u) << c;
      for (const OdGePoint2d& point : stroke) {
        EXPECT_GE(point.y, -0.34) << c;
        EXPECT_LE(point.y, 1.17) << c;
        EXPECT_LE(point.x, glyph.width + 1e-9) << c;
      }
    }
  }
}

}  // namespace
}  // namespace rendering
