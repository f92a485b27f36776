// Bytes of foreign files as text: decoding by name, and finding the encoding of texts without one.
//
// Finding works on many short names rather than on prose, so two witnesses are heard. The detector
// of the Unicode library knows which byte sequences each encoding allows and the frequent letters
// of languages; of a dozen characters it cannot say much. The second witness is the share of
// characters that names are really made of: the first level of the national standards of East Asia
// orders the few thousand common characters before the rare ones, a name in Western Europe has
// single accented letters between plain ones, and one in Cyrillic has runs of letters whose case
// changes at most after the first. Both are added to the share of texts that a candidate decodes at
// all: a page that gives every byte a character decodes everything and proves nothing by it. Costs
// one pass over the texts per candidate.
#include "platform/base/text_encoding.h"

#include <unicode/ucnv.h>
#include <unicode/ucnv_err.h>
#include <unicode/ucsdet.h>

#include <algorithm>
#include <cstdint>
#include <limits>
#include <string>
#include <vector>

// ---- Decoding

struct OdTextDecoder::Converter {
  UConverter* handle;
  ~Converter() { ucnv_close(handle); }
};

OdTextDecoder::OdTextDecoder(const OdString& encoding) {
  UErrorCode status = U_ZERO_ERROR;
  const std::string name(encoding.utf8());
  // An empty name would be that of the process's locale.
  if (name.empty() || name.find('\0') != std::string::npos) return;
  UConverter* handle = ucnv_open(name.c_str(), &status);
  if (U_FAILURE(status)) return;
  ucnv_setToUCallBack(handle, UCNV_TO_U_CALLBACK_STOP, nullptr, nullptr, nullptr, &status);
  m_converter.reset(new Converter{handle});
}

OdTextDecoder::~OdTextDecoder() = default;

bool OdTextDecoder::decode(std::string_view bytes, OdString& text) const {
  // One byte makes at most two units of UTF-16 in every encoding of the library.
  if (!m_converter || bytes.size() > std::numeric_limits<int32_t>::max() / 2 - 1) return false;
  std::u16string units(2 * bytes.size() + 1, u'\0');
  UErrorCode status = U_ZERO_ERROR;
  const int32_t length =
      ucnv_toUChars(m_converter->handle, units.data(), static_cast<int32_t>(units.size()),
                    bytes.data(), static_cast<int32_t>(bytes.size()), &status);
  if (U_FAILURE(status)) return false;
  std::wstring wide;
  wide.reserve(static_cast<std::size_t>(length));
  for (int32_t i = 0; i < length; ++i) {
    char32_t value = units[static_cast<std::size_t>(i)];
    if (value >= 0xD800 && value < 0xDC00 && i + 1 < length) {
      value = 0x10000 + ((value - 0xD800) << 10) + (units[static_cast<std::size_t>(++i)] - 0xDC00U);
    }
    wide.push_back(static_cast<wchar_t>(value));
  }
  // Some tables give a replacement for bytes without a character instead of an error.
  if (wide.find(L'\xFFFD') != std::wstring::npos) return false;
  text = OdString(wide);
  return true;
}

// ---- Finding

namespace {

using Texts = std::span<const std::string_view>;

bool isHigh(char c) { return static_cast<unsigned char>(c) >= 0x80; }

/// How many characters outside of ASCII the texts have, and how many of them are common in names.
struct Tally {
  std::size_t characters = 0;
  std::size_t common = 0;

  [[nodiscard]] double share() const {
    return characters == 0 ? 0.0 : static_cast<double>(common) / static_cast<double>(characters);
  }
};

struct CodeRange {
  std::uint16_t first;
  std::uint16_t last;
};

/// Where an encoding of two bytes a character keeps what is common, and the bytes that are a
/// character of their own.
struct DoubleByteRow {
  const char* name;
  CodeRange common[3];
  CodeRange single;
};

// From the tables of the national standards: the first level of Han characters, kana, Hangul.
// The order decides between candidates that are equally likely.
constexpr DoubleByteRow kDoubleByte[] = {
    {"GB18030", {{0xB0A1, 0xD7FE}, {0xA1A1, 0xA3FE}, {1, 0}}, {0x80, 0x80}},
    {"Shift_JIS", {{0x889F, 0x9872}, {0x829F, 0x8396}, {0x8140, 0x824F}}, {0xA0, 0xDF}},
    {"Big5", {{0xA440, 0xC67E}, {0xA140, 0xA3BF}, {1, 0}}, {0x80, 0x80}},
    {"EUC-KR", {{0xB0A1, 0xC8FE}, {1, 0}, {1, 0}}, {0x80, 0x80}},
    {"EUC-JP", {{0xB0A1, 0xCFD3}, {0xA4A1, 0xA5F6}, {1, 0}}, {0x80, 0x8D}},
};

Tally tallyDoubleByte(const DoubleByteRow& row, std::string_view text) {
  Tally tally;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const auto lead = static_cast<unsigned char>(text[i]);
    if (lead < 0x80) continue;
    ++tally.characters;
    if ((lead >= row.single.first && lead <= row.single.last) || i + 1 == text.size()) continue;
    const unsigned code = (unsigned{lead} << 8) + static_cast<unsigned char>(text[++i]);
    for (const CodeRange& range : row.common) {
      if (code >= range.first && code <= range.last) ++tally.common;
    }
  }
  return tally;
}

/// Letters of Latin alphabets and the signs of drawings: degree, plus-minus, squared, micro, ...
bool isLatinSign(unsigned char c) {
  constexpr std::string_view kSigns = "\xA7\xB0\xB1\xB2\xB3\xB5\xB7\xBC\xBD\xBE\xD7";
  return (c >= 0xC0 && c != 0xF7) || kSigns.find(static_cast<char>(c)) != std::string_view::npos;
}

Tally tallyLatin(std::string_view text) {
  Tally tally;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (!isHigh(text[i])) continue;
    ++tally.characters;
    const bool isAlone =
        (i == 0 || !isHigh(text[i - 1])) && (i + 1 == text.size() || !isHigh(text[i + 1]));
    if (isAlone && isLatinSign(static_cast<unsigned char>(text[i]))) ++tally.common;
  }
  return tally;
}

Tally tallyCyrillic(std::string_view text) {
  const auto isUpper = [](char c) { return static_cast<unsigned char>(c) - 0xC0U < 0x20U; };
  const auto isLower = [](char c) { return static_cast<unsigned char>(c) >= 0xE0; };
  Tally tally;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (!isHigh(text[i])) continue;
    ++tally.characters;
    const bool first = i == 0 || !isHigh(text[i - 1]);
    const bool last = i + 1 == text.size() || !isHigh(text[i + 1]);
    if (first && last) continue;
    const bool fits = isLower(text[i]) || (isUpper(text[i]) && (first || isUpper(text[i - 1])));
    if (fits) ++tally.common;
  }
  return tally;
}

constexpr const char* kLatin[] = {"windows-1252", "ISO-8859-1",   "windows-1250",
                                  "ISO-8859-2",   "windows-1254", "ISO-8859-9"};
constexpr const char* kCyrillic[] = {"windows-1251"};

struct Candidate {
  std::string name;
  double detector = 0.0;  ///< what the library's detector gives it, 0 to 1
};

Tally tallyOf(const Candidate& candidate, Texts texts) {
  const auto row = std::ranges::find_if(
      kDoubleByte, [&](const DoubleByteRow& r) { return candidate.name == r.name; });
  const bool isDouble = row != std::end(kDoubleByte);
  const bool isLatin = std::ranges::find(kLatin, candidate.name) != std::end(kLatin);
  const bool isCyrillic = std::ranges::find(kCyrillic, candidate.name) != std::end(kCyrillic);
  Tally sum;
  for (const std::string_view text : texts) {
    Tally tally;
    if (isDouble) tally = tallyDoubleByte(*row, text);
    if (isLatin) tally = tallyLatin(text);
    if (isCyrillic) tally = tallyCyrillic(text);
    sum.characters += tally.characters;
    sum.common += tally.common;
  }
  return sum;
}

bool hasControls(const OdString& text) {
  const std::wstring wide = text.toWide();
  return std::ranges::any_of(wide, [](wchar_t c) { return c >= 0x80 && c < 0xA0; });
}

std::size_t countDecoded(const std::string& encoding, Texts texts) {
  const OdTextDecoder decoder{OdString(encoding)};
  OdString text;
  return static_cast<std::size_t>(std::ranges::count_if(texts, [&](std::string_view bytes) {
    return decoder.decode(bytes, text) && !hasControls(text);
  }));
}

/// What the library's detector finds in the texts as lines of one document.
std::vector<Candidate> detectorsCandidates(Texts texts) {
  constexpr std::size_t kEnough = 1 << 16;
  std::string document;
  for (const std::string_view text : texts) {
    if (document.size() > kEnough) break;
    document.append(text).push_back('\n');
  }
  std::vector<Candidate> candidates;
  UErrorCode status = U_ZERO_ERROR;
  UCharsetDetector* detector = ucsdet_open(&status);
  ucsdet_setText(detector, document.data(), static_cast<int32_t>(document.size()), &status);
  int32_t count = 0;
  const UCharsetMatch** matches = ucsdet_detectAll(detector, &count, &status);
  for (int32_t i = 0; U_SUCCESS(status) && i < count; ++i) {
    const char* name = ucsdet_getName(matches[i], &status);
    candidates.push_back({name, ucsdet_getConfidence(matches[i], &status) / 100.0});
  }
  ucsdet_close(detector);
  return candidates;
}

std::vector<Candidate> candidatesFor(Texts texts) {
  std::vector<Candidate> candidates;
  for (const DoubleByteRow& row : kDoubleByte) candidates.push_back({row.name, 0.0});
  for (const char* name : {kLatin[0], kCyrillic[0]}) candidates.push_back({name, 0.0});
  for (const Candidate& found : detectorsCandidates(texts)) {
    const auto known = std::ranges::find(candidates, found.name, &Candidate::name);
    if (known == candidates.end()) {
      candidates.push_back(found);
    } else {
      known->detector = std::max(known->detector, found.detector);
    }
  }
  return candidates;
}

}  // namespace

OdString odDetectEncoding(Texts texts) {
  if (texts.empty()) return {};
  if (countDecoded("UTF-8", texts) == texts.size()) return L"UTF-8";
  std::string best;
  double bestScore = 0.0;
  for (const Candidate& candidate : candidatesFor(texts)) {
    const double decoded = static_cast<double>(countDecoded(candidate.name, texts)) /
                           static_cast<double>(texts.size());
    // The detector's word counts half: it is made for prose.
    const double score = decoded + tallyOf(candidate, texts).share() + candidate.detector / 2.0;
    if (decoded == 0.0 || score <= bestScore) continue;
    best = candidate.name;
    bestScore = score;
  }
  return OdString(best);
}
