// Constraints: versions, filing, arguments, signals.
#include "vdm_db/constraints/vdm_constraint.h"

#include "tests/vdm_db/constraints/constraint_testing.h"

namespace {

class VdmConstraintTest : public ConstraintTest {
 protected:
  static VdmConstraintPtr ofType(OdLong type) {
    const VdmConstraintPtr constraint = VdmConstraint::createObject();
    constraint->setType(type);
    return constraint;
  }
  static OdLong number(const VdmConstraint* constraint, const wchar_t* key) {
    OdLong value = -1;
    constraint->properties().getProperty(key, value);
    return value;
  }
};

TEST_F(VdmConstraintTest, DecidesTheLowestSoftVersionThatDescribesIt) {
  const auto softVersion = [](OdLong type, const wchar_t* key, OdLong value) {
    const VdmConstraintPtr constraint = ofType(type);
    if (key != nullptr) constraint->changeProperty(key, value);
    return number(constraint, L"softVersion");
  };
  EXPECT_EQ(softVersion(7, nullptr, 0), -1);
  EXPECT_EQ(softVersion(15, nullptr, 0), 1);
  EXPECT_EQ(softVersion(7, L"MM1", 0), 1);
  EXPECT_EQ(softVersion(7, L"AlignmentOrientation", 1), 3);
  EXPECT_EQ(softVersion(17, L"AlignmentOrientation", 1), -1) << "beyond what is understood";
  EXPECT_EQ(softVersion(0, L"AlignmentOrientation", 1), -1);

  const VdmConstraintPtr constraint = ofType(7);
  constraint->changeProperty(L"HalfSpaceOrientation", OdString(L"x+"));
  EXPECT_EQ(number(constraint, L"softVersion"), -1) << "no argument has a side yet";
  ExtendedDep origin;
  origin.isDefaultGeometry = true;
  constraint->setDependencies({origin});
  EXPECT_EQ(number(constraint, L"softVersion"), 2);
  constraint->setDependencies({ExtendedDep(), ExtendedDep()});
  EXPECT_EQ(number(constraint, L"softVersion"), 3);
  EXPECT_EQ(number(constraint, L"exType"), 7);
  EXPECT_FALSE(constraint->properties().hasProperty(L"arrayRefCsType"));
  EXPECT_TRUE(constraint->removeProperty(L"HalfSpaceOrientation"));
  EXPECT_FALSE(constraint->properties().hasProperty(L"softVersion"));
  EXPECT_FALSE(constraint->properties().hasProperty(L"exType"));
}

TEST_F(VdmConstraintTest, NewTypesAreHiddenFromOlderReaders) {
  ConstraintRecord newest(*ofType(16));
  EXPECT_EQ(newest.storedType(), 0);
  EXPECT_EQ(newest.read()->type(), 16);

  const VdmConstraintPtr other = ofType(7);
  other->changeProperty(L"exType", OdLong{9});
  ConstraintRecord known(*other);
  EXPECT_EQ(known.read()->type(), 7);

  // Of a newer writer: everything stays as it is.
  const VdmConstraintPtr future = VdmConstraint::createObject();
  future->changeProperty(L"softVersion", OdLong{4});
  future->changeProperty(L"exType", OdLong{16});
  const VdmConstraintPtr read = ConstraintRecord(*future).read();
  EXPECT_EQ(read->type(), 0);
  EXPECT_FALSE(read->isSupportedVersion());
  read->setType(15);
  EXPECT_EQ(number(read, L"softVersion"), 4);
  EXPECT_EQ(number(read, L"exType"), 16);
}

TEST_F(VdmConstraintTest, ReadsOlderRecordsAndRefusesNewerOnes) {
  const VdmConstraintPtr first = ConstraintRecord(1, 5, {}).read();
  EXPECT_EQ(first->type(), 5);
  EXPECT_FALSE(first->isEnabled());
  EXPECT_EQ(first->userValue(), 2.5);
  EXPECT_EQ(first->properties().size(), 1u) << "the node id alone";

  const std::vector<std::string> map{"nodeId", "12", "AngleSecondArgOrientation", "Negative"};
  const VdmConstraintPtr second = ConstraintRecord(2, 5, map).read();
  OdString orientations;
  EXPECT_TRUE(second->properties().getProperty(L"AngleArgsOrientation", orientations));
  EXPECT_EQ(orientations, L"+-+");
  second->setNodeId(9);
  EXPECT_EQ(number(second, L"nodeId"), 9) << "the bag has the field";

  ConstraintRecord(4, 5, {}).read(eCorruptData);
  ConstraintRecord cut(2, 5, map);
  cut.buffer.bytes.pop_back();
  cut.read(eCorruptData);
}

TEST_F(VdmConstraintTest, ArgumentsWithoutDefaultGeometryInADamagedRecordAreRefused) {
  const VdmConstraintPtr constraint = ofType(3);
  constraint->setDependencies({ExtendedDep(), ExtendedDep()});
  constraint->changeProperty(L"arrayRefCsType", VdmLongArray{vdmu::kDefaultOrigin});
  const VdmConstraintPtr read = ConstraintRecord(*constraint).read();
  EXPECT_EQ(raisedBy([&] { static_cast<void>(read->getExtArguments()); }), eInvalidIndex);
  ASSERT_EQ(read->dependencies().size(), 2u) << "so that they can be set again";
  EXPECT_TRUE(read->dependencies()[0].isDefaultGeometry);
  EXPECT_FALSE(read->dependencies()[1].isDefaultGeometry);
  EXPECT_TRUE(read->isValid());
}

TEST_F(VdmConstraintTest, RoundTripKeepsEveryField) {
  const VdmConstraintPtr constraint = addConstraint(12, {newLine(), newLine()}, L"D_1");
  std::vector<ExtendedDep> arguments = constraint->dependencies();
  arguments.push_back({OdDbObjectId::kNull, true, vdmu::kDefaultZAxis});
  constraint->setDependencies(arguments);
  constraint->setUserValue(3.25);
  constraint->setEnabled(false);
  ConstraintRecord record(*constraint);
  const VdmConstraintPtr read = record.read();
  EXPECT_EQ(read->dependencies()[2].defaultGeometry, vdmu::kDefaultZAxis);
  EXPECT_EQ(read->nodeId(), constraint->nodeId());
  EXPECT_EQ(read->userValue(), 3.25);
  EXPECT_FALSE(read->isEnabled());
  EXPECT_EQ(ConstraintRecord(*read).buffer.bytes, record.buffer.bytes);
}

TEST_F(VdmConstraintTest, ArgumentsThatCannotBeResolvedAreLeftOut) {
  const OdDbObjectId line = newLine();
  const VdmConstraintPtr constraint = addConstraint(3, {line});
  std::vector<ExtendedDep> arguments = constraint->dependencies();
  arguments.insert(arguments.begin(), ExtendedDep());
  constraint->setDependencies(arguments);
  ASSERT_EQ(constraint->getArguments().size(), 2u);
  EXPECT_TRUE(constraint->getArguments()[0].objectIds().isEmpty());
  EXPECT_EQ(constraint->getArguments()[1], face(line, 1));
  EXPECT_TRUE(constraint->isValid());

  const OdDbDatabasePtr elsewhere = m_host.createDatabase();
  edit<VdmDbObjectDependency>(arguments[1].dependency)
      ->setLinkObject({OdDbObjectIdArray{line, elsewhere->getModelSpaceId()}, OdDbSubentId()});
  setStatus(Manager::kUpToDate);
  constraint->setEnabled(false);
  EXPECT_EQ(manager()->getModifiedObjects(), OdDbObjectIdArray{OdDbObjectId::kNull});
  EXPECT_EQ(constraint->getExtArguments().size(), 1u);
  EXPECT_FALSE(constraint->isValid());
  arguments[1].dependency = line;
  EXPECT_THROW(constraint->setDependencies(arguments), OdError_NotThatKindOfClass);
  EXPECT_THROW(static_cast<void>(constraint->isValid()), OdError_NotThatKindOfClass);
}

}  // namespace
