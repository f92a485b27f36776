// Case mapping and collation by Unicode's tables, with short ways for ASCII texts.
//
// Nearly all names and keys of drawings are ASCII, and the library that knows Unicode works on
// UTF-16 and UTF-8, which costs a conversion. So every operation has two ways, which must agree:
//
//   - Mapping: an ASCII letter differs from its other case in one bit, and full case folding of
//     ASCII is its lower case. Other texts are converted to UTF-16, mapped and converted back; a
//     byte that did not decode becomes a lone surrogate there, which no mapping changes.
//   - Ordering: the second level of the root collation treats an ASCII text as the sequence of its
//     characters' places. The table of these places is not written down: it is made at the first
//     use by sorting the 128 characters with the collation itself, so that both ways follow the
//     same version of Unicode.
//
// Mapping costs one pass and an allocation when something changes; comparing ASCII texts one pass
// up to the deciding character without any allocation.
#include "platform/base/case_compare.h"

#include <unicode/ucol.h>
#include <unicode/ustring.h>

#include <algorithm>
#include <array>
#include <limits>
#include <memory>
#include <string>
#include <string_view>

#include "platform/base/error.h"
#include "platform/base/string_edit.h"
#include "platform/base/utf8.h"

namespace {

// ---- Mapping

// Bytes that did not decode are lone surrogates here, which no mapping touches.
std::u16string toUtf16(const OdString& text) {
  std::u16string units;
  units.reserve(static_cast<std::size_t>(text.getLength()));
  for (const wchar_t ch : OdStringEdit::wideView(text)) {
    const auto value = static_cast<char32_t>(ch);
    if (value < 0x10000) {
      units.push_back(static_cast<char16_t>(value));
    } else {
      units.push_back(static_cast<char16_t>(0xD7C0 + (value >> 10)));
      units.push_back(static_cast<char16_t>(0xDC00 + (value & 0x3FF)));
    }
  }
  return units;
}

OdString fromUtf16(std::u16string_view units) {
  std::wstring wide;
  wide.reserve(units.size());
  for (std::size_t i = 0; i < units.size(); ++i) {
    char32_t value = units[i];
    const bool isLead = value >= 0xD800 && value < 0xDC00;
    if (isLead && i + 1 < units.size() && units[i + 1] >= 0xDC00 && units[i + 1] < 0xE000) {
      value = 0x10000 + ((value - 0xD800) << 10) + (units[++i] - 0xDC00U);
    }
    wide.push_back(static_cast<wchar_t>(value));
  }
  return OdStringEdit::fromWide(wide);
}

// Runs a mapping of the form (destination, capacity, source, length, status) -> needed length.
template <class Mapping>
OdString mapped(const OdString& text, Mapping mapping) {
  const std::u16string source = toUtf16(text);
  // No mapping makes more than three units of one, and no string is longer than 2^30.
  if (source.size() > std::numeric_limits<int32_t>::max() / 4) odRaise(eOutOfMemory);
  std::u16string result(source.size() * 3 + 1, u'\0');
  UErrorCode status = U_ZERO_ERROR;
  const int32_t length = mapping(result.data(), static_cast<int32_t>(result.size()), source.data(),
                                 static_cast<int32_t>(source.size()), &status);
  if (U_FAILURE(status)) {
    throw OdError(eGeneralFailure, OdString("case mapping: ") + u_errorName(status));
  }
  const std::u16string_view view(result.data(), static_cast<std::size_t>(length));
  return view == source ? text : fromUtf16(view);
}

// Maps the letters `first` to `first` + 25 of an ASCII text by flipping their case bit.
OdString flipped(const OdString& text, char first) {
  const auto isFlipped = [first](char ch) { return ch >= first && ch <= first + 25; };
  const std::string_view narrow = text.utf8();
  if (std::none_of(narrow.begin(), narrow.end(), isFlipped)) return text;
  OdString result(text);
  char* characters = OdStringEdit::writableNarrow(result);
  for (std::size_t i = 0; i < narrow.size(); ++i) {
    if (isFlipped(characters[i])) characters[i] = static_cast<char>(characters[i] ^ 0x20);
  }
  return result;
}

// ---- Collation

struct CollatorDeleter {
  void operator()(UCollator* collator) const { ucol_close(collator); }
};
using CollatorPtr = std::unique_ptr<UCollator, CollatorDeleter>;

CollatorPtr openCollator() {
  UErrorCode status = U_ZERO_ERROR;
  CollatorPtr collator(ucol_open("", &status));  // the root collation, whatever the locale
  if (collator) ucol_setStrength(collator.get(), UCOL_SECONDARY);
  if (U_FAILURE(status) || !collator) {
    throw OdError(eGeneralFailure, OdString("root collation: ") + u_errorName(status));
  }
  return collator;
}

int collate(std::string_view a, std::string_view b) {
  thread_local const CollatorPtr collator = openCollator();
  UErrorCode status = U_ZERO_ERROR;
  const UCollationResult order =
      ucol_strcollUTF8(collator.get(), a.data(), static_cast<int32_t>(a.size()), b.data(),
                       static_cast<int32_t>(b.size()), &status);
  if (U_FAILURE(status)) {
    throw OdError(eGeneralFailure, OdString("collation: ") + u_errorName(status));
  }
  return order;
}

// The place of each ASCII character among them all; 0 for those that the collation ignores. ASCII
// has no contractions, expansions or accents in the root collation, so at the second level two
// ASCII texts compare as their sequences of places do.
using AsciiPlaces = std::array<unsigned char, 128>;

AsciiPlaces makeAsciiPlaces() {
  std::array<char, 128> order{};
  for (int i = 0; i < 128; ++i) order[static_cast<std::size_t>(i)] = static_cast<char>(i);
  const auto compareCharacters = [](char a, char b) { return collate({&a, 1}, {&b, 1}); };
  std::stable_sort(order.begin(), order.end(),
                   [&](char a, char b) { return compareCharacters(a, b) < 0; });
  AsciiPlaces places{};
  unsigned char place = collate({&order[0], 1}, "") == 0 ? 0 : 1;
  for (std::size_t i = 0; i < order.size(); ++i) {
    if (i > 0 && compareCharacters(order[i - 1], order[i]) != 0) ++place;
    places[static_cast<std::size_t>(order[i])] = place;
  }
  return places;
}

int compareAscii(std::string_view a, std::string_view b) {
  static const AsciiPlaces places = makeAsciiPlaces();
  const auto nextPlace = [](std::string_view text, std::size_t& at) -> int {
    while (at < text.size()) {
      if (const int place = places[static_cast<unsigned char>(text[at++])]) return place;
    }
    return 0;
  };
  // Equal characters have equal places, so the common beginning decides nothing.
  const auto different = std::mismatch(a.begin(), a.end(), b.begin(), b.end()).first;
  auto i = static_cast<std::size_t>(different - a.begin());
  for (std::size_t j = i;;) {
    const int placeA = nextPlace(a, i);
    const int placeB = nextPlace(b, j);
    if (placeA != placeB) return placeA < placeB ? -1 : 1;
    if (placeA == 0) return 0;
  }
}

}  // namespace

int odStrICmp(const OdString& a, const OdString& b) {
  if (a == b) return 0;
  if (a.isNarrow() && b.isNarrow()) return compareAscii(a.utf8(), b.utf8());
  return collate(a.utf8(), b.utf8());
}

bool odStrIEqual(const OdString& a, const OdString& b) { return a.iEquals(b); }

OdString odCaseFold(const OdString& text) {
  if (text.isNarrow()) return flipped(text, 'A');
  return mapped(
      text, [](UChar* to, int32_t capacity, const UChar* from, int32_t length, UErrorCode* status) {
        return u_strFoldCase(to, capacity, from, length, U_FOLD_CASE_DEFAULT, status);
      });
}

OdString odToUpper(const OdString& text) {
  if (text.isNarrow()) return flipped(text, 'a');
  return mapped(
      text, [](UChar* to, int32_t capacity, const UChar* from, int32_t length, UErrorCode* status) {
        return u_strToUpper(to, capacity, from, length, "", status);
      });
}

OdString odToLower(const OdString& text) {
  if (text.isNarrow()) return flipped(text, 'A');
  return mapped(
      text, [](UChar* to, int32_t capacity, const UChar* from, int32_t length, UErrorCode* status) {
        return u_strToLower(to, capacity, from, length, "", status);
      });
}
