// Utilities around constraint managers: dependencies, contents, names, cleaning up, side
// conditions.
#include "vdm_db/constraints/vdm_constraint_utils.h"

#include <cmath>
#include <random>

#include "platform/base/case_compare.h"
#include "platform/db/xrecord.h"
#include "tests/support/test_seed.h"
#include "tests/vdm_db/constraints/constraint_testing.h"
#include "vdm_db/constraints/vdm_constraint_cleanup.h"
#include "vdm_db/constraints/vdm_constraint_names.h"
#include "vdm_db/constraints/vdm_taken_names.h"
#include "vdm_db/drawing_utils/vdm_dictionary_utils.h"

namespace {

using VdmConstraintUtils = ConstraintTest;

TEST_F(VdmConstraintUtils, DependenciesAreFoundOrMade) {
  const OdDbFullSubentPathArray paths{face(m_carrier, 1), face(m_other, 2), face(m_carrier, 1)};
  const OdDbObjectIdArray made = vdmu::createConstrDependencies(editManager(), paths);
  ASSERT_EQ(made.size(), 3u);
  EXPECT_EQ(made[0], made[2]);
  EXPECT_EQ(placeOf(made[1]), paths[1]);
  EXPECT_EQ(vdmu::createConstrDependencies(editManager(), paths), made);
  EXPECT_EQ(modelObject(m_other)->constraintDependencies(), OdDbObjectIdArray{made[1]});
  EXPECT_NE(raisedBy([&] {
              (void)vdmu::createConstrDependencies(editManager(), {OdDbFullSubentPath()});
            }),
            eOk);
}

TEST_F(VdmConstraintUtils, StatusIsOnlyRaised) {
  setStatus(Manager::kPartlyModified);
  const int before = m_solver.invalidations;
  vdmu::markConstraintManagerChanged(m_constraints, Manager::kUpToDate);
  EXPECT_EQ(status(), Manager::kPartlyModified);
  vdmu::markConstraintManagerChanged(m_constraints, Manager::kFullyModified);
  EXPECT_EQ(status(), Manager::kFullyModified);
  EXPECT_EQ(m_solver.invalidations, before + 2);
  vdmu::markConstraintManagerChanged(m_carrier, Manager::kUpToDate);  // no manager
}

TEST_F(VdmConstraintUtils, ContentsOfADrawing) {
  EXPECT_TRUE(vdmu::getWatchedObjects(nullptr).isEmpty());
  EXPECT_TRUE(vdmu::getBTRsConstraintManagers(nullptr).isEmpty());
  const OdDbObjectId block = addBlock(m_drawing, L"B");
  const OdDbObjectId inBlock = Manager::getInstance(block, /*create=*/true);
  const OdDbObjectId line = addLine(block);
  open<Manager>(inBlock)->getVdmDbObject(line);
  addConstraint(3, {m_carrier});
  const OdDbObjectIdArray managers = vdmu::getBTRsConstraintManagers(m_drawing);
  EXPECT_EQ(managers.size(), 2u) << "the root manager is of no block";
  EXPECT_TRUE(managers.contains(m_constraints));
  EXPECT_TRUE(managers.contains(inBlock));
  const OdDbObjectIdArray watched = vdmu::getWatchedObjects(m_drawing);
  EXPECT_TRUE(watched.contains(line));
  EXPECT_TRUE(watched.contains(m_carrier));

  EXPECT_FALSE(
      vdmu::getObjInExtDict(addBlock(m_drawing, L"odd"), L"VDM_DATABASE", OdDbXrecord::desc())
          .isNull());
  EXPECT_THROW(static_cast<void>(vdmu::getWatchedObjects(m_drawing)), OdError_NotThatKindOfClass);
}

TEST_F(VdmConstraintUtils, ValuesFartherApartThanTheTolerance) {
  OdArray<VdmConstraintPtr> constraints;
  for (const double value : {5.0, 1.0, 1.125, 1.0625, 1.25}) {
    constraints.append(addConstraint(10, {newLine()}));
    constraints.last()->setUserValue(value);
  }
  constraints.append(ConstraintRecord(1, 10, {}, std::nan("")).read());
  EXPECT_EQ(vdmu::getUniqueConstraintValues(constraints, 0.125), (OdArray<double>{1.0, 1.25, 5.0}));
}

TEST_F(VdmConstraintUtils, SideConditionsOfArguments) {
  VdmConstraintOrientationProperties offers;
  offers.setArgumentSupportsHalfSpaces(1, true);
  offers.setArgumentSupportsNotSpecifiedHalfSpace(0, true);
  offers.setArgumentSupportsNotSpecifiedHalfSpace(1, true);
  offers.setArgumentSupportsAngleArgumentOrientation(2, true);
  offers.setArgumentSupportsMeasurementModes(0, {{VdmConstraintPropertiesUtils::kMeasureDefault}});
  EXPECT_FALSE(offers.checkArgumentSupportsHalfSpaces(1)) << "the constraint offers none";
  EXPECT_FALSE(offers.checkArgumentSupportsAngleArgumentOrientation(2));
  EXPECT_TRUE(offers.checkArgumentSupportsMeasurementModes(0).empty());
  offers.setConstraintSupportsHalfSpaces(true);
  offers.setConstraintSupportsAngleArgumentOrientation(true);
  offers.setConstraintSupportsMeasurementModes(true);
  EXPECT_TRUE(offers.checkArgumentSupportsHalfSpaces(1));
  EXPECT_FALSE(offers.checkArgumentSupportsHalfSpaces(0));
  EXPECT_FALSE(offers.checkArgumentSupportsHalfSpaces(2)) << "two arguments are known";
  EXPECT_FALSE(offers.checkArgumentSupportsNotSpecifiedHalfSpace(0)) << "needs a half space";
  EXPECT_TRUE(offers.checkArgumentSupportsNotSpecifiedHalfSpace(1));
  EXPECT_TRUE(offers.checkArgumentSupportsAngleArgumentOrientation(2));
  EXPECT_EQ(offers.checkArgumentSupportsMeasurementModes(0).size(), 1u);
  EXPECT_TRUE(offers.checkArgumentSupportsMeasurementModes(7).empty());
  EXPECT_EQ(raisedBy([&] { offers.setArgumentSupportsHalfSpaces(2, true); }), eInvalidIndex);
  EXPECT_EQ(raisedBy([&] { offers.setArgumentSupportsAngleArgumentOrientation(3, true); }),
            eInvalidIndex);
}

TEST_F(VdmConstraintUtils, SuffixesOfNames) {
  const wchar_t* const cases[][2] = {{L"D_12", L"D"}, {L"D12", L"D"}, {L"D__1", L"D_"},
                                     {L"12", L""},    {L"D_", L"D"},  {L"", L""}};
  for (const auto& [name, base] : cases) EXPECT_EQ(vdmu::removeNumericSuffix(name), base) << name;
}

// Against counting through a plain set.
TEST_F(VdmConstraintUtils, FreeNumbersAreThoseThatCountingFinds) {
  std::mt19937 random{freshSeed()};
  const auto pick = [&random](int count) {
    return std::uniform_int_distribution<int>(0, count - 1)(random);
  };
  static constexpr const wchar_t* kBases[] = {L"D", L"d", L"D_1", L""};
  std::set<OdString> plain{L"D_0", L"D_01", L"D_1_2", L"D2", L"D_9999999999", L"D", L"_3"};
  vdmu::VdmTakenNames taken(plain);
  for (int step = 0; step < 3000; ++step) {
    const OdString base = kBases[pick(4)];
    const OdString name = OdString().format(L"%ls_%d", base.c_str(), pick(40));
    const int start = pick(40);
    switch (pick(3)) {
      case 0:
        taken.erase(name);
        plain.erase(odToUpper(name));
        break;
      case 1:
        ASSERT_EQ(taken.insert(name), plain.insert(odToUpper(name)).second);
        break;
      default:
        ASSERT_EQ(taken.takeNumbered(base, start),
                  vdmu::generateUniqueName(base, plain, start, /*tryBase=*/false));
    }
    if (plain.size() > 120) plain.clear(), taken = vdmu::VdmTakenNames(plain);
  }
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
  const VdmConstraintPtr empty = addConstraint(12, {newLine()}, L"empty");
  edit<VdmDbObjectDependency>(empty->argumentIds()[0])->setLinkObject(OdDbFullSubentPath());
  future->changeProperty(L"softVersion", OdLong{4});
  edit<VdmDbObjectDependency>(plain->argumentIds()[1])->setLinkObject(OdDbFullSubentPath());
  const OdDbObjectId ofSecond = VdmDbObject::openVdmDbObject(lines[1])->objectId();

  vdmu::removeInvalidConstraints(manager());
  EXPECT_EQ(nodeIds(), (std::vector<OdULong>{2, 3, 4}));
  EXPECT_EQ(m_solver.removed, OdStringArray({L"plain", L"empty"}));
  EXPECT_TRUE(plain->owner().isNull());
  EXPECT_EQ(loses->getArgumentsCount(), 2u);
  EXPECT_FALSE(ofSecond.isErased()) << "the future one uses it";

  editManager()->removeConstraints({loses, future, stays});
  EXPECT_TRUE(registry().isEmpty());
  EXPECT_TRUE(ofSecond.isErased());
  EXPECT_TRUE(open<OdDbLine>(lines[1])->getPersistentReactors().isEmpty());
}

}  // namespace
