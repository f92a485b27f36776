// Clean-up of 2D entities: everything that faces -Z faces +Z then, and looks the same from there.
#include "vdm_db/drafting/vdm_dxf_utils.h"

#include <algorithm>
#include <cmath>

#include "platform/entities/arc.h"
#include "platform/entities/arc_aligned_text.h"
#include "platform/entities/circle.h"
#include "platform/entities/dimension.h"
#include "platform/entities/mtext.h"
#include "platform/entities/polyline.h"
#include "tests/platform/entities/entity_samples.h"
#include "tests/support/model_testing.h"

// A class of another module, which is in no table.
class ForeignCircle : public OdDbCircle {
  OD_RX_DECLARE_MEMBERS(ForeignCircle)
};
OD_RX_DEFINE_DB(ForeignCircle, OdDbCircle, L"TestForeignCircle", 33, 55, 0, L"TESTFOREIGNCIRCLE",
                L"tests")

namespace {

// The normal of all samples, and a turn that takes it to -Z.
const OdGeVector3d kNormal(0.48, -0.6, 0.64);

OdGeMatrix3d turn(const OdGeVector3d& to) {
  const double angle = std::acos(kNormal.dotProduct(to));
  return OdGeMatrix3d::rotation(angle, kNormal.crossProduct(to));
}

// Where an entity draws, in the plane of the drawing, whatever the order.
std::vector<std::pair<double, double>> flat(const OdDbEntity& entity) {
  std::vector<std::pair<double, double>> points;
  for (const OdGePoint3d& p : drawnPoints(entity)) {
    points.emplace_back(std::round(p.x * 1e5) * 1e-5, std::round(p.y * 1e5) * 1e-5);
  }
  std::sort(points.begin(), points.end());
  return points;
}

bool isNear(const std::vector<std::pair<double, double>>& a,
            const std::vector<std::pair<double, double>>& b) {
  const auto isIn = [](const auto& point, const auto& all) {
    return std::any_of(all.begin(), all.end(), [&point](const auto& other) {
      return std::hypot(point.first - other.first, point.second - other.second) < 1e-4;
    });
  };
  return std::all_of(a.begin(), a.end(), [&](const auto& p) { return isIn(p, b); }) &&
         std::all_of(b.begin(), b.end(), [&](const auto& p) { return isIn(p, a); });
}

// Whether the box of the points has its corners where those of before are, within a share of the
// diagonal.
bool fillsSameBox(const std::vector<std::pair<double, double>>& before, const OdDbEntity& entity,
                  double share) {
  OdGeExtents3d a, b;
  for (const auto& [x, y] : before) a.addPoint({x, y, 0});
  for (const auto& [x, y] : flat(entity)) b.addPoint({x, y, 0});
  const double limit = std::max(share * a.diagonal().length(), 1e-4);
  return a.minPoint().distanceTo(b.minPoint()) < limit &&
         a.maxPoint().distanceTo(b.maxPoint()) < limit;
}

// Texts of these stay readable, so that their strokes change sides and a text may move a little; a
// circle has its chords elsewhere.
bool hasOtherStrokes(const OdDbEntity& entity) {
  return entity.isKindOf(OdDbMText::desc()) || entity.isKindOf(OdDbArcAlignedText::desc()) ||
         entity.isKindOf(OdDbDimension::desc()) || entity.isKindOf(OdDbCircle::desc());
}

class VdmDxfUtils : public RegisteredClass<ForeignCircle>, public ModelTest {};

TEST_F(VdmDxfUtils, EveryEntityTurnsOnceAndKeepsItsPicture) {
  for (const EntitySample& sample : entitySamples()) {
    SCOPED_TRACE(sample.name);
    const OdDbEntityPtr made = sample.make();
    ASSERT_EQ(made->transformBy(turn({0, 0, -1})), eOk);
    const OdDbObjectId id = addTo(m_modelSpace, made);
    const auto before = flat(*open<OdDbEntity>(id));
    expectUndoable([&] { vdmu::cleanUp2DEntities(m_modelSpace); });
    const OdDbEntityPtr after = open<OdDbEntity>(id);
    EXPECT_TRUE(hasOtherStrokes(*after) ? fillsSameBox(before, *after, 0.15)
                                        : isNear(before, flat(*after)));
    const std::string state = wholeState();
    vdmu::cleanUp2DEntities(m_modelSpace);
    EXPECT_EQ(wholeState(), state) << "it faces +Z now";
    edit<OdDbEntity>(id)->erase();
  }
  EXPECT_TRUE(m_assertions.empty());
}

// Whether a circle with that normal is turned.
TEST_F(VdmDxfUtils, OnlyWhatFacesDownwardsWithinTheTolerance) {
  const auto normalAt = [](double z) {
    return OdGeVector3d(std::sqrt(std::max(0.0, 1 - z * z)), 0, z);
  };
  const std::pair<double, bool> rows[] = {{-1, true},    {-0.9999995, true}, {-0.9999989, false},
                                          {-0.5, false}, {0, false},         {1, false}};
  for (const auto& [z, turns] : rows) {
    const OdDbCirclePtr circle = OdDbCircle::createObject();
    circle->setNormal(normalAt(z));
    circle->setCenter({1, 2, 3});
    const OdDbObjectId id = addTo(m_modelSpace, circle);
    vdmu::cleanUp2DEntities(m_modelSpace);
    EXPECT_NEAR(open<OdDbCircle>(id)->normal().z, turns ? -z : z, 1e-12) << z;
    EXPECT_EQ(open<OdDbCircle>(id)->center(), OdGePoint3d(1, 2, turns ? -3 : 3)) << z;
    edit<OdDbEntity>(id)->erase();
  }
}

// Coincident, overlapping, reversed, touching and empty ones: each is turned for itself.
TEST_F(VdmDxfUtils, EntitiesThatShareTheirPlaceStayApart) {
  const auto addArc = [this](double from, double to, const OdGeVector3d& normal) {
    const OdDbArcPtr arc = OdDbArc::createObject();
    arc->setNormal(normal);
    arc->setCenter({5, 0, -2});
    arc->setStartAngle(from);
    arc->setEndAngle(to);
    return addTo(m_modelSpace, arc);
  };
  const OdGeVector3d down(0, 0, -1);
  std::vector<OdDbObjectId> ids{addArc(0, 1, down),   addArc(0, 1, down), addArc(1, 0, down),
                                addArc(0.5, 2, down), addArc(1, 2, down), addArc(0, 1, {0, 0, 1})};
  for (const OdGePoint3d& end : {OdGePoint3d(4, 0, 0), OdGePoint3d(0, 0, 0)}) {
    ids.push_back(addLine(m_modelSpace, {0, 0, 0}, end));
    edit<OdDbLine>(ids.back())->setNormal(down);
  }
  const OdDbPolylinePtr lone = OdDbPolyline::createObject();
  lone->setNormal(down);
  lone->addVertexAt(0, {3, 4});
  ids.push_back(addTo(m_modelSpace, lone));
  ids.push_back(addReference(m_modelSpace, addBlock(m_drawing, L"B")));
  const OdDbCirclePtr foreign = ForeignCircle::createObject();
  foreign->setNormal(down);
  const OdDbObjectId left[] = {ids.back(), addTo(m_modelSpace, foreign), addArc(0, 3, down)};
  edit<OdDbEntity>(left[2])->erase();
  std::vector<std::string> states;
  for (const OdDbObjectId& id : left) states.push_back(stateOf(id));

  std::vector<std::vector<std::pair<double, double>>> before;
  for (const OdDbObjectId& id : ids) before.push_back(flat(*open<OdDbEntity>(id)));
  vdmu::cleanUp2DEntities(m_modelSpace);
  for (std::size_t i = 0; i < ids.size(); ++i) {
    EXPECT_TRUE(isNear(before[i], flat(*open<OdDbEntity>(ids[i])))) << i;
  }
  for (std::size_t i = 0; i < 6; ++i) {
    const OdDbArcPtr arc = open<OdDbArc>(ids[i]);
    EXPECT_EQ(arc->normal(), OdGeVector3d::kZAxis);
    EXPECT_EQ(arc->center(), OdGePoint3d(5, 0, i < 5 ? 2 : -2));
  }
  EXPECT_EQ(open<OdDbPolyline>(ids[8])->normal(), OdGeVector3d::kZAxis);
  for (std::size_t i = 0; i < states.size(); ++i) EXPECT_EQ(stateOf(left[i]), states[i]) << i;
  vdmu::cleanUp2DEntities(m_carrier);
  vdmu::cleanUp2DEntities(OdDbObjectId::kNull);
  EXPECT_TRUE(m_assertions.empty());
}

}  // namespace
