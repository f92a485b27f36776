// Tests of class registration, queries and protocol extensions.
#include "platform/rx/rx_class.h"

#include <gtest/gtest.h>

#include "tests/platform/rx/rx_test_classes.h"

OD_RX_DEFINE_DB(TestShape, OdRxObject, L"TestShape", 33, 55, 0x401, L"TESTSHAPE", L"Test|Shape")
OD_RX_DEFINE(TestCircle, TestShape, L"TestCircle")
OD_RX_DEFINE_ABSTRACT(TestProtocol, OdRxObject, L"TestProtocol")
OD_RX_DEFINE(TestOpenable, OdRxObject, L"TestOpenable")

namespace {

class Answer : public TestProtocol {
 public:
  explicit Answer(int number) : m_number(number) {}
  int answer() const override { return m_number; }

 private:
  int m_number;
};

int answerOf(const OdRxObject* object) {
  const auto found = TestProtocol::cast(object);
  return found.isNull() ? -1 : found->answer();
}

}  // namespace

using OdRxClassTest = RxTest;

TEST_F(OdRxClassTest, RefusesDoubleRegistrationAndRelease) {
  EXPECT_EQ(raisedBy([] { TestShape::rxInit(); }), 313);
  EXPECT_EQ(raisedBy([] { newOdRxClass(L"TestShape", nullptr); }), 313);
  EXPECT_EQ(raisedBy([] { newOdRxClass(L"", nullptr); }), eInvalidInput);
  EXPECT_EQ(raisedBy([] { deleteOdRxClass(nullptr); }), 255);
  TestCircle::rxUninit();
  EXPECT_EQ(raisedBy([] { TestCircle::rxUninit(); }), 255);
  TestCircle::rxInit();
}

TEST_F(OdRxClassTest, ParentOutlivesItsChildrenAndTheSystemItsClasses) {
  try {
    TestShape::rxUninit();
    FAIL() << "the parent was released";
  } catch (const OdError& error) {
    EXPECT_EQ(error.code(), eInvalidInput);
    EXPECT_GE(error.description().find(L"TestCircle"), 0);
  }
  EXPECT_NE(TestShape::desc(), nullptr);
  EXPECT_EQ(raisedBy([] { odrxUninitialize(); }), eInvalidInput);
  EXPECT_NE(OdRxObject::desc(), nullptr);
}

TEST_F(OdRxClassTest, DxfNamePassesToTheNextClassThatHasIt) {
  OdRxClass* other = newOdRxClass(L"Other", nullptr, nullptr, 0, 0, 0, L"TESTSHAPE");
  EXPECT_EQ(odrxClassDictionary()->classByDxfName(L"TESTSHAPE"), TestShape::desc());
  TestCircle::rxUninit();
  TestShape::rxUninit();
  EXPECT_EQ(odrxClassDictionary()->classByDxfName(L"TESTSHAPE"), other);
  deleteOdRxClass(other);
  EXPECT_EQ(odrxClassDictionary()->classByDxfName(L"TESTSHAPE"), nullptr);
  TestShape::rxInit();
  TestCircle::rxInit();
}

TEST_F(OdRxClassTest, CreatesUnlessAbstractAndClonesWhereTheClassCopies) {
  OdSmartPtr<TestCircle> circle = odrxCreateObject(L"TestCircle");
  EXPECT_EQ(circle->numRefs(), 1);
  EXPECT_TRUE(odrxCreateObject(L"TestProtocol").isNull());
  EXPECT_EQ(raisedBy([] { odrxCreateObject(L"Nothing"); }), eClassNotRegistered);
  circle->value = 7;
  const OdSmartPtr<TestShape> copy = circle->clone();
  EXPECT_EQ(copy->isA(), TestCircle::desc());
  EXPECT_EQ(copy->value, 7);
  EXPECT_EQ(raisedBy([] { TestOpenable::createObject()->clone(); }), eNotImplementedForClass);
}

TEST_F(OdRxClassTest, ExtensionsServeTheClassesBelow) {
  OdStaticRxObject<Answer> forAll(1), forCircles(2);
  const auto shape = TestShape::createObject();
  const auto circle = TestCircle::createObject();
  EXPECT_TRUE(TestShape::desc()->addX(TestProtocol::desc(), &forAll).isNull());
  EXPECT_EQ(answerOf(circle), 1);
  TestCircle::desc()->addX(TestProtocol::desc(), &forCircles);
  EXPECT_EQ(answerOf(circle), 2);
  EXPECT_EQ(answerOf(shape), 1);
  EXPECT_EQ(TestCircle::desc()->delX(TestProtocol::desc()), &forCircles);
  EXPECT_EQ(answerOf(circle), 1);
  EXPECT_EQ(raisedBy([&] { TestShape::desc()->addX(TestProtocol::desc(), shape); }),
            eWrongObjectType);
  EXPECT_EQ(raisedBy([] { TestShape::desc()->addX(TestProtocol::desc(), nullptr); }),
            eInvalidInput);
  EXPECT_EQ(TestShape::desc()->delX(TestProtocol::desc()), &forAll);
  EXPECT_TRUE(TestShape::desc()->delX(TestProtocol::desc()).isNull());
}

TEST_F(OdRxClassTest, ExtensionsGoWithTheirProtocolAndTheirClass) {
  const OdSmartPtr<Answer> answer = OdRxObjectImpl<Answer>::createObject(3);
  TestShape::desc()->addX(TestProtocol::desc(), answer.get());
  TestCircle::desc()->addX(TestProtocol::desc(), answer.get());
  EXPECT_EQ(answer->numRefs(), 3);
  TestCircle::rxUninit();
  EXPECT_EQ(answer->numRefs(), 2);
  TestProtocol::rxUninit();
  EXPECT_EQ(answer->numRefs(), 1);
  TestProtocol::rxInit();
  TestCircle::rxInit();
  EXPECT_EQ(answerOf(TestShape::createObject()), -1);
}
