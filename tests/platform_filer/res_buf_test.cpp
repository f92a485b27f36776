// Result buffers: kinds of codes, chains, filing.
#include "platform/filer/res_buf.h"

#include <gtest/gtest.h>

#include "platform/base/error.h"
#include "platform/filer/memory_filer.h"
#include "platform/rx/rx_init.h"

namespace {

using Kind = OdResBuf::Kind;

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
  template <class Call>
  static OdResult raisedBy(const Call& call) {
    try {
      call();
    } catch (const OdError& error) {
      return error.code();
    }
    return eOk;
  }
  static int lengthOf(const OdResBufPtr& chain) {
    int length = 0;
    for (OdResBufPtr at = chain; !at.isNull(); at = at->next()) ++length;
    return length;
  }
};

TEST_F(OdResBufTest, CodesHaveTheirKinds) {
  const struct {
    int code;
    Kind kind;
  } kRows[] = {
      {0, Kind::kString},    {5, Kind::kHandle},     {10, Kind::kPoint},     {40, Kind::kDouble},
      {70, Kind::kInt16},    {80, Kind::kNone},      {90, Kind::kInt32},     {160, Kind::kInt64},
      {210, Kind::kPoint},   {280, Kind::kInt8},     {290, Kind::kBool},     {310, Kind::kBinary},
      {320, Kind::kHandle},  {330, Kind::kObjectId}, {369, Kind::kObjectId}, {370, Kind::kInt16},
      {1000, Kind::kString}, {1001, Kind::kString},  {1004, Kind::kBinary},  {1005, Kind::kHandle},
      {1010, Kind::kPoint},  {1040, Kind::kDouble},  {1070, Kind::kInt16},   {1071, Kind::kInt32},
      {1072, Kind::kNone},   {-1, Kind::kObjectId},  {-3, Kind::kNone}};
  for (const auto& row : kRows) EXPECT_EQ(OdResBuf::kindOf(row.code), row.kind) << row.code;
}

TEST_F(OdResBufTest, ValuesHaveTheKindOfTheCode) {
  const OdResBufPtr number = OdResBuf::newRb(70, 5);
  EXPECT_EQ(number->getInt16(), 5);
  EXPECT_EQ(raisedBy([&] { (void)number->getInt32(); }), eInvalidInput);
  EXPECT_EQ(raisedBy([&] { number->setString("5"); }), eInvalidInput);
  EXPECT_EQ(raisedBy([&] { OdResBuf::newRb(70, 40000); }), eInvalidInput);
  EXPECT_EQ(raisedBy([&] { OdResBuf::newRb(1, 5); }), eInvalidInput);
  EXPECT_EQ(OdResBuf::newRb(40, 5)->getDouble(), 5.0);
  EXPECT_TRUE(OdResBuf::newRb(290, 1)->getBool());
  EXPECT_EQ(OdResBuf::newRb(1)->getString(), OdString()) << "unset is empty";
  EXPECT_TRUE(OdResBuf::newRb(1)->valueEquals(*OdResBuf::newRb(1, OdString())));
  number->setRestype(60);
  EXPECT_EQ(number->getInt16(), 5) << "same kind";
  number->setRestype(40);
  EXPECT_EQ(number->getDouble(), 0.0) << "another kind";
}

TEST_F(OdResBufTest, ChainsAreCopiedInsertedAndNeverCircular) {
  const OdResBufPtr head = OdResBuf::newRb(1, OdString("a"));
  head->setNext(OdResBuf::newRb(1, OdString("c")));
  const OdResBufPtr middle = OdResBuf::newRb(1, OdString("b"));
  middle->setNext(OdResBuf::newRb(1, OdString("b2")));
  head->insert(middle);
  EXPECT_EQ(lengthOf(head), 4);
  EXPECT_EQ(head->last()->getString(), OdString("c"));
  EXPECT_EQ(raisedBy([&] { head->last()->setNext(head); }), eCircularReference);
  EXPECT_EQ(raisedBy([&] { head->setNext(head); }), eCircularReference);
  const OdResBufPtr copy = head->copyChain();
  head->next()->setString("changed");
  EXPECT_EQ(copy->next()->getString(), OdString("b"));
  EXPECT_EQ(lengthOf(copy), 4);
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
