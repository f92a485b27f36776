// Side conditions of constraints: letters, measurement modes, flipping.
#include "vdm_db/constraints/vdm_constraint_properties_utils.h"

#include "tests/vdm_db/constraints/constraint_testing.h"

namespace {

using namespace VdmConstraintPropertiesUtils;

class VdmConstraintSides : public ConstraintTest {
 protected:
  VdmConstraintSides() : m_constraint(addConstraint(7, {newLine(), newLine()})) {}

  [[nodiscard]] OdString text(const wchar_t* key) const {
    OdString value(L"none");
    m_constraint->properties().getProperty(key, value);
    return value;
  }
  [[nodiscard]] OdLong number(const wchar_t* key) const {
    OdLong value = -1;
    m_constraint->properties().getProperty(key, value);
    return value;
  }
  void offerSides(bool first, bool second) {
    m_solver.offers.setConstraintSupportsHalfSpaces(true);
    m_solver.offers.setArgumentSupportsHalfSpaces(0, first);
    m_solver.offers.setArgumentSupportsHalfSpaces(1, second);
  }
  OdString flipped(bool down) {
    EXPECT_TRUE(m_constraint->flipSide(down));
    return text(L"HalfSpaceOrientation");
  }

  VdmConstraintPtr m_constraint;
};

TEST_F(VdmConstraintSides, ALetterForEachArgument) {
  HalfSpaceOrientation side = kHalfSpaceNegative;
  EXPECT_FALSE(getHalfSpace(m_constraint.get(), 0, side));
  m_constraint->changeProperty(L"HalfSpaceOrientation", OdLong{7});
  EXPECT_FALSE(getHalfSpace(m_constraint.get(), 0, side)) << "a value of another kind";
  EXPECT_EQ(getHalfSpace(*m_constraint, 0), kHalfSpaceKeep);
  setStatus(Manager::kUpToDate);
  EXPECT_TRUE(setHalfSpace(m_constraint, 2, kHalfSpacePositive));
  EXPECT_EQ(text(L"HalfSpaceOrientation"), L"KK+");
  EXPECT_EQ(status(), Manager::kPartlyModified);
  EXPECT_TRUE(getHalfSpace(m_constraint.get(), 0, side));
  EXPECT_EQ(side, kHalfSpaceKeep);
  EXPECT_TRUE(setHalfSpace(m_constraint, 0, kHalfSpaceNotSpecified));
  EXPECT_EQ(text(L"HalfSpaceOrientation"), L"0K+");
  EXPECT_FALSE(getHalfSpace(m_constraint.get(), 3, side));
  for (const int wrong : {-1, 1 << 30}) {
    EXPECT_FALSE(setHalfSpace(m_constraint, wrong, kHalfSpacePositive));
    EXPECT_FALSE(getHalfSpace(m_constraint.get(), wrong, side));
  }
  EXPECT_FALSE(setHalfSpace(m_constraint, 0, HalfSpaceOrientation(4)));
  EXPECT_FALSE(setHalfSpace(nullptr, 0, kHalfSpacePositive));
  EXPECT_EQ(text(L"HalfSpaceOrientation"), L"0K+");

  AngleArgumentOrientation angle = kAnglePositive;
  EXPECT_TRUE(setAngleArgumentOrientation(m_constraint, 1, kAngleNegative));
  EXPECT_EQ(text(L"AngleArgsOrientation"), L"+-");
  EXPECT_TRUE(getAngleArgumentOrientation(m_constraint.get(), 1, angle));
  EXPECT_EQ(angle, kAngleNegative);
  m_constraint->changeProperty(L"AngleArgsOrientation", OdString(L"x"));
  EXPECT_FALSE(getAngleArgumentOrientation(m_constraint.get(), 0, angle));
}

TEST_F(VdmConstraintSides, MeasurementModesHaveTwoForms) {
  const auto setBoth = [this](int first, int second) {
    const MeasurementMode modes[] = {MeasurementMode(first), MeasurementMode(second)};
    return setMeasurementModes(m_constraint, modes);
  };
  MeasurementMode mode = kMeasureDefault;
  EXPECT_TRUE(setBoth(2, 2));
  EXPECT_EQ(text(L"Circle measure mode"), L"MM_CentralPoint");
  EXPECT_EQ(number(L"softVersion"), -1) << "readers of all versions know it";
  for (const int argument : {0, 1, 2}) {
    EXPECT_TRUE(getMeasurementMode(m_constraint.get(), argument, mode));
    EXPECT_EQ(mode, kMeasureCentralPoint);
  }
  EXPECT_TRUE(setMeasurementMode(m_constraint, 0, kMeasureCentralPoint));
  EXPECT_FALSE(getMeasurementMode(m_constraint.get(), 2, mode));
  EXPECT_EQ(number(L"MM0"), 2);
  EXPECT_EQ(text(L"Circle measure mode"), L"none");
  EXPECT_TRUE(setBoth(1, 0));
  EXPECT_EQ(number(L"MM1"), 0);
  EXPECT_EQ(number(L"softVersion"), 1);
  EXPECT_TRUE(setBoth(0, 0));
  EXPECT_FALSE(getMeasurementMode(m_constraint.get(), 0, mode));
  EXPECT_EQ(number(L"softVersion"), -1);
  EXPECT_FALSE(setMeasurementMode(m_constraint, 2, kMeasureDefault));
  EXPECT_FALSE(setMeasurementMode(m_constraint, 0, MeasurementMode(-1)));

  const std::vector<MeasurementModeEx> modes{{MeasurementMode(1), MeasurementModeGUI(5)},
                                             {kMeasureCentralPoint, MeasurementModeGUI(6)}};
  EXPECT_TRUE(setMeasurementMode(m_constraint, 1, MeasurementModeGUI(6), modes));
  EXPECT_EQ(number(L"MM1"), 2);
  EXPECT_EQ(getMeasurementMode(m_constraint.get(), 1, modes).gui, 6);
  EXPECT_TRUE(m_assertions.empty());
  EXPECT_EQ(getMeasurementMode(m_constraint.get(), 0, modes).gui, 2);
  EXPECT_EQ(m_assertions, std::vector<std::string>{"false"});

  int size = 0;
  EXPECT_FALSE(getArraySetSize(m_constraint.get(), size));
  EXPECT_TRUE(setArraySetSize(m_constraint, 4));
  EXPECT_TRUE(getArraySetSize(m_constraint.get(), size));
  EXPECT_EQ(size, 4);
}

TEST_F(VdmConstraintSides, FlippingReachesEveryCombination) {
  EXPECT_FALSE(m_constraint->flipSide(true));
  m_solver.offers.setConstraintSupportsAlignment(true);
  const auto flipAlignment = [this](AlignmentOrientation from, AlignmentOrientation drawn) {
    EXPECT_TRUE(setAlignment(m_constraint, from));
    m_solver.drawnAlignment = drawn;
    EXPECT_TRUE(m_constraint->flipSide(false));
    return getAlignment(*m_constraint);
  };
  EXPECT_EQ(flipAlignment(kAlignmentFirst, kAlignmentSecond), kAlignmentSecond);
  EXPECT_EQ(flipAlignment(kAlignmentSecond, kAlignmentFirst), kAlignmentFirst);
  EXPECT_EQ(flipAlignment(kAlignmentKeep, kAlignmentFirst), kAlignmentSecond);
  EXPECT_EQ(flipAlignment(kAlignmentKeep, kAlignmentNotSpecified), kAlignmentFirst);
  EXPECT_EQ(flipAlignment(kAlignmentNotSpecified, kAlignmentSecond), kAlignmentFirst);
  EXPECT_FALSE(setAlignment(m_constraint, AlignmentOrientation(4)));

  offerSides(true, true);
  EXPECT_EQ(flipped(true), L"-+") << "3 is where nothing is known";
  EXPECT_EQ(flipped(true), L"+-");
  EXPECT_EQ(flipped(true), L"--");
  EXPECT_EQ(flipped(true), L"++") << "below 0";
  EXPECT_EQ(flipped(false), L"--") << "above 3";
  EXPECT_EQ(flipped(false), L"+-");

  setHalfSpace(m_constraint, 0, kHalfSpaceKeep);
  m_solver.drawnSides = {kHalfSpaceNegative, kHalfSpacePositive};
  EXPECT_EQ(flipped(false), L"+-") << "the second side is stored";
  setHalfSpace(m_constraint, 0, kHalfSpaceNotSpecified);
  m_solver.drawnSides = {kHalfSpaceNotSpecified};
  EXPECT_EQ(flipped(true), L"--") << "what the drawing leaves open is positive";
  offerSides(true, false);
  EXPECT_EQ(flipped(true), L"+-");
  offerSides(false, true);
  EXPECT_EQ(flipped(true), L"++");
}

}  // namespace
