// Laws that all drawn entities keep.
#include <gtest/gtest.h>

#include <cmath>

#include "platform/base/error.h"
#include "platform/cloning/id_mapping.h"
#include "platform/db/audit_info.h"
#include "platform/filer/file_filer.h"
#include "platform/ge/extents3d.h"
#include "tests/platform/entities/entity_samples.h"
#include "tests/support/drawing_testing.h"

namespace {

constexpr double kNear = 1e-7;

/// A turn, a move and an even scale.
OdGeMatrix3d similarity(double scale = 1.7) {
  return OdGeMatrix3d::translation({5, -3, 2}) * OdGeMatrix3d::scaling(scale) *
         OdGeMatrix3d::rotation(1.1, OdGeVector3d(1, 2, -0.5));
}
OdGeMatrix3d mirror() {
  return OdGeMatrix3d::mirroring(OdGePlane(OdGePoint3d(1, 2, 0), OdGeVector3d(2, 1, -1)));
}
OdGeMatrix3d uneven() { return similarity() * OdGeMatrix3d::scaling(OdGeScale3d(2.0, 0.7, 1.3)); }

OdGeExtents3d boxOf(const std::vector<OdGePoint3d>& points) {
  OdGeExtents3d box;
  for (const OdGePoint3d& point : points) box.addPoint(point);
  return box;
}

double distance(const OdGeExtents3d& a, const OdGeExtents3d& b) {
  return std::max(a.minPoint().distanceTo(b.minPoint()), a.maxPoint().distanceTo(b.maxPoint()));
}

/// Greatest distance between points of two drawings that should be the same, in order.
double distance(const std::vector<OdGePoint3d>& a, const std::vector<OdGePoint3d>& b) {
  if (a.size() != b.size()) return 1e300;
  double most = 0.0;
  for (std::size_t i = 0; i < a.size(); ++i) most = std::max(most, a[i].distanceTo(b[i]));
  return most;
}

class EntityLaws : public DrawingVerbs, public testing::TestWithParam<std::size_t> {
 protected:
  [[nodiscard]] const EntitySample& sample() const { return entitySamples()[GetParam()]; }
  [[nodiscard]] static std::vector<OdUInt8> bytesOf(const OdDbEntity* entity) {
    OdDbFileWriter filer(nullptr);
    entity->dwgOutFields(&filer);
    std::vector<OdUInt8> bytes;
    filer.assemble(bytes);
    return bytes;
  }

  OdDbHostAppServices m_host;
  OdDbDatabasePtr m_drawing = m_host.createDatabase();
};

// What is filed is read back, and nothing that ends early is taken.
TEST_P(EntityLaws, RecordsComeBackAndShortOnesAreRefused) {
  const OdDbEntityPtr entity = sample().make();
  const std::vector<OdUInt8> whole = bytesOf(entity);
  using Refused = std::vector<OdUInt8>;
  const auto read = [&](std::size_t length) {
    const OdDbEntityPtr copy = OdDbEntity::cast(entity->isA()->create());
    try {
      OdDbFileReader in(whole.data(), length, nullptr, nullptr, nullptr);
      if (copy->dwgInFields(&in) != eOk) return Refused();
    } catch (const OdError&) {
      return Refused();
    }
    return bytesOf(copy);
  };
  EXPECT_EQ(read(whole.size()), whole);
  for (std::size_t length = 0; length < whole.size(); ++length) {
    ASSERT_EQ(read(length), Refused()) << length << " of " << whole.size() << " bytes";
  }
}

TEST_P(EntityLaws, TransformsUndoRedoAndCloneKeepEveryByte) {
  const OdDbObjectId block = m_drawing->getModelSpaceId();
  const OdDbObjectId id = addTo(block, sample().make());
  expectUndoable(
      *m_drawing, [&] { return stateOf(id); },
      [&] { ASSERT_EQ(edit<OdDbEntity>(id)->transformBy(similarity()), eOk); });
  const OdDbIdMappingPtr mapping = OdDbIdMapping::createObject();
  OdDbObjectIdArray ids;
  ids.append(id);
  ASSERT_EQ(m_drawing->deepCloneObjects(ids, block, *mapping), eOk);
  OdDbIdPair pair(id);
  ASSERT_TRUE(mapping->compute(pair));
  EXPECT_EQ(stateOf(pair.value()), stateOf(id));
  OdDbAuditInfo info;
  m_drawing->audit(&info);
  EXPECT_EQ(info.numErrors(), 0u);
}

TEST_P(EntityLaws, InverseTransformsAndSecondMirrorsBringEverythingBack) {
  for (const OdGeMatrix3d& transform : {similarity(), mirror(), uneven()}) {
    const OdDbEntityPtr entity = sample().make();
    const std::vector<OdGePoint3d> before = drawnPoints(*entity);
    const std::vector<OdUInt8> bytes = bytesOf(entity);
    const OdResult result = entity->transformBy(transform);
    if (result == eCannotScaleNonUniformly) {
      EXPECT_FALSE(sample().is(EntitySample::kAffine));
      EXPECT_EQ(bytesOf(entity), bytes) << "a refused transform changes nothing";
      continue;
    }
    ASSERT_EQ(result, eOk);
    EXPECT_NE(bytesOf(entity), bytes);
    ASSERT_EQ(entity->transformBy(transform.inverse()), eOk);
    const bool keepsShape = transform.isUniScaledOrtho() || sample().is(EntitySample::kAffine);
    const std::vector<OdGePoint3d> after = drawnPoints(*entity);
    if (!keepsShape) continue;
    if (!sample().is(EntitySample::kUnordered)) {
      EXPECT_LT(distance(after, before), kNear);
    }
    EXPECT_LT(distance(boxOf(after), boxOf(before)), kNear);
  }
}

TEST_P(EntityLaws, ExtentsHoldTheDrawingTightly) {
  const OdDbEntityPtr entity = sample().make();
  OdGeExtents3d extents;
  ASSERT_EQ(entity->getGeomExtents(extents), eOk);
  const std::vector<OdGePoint3d> fine = drawnPoints(*entity, 1e-6);
  const OdGeExtents3d drawn = boxOf(fine);
  const double size = extents.diagonal().length();
  if (sample().name == "point") return;  // its sign does not count
  for (const OdGePoint3d& point : fine) {
    ASSERT_TRUE(extents.contains(point, OdGeTol(2e-3 * size))) << point.x << " " << point.y;
  }
  if (!sample().is(EntitySample::kInner)) {
    EXPECT_LT(distance(extents, drawn), 2e-3 * size);
  }
}

TEST_P(EntityLaws, BadTransformsAreRefused) {
  const OdDbEntityPtr entity = sample().make();
  const std::vector<OdUInt8> bytes = bytesOf(entity);
  OdGeMatrix3d infinite;
  infinite(0, 3) = HUGE_VAL;
  EXPECT_EQ(entity->transformBy(infinite), eInvalidInput);
  EXPECT_EQ(entity->transformBy(OdGeMatrix3d::scaling(OdGeScale3d(1, 1, 0))), eDegenerateGeometry);
  EXPECT_EQ(bytesOf(entity), bytes);
}

INSTANTIATE_TEST_SUITE_P(All, EntityLaws, testing::Range<std::size_t>(0, entitySamples().size()),
                         [](const auto& row) { return entitySamples()[row.param].name; });

}  // namespace
