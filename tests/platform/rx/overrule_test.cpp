// Tests of overrule registration and lookup.
#include "platform/rx/overrule.h"

#include <gtest/gtest.h>

#include "tests/platform/rx/rx_test_classes.h"

namespace {

class TestOverrule : public OdRxOverrule {
 public:
  bool isApplicable(const OdRxObject*) const override { return applicable; }
  bool applicable = true;
};

const OdRxOverrule* foundFor(const OdRxObject* subject, const OdRxOverrule* after = nullptr) {
  return odrxFindOverrule(subject, OdRxOverrule::desc(), after);
}

}  // namespace

using OdRxOverruleTest = RxTest;

TEST_F(OdRxOverruleTest, FindsFromTheObjectsClassUpInListOrder) {
  OdStaticRxObject<TestOverrule> first, second, ofBase;
  const auto circle = TestCircle::createObject();
  EXPECT_TRUE(OdRxOverrule::addOverrule(TestCircle::desc(), &second, /*addAtLast=*/true));
  EXPECT_TRUE(OdRxOverrule::addOverrule(TestCircle::desc(), &first));
  EXPECT_TRUE(OdRxOverrule::addOverrule(TestShape::desc(), &ofBase));
  EXPECT_FALSE(OdRxOverrule::addOverrule(TestCircle::desc(), &first));
  EXPECT_EQ(foundFor(circle), &first);
  EXPECT_EQ(foundFor(circle, &first), &second);
  EXPECT_EQ(foundFor(circle, &second), &ofBase);
  EXPECT_EQ(foundFor(circle, &ofBase), nullptr);
  first.applicable = false;
  EXPECT_EQ(foundFor(circle), &second);
  EXPECT_EQ(odrxFindOverrule(circle, TestProtocol::desc()), nullptr);
  OdRxOverrule::setIsOverruling(false);
  EXPECT_EQ(foundFor(circle), nullptr);
  OdRxOverrule::setIsOverruling(true);
  EXPECT_TRUE(OdRxOverrule::removeOverrule(TestCircle::desc(), &second));
  EXPECT_FALSE(OdRxOverrule::removeOverrule(TestCircle::desc(), &second));
  EXPECT_TRUE(OdRxOverrule::removeOverrule(TestCircle::desc(), &first));
  EXPECT_TRUE(OdRxOverrule::removeOverrule(TestShape::desc(), &ofBase));
}
