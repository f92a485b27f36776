// The text of a STEP file, instance by instance, as its writer wrote it.
//
// The format is a sequence of statements that end in ';'. Inside a statement only two things hide
// characters: quoted texts, in which a quote is doubled, and comments. So one loop over the
// characters finds the statements, and notes references and quoted texts on the way. A statement
// that makes no sense is a fault; reading goes on after it. When a quoted text is never closed, the
// rest of the file is one statement, and the fault says where it begins.
#include "platform/modeler_occt/step_text.h"

#include <algorithm>
#include <charconv>

namespace od_occt {
namespace {

bool isSpace(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n' || c == '\f'; }
bool isDigit(char c) { return c >= '0' && c <= '9'; }
bool isTypeCharacter(char c) {
  return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || isDigit(c) || c == '_' || c == '!';
}
// A character that does not simply mean itself in a quoted text, or that begins the keys that stand
// for such texts elsewhere.
bool isSpecial(char c) {
  const auto byte = static_cast<unsigned char>(c);
  return byte < 0x20 || byte >= 0x7F || c == '\\' || c == '@';
}

std::string_view trimmed(std::string_view text) {
  while (!text.empty() && isSpace(text.front())) text.remove_prefix(1);
  while (!text.empty() && isSpace(text.back())) text.remove_suffix(1);
  return text;
}

// The place after a quoted text that begins at `at`, or the end of the text.
std::size_t afterQuoted(std::string_view text, std::size_t at) {
  for (std::size_t i = at + 1; i < text.size(); ++i) {
    if (text[i] != '\'') continue;
    if (i + 1 == text.size() || text[i + 1] != '\'') return i + 1;
    ++i;
  }
  return text.size();
}

bool startsComment(std::string_view text, std::size_t at) {
  return text[at] == '/' && at + 1 < text.size() && text[at + 1] == '*';
}

std::size_t afterComment(std::string_view text, std::size_t at) {
  const std::size_t end = text.find("*/", at + 2);
  return end == std::string_view::npos ? text.size() : end + 2;
}

// Space and comments.
std::size_t afterBlank(std::string_view text, std::size_t at) {
  while (at < text.size()) {
    if (isSpace(text[at])) {
      ++at;
    } else if (startsComment(text, at)) {
      at = afterComment(text, at);
    } else {
      break;
    }
  }
  return at;
}

std::string_view typeAt(std::string_view text, std::size_t at) {
  std::size_t end = at;
  while (end < text.size() && isTypeCharacter(text[end])) ++end;
  return text.substr(at, end - at);
}

// The place after the parenthesis that closes the one at `at`, or the end of the text.
std::size_t afterGroup(std::string_view text, std::size_t at) {
  std::size_t depth = 0;
  while (at < text.size()) {
    if (text[at] == '\'') {
      at = afterQuoted(text, at);
      continue;
    }
    if (startsComment(text, at)) {
      at = afterComment(text, at);
      continue;
    }
    if (text[at] == '(') ++depth;
    if (text[at] == ')' && --depth == 0) return at + 1;
    ++at;
  }
  return at;
}

// The pieces between the commas of "(a, (b, c), 'd')".
std::vector<std::string_view> split(std::string_view group) {
  std::vector<std::string_view> pieces;
  if (group.size() < 2 || group.front() != '(' || group.back() != ')') return pieces;
  group = group.substr(1, group.size() - 2);
  std::size_t from = 0;
  std::size_t at = 0;
  while (at < group.size()) {
    if (group[at] == '\'') {
      at = afterQuoted(group, at);
    } else if (startsComment(group, at)) {
      at = afterComment(group, at);
    } else if (group[at] == '(') {
      at = afterGroup(group, at);
    } else if (group[at] == ',') {
      pieces.push_back(trimmed(group.substr(from, at - from)));
      from = ++at;
    } else {
      ++at;
    }
  }
  const std::string_view last = trimmed(group.substr(from));
  if (!pieces.empty() || !last.empty()) pieces.push_back(last);
  return pieces;
}

// Calls visit(type, group) for each part of a record, until it returns true.
template <class Visit>
void visitParts(std::string_view record, Visit visit) {
  const bool isComplex = !record.empty() && record.front() == '(';
  std::size_t at = isComplex ? 1 : 0;
  while (at < record.size()) {
    at = afterBlank(record, at);
    const std::string_view type = typeAt(record, at);
    if (type.empty()) return;
    const std::size_t open = afterBlank(record, at + type.size());
    if (open >= record.size() || record[open] != '(') return;
    const std::size_t end = afterGroup(record, open);
    if (visit(type, record.substr(open, end - open)) || !isComplex) return;
    at = end;
  }
}

// The argument of LABEL('x'); other texts as they are.
std::string_view unwrapped(std::string_view argument) {
  const std::size_t open = argument.find('(');
  if (open == std::string_view::npos || typeAt(argument, 0).empty()) return argument;
  const std::vector<std::string_view> inner = split(argument.substr(open));
  return inner.size() == 1 ? inner.front() : argument;
}

template <class Value>
std::optional<Value> parsed(std::string_view text) {
  Value value{};
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return value;
}

}  // namespace

// ---- The pass over the text.

class StepText::Scanner {
 public:
  explicit Scanner(StepText& file) : m_file(file), m_text(file.m_text) {}

  void run() {
    while ((m_at = afterBlank(m_text, m_at)) < m_text.size()) {
      const Statement statement = next();
      if (!statement.isClosed) {
        fault(statement, "is not closed by ';'");
        return;
      }
      if (!take(statement)) return;
    }
  }

 private:
  enum class Section { kNone, kHeader, kData, kReference, kOther };
  struct Statement {
    std::size_t at = 0;
    std::size_t length = 0;
    std::size_t firstReference = 0;
    std::size_t firstLiteral = 0;
    bool isClosed = false;
  };

  // The statement at the present place; the place is then after it.
  Statement next() {
    Statement statement{m_at, 0, m_file.m_references.size(), m_file.m_literals.size(), false};
    while (m_at < m_text.size() && m_text[m_at] != ';') {
      if (m_text[m_at] == '\'') {
        quoted();
      } else if (startsComment(m_text, m_at)) {
        m_at = afterComment(m_text, m_at);
      } else if (m_text[m_at] == '#') {
        reference();
      } else {
        ++m_at;
      }
    }
    statement.length = m_at - statement.at;
    statement.isClosed = m_at < m_text.size();
    ++m_at;
    return statement;
  }

  void quoted() {
    const std::size_t end = afterQuoted(m_text, m_at);
    const std::string_view content = m_text.substr(m_at + 1, end - m_at - 2);
    if (end > m_at + 1 && std::ranges::any_of(content, isSpecial)) {
      m_file.m_literals.push_back({m_at + 1, content.size(), 0});
    }
    m_at = end;
  }

  void reference() {
    const std::size_t from = ++m_at;
    while (m_at < m_text.size() && isDigit(m_text[m_at])) ++m_at;
    if (const auto id = parsed<OdUInt64>(m_text.substr(from, m_at - from))) {
      m_file.m_references.push_back(*id);
    }
  }

  // False at the end of the file.
  bool take(const Statement& statement) {
    const std::string_view text = trimmed(m_text.substr(statement.at, statement.length));
    const std::string_view word = typeAt(text, 0);
    if (m_section == Section::kHeader && word != "ENDSEC") {
      addHeader(statement, text);
    } else if (m_section == Section::kData && word != "ENDSEC") {
      addInstance(statement, text);
    } else {
      if (m_section == Section::kReference) addReferencedFile(text);
      return enter(word, text);
    }
    return true;
  }

  bool enter(std::string_view word, std::string_view text) {
    if (text.starts_with("END-ISO-10303-21")) return false;
    if (word == "ENDSEC") {
      m_file.m_isClosed = m_file.m_isClosed || m_section == Section::kData;
      m_section = Section::kNone;
    }
    if (m_section != Section::kNone) return true;
    if (word == "HEADER") m_section = Section::kHeader;
    if (word == "DATA") m_section = Section::kData;
    if (word == "REFERENCE") m_section = Section::kReference;
    if (word == "ANCHOR" || word == "SIGNATURE") m_section = Section::kOther;
    return true;
  }

  void addHeader(const Statement& statement, std::string_view text) {
    m_file.m_header.push_back({0, offset(text), text.size(), statement.firstReference, 0});
  }

  void addInstance(const Statement& statement, std::string_view text) {
    if (!text.starts_with('#')) return drop(statement, "is no instance");
    std::size_t at = 1;
    while (at < text.size() && isDigit(text[at])) ++at;
    const auto id = parsed<OdUInt64>(text.substr(1, at - 1));
    at = afterBlank(text, at);
    if (!id || *id == 0 || at >= text.size() || text[at] != '=') {
      return drop(statement, "is no instance");
    }
    const std::size_t body = afterBlank(text, at + 1);
    const std::string_view record = text.substr(body);
    if (!isRecord(record)) return drop(statement, "is no record");
    if (!m_file.m_rows.emplace(*id, m_file.m_instances.size()).second) {
      m_file.m_repeated.push_back({*id, statement.at, statement.length + 1});
      return forget(statement);
    }
    for (std::size_t i = statement.firstLiteral; i < m_file.m_literals.size(); ++i) {
      m_file.m_literals[i].instance = *id;
    }
    // The first reference is the instance's own number.
    const std::size_t first = statement.firstReference + 1;
    m_file.m_instances.push_back(
        {*id, offset(record), record.size(), first, m_file.m_references.size() - first});
  }

  // TYPE(...) or (TYPE(...) TYPE(...)), and nothing after it.
  static bool isRecord(std::string_view record) {
    bool hasPart = false;
    visitParts(record, [&](std::string_view, std::string_view) { return hasPart = true; });
    if (!hasPart) return false;
    const std::size_t end = afterGroup(record, afterBlank(record, typeAt(record, 0).size()));
    return record[end - 1] == ')' && afterBlank(record, end) == record.size();
  }

  // '<name.stp#12>' after the sign of equality.
  void addReferencedFile(std::string_view text) {
    const std::size_t from = text.find('<');
    const std::size_t to = text.find_first_of("#>", from == std::string_view::npos ? 0 : from);
    if (from == std::string_view::npos || to == std::string_view::npos || to == from + 1) return;
    std::string name(text.substr(from + 1, to - from - 1));
    auto& known = m_file.m_referencedFiles;
    if (std::ranges::find(known, name) == known.end()) known.push_back(std::move(name));
  }

  void drop(const Statement& statement, const char* why) {
    forget(statement);
    fault(statement, why);
  }

  void forget(const Statement& statement) {
    m_file.m_references.resize(statement.firstReference);
    m_file.m_literals.resize(statement.firstLiteral);
  }

  void fault(const Statement& statement, const char* why) {
    const std::size_t at = statement.at;
    constexpr std::size_t kShown = 40;
    m_line +=
        static_cast<std::size_t>(std::ranges::count(m_text.substr(m_lineAt, at - m_lineAt), '\n'));
    m_lineAt = at;
    std::string shown(m_text.substr(at, kShown));
    shown.erase(std::ranges::find_if(shown, isSpecial), shown.end());
    m_file.m_faults.push_back(
        {at, statement.length + (statement.isClosed ? 1U : 0U), m_line, "'" + shown + "' " + why});
  }

  [[nodiscard]] std::size_t offset(std::string_view part) const {
    return static_cast<std::size_t>(part.data() - m_text.data());
  }

  StepText& m_file;
  std::string_view m_text;
  std::size_t m_at = 0;
  Section m_section = Section::kNone;
  std::size_t m_line = 1;  // of m_lineAt
  std::size_t m_lineAt = 0;
};

StepText::StepText(std::string text) : m_text(std::move(text)) { Scanner(*this).run(); }

// ---- Queries.

const StepInstance* StepText::find(OdUInt64 id) const {
  const auto row = m_rows.find(id);
  return row == m_rows.end() ? nullptr : &m_instances[row->second];
}

std::span<const OdUInt64> StepText::references(const StepInstance& instance) const {
  return std::span(m_references).subspan(instance.firstReference, instance.numReferences);
}

// An instance of one type needs no look at its arguments.
std::vector<std::string_view> StepText::types(const StepInstance& instance) const {
  const std::string_view record = text().substr(instance.at, instance.length);
  if (!record.starts_with('(')) return {typeAt(record, 0)};
  std::vector<std::string_view> types;
  visitParts(record, [&](std::string_view type, std::string_view) {
    types.push_back(type);
    return false;
  });
  return types;
}

bool StepText::isA(const StepInstance& instance, std::string_view type) const {
  const std::string_view record = text().substr(instance.at, instance.length);
  if (!record.starts_with('(')) return typeAt(record, 0) == type;
  bool found = false;
  visitParts(record, [&](std::string_view its, std::string_view) { return found = its == type; });
  return found;
}

std::vector<std::string_view> StepText::arguments(const StepInstance& instance,
                                                  std::string_view type) const {
  std::vector<std::string_view> result;
  if (!isA(instance, type)) return result;
  visitParts(text().substr(instance.at, instance.length),
             [&](std::string_view its, std::string_view group) {
               if (its != type) return false;
               result = split(group);
               return true;
             });
  return result;
}

std::vector<std::string_view> StepText::arguments(const StepInstance& instance) const {
  std::vector<std::string_view> result;
  visitParts(text().substr(instance.at, instance.length),
             [&](std::string_view, std::string_view group) {
               result = split(group);
               return true;
             });
  return result;
}

std::vector<std::string_view> StepText::elements(std::string_view argument) {
  return split(argument);
}

std::optional<OdUInt64> StepText::reference(std::string_view argument) {
  if (!argument.starts_with('#')) return std::nullopt;
  return parsed<OdUInt64>(argument.substr(1));
}

std::optional<std::string_view> StepText::literal(std::string_view argument) {
  argument = unwrapped(argument);
  if (argument.size() < 2 || argument.front() != '\'' || argument.back() != '\'') {
    return std::nullopt;
  }
  return argument.substr(1, argument.size() - 2);
}

std::optional<double> StepText::number(std::string_view argument) {
  argument = unwrapped(argument);
  if (argument.starts_with('+')) argument.remove_prefix(1);
  return parsed<double>(argument);
}

}  // namespace od_occt
