// Tables in files of comma-separated values. The only source that sees the CSV library.
//
// The library splits bytes into fields and rows; it knows neither encodings nor where a field is in
// the file. So the bytes become UTF-8 first, and lines are counted here: the bytes are handed over
// line by line, and a row begins on the line that is read while none is open.
#include "host/parameters/table_file.h"

#include <csv.h>

#include <algorithm>
#include <array>
#include <string_view>

#include "platform/base/text_encoding.h"

namespace vdm_host {
namespace {

OdStatus refuse(unsigned line, const wchar_t* what) {
  return {eInvalidInput, OdString().format(L"line %u: %ls", line, what)};
}

// ---- Encoding

struct MarkRow {
  std::string_view mark;
  const wchar_t* encoding;
};
constexpr MarkRow kMarks[] = {
    {"\xEF\xBB\xBF", L"UTF-8"},
    {"\xFF\xFE", L"UTF-16LE"},
    {"\xFE\xFF", L"UTF-16BE"},
};

bool decode(std::string_view bytes, OdString& text) {
  const wchar_t* encoding = L"UTF-8";
  for (const MarkRow& row : kMarks) {
    if (!bytes.starts_with(row.mark)) continue;
    bytes.remove_prefix(row.mark.size());
    encoding = row.encoding;
    break;
  }
  return OdTextDecoder(OdString(encoding)).decode(bytes, text);
}

// ---- Separator

char separatorOf(std::string_view text) {
  constexpr std::string_view kSeparators = ",;\t";
  std::array<std::size_t, kSeparators.size()> counts{};
  bool isQuoted = false;
  for (const char ch : text) {
    if (ch == '"') isQuoted = !isQuoted;
    if (isQuoted) continue;
    if (ch == '\n' || ch == '\r') break;
    const std::size_t at = kSeparators.find(ch);
    if (at != std::string_view::npos) ++counts[at];
  }
  return kSeparators[static_cast<std::size_t>(std::ranges::max_element(counts) - counts.begin())];
}

// ---- Parsing

/// Up to the end of the first line, which is LF, CR LF or CR, that included.
std::size_t lineLength(std::string_view text) {
  const std::size_t end = text.find_first_of("\r\n");
  if (end == std::string_view::npos) return text.size();
  return text.substr(end).starts_with("\r\n") ? end + 2 : end + 1;
}

class Parser {
 public:
  explicit Parser(char separator) {
    csv_init(&m_parser, CSV_STRICT | CSV_STRICT_FINI);
    csv_set_delim(&m_parser, static_cast<unsigned char>(separator));
    csv_set_space_func(&m_parser, [](unsigned char) { return 0; });  // cells keep their blanks
  }
  ~Parser() { csv_free(&m_parser); }
  Parser(const Parser&) = delete;
  Parser& operator=(const Parser&) = delete;

  OdStatus parse(std::string_view text) {
    for (unsigned line = 1; !text.empty(); ++line) {
      const std::string_view part = text.substr(0, lineLength(text));
      text.remove_prefix(part.size());
      const bool isBlank = part.find_first_not_of("\r\n") == std::string_view::npos;
      if (isBlank && !m_isInRow) continue;
      if (!m_isInRow) m_firstLine = line;
      m_isInRow = true;
      if (csv_parse(&m_parser, part.data(), part.size(), &onField, &onRow, this) != part.size()) {
        return refuse(line, L"a quote is inside a cell that is not quoted, or not doubled");
      }
    }
    if (csv_fini(&m_parser, &onField, &onRow, this) == 0) return {};
    return refuse(m_firstLine, L"a quoted cell that begins in this row has no end");
  }

  std::vector<std::vector<OdString>> rows;
  std::vector<unsigned> lines;

 private:
  static void onField(void* bytes, std::size_t size, void* self) {
    auto* parser = static_cast<Parser*>(self);
    parser->m_row.emplace_back(static_cast<const char*>(bytes), size);
  }
  static void onRow(int /*terminator*/, void* self) {
    auto* parser = static_cast<Parser*>(self);
    parser->rows.push_back(std::move(parser->m_row));
    parser->lines.push_back(parser->m_firstLine);
    parser->m_row.clear();
    parser->m_isInRow = false;
  }

  csv_parser m_parser{};
  std::vector<OdString> m_row;
  unsigned m_firstLine = 1;
  bool m_isInRow = false;
};

bool isBlankRow(const std::vector<OdString>& row) {
  return std::ranges::all_of(row, [](const OdString& cell) { return cell.isEmpty(); });
}

/// Quoted where a reader could take a character for something else: any separator, since a reader
/// finds out which one is meant, and a mark at the beginning.
std::string cellText(const OdString& cell) {
  const std::string text(cell.utf8());
  const bool needsQuotes = text.find_first_of("\"\r\n,;\t") != std::string::npos ||
                           text.starts_with(kMarks[0].mark) || text.starts_with(' ') ||
                           text.ends_with(' ');
  if (!needsQuotes) return text;
  std::string quoted = "\"";
  for (const char ch : text) {
    if (ch == '"') quoted += '"';
    quoted += ch;
  }
  return quoted + '"';
}

}  // namespace

OdStatus readTable(const std::string& bytes, TableSheet& sheet) {
  OdString text;
  if (!decode(bytes, text)) return refuse(1, L"the file is no text in UTF-8 or UTF-16");
  const std::string utf8(text.utf8());
  TableSheet read;
  read.separator = separatorOf(utf8);
  Parser parser(read.separator);
  if (OdStatus status = parser.parse(utf8); !status.ok()) return status;
  std::size_t columns = 0;
  for (const auto& row : parser.rows) columns = std::max(columns, row.size());
  read.columns = static_cast<unsigned>(columns);
  for (std::size_t i = 0; i < parser.rows.size(); ++i) {
    if (isBlankRow(parser.rows[i])) continue;
    for (std::size_t k = 0; k < columns; ++k) {
      read.cells.append(k < parser.rows[i].size() ? parser.rows[i][k] : OdString());
    }
    read.lines.push_back(parser.lines[i]);
  }
  read.rows = static_cast<unsigned>(read.lines.size());
  sheet = std::move(read);
  return {};
}

std::string writeTable(const TableSheet& sheet) {
  std::string text;
  for (unsigned row = 0; row < sheet.rows; ++row) {
    for (unsigned column = 0; column < sheet.columns; ++column) {
      if (column > 0) text += sheet.separator;
      text += cellText(sheet.at(row, column));
    }
    text += "\r\n";
  }
  return text;
}

}  // namespace vdm_host
