// Decoding of foreign bytes, and finding the encoding of short names.
#include "platform/base/text_encoding.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using namespace std::string_literals;

struct Names {
  const char* encoding;
  std::vector<std::string> bytes;
  OdString first;
};

// What parts are called, as programs of these countries write it.
const std::vector<Names>& names() {
  static const std::vector<Names> rows = {
      {"UTF-8", {"Geh\xC3\xA4use", "\xE9\x9B\xB6\xE4\xBB\xB6"}, L"Geh\xE4use"},
      {"GB18030",
       {"\xC1\xE3\xBC\xFE"s + "1"},
       L"\x96F6\x4EF6"
       L"1"},
      {"GB18030", {"\xB5\xD7\xD7\xF9", "\xD6\xE1\xB3\xD0", "\xC2\xDD\xCB\xA8 M8"}, L"\x5E95\x5EA7"},
      {"Shift_JIS", {"\x83\x7B\x83\x8B\x83\x67", "\x95\x94\x95\x69"}, L"\x30DC\x30EB\x30C8"},
      {"Shift_JIS", {"\x95\x5C\x8E\xA6"}, L"\x8868\x793A"},
      {"windows-1252", {"Geh\xE4use", "B\xFCgel 90\xB0"}, L"Geh\xE4use"},
      {"windows-1252",
       {"pi\xE8"
        "ce"},
       L"pi\xE8"
       L"ce"},
      {"windows-1251",
       {"\xC4\xE5\xF2\xE0\xEB\xFC", "\xCA\xEE\xF0\xEF\xF3\xF1"},
       L"\x0414\x0435\x0442\x0430\x043B\x044C"},
      {"Big5", {"\xB9\x73\xA5\xF3", "\xC1\xB3\xB5\xB7"}, L"\x96F6\x4EF6"},
  };
  return rows;
}

TEST(OdTextEncoding, ShortNamesAreFoundAndDecoded) {
  for (const Names& row : names()) {
    const std::vector<std::string_view> texts(row.bytes.begin(), row.bytes.end());
    OdString text;
    ASSERT_TRUE(OdTextDecoder(OdString(row.encoding)).decode(texts[0], text)) << row.encoding;
    EXPECT_EQ(text, row.first) << row.encoding;
    const OdString found = odDetectEncoding(texts);
    // Western European encodings differ in signs that these names do not have.
    ASSERT_TRUE(OdTextDecoder(found).decode(texts[0], text));
    EXPECT_EQ(text, row.first) << row.encoding << " taken for " << found.utf8();
  }
  EXPECT_TRUE(odDetectEncoding({}).isEmpty());
}

TEST(OdTextEncoding, NothingIsReplacedOrSkipped) {
  struct Row {
    const char* encoding;
    std::string bytes;
  };
  const Row rows[] = {
      {"UTF-8", "a\xC3"},        {"UTF-8", "\xED\xA0\x80"},
      {"UTF-8", "\xFF"},         {"Shift_JIS", "\x83"},
      {"Shift_JIS", "\xFD\xFE"}, {"GB18030", "\xB5"},
      {"US-ASCII", "\xE4"},      {"windows-1252", "\x81\x8D"},
      {"no such thing", "a"},    {"", "a"},
      {"EUC-KR", "\xB0"},        {"Big5", "\xB9\x20"},
  };
  for (const Row& row : rows) {
    OdString text = L"before";
    const bool decoded = OdTextDecoder(OdString(row.encoding)).decode(row.bytes, text);
    // Some tables map the unassigned bytes of a page to control characters.
    EXPECT_TRUE(!decoded || text.toWide().find(L'\xFFFD') == std::wstring::npos) << row.encoding;
    if (std::string_view(row.encoding) != "windows-1252") {
      EXPECT_FALSE(decoded) << row.encoding;
      EXPECT_EQ(text, L"before");
    }
  }
}

// One name that is broken must not turn the names of the whole file into another language.
TEST(OdTextEncoding, MostTextsDecide) {
  const std::string_view texts[] = {"\xB5\xD7\xD7\xF9", "\xD6\xE1\xB3\xD0", "\xC2\xDD\xCB\xA8",
                                    "\xC2\xDD\xFF"};
  EXPECT_EQ(odDetectEncoding(texts), L"GB18030");
}

}  // namespace
