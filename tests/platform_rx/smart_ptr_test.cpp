// Tests of smart pointers: counting, conversions, tags.
#include "platform/rx/smart_ptr.h"

#include <gtest/gtest.h>

#include "tests/platform_rx/rx_test_classes.h"

using OdSmartPtrTest = RxTest;

TEST_F(OdSmartPtrTest, CountsWhatItHolds) {
  auto circle = TestCircle::createObject();
  EXPECT_EQ(sizeof(circle), sizeof(void*));
  OdSmartPtr<TestShape> shape = circle;
  const OdSmartPtr<const TestShape> constant(circle.get());
  EXPECT_EQ(circle->numRefs(), 3);
  OdSmartPtr<TestShape> moved(std::move(shape));
  EXPECT_TRUE(shape.isNull());
  OdSmartPtr<TestShape> upcast(std::move(circle));
  EXPECT_TRUE(circle.isNull());
  EXPECT_EQ(moved->numRefs(), 3);
  moved = moved.get();
  EXPECT_EQ(moved->numRefs(), 3);
  TestShape* raw = moved.detach();
  EXPECT_EQ(raw->numRefs(), 3);
  OdSmartPtr<TestShape> attached;
  attached.attach(raw);
  EXPECT_EQ(attached->numRefs(), 3);
}

TEST_F(OdSmartPtrTest, ConvertsThroughQueriesAndRefusesOtherClasses) {
  const OdRxObjectPtr shape(TestShape::createObject());
  const OdRxObjectPtr circle(TestCircle::createObject());
  OdSmartPtr<TestCircle> pointer = circle;
  EXPECT_EQ(pointer, circle);
  EXPECT_EQ(circle->numRefs(), 2);
  try {
    pointer = shape;
    FAIL() << "a shape became a circle";
  } catch (const OdError_NotThatKindOfClass& error) {
    EXPECT_EQ(error.fromClassName(), L"TestShape");
    EXPECT_EQ(error.toClassName(), L"TestCircle");
  }
  EXPECT_EQ(pointer, circle);
  EXPECT_EQ(shape->numRefs(), 1);
  EXPECT_TRUE(TestCircle::cast(shape).isNull());
  EXPECT_TRUE(TestCircle::cast(static_cast<OdRxObject*>(nullptr)).isNull());
  pointer = OdRxObjectPtr();
  EXPECT_TRUE(pointer.isNull());
  EXPECT_EQ(raisedBy([&] { pointer->value = 1; }), eNullPointer);
}

TEST_F(OdSmartPtrTest, KeepsItsTagThroughCopiesAndConversions) {
  const auto keeper = TestOpenable::createObject();
  keeper->addRefTagged(kOdRxWrite);
  {
    const auto written = OdSmartPtr<TestOpenable>::attachTagged(keeper.get(), kOdRxWrite);
    EXPECT_EQ(written.get(), keeper.get());
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
