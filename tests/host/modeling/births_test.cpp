// Names into openings that meet, part, close and open again, and names that older versions stored.
#include <set>

#include "host/modeling/component_query.h"
#include "host/naming/name_feature.h"
#include "host/naming/reference_query.h"
#include "tests/host/modeling/modeling_testing.h"
#include "vdm_db/model/vdm_db_object_dependency.h"

using namespace vdm_host;

namespace {

class BirthsTest : public ModelingTest {
 protected:
  OdDbObjectId pocket(const wchar_t* name, double length) {
    const auto block = OdDbBlockTableRecord::createObject();
    block->setName(name);
    OdDbObjectId id =
        open<OdDbBlockTable>(m_database->getBlockTableId(), OdDb::kForWrite)->add(block);
    addSolid(box(length, 20.0, 6.0, {-length / 2.0, -10.0, -5.0}), id);
    EXPECT_TRUE(succeeded(makeFromBlock(m_database, name, ComponentRole::kSubtract, id)));
    return id;
  }
  /// A name for what lies at the point, which one thing does.
  OdDbObjectId name(OdModelerSubentType type, const OdGePoint3d& at) {
    OdDbObjectId feature;
    const OdUInt32 index = indexAt(type, at);
    const auto make = [&]() -> OdStatus {
      const OdDbSubentId subent(static_cast<OdDb::SubentType>(type), OdGsMarker{index});
      return {nameReference({m_plate, subent}, OdString(), feature), {}};
    };
    EXPECT_TRUE(done(m_editor->edit(L"name", make)));
    return feature;
  }
  [[nodiscard]] OdUInt32 indexAt(OdModelerSubentType type, const OdGePoint3d& at) const {
    for (OdUInt32 i = 1; i <= plateBody()->numSubents(type); ++i) {
      if (plateBody()->distanceTo({type, i}, at) < 1e-6) return i;
    }
    return 0;
  }
  /// The name leads to what lies at the points, and to nothing else.
  [[nodiscard]] testing::AssertionResult leadsTo(const OdDbObjectId& feature,
                                                 const std::vector<OdGePoint3d>& points) const {
    std::set<OdUInt32> found;
    std::set<OdUInt32> wanted;
    OdModelerSubentType type = OdModelerSubentType::kFace;
    for (const OdDbObjectId& id : VdmNameFeature::cast(VdmFeature::open(feature))->referenceIds()) {
      const ResolvedReference now = resolveReference(id);
      type = static_cast<OdModelerSubentType>(now.path.subentId().type());
      if (now.resolved()) found.insert(static_cast<OdUInt32>(now.path.subentId().index()));
    }
    for (const OdGePoint3d& point : points) wanted.insert(indexAt(type, point));
    if (found == wanted) return testing::AssertionSuccess();
    return testing::AssertionFailure()
           << testing::PrintToString(found) << ", not " << testing::PrintToString(wanted);
  }
};

TEST_F(BirthsTest, OpeningsThatMeetFindTheirOwnAgain) {
  using enum OdModelerSubentType;
  const EditResult a = insert(pocket(L"a", 40.0), 60.0, 60.0);
  const EditResult b = insert(pocket(L"b", 30.0), 160.0, 60.0);
  const OdDbObjectId floorA = name(kFace, {60.0, 60.0, 5.0});
  const OdDbObjectId floorB = name(kFace, {160.0, 60.0, 5.0});
  const OdDbObjectId rimB = name(kEdge, {160.0, 50.0, 10.0});
  const OdDbObjectId endB = name(kFace, {145.0, 60.0, 7.0});
  // Floors and long walls become one; one end of b lies within a.
  ASSERT_TRUE(done(m_editor->moveObject(b.created, {-75.0, 0.0, 0.0})));
  EXPECT_TRUE(leadsTo(floorA, {{60.0, 60.0, 5.0}}));
  EXPECT_TRUE(leadsTo(floorB, {{60.0, 60.0, 5.0}}));
  EXPECT_TRUE(leadsTo(endB, {}));
  const OdDbObjectId both = name(kFace, {60.0, 60.0, 5.0});
  // The other one goes away; what stayed is found like what was cut again.
  ASSERT_TRUE(done(m_editor->moveObject(a.created, {0.0, 60.0, 0.0})));
  EXPECT_TRUE(leadsTo(floorA, {{60.0, 120.0, 5.0}}));
  EXPECT_TRUE(leadsTo(floorB, {{85.0, 60.0, 5.0}}));
  EXPECT_TRUE(leadsTo(rimB, {{85.0, 50.0, 10.0}}));
  EXPECT_TRUE(leadsTo(endB, {{70.0, 60.0, 7.0}}));
  EXPECT_TRUE(leadsTo(both, {{60.0, 120.0, 5.0}, {85.0, 60.0, 5.0}}));
  // A closed one is lost, whatever comes to its place, until it opens again.
  ASSERT_TRUE(done(m_editor->suppress(b.created)));
  ASSERT_TRUE(done(m_editor->moveObject(a.created, {25.0, -60.0, 0.0})));
  EXPECT_TRUE(leadsTo(floorB, {}));
  EXPECT_TRUE(leadsTo(rimB, {}));
  ASSERT_TRUE(done(m_editor->unsuppress(b.created)));
  ASSERT_TRUE(done(m_editor->moveObject(a.created, {0.0, 60.0, 0.0})));
  EXPECT_TRUE(leadsTo(floorB, {{85.0, 60.0, 5.0}}));
  EXPECT_TRUE(leadsTo(rimB, {{85.0, 50.0, 10.0}}));
}

// Made by the rules that kept no births: two slots, the second one suppressed.
TEST_F(BirthsTest, RecordsOfOlderRulesKeepTheirMeaning) {
  using enum OdModelerSubentType;
  OdStatus status;
  const OdDbDatabasePtr drawing =
      m_files.readFile(OdString(VDM_MODELING_DATA "/references_rules_1.vdm"), status);
  ASSERT_TRUE(succeeded(status));
  m_database = drawing;
  m_editor = std::make_unique<ModelEditor>(drawing.get());
  m_plate = drawing->getOdDbObjectId(OdDbHandle(0x21));
  const OdDbObjectId slotA = drawing->getOdDbObjectId(OdDbHandle(0x26));
  const OdDbObjectId slotB = drawing->getOdDbObjectId(OdDbHandle(0x45));
  const auto at = [&](OdUInt64 reference) {
    const ResolvedReference now = resolveReference(drawing->getOdDbObjectId(OdDbHandle(reference)));
    return now.resolved() ? static_cast<OdUInt32>(now.path.subentId().index()) : 0U;
  };
  constexpr OdUInt64 kFloorA = 0x44;
  constexpr OdUInt64 kFloorB = 0x54;
  constexpr OdUInt64 kRimA = 0x5B;
  constexpr OdUInt64 kRimB = 0x5E;
  EXPECT_EQ(at(kRimA), indexAt(kEdge, {60.0, 10.0, 16.0}));
  ASSERT_TRUE(done(m_editor->unsuppress(slotB)));
  EXPECT_EQ(at(kFloorB), indexAt(kFace, {120.0, 15.0, 10.0}));
  EXPECT_EQ(at(kRimB), indexAt(kEdge, {120.0, 10.0, 16.0}));
  ASSERT_TRUE(done(m_editor->moveObject(slotA, {50.0, 0.0, 0.0})));
  EXPECT_EQ(at(kFloorA), at(kFloorB)) << "one floor";
  ASSERT_TRUE(done(m_editor->moveObject(slotB, {-60.0, 0.0, 0.0})));
  EXPECT_EQ(at(kFloorA), indexAt(kFace, {110.0, 15.0, 10.0}));
  EXPECT_EQ(at(kFloorB), indexAt(kFace, {60.0, 15.0, 10.0}));
  EXPECT_EQ(at(kRimA), indexAt(kEdge, {110.0, 10.0, 16.0}));
  EXPECT_EQ(at(kRimB), indexAt(kEdge, {60.0, 10.0, 16.0}));
}

}  // namespace
