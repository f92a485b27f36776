// Scenes: shapes that are shared, transforms within an entity, entities that cannot be drawn.
#include <gmock/gmock.h>

#include <array>
#include <functional>

#include "host/rendering/scene.h"
#include "platform/base/error.h"
#include "platform/gi/drawable_overrule.h"
#include "platform/gi/world_draw.h"
#include "tests/support/solid_drawing_testing.h"

namespace rendering {
namespace {

/// Draws lines of the drawing as a test wants.
class LineOverrule : public OdGiDrawableOverrule {
 public:
  std::function<void(OdGiWorldDraw&)> drawLine;

  bool worldDraw(const OdGiDrawable*, OdGiWorldDraw* context) override {
    drawLine(*context);
    return true;
  }
};

class SceneTest : public DrawingTest {
 protected:
  [[nodiscard]] OdDbObjectId space() const { return m_database->getModelSpaceId(); }
  [[nodiscard]] Scene scene() const { return drawScene(*m_database, space(), 0.0); }
  /// The scene of one line that is drawn so.
  Scene drawnBy(std::function<void(OdGiWorldDraw&)> drawLine) {
    addLine(space());
    OdStaticRxObject<LineOverrule> overrule;
    overrule.drawLine = std::move(drawLine);
    OdRxOverrule::addOverrule(OdDbLine::desc(), &overrule);
    Scene result = scene();
    OdRxOverrule::removeOverrule(OdDbLine::desc(), &overrule);
    return result;
  }
};

TEST_F(SceneTest, AnEntityIsOneShapeForEachOfItsLooks) {
  const OdDbObjectId block = addBlock(m_database, L"part");
  const OdDbObjectId part = addSolid(box(1, 2, 3), block);
  edit<OdDb3dSolid>(part)->setColorIndex(OdCmEntityColor::kIndexByBlock);
  for (int i = 0; i < 3; ++i) {
    const OdDbObjectId place =
        addReference(space(), block, OdGeMatrix3d::translation({10.0 * i, 0, 0}));
    edit<OdDbBlockReference>(place)->setColor(i < 2 ? OdCmColor::fromRGB(200, 0, 0)
                                                    : OdCmColor::fromRGB(0, 0, 200));
  }
  const Scene all = scene();
  ASSERT_EQ(all.shapes.size(), 2u);
  ASSERT_EQ(all.instances.size(), 3u);
  EXPECT_EQ(all.shapes[0].surfaces.at(0).look.color, (RenderColor{200, 0, 0}));
  EXPECT_EQ(all.shapes[1].surfaces.at(0).look.color, (RenderColor{0, 0, 200}));
  for (std::size_t i = 0; i < 3; ++i) {
    EXPECT_EQ(all.instances[i].shape, i / 2);
    EXPECT_EQ(all.instances[i].toWorld, OdGeMatrix3d::translation({10.0 * double(i), 0, 0}));
  }
}

TEST_F(SceneTest, AnEntityThatRaisesLeavesTheNextOneAlone) {
  addLine(space());
  addSolid(box(1, 1, 1));
  OdStaticRxObject<LineOverrule> overrule;
  overrule.drawLine = [](OdGiWorldDraw& draw) {
    draw.geometry().pushModelTransform(OdGeMatrix3d::translation({100, 0, 0}));
    throw OdError(eInvalidInput);
  };
  OdRxOverrule::addOverrule(OdDbLine::desc(), &overrule);
  const Scene all = scene();
  OdRxOverrule::removeOverrule(OdDbLine::desc(), &overrule);
  EXPECT_EQ(all.warnings.size(), 1u);
  ASSERT_EQ(all.instances.size(), 1u);
  EXPECT_EQ(all.instances[0].toWorld, OdGeMatrix3d());
  EXPECT_EQ(all.extents().maxPoint(), OdGePoint3d(1, 1, 1));
}

TEST_F(SceneTest, AMirrorKeepsTheFrontOfTriangles) {
  const Scene all = drawnBy([](OdGiWorldDraw& draw) {
    const OdGePoint3d points[] = {{1, 0, 0}, {2, 0, 0}, {1, 1, 0}};
    const std::array<OdUInt32, 3> triangles[] = {{0, 1, 2}};
    draw.geometry().pushModelTransform(OdGeMatrix3d::scaling(OdGeScale3d(-1, 1, 1)));
    draw.geometry().shell({points, {}, triangles, {}});
    draw.geometry().popModelTransform();
  });
  const Surface& surface = all.shapes.at(0).surfaces.at(0);
  EXPECT_EQ(surface.normals.at(0), OdGeVector3d::kZAxis);
  const auto& [a, b, c] = surface.triangles.at(0);
  const OdGeVector3d turn =
      (surface.points[b] - surface.points[a]).crossProduct(surface.points[c] - surface.points[a]);
  EXPECT_GT(turn.z, 0.0);
  EXPECT_EQ(all.extents().minPoint().x, -2.0);
}

TEST_F(SceneTest, PolygonsAreFilledWhereAFanFromTheirFirstPointCoversThem) {
  const auto numTriangles = [&](std::vector<OdGePoint3d> points) {
    const Scene all = drawnBy([&](OdGiWorldDraw& draw) { draw.geometry().polygon(points); });
    const Shape& shape = all.shapes.back();
    EXPECT_EQ(shape.lines.at(0).points.size(), points.size() + 1);
    return shape.surfaces.empty() ? 0 : shape.surfaces[0].triangles.size();
  };
  EXPECT_EQ(numTriangles({{0, 0, 0}, {2, 0, 0}, {2, 2, 0}, {1, 3, 0}, {0, 2, 0}}), 3u);
  // One concave outline from the point opposite its notch, and from the point beside it.
  EXPECT_EQ(numTriangles({{0, 0, 0}, {2, 0, 0}, {0.5, 0.5, 0}, {0, 2, 0}}), 2u);
  EXPECT_EQ(numTriangles({{2, 0, 0}, {0.5, 0.5, 0}, {0, 2, 0}, {0, 0, 0}}), 0u);
}

}  // namespace
}  // namespace rendering
