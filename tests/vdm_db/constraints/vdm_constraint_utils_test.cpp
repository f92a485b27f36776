// Utilities around constraint managers: names, cleaning up, what is there.
#include "vdm_db/constraints/vdm_constraint_utils.h"
#include "vdm_db/constraints/vdm_constraint_cleanup.h"
#include "vdm_db/constraints/vdm_constraint_names.h"

#include "tests/vdm_db/constraints/constraint_testing.h"

namespace {

using VdmConstraintUtils = ConstraintTest;

TEST_F(VdmConstraintUtils, SuffixesOfNames) {
  const wchar_t* const cases[][2] = {{L"D_12", L"D"}, {L"D12", L"D"}, {L"D__1", L"D_"},
                                     {L"12", L""},    {L"D_", L"D"},  {L"", L""}};
  for (const auto& [name, base] : cases) EXPECT_EQ(vdmu::removeNumericSuffix(name), base) << name;
}

TEST_F(VdmConstraintUtils, UniqueNames) {
  std::set<OdString> taken{L"D"};
  EXPECT_EQ(vdmu::generateUniqueName(L"D", taken, 1, true), L"D_1");
  EXPECT_TRUE(taken.contains(L"D_1"));
  EXPECT_EQ(vdmu::generateUniqueName(L"d", taken, 1, false), L"d_2");
  EXPECT_TRUE(taken.contains(L"D_2"));
  EXPECT_EQ(vdmu::generateUniqueName(L"E", taken, 1, true), L"E");
  EXPECT_FALSE(taken.contains(L"E"));

  taken = {L"D_5", L"D_2"};
  EXPECT_EQ(vdmu::uniqueNameNumericSuffix(L"F", taken), L"F");
  taken = {L"D_5", L"D_2"};
  EXPECT_EQ(vdmu::uniqueNameNumericSuffix(L"d_5", taken), L"d_3") << "counted from 2 names";
}

TEST_F(VdmConstraintUtils, ConstraintsWithoutGeometryGo) {
  const OdDbObjectId lines[] = {newLine(), newLine(), newLine()};
  const VdmConstraintPtr plain = addConstraint(3, {lines[0], lines[1]}, L"plain");
  const VdmConstraintPtr loses = addConstraint(12, {lines[0], lines[1], lines[2]}, L"loses");
  const VdmConstraintPtr future = addConstraint(3, {lines[1]}, L"future");
  const VdmConstraintPtr stays = addConstraint(3, {lines[2]}, L"stays");
  future->changeProperty(L"softVersion", OdLong{4});
  edit<VdmDbObjectDependency>(plain->argumentIds()[1])->setLinkObject(OdDbFullSubentPath());
  const OdDbObjectId ofSecond = VdmDbObject::openVdmDbObject(lines[1])->objectId();

  vdmu::removeInvalidConstraints(manager());
  EXPECT_EQ(nodeIds(), (std::vector<OdULong>{2, 3, 4}));
  EXPECT_EQ(m_solver.removed, OdStringArray{L"plain"});
  EXPECT_TRUE(plain->owner().isNull());
  EXPECT_EQ(loses->getArgumentsCount(), 2u);
  EXPECT_FALSE(ofSecond.isErased()) << "the future one uses it";

  editManager()->removeConstraints({loses, future, stays});
  EXPECT_TRUE(registry().isEmpty());
  EXPECT_TRUE(ofSecond.isErased());
  EXPECT_TRUE(open<OdDbLine>(lines[1])->getPersistentReactors().isEmpty());
}

}  // namespace
