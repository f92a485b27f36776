// Tests of beginnings, ends and parts of texts.
#include "vdm_db/cloning/vdm_string_utils.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

TEST(VdmStringUtils, BeginningsAndEndsMatchCase) {
  EXPECT_TRUE(vdmu::startsWith(L"abc", L"ab") && vdmu::endsWith(L"abc", L"bc"));
  EXPECT_FALSE(vdmu::startsWith(L"abc", L"AB") || vdmu::endsWith(L"bc", L"abc"));
  EXPECT_TRUE(vdmu::startsWith(L"", L"") && vdmu::endsWith(L"abc", L""));
  OdString text(L"abab");
  EXPECT_TRUE(vdmu::trimPrefix(text, L"a") && vdmu::trimSuffix(text, L"b"));
  EXPECT_FALSE(vdmu::trimPrefix(text, L"a") || vdmu::trimSuffix(text, L"b"));
  EXPECT_EQ(text, L"ba");
}

TEST(VdmStringUtils, TokensKeepOrDropEmptyOnes) {
  using Tokens = std::vector<OdString>;
  const struct {
    const wchar_t* text;
    Tokens all;
    Tokens filled;
  } kRows[] = {
      {L"a,,b", {L"a", L"", L"b"}, {L"a", L"b"}},
      {L",a;b,", {L"", L"a", L"b"}, {L"a", L"b"}},
      {L",", {L""}, {}},
      {L"", {}, {}},
      {L"ab", {L"ab"}, {L"ab"}},
  };
  for (const auto& row : kRows) {
    for (const bool keepEmpty : {true, false}) {
      const OdArray<OdString> tokens = vdmu::tokenize(row.text, L",;", keepEmpty);
      EXPECT_EQ(Tokens(tokens.begin(), tokens.end()), keepEmpty ? row.all : row.filled);
    }
  }
}

}  // namespace
