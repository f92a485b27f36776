// Tests of class registration, queries and protocol extensions.
#include "platform/rx/rx_class.h"

#include <gtest/gtest.h>

#include "tests/platform_rx/rx_test_classes.h"

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

TEST_F(OdRxClassTest, KeepsWhatItWasToldAndForgetsWithRelease) {
  const OdRxClass* shape = odrxClassDictionary()->classByDxfName(L"TESTSHAPE");
  ASSERT_EQ(shape, TestShape::desc());
  EXPECT_EQ(shape->name(), L"TestShape");
  EXPECT_EQ(shape->dwgVer(), 33);
  EXPECT_EQ(shape->maintVer(), 55);
  EXPECT_EQ(shape->proxyFlags(), 0x401U);
  EXPECT_EQ(shape->appName(), L"Test|Shape");
  EXPECT_EQ(shape->myParent(), OdRxObject::desc());
  const OdUInt64 generation = odrxClassGeneration();
  TestCircle::rxUninit();
  EXPECT_EQ(TestCircle::desc(), nullptr);
  EXPECT_FALSE(odrxClassDictionary()->has(L"TestCircle"));
  TestCircle::rxInit();
  EXPECT_GT(odrxClassGeneration(), generation);
}

TEST_F(OdRxClassTest, RefusesDoubleRegistrationAndRelease) {
  EXPECT_EQ(raisedBy([] { TestShape::rxInit(); }), 313);
  EXPECT_EQ(raisedBy([] { newOdRxClass(L"TestShape", nullptr); }), 313);
  EXPECT_EQ(raisedBy([] { newOdRxClass(L"", nullptr); }), eInvalidInput);
  EXPECT_EQ(raisedBy([] { deleteOdRxClass(nullptr); }), 255);
  TestCircle::rxUninit();
  EXPECT_EQ(raisedBy([] { TestCircle::rxUninit(); }), 255);
  TestCircle::rxInit();
}

TEST_F(OdRxClassTest, ParentOutlivesItsChildren) {
  try {
    TestShape::rxUninit();
    FAIL() << "the parent was released";
  } catch (const OdError& error) {
    EXPECT_EQ(error.code(), eInvalidInput);
    EXPECT_GE(error.description().find(L"TestShape"), 0);
    EXPECT_GE(error.description().find(L"TestCircle"), 0);
  }
  EXPECT_NE(TestShape::desc(), nullptr);
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

TEST_F(OdRxClassTest, HandsItsCallbackTheApplicationText) {
  TestCircle::rxUninit();
  TestCircle::rxInit([](const OdRxClass* rxClass, OdString& text, int version) {
    text.format(L"%ls for %d", rxClass->name().c_str(), version);
  });
  EXPECT_EQ(TestCircle::desc()->appNameFor(29), L"TestCircle for 29");
}

TEST_F(OdRxClassTest, SystemEndsOnlyWithoutOtherClasses) {
  EXPECT_EQ(raisedBy([] { odrxUninitialize(); }), eInvalidInput);
  EXPECT_NE(OdRxObject::desc(), nullptr);
}

TEST_F(OdRxClassTest, CreatesByNameUnlessAbstract) {
  const OdRxObjectPtr object = odrxCreateObject(L"TestCircle");
  EXPECT_EQ(object->isA(), TestCircle::desc());
  EXPECT_EQ(object->numRefs(), 1);
  EXPECT_TRUE(odrxCreateObject(L"TestProtocol").isNull());
  EXPECT_EQ(raisedBy([] { odrxCreateObject(L"Nothing"); }), eClassNotRegistered);
}

TEST_F(OdRxClassTest, ClonesWhereTheClassCopies) {
  auto circle = TestCircle::createObject();
  circle->value = 7;
  const OdSmartPtr<TestShape> copy = circle->clone();
  EXPECT_EQ(copy->isA(), TestCircle::desc());
  EXPECT_EQ(copy->value, 7);
  EXPECT_EQ(raisedBy([] { TestOpenable::createObject()->clone(); }), eNotImplementedForClass);
}

TEST_F(OdRxClassTest, QueriesAlongTheBaseChain) {
  const auto circle = TestCircle::createObject();
  EXPECT_TRUE(circle->isKindOf(TestShape::desc()));
  EXPECT_TRUE(circle->isKindOf(OdRxObject::desc()));
  EXPECT_FALSE(TestShape::createObject()->isKindOf(TestCircle::desc()));
  EXPECT_EQ(circle->queryX(TestProtocol::desc()), nullptr);
  EXPECT_EQ(circle->queryX(nullptr), nullptr);
  OdRxObject* found = circle->queryX(TestShape::desc());
  EXPECT_EQ(found, circle.get());
  EXPECT_EQ(circle->numRefs(), 2);
  found->release();
}

TEST_F(OdRxClassTest, ExtensionsServeTheClassesBelow) {
  OdStaticRxObject<Answer> forAll(1), forCircles(2);
  const auto shape = TestShape::createObject();
  const auto circle = TestCircle::createObject();
  EXPECT_EQ(answerOf(circle), -1);
  EXPECT_TRUE(TestShape::desc()->addX(TestProtocol::desc(), &forAll).isNull());
  EXPECT_EQ(answerOf(circle), 1);
  TestCircle::desc()->addX(TestProtocol::desc(), &forCircles);
  EXPECT_EQ(answerOf(circle), 2);
  EXPECT_EQ(answerOf(shape), 1);
  EXPECT_FALSE(circle->isKindOf(TestProtocol::desc()));
  EXPECT_EQ(TestCircle::desc()->delX(TestProtocol::desc()), &forCircles);
  EXPECT_EQ(answerOf(circle), 1);
  EXPECT_TRUE(TestCircle::desc()->getXLocal(TestProtocol::desc()).isNull());
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
