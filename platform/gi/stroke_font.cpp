// A font of strokes, for texts in drawings and pictures.
#include "platform/gi/stroke_font.h"

#include <algorithm>
#include <iterator>
#include <string_view>

namespace {

/// One character. Strokes are parted by spaces; a stroke is a row of points, each an x and a y
/// digit. The base line is y 2, small letters reach 6, capitals 8.
struct Glyph {
  wchar_t code;
  int width;
  std::string_view strokes;
};

constexpr int kBaseLine = 2;
constexpr double kCapitalHeight = 6.0;
constexpr int kGap = 2;  // between characters

constexpr Glyph kUnknown{0, 4, "0208484202"};

// In rising order of the codes.
constexpr Glyph kGlyphs[] = {
    {L' ', 2, ""},
    {L'!', 0, "0804 0302"},
    {L'"', 2, "0806 2826"},
    {L'#', 4, "1218 3238 0444 0646"},
    {L'$', 4, "473818070615354443321203 2129"},
    {L'%', 4, "0248 0818170708 3343423233"},
    {L'&', 4, "420718270403122244"},
    {L'\'', 0, "0806"},
    {L'(', 1, "18070312"},
    {L')', 1, "08171302"},
    {L'*', 4, "2327 0446 0644"},
    {L'+', 4, "2327 0545"},
    {L',', 1, "1301"},
    {L'-', 3, "0535"},
    {L'.', 0, "0203"},
    {L'/', 3, "0238"},
    {L'0', 4, "180703123243473818 1337"},
    {L'1', 2, "071812 0222"},
    {L'2', 4, "07183847460242"},
    {L'3', 4, "07183847463515354443321203"},
    {L'4', 4, "32380444"},
    {L'5', 4, "480805354443321203"},
    {L'6', 4, "4738180703123243443505"},
    {L'7', 4, "084812"},
    {L'8', 4, "15060718384746351504031232434435"},
    {L'9', 4, "0312324347381807061545"},
    {L':', 0, "0203 0506"},
    {L';', 1, "1301 1516"},
    {L'<', 3, "370533"},
    {L'=', 4, "0444 0646"},
    {L'>', 3, "073503"},
    {L'?', 4, "071838474625 2322"},
    {L'@', 4, "343616144447381807031242"},
    {L'A', 4, "022842 1434"},
    {L'B', 4, "02083847463505 3544433202"},
    {L'C', 4, "4738180703123243"},
    {L'D', 4, "02083847433202"},
    {L'E', 4, "48080242 0535"},
    {L'F', 4, "480802 0535"},
    {L'G', 4, "47381807031232434525"},
    {L'H', 4, "0208 4248 0545"},
    {L'I', 0, "0208"},
    {L'J', 3, "3833221203"},
    {L'K', 4, "0208 4804 1542"},
    {L'L', 3, "080232"},
    {L'M', 4, "0208254842"},
    {L'N', 4, "02084248"},
    {L'O', 4, "180703123243473818"},
    {L'P', 4, "02083847463505"},
    {L'Q', 4, "180703123243473818 2442"},
    {L'R', 4, "02083847463505 2542"},
    {L'S', 4, "473818070615354443321203"},
    {L'T', 4, "0848 2822"},
    {L'U', 4, "080312324348"},
    {L'V', 4, "082248"},
    {L'W', 4, "0812253248"},
    {L'X', 4, "0248 0842"},
    {L'Y', 4, "082548 2522"},
    {L'Z', 4, "08480242"},
    {L'[', 1, "18080212"},
    {L'\\', 3, "0832"},
    {L']', 1, "08181202"},
    {L'^', 4, "062846"},
    {L'_', 4, "0141"},
    {L'`', 1, "0817"},
    {L'a', 3, "0516263532 341403122233"},
    {L'b', 3, "0802 0516263533221203"},
    {L'c', 3, "3526160503122233"},
    {L'd', 3, "3832 3526160503122233"},
    {L'e', 3, "04343526160503122233"},
    {L'f', 2, "281712 0626"},
    {L'g', 3, "3631201001 3526160503122233"},
    {L'h', 3, "0802 0516263532"},
    {L'i', 0, "0206 0708"},
    {L'j', 1, "161100 1718"},
    {L'k', 3, "0802 3604 1532"},
    {L'l', 1, "080312"},
    {L'm', 4, "0206 05162522 25364542"},
    {L'n', 3, "0206 0516263532"},
    {L'o', 3, "160503122233352616"},
    {L'p', 3, "0600 0516263533221203"},
    {L'q', 3, "3630 3526160503122233"},
    {L'r', 2, "0206 051626"},
    {L's', 3, "3526160533221203"},
    {L't', 2, "181322 0626"},
    {L'u', 3, "0603122233 3632"},
    {L'v', 4, "062246"},
    {L'w', 4, "0612253246"},
    {L'x', 3, "0236 0632"},
    {L'y', 4, "062246 221000"},
    {L'z', 3, "06360232"},
    {L'{', 2, "28171605141322"},
    {L'|', 0, "0109"},
    {L'}', 2, "08171625141302"},
    {L'~', 4, "04153445"},
    {L'\u00B0', 1, "0717180807"},
    {L'\u00B1', 4, "2428 0646 0343"},
    {L'\u00D7', 4, "0347 0743"},
    {L'\u00D8', 4, "180703123243473818 0248"},
    {L'\u00F8', 3, "160503122233352616 0236"},
    {L'\u2300', 4, "160503123243453616 0248"},
};

static_assert(std::ranges::is_sorted(kGlyphs, {}, &Glyph::code));

const Glyph& glyphOf(wchar_t code) {
  const auto found = std::ranges::lower_bound(kGlyphs, code, {}, &Glyph::code);
  return found != std::end(kGlyphs) && found->code == code ? *found : kUnknown;
}

void addStrokes(const Glyph& glyph, double left, OdGiTextStrokes& text) {
  bool isNew = true;
  for (std::size_t i = 0; i < glyph.strokes.size();) {
    if (glyph.strokes[i] == ' ') {
      isNew = true;
      ++i;
      continue;
    }
    if (isNew) text.strokes.emplace_back();
    isNew = false;
    const int x = glyph.strokes[i] - '0';
    const int y = glyph.strokes[i + 1] - '0';
    text.strokes.back().push_back({left + x / kCapitalHeight, (y - kBaseLine) / kCapitalHeight});
    i += 2;
  }
}

}  // namespace

OdGiTextStrokes odgiLayOutText(const OdString& text) {
  OdGiTextStrokes result;
  int left = 0;
  for (int i = 0; i < text.getLength(); ++i) {
    const Glyph& glyph = glyphOf(text.getAt(i));
    addStrokes(glyph, left / kCapitalHeight, result);
    left += glyph.width + kGap;
  }
  result.width = std::max(0, left - kGap) / kCapitalHeight;
  return result;
}

double odgiTextWidth(const OdString& text) {
  int width = 0;
  for (int i = 0; i < text.getLength(); ++i) width += glyphOf(text.getAt(i)).width + kGap;
  return std::max(0, width - kGap) / kCapitalHeight;
}
