// Tests of handles, results, errors and shared pointers.
#include <gtest/gtest.h>

#include <utility>

#include "platform/base/error.h"
#include "platform/base/handle.h"
#include "platform/base/shared_ptr.h"

TEST(OdDbHandle, IsHexadecimalTextWithoutLeadingZeros) {
  const std::pair<OdUInt64, const char*> cases[] = {
      {0, "0"}, {1, "1"}, {0xABC, "ABC"}, {0x10, "10"}, {~OdUInt64{0}, "FFFFFFFFFFFFFFFF"}};
  for (const auto& [value, text] : cases) {
    EXPECT_EQ(OdDbHandle(value).ascii(), text);
    EXPECT_EQ(OdDbHandle(text), value);
  }
  EXPECT_EQ(OdDbHandle(L"00ab"), 0xABU);
}

TEST(OdDbHandle, RefusesOtherTexts) {
  OdDbHandle handle(5);
  for (const wchar_t* text : {L"", L"G", L" 1", L"1 ", L"0x1", L"-1", L"10000000000000000", L"é"}) {
    EXPECT_FALSE(OdDbHandle::parse(text, handle));
    EXPECT_FALSE(OdDbHandle::parse(OdString(text), handle));
    EXPECT_THROW(OdDbHandle{text}, OdError);
  }
  EXPECT_FALSE(OdDbHandle::parse(OdString(L"1\0002", 3), handle));
  EXPECT_EQ(handle, 5U);
}

TEST(OdResult, KeepsTheNumbersThatOthersSee) {
  const std::pair<OdResult, int> fixed[] = {{eOk, 0},
                                            {eNotApplicable, 1},
                                            {eInvalidInput, 4},
                                            {eOutOfMemory, 9},
                                            {eWrongObjectType, 20},
                                            {eUnsupportedVersion, 42},
                                            {eNotOpenForRead, 61},
                                            {eCorruptData, 83},
                                            {eClassNotRegistered, 255},
                                            {eClassAlreadyRegistered, 313}};
  for (const auto& [code, number] : fixed) EXPECT_EQ(static_cast<int>(code), number);
  EXPECT_STREQ(odResultName(eCorruptData), "eCorruptData");
  EXPECT_STREQ(odResultText(static_cast<OdResult>(-7)), "unknown result");
}

namespace {

struct Base {
  explicit Base(int& deletions) : count(deletions) {}
  virtual ~Base() { ++count; }
  int& count;
};
struct Derived : Base {
  using Base::Base;
  OdSharedPtr<Base> child;
};

}  // namespace

TEST(OdSharedPtr, MayBeReplacedByWhatItOwns) {
  int deletions = 0;
  OdSharedPtr<Derived> outer(new Derived(deletions));
  outer->child = new Derived(deletions);
  OdSharedPtr<Base> head = outer;
  outer = nullptr;
  head = static_cast<Derived*>(head.get())->child;
  EXPECT_EQ(deletions, 1);
  EXPECT_EQ(head.refCount(), 1);
  OdSharedPtr<Base> moved(std::move(head));
  EXPECT_TRUE(head.isNull());  // NOLINT(bugprone-use-after-move): what is tested
  EXPECT_EQ(moved.refCount(), 1);
  moved = nullptr;
  EXPECT_EQ(deletions, 2);
}
