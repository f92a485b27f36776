// Result buffers: values of codes, chains, filing.
#include "platform/filer/res_buf.h"

#include <gtest/gtest.h>

#include "platform/filer/memory_filer.h"
#include "platform/rx/rx_init.h"
#include "tests/support/status_testing.h"

namespace {

class OdResBufTest : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    odrxInitialize();
    OdResBuf::rxInit();
  }
  static void TearDownTestSuite() {
    OdResBuf::rxUninit();
    odrxUninitialize();
  }
  static int lengthOf(const OdResBufPtr& chain) {
    int length = 0;
    for (OdResBufPtr at = chain; !at.isNull(); at = at->next()) ++length;
    return length;
  }
};

TEST_F(OdResBufTest, ValuesHaveTheKindOfTheCode) {
  const OdResBufPtr number = OdResBuf::newRb(70, 5);
  EXPECT_EQ(number->getInt16(), 5);
  EXPECT_EQ(raisedBy([&] { (void)number->getInt32(); }), eInvalidInput);
  EXPECT_EQ(raisedBy([&] { number->setString("5"); }), eInvalidInput);
  EXPECT_EQ(raisedBy([&] { OdResBuf::newRb(70, 40000); }), eInvalidInput);
  EXPECT_EQ(raisedBy([&] { OdResBuf::newRb(1, 5); }), eInvalidInput);
  EXPECT_EQ(OdResBuf::newRb(1)->getString(), OdString()) << "unset is empty";
  EXPECT_TRUE(OdResBuf::newRb(1)->valueEquals(*OdResBuf::newRb(1, OdString())));
  number->setRestype(60);
  EXPECT_EQ(number->getInt16(), 5) << "same kind";
  number->setRestype(40);
  EXPECT_EQ(number->getDouble(), 0.0) << "another kind";
}

TEST_F(OdResBufTest, ChainsAreInsertedAndNeverCircular) {
  const OdResBufPtr head = OdResBuf::newRb(1, OdString("a"));
  head->setNext(OdResBuf::newRb(1, OdString("c")));
  const OdResBufPtr middle = OdResBuf::newRb(1, OdString("b"));
  middle->setNext(OdResBuf::newRb(1, OdString("b2")));
  head->insert(middle);
  EXPECT_EQ(lengthOf(head), 4);
  EXPECT_EQ(head->last()->getString(), OdString("c"));
  EXPECT_EQ(raisedBy([&] { head->last()->setNext(head); }), eCircularReference);
  EXPECT_EQ(raisedBy([&] { head->setNext(head); }), eCircularReference);
}

TEST_F(OdResBufTest, LongChainsAreFiledAndReleasedWithoutRecursion) {
  constexpr int kLength = 300000;
  const OdResBufPtr head = OdResBuf::newRb(90, 0);
  OdResBuf* tail = head;
  for (int i = 1; i < kLength; ++i) tail = tail->setNext(OdResBuf::newRb(90, i));
  OdDbFilerBuffer buffer;
  OdDbMemoryFiler filer(OdDbDwgFiler::kCopyFiler, buffer);
  OdResBuf::dwgOutChain(&filer, head);
  filer.startReading(0, 0);
  OdResBufPtr read = OdResBuf::dwgInChain(&filer);
  EXPECT_EQ(lengthOf(read), kLength);
  EXPECT_EQ(read->last()->getInt32(), kLength - 1);
  read = nullptr;
}

TEST_F(OdResBufTest, DamagedChainsAreRefused) {
  OdDbFilerBuffer buffer;
  OdDbMemoryFiler filer(OdDbDwgFiler::kCopyFiler, buffer);
  const auto read = [&](OdInt32 count, OdInt16 code) {
    buffer.clear();
    filer.wrInt32(count);
    filer.wrInt16(code);
    filer.startReading(0, 0);
    return raisedBy([&] { OdResBuf::dwgInChain(&filer); });
  };
  EXPECT_EQ(read(1, 1072), eCorruptData) << "a code without a kind";
  EXPECT_EQ(read(2000000000, 90), eCorruptData) << "a count that cannot fit";
  EXPECT_EQ(read(-1, 90), eCorruptData);
  EXPECT_EQ(read(1, 90), eEndOfStream) << "the value is missing";
  EXPECT_EQ(raisedBy([&] { OdResBuf::dwgOutChain(&filer, OdResBuf::newRb(80)); }), eInvalidInput);
}

}  // namespace
