// Tests of smart pointers: counting, conversions, tags.
#include "platform/rx/smart_ptr.h"

#include <gtest/gtest.h>

#include "tests/platform/rx/rx_test_classes.h"

using OdSmartPtrTest = RxTest;

TEST_F(OdSmartPtrTest, ConvertsThroughQueriesAndRefusesOtherClasses) {
  const OdRxObjectPtr shape(TestShape::createObject());
  const OdRxObjectPtr circle(TestCircle::createObject());
  OdSmartPtr<TestCircle> pointer = circle;
  try {
    pointer = shape;
    FAIL() << "a shape became a circle";
  } catch (const OdError_NotThatKindOfClass& error) {
    EXPECT_EQ(error.fromClassName(), L"TestShape");
    EXPECT_EQ(error.toClassName(), L"TestCircle");
  }
  EXPECT_EQ(pointer, circle);
  EXPECT_EQ(shape->numRefs(), 1);
  pointer = OdRxObjectPtr();
  EXPECT_TRUE(pointer.isNull());
  EXPECT_EQ(raisedBy([&] { pointer->value = 1; }), eNullPointer);
}

TEST_F(OdSmartPtrTest, KeepsItsTagThroughCopiesAndConversions) {
  const auto keeper = TestOpenable::createObject();
  keeper->addRefTagged(kOdRxWrite);
  {
    const auto written = OdSmartPtr<TestOpenable>::attachTagged(keeper.get(), kOdRxWrite);
    const OdRxObjectPtr base = written;
    EXPECT_EQ(base.tag(), kOdRxWrite);
    const OdSmartPtr<TestOpenable> queried = base;
    EXPECT_EQ(queried.tag(), kOdRxWrite);
    const auto cast = TestOpenable::cast(base);
    EXPECT_EQ(cast.tag(), kOdRxWrite);
    EXPECT_EQ(keeper->opens[kOdRxWrite], 4);
    EXPECT_EQ(keeper->opens[kOdRxRead], 1);
    EXPECT_EQ(TestOpenable::cast(base.get()).tag(), kOdRxRead);
  }
  EXPECT_EQ(keeper->opens[kOdRxWrite], 0);
  EXPECT_EQ(keeper->opens[kOdRxRead], 1);
}

TEST_F(OdSmartPtrTest, DetachesAnOpenObjectAsAPlainReference) {
  const auto keeper = TestOpenable::createObject();
  keeper->addRefTagged(kOdRxNotify);
  auto notified = OdSmartPtr<TestOpenable>::attachTagged(keeper.get(), kOdRxNotify);
  TestOpenable* raw = notified.detach();
  EXPECT_TRUE(notified.isNull());
  EXPECT_EQ(keeper->opens[kOdRxNotify], 0);
  EXPECT_EQ(keeper->opens[kOdRxRead], 2);
  raw->release();
}
