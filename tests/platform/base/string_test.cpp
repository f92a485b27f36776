// Tests of OdString: representations, sharing, UTF-8, edits, format.
#include "platform/base/string.h"

#include <gtest/gtest.h>

#include <clocale>
#include <string>
#include <thread>
#include <tuple>
#include <unordered_set>
#include <vector>

#include "platform/base/error.h"
#include "platform/base/utf8.h"

namespace {

const std::vector<std::wstring>& samples() {
  static const std::vector<std::wstring> texts = {
      L"",           L"a",      L"ab",     L"Zebra",   L"\x7F",
      L"\x80",       L"é",      L"aé",     L"abé",     L"中文",
      L"zz\x10FFFF", L"\xFFFD", L"\xE000", L"\x1F600", std::wstring(L"a\0b", 3)};
  return texts;
}

}  // namespace

TEST(OdString, HasOneRepresentationHoweverItWasMade) {
  OdString cut(L"abcé");
  cut.deleteChars(3);
  OdString changed(L"abé");
  changed.setAt(2, L'c');
  OdString replaced(L"éabc");
  replaced.replace(L"é", L"");
  const OdString joined = OdString(L"a") + "b" + L'c';
  for (const OdString& text : {cut, changed, replaced, joined, OdString(L"xabcé").mid(1, 3)}) {
    EXPECT_EQ(text, OdString("abc"));
    EXPECT_TRUE(text.isNarrow());
    EXPECT_EQ(text.hash(), OdString("abc").hash());
  }
  OdString emptied(L"é");
  emptied.remove(L'é');
  EXPECT_TRUE(emptied.isEmpty());
  EXPECT_TRUE(emptied.sharesBuffer(OdString::kEmpty));
}

TEST(OdString, OrdersByCodePointInBothRepresentations) {
  for (const auto& a : samples()) {
    for (const auto& b : samples()) {
      EXPECT_EQ(OdString(a) < OdString(b), a < b) << OdString(a) << " < " << OdString(b);
      EXPECT_EQ(OdString(a) == OdString(b), a == b);
    }
  }
}

TEST(OdString, KeepsItsTextThroughBothForms) {
  for (const auto& text : samples()) {
    const OdString original(text);
    EXPECT_EQ(std::wstring(original.c_str(), text.size()), text);
    EXPECT_EQ(OdString::fromUtf8(original.utf8()), original);
    EXPECT_EQ(static_cast<const char*>(original)[original.utf8().size()], '\0');
  }
  EXPECT_EQ(OdString(L"é中\x1F600").utf8(), "\xC3\xA9\xE4\xB8\xAD\xF0\x9F\x98\x80");
}

TEST(OdString, KeepsBytesThatDoNotDecode) {
  const std::vector<std::string> malformed = {"\x80",
                                              "a\xFFz",
                                              "\xC3",
                                              "\xE4\xB8",
                                              "\xC0\xAF",
                                              "\xED\xA0\x80",
                                              "\xF4\x90\x80\x80",
                                              "\xF0\x80\x80\x80",
                                              "\xF8\x88\x80\x80\x80",
                                              "\xC3\xA9\xC3"};
  for (const std::string& bytes : malformed) {
    EXPECT_EQ(OdString(bytes).utf8(), bytes) << testing::PrintToString(bytes);
  }
  EXPECT_EQ(OdString("a\xFFz").getAt(1), 0xDCFF);
  EXPECT_EQ(odWideToValidUtf8(OdString("a\xFFz").toWide()), "a\xEF\xBF\xBDz");
  for (const wchar_t invalid : {wchar_t{0xD800}, wchar_t{0xDC7F}, wchar_t{0x110000}, wchar_t{-1}}) {
    EXPECT_EQ(OdString(invalid, 1), OdString(L'\xFFFD', 1));
    EXPECT_EQ(OdString(std::wstring(L"é") + invalid).getAt(1), 0xFFFD);
  }
}

TEST(OdString, ShowsEditsOfOneCopyInBothFormsAfterBothWereMade) {
  const OdString original("abc");
  OdString text(original);
  EXPECT_EQ(std::wstring(text.c_str()), L"abc");
  text += "d";
  text.setAt(0, L'x');
  EXPECT_EQ(std::wstring(text.c_str()), L"xbcd");
  text += L"ö";
  EXPECT_EQ(text.utf8(), "xbcd\xC3\xB6");
  EXPECT_EQ(std::wstring(original.c_str()), L"abc");
}

TEST(OdString, AppendsToItself) {
  OdString text(L"abé");
  text += text;
  text.insert(5, text);
  EXPECT_EQ(text, L"abéababéabéé");
}

TEST(OdString, RefusesIndicesOutOfRange) {
  OdString text(L"ab");
  EXPECT_EQ(text[2], L'\0');
  EXPECT_THROW(std::ignore = text.getAt(3), OdError_InvalidIndex);
  EXPECT_THROW(std::ignore = text.getAt(-1), OdError_InvalidIndex);
  EXPECT_THROW(text.setAt(2, L'x'), OdError_InvalidIndex);
  EXPECT_EQ(text, L"ab");
  EXPECT_THROW(OdString(L'x', std::size_t{1} << 30), OdError);
}

TEST(OdString, FormatsWhateverTheLocale) {
  OdString text;
  EXPECT_EQ(text.format(L"%ls_%d", L"Zylinderø", 7), L"Zylinderø_7");
  EXPECT_EQ(text.format(L"%ls%lc%u|%c", text.c_str(), L'é', 5U, L'ß'), L"Zylinderø_7é5|ß");
  EXPECT_EQ(text.format(L"%s|%5s|%-5ls|%.2ls", "\xC3\xA9", "ab", L"cd", L"xyz"),
            L"é|   ab|cd   |xy");
  EXPECT_EQ(text.format(L"%05d|%-4x|%+lld|%hhd|%%", -42, 255U, 5000000000LL, 257),
            L"-0042|ff  |+5000000000|1|%");
  EXPECT_EQ(text.format(L"%.3f|%g|%*d|%.*f", 1.5, 1e-9, 4, 3, 1, 2.25), L"1.500|1e-09|   3|2.2");
  if (std::setlocale(LC_ALL, "de_DE.UTF-8")) {
    EXPECT_EQ(text.format(L"%.1f", 1.5), L"1.5");
    std::setlocale(LC_ALL, "C");
  }
  EXPECT_THROW(text.format(L"%n", nullptr), OdError);
  EXPECT_THROW(text.format(L"ends in %"), OdError);
  EXPECT_THROW(text.format(L"%99999999d", 1), OdError);
}

TEST(OdString, MakesItsOtherFormOnceForAllThreads) {
  for (int round = 0; round < 200; ++round) {
    const OdString text(round % 2 ? L"ascii text" : L"wide téxt");
    std::vector<const void*> seen(4);
    std::vector<std::thread> threads;
    for (auto& slot : seen) {
      threads.emplace_back([&slot, text, round] {
        slot = round % 2 ? static_cast<const void*>(text.c_str())
                         : static_cast<const void*>(static_cast<const char*>(text));
      });
    }
    for (auto& thread : threads) thread.join();
    EXPECT_EQ(std::unordered_set<const void*>(seen.begin(), seen.end()).size(), 1U);
  }
}
