// Tests of case mapping and of both case-insensitive comparisons.
#include "platform/base/case_compare.h"

#include <gtest/gtest.h>

#include <random>
#include <string>

#include "tests/support/test_seed.h"

namespace {

int sign(int value) { return value < 0 ? -1 : value > 0 ? 1 : 0; }

}  // namespace

TEST(CaseCompare, FoldsAsUnicodeDoes) {
  EXPECT_TRUE(odStrIEqual(L"Straße", L"STRASSE"));
  EXPECT_TRUE(odStrIEqual(L"ΣΊΣΥΦΟΣ", L"σίσυφος"));
  EXPECT_TRUE(odStrIEqual(L"\x10400", L"\x10428"));
  EXPECT_FALSE(odStrIEqual(L"resume", L"résumé"));
  EXPECT_FALSE(odStrIEqual(L"i", L"ı"));
  EXPECT_EQ(odCaseFold(L"ÄB"), odCaseFold(L"äb"));
}

TEST(CaseCompare, SortsAsADictionaryIgnoringCase) {
  const OdString ordered[] = {L"_x",   L"-x",   L"(x",    L"#x",    L"<x",     L"1",
                              L"10",   L"2",    L"Äpfel", L"apple", L"banana", L"Cote",
                              L"coté", L"côte", L"zebra", L"Ω"};
  for (std::size_t i = 1; i < std::size(ordered); ++i) {
    EXPECT_LT(odStrICmp(ordered[i - 1], ordered[i]), 0) << ordered[i - 1] << " " << ordered[i];
  }
  EXPECT_EQ(odStrICmp(L"CÔTE", L"côte"), 0);
  EXPECT_NE(odStrICmp(L"cote", L"côte"), 0);
  EXPECT_EQ(odStrICmp(L"Length", L"LENGTH"), 0);
}

// ASCII texts take a table; the same texts with a letter behind that makes them wide take the
// collation itself, and the order may not depend on that.
TEST(CaseCompare, GivesAsciiTheOrderOfTheCollation) {
  std::mt19937 random(freshSeed());
  for (int round = 0; round < 20000; ++round) {
    std::string a, b;
    for (auto n = random() % 4; n > 0; --n) a.push_back(static_cast<char>(1 + random() % 127));
    b = round % 3 ? a : std::string();
    for (auto n = random() % 3; n > 0; --n) b.push_back(static_cast<char>(1 + random() % 127));
    const OdString common(L'Ω', 1);
    ASSERT_EQ(sign(odStrICmp(a, b)), sign(odStrICmp(common + OdString(a), common + OdString(b))))
        << testing::PrintToString(a) << " and " << testing::PrintToString(b);
  }
}
