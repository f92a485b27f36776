// Classes for the tests of run-time classes, and a fixture that registers them.
#pragma once

#include <gtest/gtest.h>

#include "platform/rx/rx_init.h"
#include "platform/rx/rx_macros.h"
#include "tests/support/status_testing.h"

class TestShape : public OdRxObject {
  OD_RX_DECLARE_MEMBERS(TestShape)
  int value = 0;
  void copyFrom(const OdRxObject* source) override { value = TestShape::cast(source)->value; }
};
class TestCircle : public TestShape {
  OD_RX_DECLARE_MEMBERS(TestCircle)
};
class TestProtocol : public OdRxObject {
  OD_RX_DECLARE_MEMBERS(TestProtocol)
  virtual int answer() const { return 0; }
};

// Counts its references by tag, as objects with open states do.
class TestOpenable : public OdRxObject {
  OD_RX_DECLARE_MEMBERS(TestOpenable)
  using OdSelfCounted = void;

  void addRef() override { addRefTagged(kOdRxRead); }
  void release() override { releaseTagged(kOdRxRead); }
  void addRefTagged(unsigned tag) override { ++opens[tag]; }
  void releaseTagged(unsigned tag) override {
    --opens[tag];
    if (opens[0] + opens[1] + opens[2] == 0) delete this;
  }
  OdInt32 numRefs() const override { return opens[0] + opens[1] + opens[2]; }
  int opens[3] = {1, 0, 0};
};

// Registers the classes for one test.
class RxTest : public testing::Test {
 protected:
  void SetUp() override {
    odrxInitialize();
    TestShape::rxInit();
    TestCircle::rxInit();
    TestProtocol::rxInit();
    TestOpenable::rxInit();
  }
  void TearDown() override {
    TestOpenable::rxUninit();
    TestProtocol::rxUninit();
    TestCircle::rxUninit();
    TestShape::rxUninit();
    odrxUninitialize();
    EXPECT_EQ(odrxClassDictionary()->numEntries(), 0U);
  }
};
