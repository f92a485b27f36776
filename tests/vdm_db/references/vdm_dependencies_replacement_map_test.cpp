// Tests of the journal of a remapping run.
#include "vdm_db/references/vdm_dependencies_replacement_map.h"

#include "tests/support/reference_testing.h"

namespace {

using IdSet = VdmDependenciesReplacementMap::IdSet;

class VdmDependenciesReplacementMapTest : public ReferenceTest {
 protected:
  VdmDependenciesReplacementMapTest() {
    for (OdDbObjectId& id : m_ids) id = addLine(m_modelSpace);
  }
  VdmDependenciesReplacementMap m_map;
  std::array<OdDbObjectId, 5> m_ids;
};

TEST_F(VdmDependenciesReplacementMapTest, KeepsTheFirstSetOfAnId) {
  const auto& [a, b, c, d, e] = m_ids;
  EXPECT_TRUE(m_map.append(a, {b}));
  EXPECT_FALSE(m_map.append(a, {c}));
  IdSet out{d};
  EXPECT_TRUE(!m_map.contains(b, out) && out.empty());
  EXPECT_TRUE(m_map.contains(a, out) && out == IdSet{b});
  EXPECT_TRUE(m_map.update(a, b, {c, d}) && !m_map.update(a, b, {e}));
  EXPECT_EQ(m_map.getReplacements(a), (IdSet{c, d}));
  m_map.remove(a);
  EXPECT_TRUE(m_map.isEmpty());
  m_map.appendClone(a);
  EXPECT_TRUE(m_map.isEmptyReplacementDeps() && !m_map.isEmpty());
}

TEST_F(VdmDependenciesReplacementMapTest, FollowsChainsAndEndsInRings) {
  const auto& [a, b, c, d, e] = m_ids;
  m_map.append(a, {b, d});
  m_map.append(b, {b, c});  // stays, beside another one
  m_map.append(c, {e, a});
  EXPECT_EQ(m_map.getReplacedWith(a), OdDbObjectIdArray({b, d, e}));
  OdDbObjectIdArray out{a};
  EXPECT_FALSE(m_map.findReplacedWith(d, &out));
  EXPECT_TRUE(out.isEmpty());
  EXPECT_TRUE(m_map.findReplacedWith(c, nullptr));
}

}  // namespace
