// Names in texts.
#include "platform/expressions/names.h"

#include <algorithm>
#include <string>

#include "platform/base/case_compare.h"
#include "platform/base/name_characters.h"
#include "platform/expressions/compile.h"
#include "platform/expressions/functions.h"
#include "platform/expressions/text_parser.h"
#include "platform/expressions/wide_text.h"
#include "platform/expressions/words.h"

namespace OdExpression {

bool listNames(const OdString& text, std::vector<Mention>& mentions, Diagnostic& diagnostic) {
  try {
    const WideText wide(text);
    std::vector<Mention> found;
    (void)TextParser(wide.view(), found).parse();
    mentions = std::move(found);
    return true;
  } catch (const Diagnostic& failure) {
    diagnostic = failure;
    return false;
  }
}

namespace {

bool isSlashBefore(const OdString& text, int index) {
  constexpr wchar_t kDivisionSign = 0xF7;
  return index > 0 && (text.getAt(index - 1) == L'/' || text.getAt(index - 1) == kDivisionSign);
}

enum class Slashes : OdUInt8 { kAsWritten, kSpaced };

/// Replaces the mentions of the name. `slashes` says whether a space follows a slash before them.
OdString replaced(const OdString& text, const std::vector<Mention>& mentions,
                  const OdString& oldName, const OdString& newName, Slashes slashes) {
  OdString result;
  int copied = 0;
  for (const Mention& mention : mentions) {
    if (!odStrIEqual(mention.name, oldName)) continue;
    const int begin = mention.column - 1;
    result += text.mid(copied, begin - copied);
    if (slashes == Slashes::kSpaced && isSlashBefore(text, begin)) result += ' ';
    result += newName;
    copied = begin + mention.name.getLength();
  }
  return copied == 0 ? text : result + text.mid(copied);
}

/// A name after a slash that reads as a unit is no mention any more.
bool hasLostMentions(const OdString& text, const std::vector<Mention>& before) {
  std::vector<Mention> now;
  Diagnostic diagnostic;
  return !listNames(text, now, diagnostic) || now.size() != before.size();
}

}  // namespace

OdString renameInText(const OdString& text, const OdString& oldName, const OdString& newName) {
  std::vector<Mention> mentions;
  Diagnostic diagnostic;
  if (!listNames(text, mentions, diagnostic)) return text;
  const OdString plain = replaced(text, mentions, oldName, newName, Slashes::kAsWritten);
  const bool hasSlash = std::ranges::any_of(mentions, [&](const Mention& mention) {
    return isSlashBefore(text, mention.column - 1) && odStrIEqual(mention.name, oldName);
  });
  if (!hasSlash || !hasLostMentions(plain, mentions)) return plain;
  return replaced(text, mentions, oldName, newName, Slashes::kSpaced);
}

bool checkName(const OdString& name, Diagnostic& diagnostic) {
  const auto refuse = [&diagnostic](int column, const OdString& found, const OdString& expected) {
    diagnostic = {Diagnostic::Kind::kSyntax, column, found, expected, {}};
    return false;
  };
  if (name.isEmpty()) return refuse(1, "an empty name", "a letter or '_'");
  if (name.getLength() > kMaxNameLength) {
    return refuse(kMaxNameLength + 1, "a longer name",
                  OdString().format(L"at most %d characters", kMaxNameLength));
  }
  const WideText wide(name);
  int column = 1;
  for (const wchar_t ch : wide.view()) {
    const bool fits = column == 1 ? odIsNameStart(ch) : odIsNamePart(ch);
    if (!fits) {
      return refuse(column, "'" + OdString(ch, 1) + "'",
                    column == 1 ? "a letter or '_'" : "a letter, a digit or '_'");
    }
    ++column;
  }
  if (isReservedWord(LowerCaseWord(wide.view()).view())) {
    return refuse(1, "'" + name + "', a word of the language", "another name");
  }
  return true;
}

std::vector<OdString> functionNames() {
  std::vector<OdString> names;
  for (const FunctionRow& row : functionRows()) names.emplace_back(std::string(row.name));
  names.emplace_back("if");
  std::ranges::sort(names);
  return names;
}

}  // namespace OdExpression
