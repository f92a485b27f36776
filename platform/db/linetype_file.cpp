// Text files of line type definitions.
#include "platform/db/linetype_file.h"

#include <charconv>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <numbers>
#include <string>

#include "platform/db/database.h"
#include "platform/rx/module.h"

namespace {

constexpr std::size_t kMaxFileBytes = 1 << 22;

/// Walks over one line.
class LineReader {
 public:
  LineReader(std::string_view line, std::size_t number) : m_line(line), m_number(number) {}

  void skipBlanks() {
    while (m_at < m_line.size() && (m_line[m_at] == ' ' || m_line[m_at] == '\t')) ++m_at;
  }
  [[nodiscard]] bool atEnd() {
    skipBlanks();
    return m_at >= m_line.size();
  }
  /// Takes a character when it is the next one.
  bool take(char character) {
    skipBlanks();
    if (m_at >= m_line.size() || m_line[m_at] != character) return false;
    ++m_at;
    return true;
  }
  /// One character whatever it is; 0 at the end.
  char takeAny() {
    skipBlanks();
    return m_at < m_line.size() ? m_line[m_at++] : '\0';
  }
  bool takeNumber(double& number) {
    skipBlanks();
    take('+');
    const char* const begin = m_line.data() + m_at;
    const char* const end = m_line.data() + m_line.size();
    const auto [next, failure] = std::from_chars(begin, end, number);
    if (failure != std::errc() || !std::isfinite(number)) return false;
    m_at += static_cast<std::size_t>(next - begin);
    return true;
  }
  /// What comes before one of the characters, without blanks at its ends.
  std::string_view takeUntil(std::string_view ends) {
    skipBlanks();
    const std::size_t end = std::min(m_line.find_first_of(ends, m_at), m_line.size());
    std::string_view word = m_line.substr(m_at, end - m_at);
    m_at = end;
    while (!word.empty() && (word.back() == ' ' || word.back() == '\t')) word.remove_suffix(1);
    return word;
  }
  [[nodiscard]] std::string_view rest() {
    skipBlanks();
    return m_line.substr(m_at);
  }

  [[nodiscard]] OdStatus expected(const char* what) const {
    const std::string found = m_at < m_line.size()
                                  ? "'" + std::string(m_line.substr(m_at, 20)) + "'"
                                  : std::string("the end of the line");
    return failed(eCorruptData, std::string("expected ") + what + ", found " + found);
  }
  [[nodiscard]] OdStatus failed(OdResult code, const std::string& text) const {
    return {code, OdString("line " + std::to_string(m_number) + ", column " +
                           std::to_string(m_at + 1) + ": " + text)};
  }

 private:
  std::string_view m_line;
  std::size_t m_number;
  std::size_t m_at = 0;
};

double radiansOf(double angle, LineReader& line) {
  if (line.take('r')) return angle;
  if (line.take('g')) return angle * std::numbers::pi / 200.0;
  line.take('d');
  return angle * std::numbers::pi / 180.0;
}

OdStatus readAttribute(LineReader& line, OdDbDashText& text) {
  const char letter = line.takeAny();
  double number = 0.0;
  if (!line.take('=')) return line.expected("one of S=, R=, A=, U=, X=, Y=");
  if (!line.takeNumber(number)) return line.expected("a number");
  switch (letter) {
    case 'S':
    case 's':
      if (number <= 0.0) return line.failed(eCorruptData, "a scale that is not positive");
      text.scale = number;
      return {};
    case 'X':
    case 'x':
      text.offset.x = number;
      return {};
    case 'Y':
    case 'y':
      text.offset.y = number;
      return {};
    case 'R':
    case 'r':
    case 'A':
    case 'a':
    case 'U':
    case 'u':
      text.isAbsolute = letter == 'A' || letter == 'a';
      text.isUpright = letter == 'U' || letter == 'u';
      text.rotation = radiansOf(number, line);
      return {};
    default:
      return line.failed(eCorruptData, std::string("unknown attribute ") + letter);
  }
}

// After the opening bracket.
OdStatus readText(LineReader& line, OdDbDashText& text) {
  text.isShape = !line.take('"');
  text.text = OdString::fromUtf8(line.takeUntil(text.isShape ? ",]" : "\""));
  if (!text.isShape && !line.take('"')) return line.expected("a closing quote");
  if (text.text.isEmpty()) return line.expected("a text or the name of a shape");
  if (!line.take(',')) return line.expected("a comma and a text style or shape file");
  text.font = OdString::fromUtf8(line.takeUntil(",]"));
  while (line.take(',')) {
    if (const OdStatus status = readAttribute(line, text); !status.ok()) return status;
  }
  return line.take(']') ? OdStatus() : line.expected("a closing bracket");
}

OdStatus readHead(LineReader line, OdDbLinetypeDefinition& linetype) {
  line.take('*');
  linetype.name = OdString::fromUtf8(line.takeUntil(","));
  if (!odDbIsValidRecordName(linetype.name)) {
    return line.failed(eCorruptData, "the name is not one that a table takes");
  }
  if (line.take(',')) linetype.description = OdString::fromUtf8(line.rest());
  return {};
}

OdStatus readPattern(LineReader line, OdDbLinetypeDefinition& linetype) {
  if (!line.take('A') && !line.take('a')) return line.expected("a pattern that begins with A");
  while (line.take(',')) {
    if (line.take('[')) {
      OdDbDashText text;
      text.dash = static_cast<OdInt32>(linetype.dashes.size()) - 1;
      if (text.dash < 0) return line.expected("a length before the first text");
      if (const OdStatus status = readText(line, text); !status.ok()) return status;
      if (linetype.texts.size() == OdDbLinetypeTableRecord::kMaxTexts) {
        return line.failed(eLimitExceeded, "more than 12 texts");
      }
      linetype.texts.append(text);
      continue;
    }
    double length = 0.0;
    if (!line.takeNumber(length)) return line.expected("a length");
    if (linetype.dashes.size() == OdDbLinetypeTableRecord::kMaxDashes) {
      return line.failed(eLimitExceeded, "more than 12 lengths");
    }
    linetype.dashes.append(length);
  }
  if (!line.atEnd()) return line.expected("a comma");
  double period = 0.0;
  for (const double dash : linetype.dashes) period += std::abs(dash);
  if (linetype.dashes.size() < 2 || !(period > 0.0)) {
    return line.failed(eCorruptData, "a pattern needs two lengths or more, not all of them 0");
  }
  return {};
}

bool isDefined(const std::vector<OdDbLinetypeDefinition>& linetypes, const OdString& name) {
  for (const OdDbLinetypeDefinition& other : linetypes) {
    if (other.name.iEquals(name)) return true;
  }
  return false;
}

OdStatus readFile(const OdString& path, std::string& text) {
  std::error_code failure;
  const std::filesystem::path file{std::string(path.utf8())};
  if (!std::filesystem::exists(file, failure)) return {eFileNotFound, OdString("file ") + path};
  const std::uintmax_t size = std::filesystem::file_size(file, failure);
  if (failure) return {eFileAccess, OdString("file ") + path + ": " + failure.message().c_str()};
  if (size > kMaxFileBytes) {
    return {eLimitExceeded, OdString("file ") + path + ": " + std::to_string(size).c_str() +
                                " bytes, at most " + std::to_string(kMaxFileBytes).c_str()};
  }
  std::ifstream stream(file, std::ios::binary);
  text.assign(std::istreambuf_iterator<char>(stream), {});
  if (stream.bad() || text.size() != size) return {eFileAccess, OdString("file ") + path};
  return {};
}

void store(OdDbLinetypeTable& table, const OdDbLinetypeDefinition& linetype) {
  OdDbLinetypeTableRecordPtr record =
      OdDbLinetypeTableRecord::cast(table.getAt(linetype.name, OdDb::kForWrite));
  const bool isNew = record.isNull();
  if (isNew) {
    record = OdDbLinetypeTableRecord::createObject();
    record->setName(linetype.name);
  }
  record->setComments(linetype.description);
  record->setDashes(linetype.dashes);
  record->setTexts(linetype.texts);
  if (isNew) table.add(record);
}

}  // namespace

OdStatus oddbParseLinetypes(std::string_view text, std::vector<OdDbLinetypeDefinition>& linetypes) {
  std::vector<OdDbLinetypeDefinition> found;
  bool wantsPattern = false;
  std::size_t number = 0;
  constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
  if (text.starts_with(kByteOrderMark)) text.remove_prefix(kByteOrderMark.size());
  while (!text.empty()) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    std::string_view content = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    ++number;
    if (!content.empty() && content.back() == '\r') content.remove_suffix(1);
    LineReader line(content, number);
    if (line.atEnd() || line.rest().front() == ';') continue;
    const bool isHead = line.rest().front() == '*';
    if (isHead == wantsPattern) {
      return line.expected(wantsPattern ? "a pattern that begins with A" : "* and a name");
    }
    OdDbLinetypeDefinition head;
    const OdStatus status = isHead ? readHead(line, head) : readPattern(line, found.back());
    if (!status.ok()) return status;
    if (isHead && isDefined(found, head.name)) {
      return line.failed(eDuplicateKey,
                         "line type '" + std::string(head.name.utf8()) + "' comes twice");
    }
    if (isHead) found.push_back(head);
    wantsPattern = isHead;
  }
  if (wantsPattern) {
    return {eCorruptData, OdString("line type '") + found.back().name + "' has no pattern"};
  }
  linetypes = std::move(found);
  return {};
}

OdStatus oddbLoadLinetypes(OdDbDatabase& database, const OdString& name, const OdString& path,
                           OdDb::DuplicateLinetypeLoading duplicates) {
  std::string text;
  if (OdStatus status = readFile(path, text); !status.ok()) return status;
  std::vector<OdDbLinetypeDefinition> linetypes;
  if (OdStatus status = oddbParseLinetypes(text, linetypes); !status.ok()) {
    return {status.code, path + ", " + status.text};
  }
  const bool wantsAll = name == L"*";
  if (!wantsAll && !isDefined(linetypes, name)) {
    return {eKeyNotFound, OdString("line type '") + name + "' in " + path};
  }
  const OdDbLinetypeTablePtr table =
      database.getLinetypeTableId().safeOpenAs<OdDbLinetypeTable>(OdDb::kForWrite);
  if (!wantsAll && duplicates == OdDb::kDltNotApplicable && table->has(name)) {
    return {eDuplicateRecordName, OdString("line type '") + name + "'"};
  }
  for (const OdDbLinetypeDefinition& linetype : linetypes) {
    if (!wantsAll && !linetype.name.iEquals(name)) continue;
    if (table->has(linetype.name) && duplicates != OdDb::kDltReplace) continue;
    store(*table, linetype);
  }
  return {};
}

OdString oddbStandardLinetypeFile() {
  namespace fs = std::filesystem;
  const OdString library =
      odrxModuleFileName(nullptr, reinterpret_cast<const void*>(&oddbStandardLinetypeFile));
  const fs::path folder = fs::path(std::string(library.utf8())).parent_path();
  // As built, and as installed.
  for (const char* data : {"../share/vdm_db", VDM_LIB_TO_DATA}) {
    std::error_code failure;
    const fs::path file = (folder / data / "standard.lin").lexically_normal();
    if (fs::is_regular_file(file, failure)) return OdString(file.string());
  }
  return {};
}
