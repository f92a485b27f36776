// Point by point: what an entity draws after a transform is what the transform makes of its
// drawing. The checker knows nothing of the classes: it compares polylines by their distance from
// each other.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <random>

#include "platform/entities/block_reference.h"
#include "platform/entities/dimension.h"
#include "platform/entities/mtext.h"
#include "platform/gi/extents_draw.h"
#include "platform/gi/stroke_font.h"
#include "tests/platform/entities/entity_samples.h"
#include "tests/support/drawing_testing.h"
#include "tests/support/test_seed.h"

namespace {

using Points = std::vector<OdGePoint3d>;

/// Keeps runs of points in the outermost coordinates. A text is the outline of its box.
class RunCollector : public OdGiExtentsDraw {
 public:
  std::vector<Points> runs;
  std::vector<Points> texts;

  double deviation() const override { return 1e-3; }
  void polyline(std::span<const OdGePoint3d> points) override { take(points, false, runs); }
  void polygon(std::span<const OdGePoint3d> points) override { take(points, true, runs); }
  void shell(const OdGiShell& shell) override {
    for (const auto& triangle : shell.triangles) {
      take(std::array{shell.points[triangle[0]], shell.points[triangle[1]],
                      shell.points[triangle[2]]},
           true, runs);
    }
  }
  void text(const OdGiText& text) override {
    const OdGeVector3d along = text.along * odgiTextWidth(text.text);
    const OdGePoint3d corner = text.position;
    take(std::array{corner, corner + along, corner + along + text.up, corner + text.up}, true,
         texts);
  }

 private:
  void take(std::span<const OdGePoint3d> points, bool closes, std::vector<Points>& to) {
    Points run;
    for (const OdGePoint3d& point : points) run.push_back(getModelToWorldTransform() * point);
    if (closes) run.push_back(run.front());
    to.push_back(std::move(run));
  }
};

struct Drawing {
  std::vector<Points> runs;
  std::vector<Points> texts;

  explicit Drawing(const OdDbEntity& entity) {
    OdStaticRxObject<RunCollector> draw;
    draw.draw(&entity);
    runs = draw.runs;
    texts = draw.texts;
  }
  void transformBy(const OdGeMatrix3d& transform) {
    for (std::vector<Points>* all : {&runs, &texts}) {
      for (Points& run : *all) {
        for (OdGePoint3d& point : run) point = transform * point;
      }
    }
  }
};

OdGeExtents3d boxOf(const std::vector<Points>& runs) {
  OdGeExtents3d box;
  for (const Points& run : runs) {
    for (const OdGePoint3d& point : run) box.addPoint(point);
  }
  return box;
}

/// The box of texts along the base line of the first one, and across it.
OdGeExtents3d boxAlong(const std::vector<Points>& axes, const std::vector<Points>& texts) {
  const OdGeVector3d x = (axes[0][1] - axes[0][0]).normal();
  const OdGeVector3d z = x.crossProduct(axes[0][3] - axes[0][0]).normal();
  const OdGeMatrix3d frame =
      OdGeMatrix3d::coordSystem(OdGePoint3d::kOrigin, x, z.crossProduct(x), z).inverse();
  OdGeExtents3d box;
  for (const Points& text : texts) {
    for (const OdGePoint3d& corner : text) box.addPoint(frame * corner);
  }
  return box;
}

double distance(const OdGePoint3d& point, const OdGePoint3d& from, const OdGePoint3d& to) {
  const OdGeVector3d way = to - from;
  const double length = way.lengthSqrd();
  const double share =
      length > 0.0 ? std::clamp((point - from).dotProduct(way) / length, 0.0, 1.0) : 0.0;
  return point.distanceTo(from + way * share);
}

/// How far a point of the one is from everything of the other, at most.
double oneWay(const std::vector<Points>& a, const std::vector<Points>& b) {
  double most = 0.0;
  for (const Points& run : a) {
    for (const OdGePoint3d& point : run) {
      double least = 1e300;
      for (const Points& other : b) {
        for (std::size_t i = 0; i + 1 < other.size() && least > 1e-9; ++i) {
          least = std::min(least, distance(point, other[i], other[i + 1]));
        }
        if (other.size() == 1) least = std::min(least, point.distanceTo(other[0]));
      }
      most = std::max(most, least);
    }
  }
  return most;
}

double apart(const std::vector<Points>& a, const std::vector<Points>& b) {
  return std::max(oneWay(a, b), oneWay(b, a));
}

class DrawnTransform : public DrawingVerbs, public testing::TestWithParam<std::size_t> {
 protected:
  [[nodiscard]] const EntitySample& sample() const { return entitySamples()[GetParam()]; }
  double real(double low, double high) {
    return std::uniform_real_distribution<double>(low, high)(m_random);
  }
  OdGeVector3d direction() {
    return OdGeVector3d(real(-1, 1), real(-1, 1), real(-1, 1) + 2).normal();
  }
  /// Turns, moves, mirrors along and across the axes, and even scales for those that take them.
  OdGeMatrix3d similarity() {
    OdGeMatrix3d matrix = OdGeMatrix3d::translation({real(-9, 9), real(-9, 9), real(-9, 9)});
    const OdGeVector3d axes[] = {OdGeVector3d::kXAxis, OdGeVector3d::kYAxis, OdGeVector3d::kZAxis,
                                 direction()};
    for (int i = 0; i < 2; ++i) {
      const OdGeVector3d axis = axes[std::uniform_int_distribution<int>(0, 3)(m_random)];
      const bool isQuarter = real(0, 1) < 0.5;
      matrix = matrix * OdGeMatrix3d::rotation(isQuarter ? std::acos(0.0) : real(-4, 4), axis);
    }
    const OdGeVector3d across = axes[std::uniform_int_distribution<int>(0, 3)(m_random)];
    if (real(0, 1) < 0.5) {
      matrix = matrix * OdGeMatrix3d::mirroring(OdGePlane(OdGePoint3d::kOrigin, across));
    }
    if (!sample().is(EntitySample::kRigid)) {
      matrix = matrix * OdGeMatrix3d::scaling(real(0.3, 3));
    }
    return matrix;
  }
  /// The same entity in a plane of another normal, the world planes among them.
  OdDbEntityPtr make() {
    OdDbEntityPtr entity = sample().make();
    const OdGeVector3d from(0.48, -0.6, 0.64);
    const OdGeVector3d normals[] = {OdGeVector3d::kZAxis, -OdGeVector3d::kZAxis,
                                    -OdGeVector3d::kXAxis, direction(), from};
    const OdGeVector3d to = normals[std::uniform_int_distribution<int>(0, 4)(m_random)];
    const OdGeVector3d axis = from.crossProduct(to);
    if (axis.length() > 1e-9) {
      EXPECT_EQ(entity->transformBy(OdGeMatrix3d::rotation(from.angleTo(to), axis.normal())), eOk);
    }
    return entity;
  }

  std::mt19937 m_random{freshSeed()};
};

/// Notes in a mirror are written anew, in the place of the old ones.
constexpr double kWrittenAnew = 1.5;  // less than the height of a line of the samples

TEST_P(DrawnTransform, DrawingAndTransformingCommute) {
  for (int round = 0; round < 40; ++round) {
    const OdDbEntityPtr entity = make();
    const OdGeMatrix3d transform = similarity();
    Drawing before(*entity);
    before.transformBy(transform);
    ASSERT_EQ(entity->transformBy(transform), eOk);
    const Drawing after(*entity);
    const double size = std::max(1.0, boxOf(before.runs).diagonal().length());
    const bool isWrittenAnew = transform.det() < 0.0 && (entity->isKindOf(OdDbDimension::desc()) ||
                                                         sample().is(EntitySample::kReadable));
    ASSERT_EQ(before.texts.size(), after.texts.size());
    if (!sample().is(EntitySample::kReadable)) {
      EXPECT_LT(apart(before.runs, after.runs), 3e-3 * size);
    }
    if (!isWrittenAnew) {
      EXPECT_LT(apart(before.texts, after.texts), 1e-6 * size);
    } else if (sample().is(EntitySample::kReadable)) {
      const OdGeExtents3d old = boxAlong(after.texts, before.texts);
      const OdGeExtents3d anew = boxAlong(after.texts, after.texts);
      const double allowed = kWrittenAnew * std::cbrt(-transform.det());
      EXPECT_LT(old.minPoint().distanceTo(anew.minPoint()), allowed);
      EXPECT_LT(old.maxPoint().distanceTo(anew.maxPoint()), allowed);
    }
    if (HasFailure()) FAIL() << sample().name << " in round " << round;
  }
}

// A reference draws what its parts draw, and takes every regular transform.
TEST_P(DrawnTransform, ReferencesTransformWhatTheyShow) {
  OdDbHostAppServices host;
  const OdDbDatabasePtr drawing = host.createDatabase();
  const OdDbObjectId inner = addBlock(drawing, L"INNER");
  const OdDbObjectId outer = addBlock(drawing, L"OUTER");
  edit<OdDbBlockTableRecord>(inner)->setOrigin({1, -2, 3});
  addTo(inner, make());
  for (int round = 0; round < 10; ++round) {
    const OdGeMatrix3d uneven = similarity() * OdGeMatrix3d::scaling(OdGeScale3d(
                                                   real(0.3, 2), -real(0.3, 2), real(0.3, 2)));
    const OdDbObjectId nested = addReference(outer, inner, similarity());
    const auto reference =
        edit<OdDbBlockReference>(addReference(drawing->getModelSpaceId(), outer, uneven));
    Drawing before(*reference);
    const OdGeMatrix3d transform = round % 2 == 0 ? similarity() : uneven;
    before.transformBy(transform);
    ASSERT_EQ(reference->transformBy(transform), eOk);
    const Drawing after(*reference);
    const double size = std::max(1.0, boxOf(before.runs).diagonal().length());
    EXPECT_LT(apart(before.runs, after.runs) + apart(before.texts, after.texts), 1e-9 * size);

    OdRxObjectPtrArray parts;
    ASSERT_EQ(reference->explode(parts), eOk);
    std::vector<Points> runs;
    for (const OdRxObjectPtr& part : parts) {
      const Drawing drawn(*OdDbEntity::cast(part));
      runs.insert(runs.end(), drawn.runs.begin(), drawn.runs.end());
    }
    EXPECT_LT(apart(after.runs, runs), 1e-9 * size);
    edit<OdDbBlockReference>(nested)->erase();
    if (HasFailure()) FAIL() << sample().name << " in round " << round;
  }
}

INSTANTIATE_TEST_SUITE_P(All, DrawnTransform,
                         testing::Range<std::size_t>(0, entitySamples().size()),
                         [](const auto& row) { return entitySamples()[row.param].name; });

}  // namespace
