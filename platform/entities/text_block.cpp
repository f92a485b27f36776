// A block of text with formats, laid out in lines.
//
// The contents are read once. Characters gather in a run that ends where the format changes, at a
// space, or at the end of a line; a run that is done joins the present line. Words are runs
// without spaces, so a line breaks before a word that would pass the width. Groups keep a stack of
// formats. The cost is linear in the contents.
#include "platform/entities/text_block.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <numbers>
#include <string>

#include "platform/db/text_style_table.h"
#include "platform/gi/stroke_font.h"

namespace {

constexpr double kLineDistance = 5.0 / 3;  // base line to base line, in heights
constexpr double kStackedHeight = 0.6;     // of the text around
constexpr double kStackedRise = 0.55;      // of its upper part, in heights of the text around
constexpr double kStackedFall = -0.15;
constexpr std::size_t kDeepestGroup = 64;
constexpr wchar_t kFixedSpace = L'\u00A0';

}  // namespace

OdDb::AttachmentPoint oddbMirrored(OdDb::AttachmentPoint attachment) {
  const int place = attachment - 1;
  return static_cast<OdDb::AttachmentPoint>(place / 3 * 3 + (2 - place % 3) + 1);
}

OdDb::AttachmentPoint oddbTurnedOver(OdDb::AttachmentPoint attachment) {
  const int place = attachment - 1;
  return static_cast<OdDb::AttachmentPoint>((2 - place / 3) * 3 + place % 3 + 1);
}

/// Reads contents into lines.
class OdDbTextBlockMaker {
 public:
  OdDbTextBlockMaker(OdDbTextBlock& block, double wrapWidth, double spacing)
      : m_block(block), m_wrapWidth(wrapWidth), m_spacing(spacing) {}

  void read(const OdString& contents, double height, double widthFactor, double oblique) {
    m_format = {height, widthFactor, oblique, false, false};
    m_base = height;
    m_block.m_lines.emplace_back();
    for (int at = 0; at < contents.getLength();) readOne(contents, at);
    endRun();
    endLine();
  }

 private:
  struct Format {
    double height = 1.0;
    double widthFactor = 1.0;
    double oblique = 0.0;
    bool underlines = false;
    bool overlines = false;
  };
  using Line = OdDbTextBlock::Line;
  using Piece = OdDbTextBlock::Piece;

  void readOne(const OdString& contents, int& at) {
    const wchar_t character = contents.getAt(at++);
    switch (character) {
      case L'\\':
        return readCode(contents, at);
      case L'{':
        endRun();
        if (m_groups.size() < kDeepestGroup) m_groups.push_back(m_format);
        return;
      case L'}':
        endRun();
        if (m_groups.empty()) return;
        m_format = m_groups.back();
        m_groups.pop_back();
        return;
      case L'\n':
        return newLine();
      case L' ':
        endRun();
        m_run.push_back(L' ');
        return endRun();
      default:
        m_run.push_back(character);
    }
  }

  // After the backslash.
  void readCode(const OdString& contents, int& at) {
    wchar_t coded = 0;
    if (oddbReadUnicodeCode(contents, at, coded)) return m_run.push_back(coded);
    if (at >= contents.getLength()) return m_run.push_back(L'\\');
    const wchar_t code = contents.getAt(at++);
    switch (code) {
      case L'P':
        return newLine();
      case L'~':
        return m_run.push_back(kFixedSpace);
      case L'L':
      case L'l':
        return setRule(m_format.underlines, code == L'L');
      case L'O':
      case L'o':
        return setRule(m_format.overlines, code == L'O');
      case L'K':
      case L'k':
        return;
      case L'H':
        return setHeight(argument(contents, at));
      case L'W':
        return setNumber(m_format.widthFactor, argument(contents, at), 1.0, oddbIsWidthFactor);
      case L'Q':
        return setNumber(m_format.oblique, argument(contents, at), std::numbers::pi / 180.0,
                         oddbIsObliquingAngle);
      case L'S':
        return addStack(argument(contents, at));
      case L'A':
      case L'C':
      case L'c':
      case L'F':
      case L'f':
      case L'T':
      case L'p':
        (void)argument(contents, at);
        return;
      default:
        m_run.push_back(code);
    }
  }

  // What comes before the next semicolon, and past that.
  static OdString argument(const OdString& contents, int& at) {
    const int end = contents.find(L';', at);
    const int after = end < 0 ? contents.getLength() : end;
    const OdString text = contents.mid(at, after - at);
    at = end < 0 ? after : after + 1;
    return text;
  }

  static bool readNumber(const OdString& text, double& number, bool* isFactor = nullptr) {
    const std::string_view bytes = text.utf8();
    const auto [next, failure] = std::from_chars(bytes.data(), bytes.data() + bytes.size(), number);
    if (isFactor != nullptr) *isFactor = next != bytes.data() + bytes.size() && *next == 'x';
    return failure == std::errc() && std::isfinite(number);
  }

  void setRule(bool& rule, bool isOn) {
    endRun();
    rule = isOn;
  }

  void setHeight(const OdString& text) {
    endRun();
    double number = 0.0;
    bool isFactor = false;
    if (!readNumber(text, number, &isFactor)) return;
    const double height = isFactor ? m_format.height * number : number;
    if (height > 0.0 && std::isfinite(height)) m_format.height = height;
  }

  template <class Check>
  void setNumber(double& member, const OdString& text, double factor, const Check& check) {
    endRun();
    double number = 0.0;
    if (readNumber(text, number) && check(number * factor)) member = number * factor;
  }

  // Upper and lower part above each other; with # beside each other.
  void addStack(const OdString& text) {
    endRun();
    const int split = text.findOneOf(L"^/#");
    if (split < 0 || text.getAt(split) == L'#') {
      OdString level = text;
      level.replace(L'#', L'/');
      return place(level, m_format.height, 0.0);
    }
    Line& line = m_block.m_lines.back();
    const double height = m_format.height;
    const double before = line.width;
    place(text.left(split), height * kStackedHeight, height * kStackedRise);
    const double upper = m_block.m_lines.back().width;
    m_block.m_lines.back().width = before;
    place(text.mid(split + 1), height * kStackedHeight, height * kStackedFall);
    m_block.m_lines.back().width = std::max(upper, m_block.m_lines.back().width);
  }

  void newLine() {
    endRun();
    endLine();
    m_block.m_lines.emplace_back();
  }

  void endRun() {
    if (m_run.empty()) return;
    const OdString text(m_run.c_str());
    m_run.clear();
    place(text, m_format.height, 0.0);
  }

  // Characters follow each other at the gap of the font.
  void place(const OdString& text, double height, double rise) {
    Piece piece;
    piece.text = oddbPlainText(text);
    const bool isSpace = text == L" ";
    const double advance =
        (odgiTextWidth(piece.text.text) + kOdGiCharacterGap) * height * m_format.widthFactor;
    Line* line = &m_block.m_lines.back();
    const double gap = kOdGiCharacterGap * height * m_format.widthFactor;
    const bool isFull =
        m_wrapWidth > 0.0 && !line->pieces.empty() && line->width + advance - gap > m_wrapWidth;
    if (isFull && rise == 0.0) {
      endLine();
      m_block.m_lines.emplace_back();
      line = &m_block.m_lines.back();
      if (isSpace) return;
    }
    const int length = piece.text.text.getLength();
    if (m_format.underlines) piece.text.underlines.push_back({0, length});
    if (m_format.overlines) piece.text.overlines.push_back({0, length});
    piece.x = line->width;
    piece.rise = rise;
    piece.height = height;
    piece.widthFactor = m_format.widthFactor;
    piece.oblique = m_format.oblique;
    line->width += advance;
    m_tallest = std::max(m_tallest, m_format.height);
    m_gap = gap;
    line->pieces.push_back(piece);
  }

  void endLine() {
    Line& line = m_block.m_lines.back();
    // Spaces at the end take no part in alignment, nor does the gap after the last character.
    while (!line.pieces.empty() && line.pieces.back().text.text == L" ") {
      line.width = line.pieces.back().x;
      line.pieces.pop_back();
    }
    if (!line.pieces.empty()) line.width = std::max(0.0, line.width - m_gap);
    const double tallest = m_tallest > 0.0 ? m_tallest : m_base;
    const bool isFirst = m_block.m_lines.size() == 1;
    m_below += isFirst ? tallest : tallest * kLineDistance * m_spacing;
    line.baseLine = m_below;
    m_block.m_width = std::max(m_block.m_width, line.width);
    m_block.m_height = m_below;
    m_tallest = 0.0;
  }

  OdDbTextBlock& m_block;
  double m_wrapWidth;
  double m_spacing;
  Format m_format;
  std::vector<Format> m_groups;
  std::wstring m_run;
  double m_base = 1.0;     // height of an empty line
  double m_tallest = 0.0;  // of the present line
  double m_gap = 0.0;      // after its last piece
  double m_below = 0.0;    // of the last base line, below the top
};

OdDbTextBlock::OdDbTextBlock(const OdString& contents, double height, double widthFactor,
                             double oblique, double wrapWidth, double spacing) {
  OdDbTextBlockMaker(*this, wrapWidth, spacing).read(contents, height, widthFactor, oblique);
}

OdString OdDbTextBlock::plainText() const {
  OdString text;
  for (const Line& line : m_lines) {
    if (&line != m_lines.data()) text += L'\n';
    for (const Piece& piece : line.pieces) text += piece.text.text;
  }
  return text;
}

void OdDbTextBlock::draw(OdGiWorldDraw* context, const OdGePoint3d& location,
                         const OdGeVector3d& xAxis, const OdGeVector3d& yAxis,
                         OdDb::AttachmentPoint attachment) const {
  const double row = (attachment - 1) / 3 / 2.0;
  const double column = (attachment - 1) % 3 / 2.0;
  const OdGePoint3d top = location + yAxis * (m_height * row);
  for (const Line& line : m_lines) {
    const OdGePoint3d start = top - xAxis * (line.width * column) - yAxis * line.baseLine;
    for (const Piece& piece : line.pieces) {
      const OdDbTextLine drawn{start + xAxis * piece.x + yAxis * piece.rise,
                               xAxis,
                               yAxis,
                               piece.height,
                               piece.widthFactor,
                               piece.oblique};
      drawn.draw(context, piece.text);
    }
  }
}
