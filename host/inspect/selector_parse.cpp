// The grammar of selectors, by recursive descent.
#include <cctype>
#include <charconv>
#include <cmath>

#include "host/inspect/selector_node.h"

namespace vdm_host {

namespace {

using Argument = SelectorArgument;
using Kind = SelectorNode::Kind;
using NodePtr = std::unique_ptr<SelectorNode>;

constexpr int kMaxDepth = 50;
constexpr std::size_t kMaxLength = 10'000;

/// What is wrong, where.
struct SelectorFault {
  std::size_t at = 0;
  std::string what;
};

class SelectorParser {
 public:
  SelectorParser(std::string_view text, std::size_t start, OdModelerSubentType type)
      : m_text(text), m_at(start), m_type(type) {}

  NodePtr parseAll() {
    NodePtr root = any(0);
    skipBlanks();
    if (m_at < m_text.size()) fail("expected '&', '|' or the end");
    return root;
  }

 private:
  [[noreturn]] void fail(std::string what) const { throw SelectorFault{m_at, std::move(what)}; }

  void skipBlanks() {
    while (m_at < m_text.size() && std::isspace(static_cast<unsigned char>(m_text[m_at])) != 0)
      ++m_at;
  }
  [[nodiscard]] bool isNext(std::string_view token) {
    skipBlanks();
    return m_text.substr(m_at).starts_with(token);
  }
  bool take(std::string_view token) {
    if (!isNext(token)) return false;
    m_at += token.size();
    return true;
  }

  NodePtr any(int depth) {
    return joined(Kind::kAny, "|", [this, depth] {
      return joined(Kind::kAll, "&", [this, depth] { return term(depth); });
    });
  }

  /// One part, or several with a sign between.
  template <class Part>
  NodePtr joined(Kind kind, std::string_view sign, const Part& part) {
    NodePtr first = part();
    if (!isNext(sign)) return first;
    NodePtr node = std::make_unique<SelectorNode>();
    node->kind = kind;
    node->parts.push_back(std::move(first));
    while (take(sign)) node->parts.push_back(part());
    return node;
  }

  NodePtr term(int depth) {
    if (depth > kMaxDepth)
      fail("brackets are nested more than " + std::to_string(kMaxDepth) + " deep");
    if (take("!")) {
      NodePtr node = std::make_unique<SelectorNode>();
      node->kind = Kind::kNot;
      node->parts.push_back(term(depth + 1));
      return node;
    }
    if (take("(")) {
      NodePtr node = any(depth + 1);
      if (!take(")")) fail("expected ')'");
      return node;
    }
    return test();
  }

  NodePtr test() {
    skipBlanks();
    const std::size_t start = m_at;
    NodePtr node = std::make_unique<SelectorNode>();
    const std::string name = word();
    if (name.empty()) {
      fail(m_at < m_text.size() ? "expected a condition" : "expected a condition, the text ends");
    }
    if (isSubentName(name)) {
      node->word = findSelectorWord("of");
      node->name = name;
    } else {
      node->word = findSelectorWord(name);
      requireWord(start, name, node->word);
      readArgument(*node);
    }
    node->text = std::string(m_text.substr(start, m_at - start));
    while (!node->text.empty() && node->text.back() == ' ') node->text.pop_back();
    return node;
  }

  void requireWord(std::size_t start, const std::string& name, const SelectorWord* found) {
    const std::string_view types = found == nullptr ? "" : found->types;
    if (types.find(selectorLetter(m_type)) != std::string_view::npos) return;
    m_at = start;
    constexpr const char* kPlurals[] = {"", "faces", "edges", "vertices"};
    const std::string plural = kPlurals[static_cast<std::size_t>(m_type)];
    fail("'" + name + "' is " + (found == nullptr ? "no condition" : "no condition for " + plural) +
         "; " + plural + " have " + selectorWordsOf(m_type));
  }

  void readArgument(SelectorNode& node) {
    switch (node.word->argument) {
      case Argument::kNone:
        return;
      case Argument::kRange:
        node.range = range(node.word->word);
        return;
      case Argument::kDirection:
        if (!take("=")) fail("expected '=' and a direction such as z, -x or 1,0,1");
        node.direction = direction();
        return;
      case Argument::kPoint:
        node.point = point();
        return;
      case Argument::kName:
        node.name = quotedOrPlain();
        return;
    }
  }

  std::string word() {
    skipBlanks();
    const std::size_t start = m_at;
    while (m_at < m_text.size() &&
           (std::isalnum(static_cast<unsigned char>(m_text[m_at])) != 0 || m_text[m_at] == '_')) {
      ++m_at;
    }
    return std::string(m_text.substr(start, m_at - start));
  }

  static bool isSubentName(const std::string& name) {
    return name.size() > 2 && name[1] == '_' &&
           std::string_view("fev").find(name[0]) != std::string_view::npos &&
           name.find_first_not_of("0123456789", 2) == std::string::npos;
  }

  double number(const char* expected) {
    skipBlanks();
    double value = 0.0;
    const char* begin = m_text.data() + m_at;
    const auto [end, error] = std::from_chars(begin, m_text.data() + m_text.size(), value);
    if (error != std::errc() || !std::isfinite(value)) fail(std::string("expected ") + expected);
    m_at += static_cast<std::size_t>(end - begin);
    // "4..6": the first dot belongs to the range.
    if (end[-1] == '.' && isNext(".")) --m_at;
    return value;
  }

  SelectorRange range(const char* what) {
    SelectorRange range;
    if (take("<=")) {
      range.high = number("a number");
    } else if (take(">=")) {
      range.low = number("a number");
    } else if (take("<")) {
      range.high = number("a number");
      range.withHigh = false;
    } else if (take(">")) {
      range.low = number("a number");
      range.withLow = false;
    } else if (take("=")) {
      readBounds(range);
    } else {
      fail(std::string("expected =, <, <=, > or >= and a number after '") + what + "'");
    }
    return range;
  }

  void readBounds(SelectorRange& range) {
    const std::size_t start = m_at;
    if (!isNext("..")) range.low = number("a number or a range such as 4..6");
    if (!take("..")) {
      range.high = range.low;
      return;
    }
    skipBlanks();
    const bool ends = m_at == m_text.size() ||
                      std::string_view("&|)").find(m_text[m_at]) != std::string_view::npos;
    if (!ends) range.high = number("a number");
    if (range.low > range.high) {
      m_at = start;
      fail("the range begins above its end");
    }
  }

  OdGePoint3d point() {
    OdGePoint3d p;
    for (unsigned i = 0; i < 3; ++i) {
      if (i != 0 && !take(",")) fail("expected ',' and the next of three coordinates");
      p[i] = number("a point such as 10,20,0");
    }
    return p;
  }

  OdGeVector3d direction() {
    const bool isNegative = take("-");
    constexpr std::pair<const char*, OdGeVector3d> kAxes[] = {
        {"x", OdGeVector3d::kXAxis}, {"y", OdGeVector3d::kYAxis}, {"z", OdGeVector3d::kZAxis}};
    for (const auto& [letter, axis] : kAxes) {
      if (take(letter)) return isNegative ? -axis : axis;
    }
    if (isNegative) --m_at;
    const OdGeVector3d v = point().asVector();
    if (v.isZeroLength()) fail("the direction has no length");
    return v.normal();
  }

  std::string quotedOrPlain() {
    skipBlanks();
    if (take("\"")) {
      const std::size_t end = m_text.find('"', m_at);
      if (end == std::string_view::npos) fail("expected '\"' at the end of the name");
      std::string name(m_text.substr(m_at, end - m_at));
      m_at = end + 1;
      return name;
    }
    const std::size_t start = m_at;
    while (m_at < m_text.size() &&
           std::string_view(" \t\n&|()!").find(m_text[m_at]) == std::string_view::npos) {
      ++m_at;
    }
    if (m_at == start) fail("expected a name");
    return std::string(m_text.substr(start, m_at - start));
  }

  std::string_view m_text;
  std::size_t m_at;
  OdModelerSubentType m_type;
};

}  // namespace

OdStatus parseSelector(std::string_view text, std::size_t start, OdModelerSubentType type,
                       NodePtr& root) {
  if (text.size() > kMaxLength) {
    OdStatus status{eInvalidInput, {}};
    status.text.format(L"the selector has %zu characters, at most %zu are read", text.size(),
                       kMaxLength);
    return status;
  }
  try {
    root = SelectorParser(text, start, type).parseAll();
    return {};
  } catch (const SelectorFault& fault) {
    return {eInvalidInput, OdString("column " + std::to_string(fault.at + 1) + ": " + fault.what)};
  }
}

}  // namespace vdm_host
