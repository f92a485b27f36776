// Plain text for people, and the way to standard output.
#include "host/cli/text_output.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <cstdio>
#include <cstring>
#include <numeric>
#include <utility>

#include "host/cli/cli_error.h"
#include "platform/base/utf8.h"

namespace cli {

namespace {

constexpr std::string_view kGap = "  ";
constexpr std::string_view kEllipsis = "\u2026";
/// No column gets narrower than this to make room for others.
constexpr std::size_t kNarrowestColumn = 12;

bool isControl(wchar_t ch) { return ch < 0x20 || (ch >= 0x7F && ch < 0xA0); }
/// A byte that is no UTF-8; see platform/base/utf8.h.
bool isUndecoded(wchar_t ch) { return ch >= 0xDC80 && ch <= 0xDCFF; }

std::string& pendingOutput() {
  static std::string text;
  return text;
}

bool startsCharacter(char byte) { return (static_cast<unsigned char>(byte) & 0xC0u) != 0x80u; }

}  // namespace

std::string str(const OdString& text) { return std::string(text.utf8()); }

std::string str(OdDbHandle handle) { return str(handle.ascii()); }

bool isUtf8(std::string_view text) { return std::ranges::none_of(odUtf8ToWide(text), isUndecoded); }

std::string oneLine(std::string_view text) {
  std::string line;
  line.reserve(text.size());
  for (const wchar_t ch : odUtf8ToWide(text)) {
    if (ch == L'\n') {
      line += "\\n";
    } else if (ch == L'\t') {
      line += "\\t";
    } else if (isControl(ch) || isUndecoded(ch)) {
      std::array<char, 8> escape{};
      std::snprintf(escape.data(), escape.size(), "\\x%02x", static_cast<unsigned>(ch) & 0xFFU);
      line += escape.data();
    } else {
      line += odWideToUtf8({&ch, 1});
    }
  }
  return line;
}

std::string quote(std::string_view text) { return "'" + oneLine(text) + "'"; }

std::string roundedNumber(double value) {
  std::array<char, 32> text{};
  // A minus in front of nothing but zeros says nothing to anybody.
  std::snprintf(text.data(), text.size(), "%.6g", value == 0.0 ? 0.0 : value);
  return text.data();
}

std::string exactNumber(double value) {
  std::array<char, 32> text{};
  const std::to_chars_result result = std::to_chars(text.data(), text.data() + text.size(), value);
  return std::string(text.data(), result.ptr);
}

std::string pointText(const OdGePoint3d& point) {
  return "(" + roundedNumber(point.x) + ", " + roundedNumber(point.y) + ", " +
         roundedNumber(point.z) + ")";
}

std::string byteCount(std::uintmax_t bytes) {
  constexpr std::array<const char*, 4> kUnits{"KiB", "MiB", "GiB", "TiB"};
  if (bytes < 1024) return counted(bytes, "byte");
  double value = static_cast<double>(bytes) / 1024.0;
  std::size_t unit = 0;
  while (value >= 1024.0 && unit + 1 < kUnits.size()) {
    value /= 1024.0;
    ++unit;
  }
  std::array<char, 32> text{};
  std::snprintf(text.data(), text.size(), "%.1f %s", value, kUnits[unit]);
  return text.data();
}

std::string counted(std::uint64_t count, std::string_view noun) {
  return std::to_string(count) + " " + std::string(noun) + (count == 1 ? "" : "s");
}

std::size_t columnsOf(std::string_view text) {
  return static_cast<std::size_t>(std::count_if(text.begin(), text.end(), startsCharacter));
}

std::string shortened(std::string_view text, std::size_t columns) {
  if (columnsOf(text) <= columns) return std::string(text);
  if (columns == 0) return {};
  std::size_t end = 0;
  for (std::size_t kept = 0; end < text.size(); ++end) {
    if (startsCharacter(text[end]) && ++kept == columns) break;
  }
  return std::string(text.substr(0, end)) + std::string(kEllipsis);
}

std::string wrapped(std::string_view text, std::string_view indent, std::size_t width) {
  std::string out;
  while (!text.empty()) {
    std::size_t end = text.size();
    if (columnsOf(text) + indent.size() > width) {
      // The last blank within the width, otherwise the first one after it.
      std::size_t columns = indent.size();
      std::size_t blank = std::string_view::npos;
      for (std::size_t i = 0; i < text.size(); ++i) {
        if (startsCharacter(text[i])) ++columns;
        if (columns > width + 1 && blank != std::string_view::npos) break;
        if (text[i] == ' ') blank = i;
      }
      if (blank != std::string_view::npos) end = blank;
    }
    out += std::string(indent) + std::string(text.substr(0, end)) + "\n";
    text.remove_prefix(std::min(text.size(), end + 1));
  }
  return out;
}

TextTable::TextTable(std::vector<std::pair<std::string, Align>> header, std::string indent)
    : m_indent(std::move(indent)) {
  for (std::pair<std::string, Align>& column : header) {
    m_header.push_back(std::move(column.first));
    m_aligns.push_back(column.second);
  }
}

void TextTable::addRow(std::vector<std::string> cells) {
  cells.resize(m_header.size());
  m_rows.push_back(std::move(cells));
}

std::vector<std::size_t> TextTable::widths() const {
  std::vector<std::size_t> widths(m_header.size());
  for (std::size_t column = 0; column < widths.size(); ++column) {
    widths[column] = columnsOf(m_header[column]);
    for (const std::vector<std::string>& row : m_rows) {
      widths[column] = std::max(widths[column], columnsOf(row[column]));
    }
  }
  const std::size_t fixed = m_indent.size() + kGap.size() * (widths.size() - 1);
  while (std::accumulate(widths.begin(), widths.end(), fixed) > kTextWidth) {
    const auto widest = std::max_element(widths.begin(), widths.end());
    if (*widest <= kNarrowestColumn) break;
    --*widest;
  }
  return widths;
}

void TextTable::appendRow(std::string& out, const std::vector<std::string>& cells,
                          const std::vector<std::size_t>& widths) const {
  std::string line = m_indent;
  for (std::size_t column = 0; column < cells.size(); ++column) {
    if (column != 0) line += kGap;
    const std::string cell = shortened(cells[column], widths[column]);
    const std::string padding(widths[column] - std::min(widths[column], columnsOf(cell)), ' ');
    line += m_aligns[column] == Align::kRight ? padding + cell : cell + padding;
  }
  line.erase(line.find_last_not_of(' ') + 1);
  out += line + "\n";
}

std::string TextTable::text() const {
  if (m_rows.empty()) return {};
  const std::vector<std::size_t> columnWidths = widths();
  std::string out;
  appendRow(out, m_header, columnWidths);
  for (const std::vector<std::string>& row : m_rows) appendRow(out, row, columnWidths);
  return out;
}

void printOut(std::string_view text) { pendingOutput() += text; }

Shown showOutput() {
  const std::string text = std::exchange(pendingOutput(), std::string());
  const std::size_t written = std::fwrite(text.data(), 1, text.size(), stdout);
  if (written == text.size() && std::fflush(stdout) == 0) return Shown::kAll;
  if (errno == EPIPE) return Shown::kReaderGone;
  throw CliError(std::string("standard output cannot be written: ") + std::strerror(errno));
}

void printError(std::string_view line) {
  const std::string whole = "vdm: " + oneLine(line) + "\n";
  std::fwrite(whole.data(), 1, whole.size(), stderr);
}

}  // namespace cli
