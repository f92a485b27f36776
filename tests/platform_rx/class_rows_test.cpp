// The classes of one library: registered together or not at all.
#include "platform/rx/class_rows.h"

#include <gtest/gtest.h>

#include <string>

#include "platform/base/error.h"

namespace {

std::string g_calls;
bool g_fails = false;

template <char kName>
struct Recorded {
  static void rxInit() {
    if (g_fails && kName == 'c') throw OdError(eClassAlreadyRegistered, L"c");
    g_calls += kName;
  }
  static void rxUninit() { g_calls += static_cast<char>(kName - 'a' + 'A'); }
};

constexpr OdRxClassRow kRows[] = {odrxClassRow<Recorded<'a'>>(), odrxClassRow<Recorded<'b'>>(),
                                  odrxClassRow<Recorded<'c'>>()};

TEST(OdRxClassRowsTest, StartsNestAndTheLastStopReleasesChildrenFirst) {
  OdRxClassRows rows(kRows);
  g_calls.clear();
  EXPECT_FALSE(rows.stop());
  EXPECT_TRUE(rows.start());
  EXPECT_FALSE(rows.start());
  EXPECT_FALSE(rows.stop());
  EXPECT_EQ(g_calls, "abc");
  EXPECT_TRUE(rows.stop());
  EXPECT_FALSE(rows.stop());
  EXPECT_EQ(g_calls, "abcCBA");
}

TEST(OdRxClassRowsTest, AFailureReleasesWhatWasRegistered) {
  OdRxClassRows rows(kRows);
  g_calls.clear();
  g_fails = true;
  EXPECT_THROW(rows.start(), OdError);
  g_fails = false;
  EXPECT_EQ(g_calls, "abBA");
  EXPECT_FALSE(rows.stop());
  EXPECT_TRUE(rows.start());
  EXPECT_EQ(g_calls, "abBAabc");
  EXPECT_TRUE(rows.stop());
}

}  // namespace
