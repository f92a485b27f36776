// Texts as texts: damaged ones, hostile ones, the names in them, and numbers.
#include <gtest/gtest.h>

#include <charconv>
#include <clocale>
#include <cmath>
#include <random>
#include <string>

#include "platform/base/case_compare.h"
#include "platform/expressions/compile.h"
#include "platform/expressions/names.h"
#include "platform/expressions/number_text.h"
#include "tests/support/test_seed.h"

namespace {

using namespace OdExpression;

class OneName : public NameScope {
 public:
  std::optional<Binding> find(const OdString& name) override {
    if (!name.iEquals("width")) return std::nullopt;
    return Binding{0, Dimension::length()};
  }
};

void expectFinding(const Diagnostic& diagnostic, const OdString& text) {
  EXPECT_GE(diagnostic.column, 1) << text;
  EXPECT_LE(diagnostic.column, text.getLength() + 1) << text;
  EXPECT_FALSE(diagnostic.found.isEmpty() || diagnostic.expected.isEmpty()) << text;
}

/// Compiles, evaluates and lists the names: each gives a result or a finding inside the text, and
/// what compiles has names where the list says.
void expectOutcome(const OdString& text) {
  OneName scope;
  Program program;
  Diagnostic diagnostic;
  const double slots[] = {3.0};
  const bool compiles = compile(text, scope, {4, {}}, program, diagnostic);
  if (!compiles) {
    expectFinding(diagnostic, text);
  } else if (double value = 0.0; program.evaluate(slots, value)) {
    EXPECT_TRUE(std::isfinite(value)) << text;
  } else {
    expectFinding(program.explain(slots), text);
  }
  std::vector<Mention> mentions;
  if (!listNames(text, mentions, diagnostic)) {
    EXPECT_FALSE(compiles) << text;
    expectFinding(diagnostic, text);
  }
  for (const Mention& mention : mentions) {
    EXPECT_EQ(text.mid(mention.column - 1, mention.name.getLength()), mention.name) << text;
  }
}

constexpr const wchar_t* kCorpus[] = {
    L"width * 2 + 25.4 mm - 1 1/2 in",
    L"if(width > 2 ft 3 in and not width == 1e-3, max(width, 1), width % 2)",
    L"-sind(30)^2 ? round(width, 5 mm) : 5'-3 1/2\"",
    L"3 kg/m^3 * (2 width) + 30\u00b0 15' 20\" + 2 N\u00b7m",
    L"gr\u00f6\u00dfe || (width) mm <= 7 \u00b5in != clamp(1, 2, 3)",
};

TEST(ExpressionText, DamagedTextsEndInAValueOrAFinding) {
  const OdString alphabet(L"0.e+-*/^%<=!&?:,() 'w\"\u00b0\u00b2m\u4e2d");
  for (const wchar_t* row : kCorpus) {
    const OdString text(row);
    for (int at = 0; at <= text.getLength(); ++at) {
      expectOutcome(text.left(at));
      expectOutcome(text.left(at) + text.mid(at + 1));
      for (int i = 0; i < alphabet.getLength(); ++i) {
        const OdString inserted(alphabet.getAt(i), 1);
        expectOutcome(text.left(at) + inserted + text.mid(at));
        expectOutcome(text.left(at) + inserted + text.mid(at + 1));
      }
    }
  }
}

OdString repeated(const char* piece, int count) {
  std::string text;
  for (int i = 0; i < count; ++i) text += piece;
  return OdString(text);
}

TEST(ExpressionText, BoundsHostileTexts) {
  struct Row {
    OdString text;
    bool compiles;
  };
  const Row rows[] = {
      {repeated("(", 99) + "1" + repeated(")", 99), true},
      {repeated("(", 5000) + "1", false},
      {repeated("-", 99) + "1", true},
      {repeated("-", 9000) + "1", false},
      {repeated("not ", 2000) + "1", false},
      {repeated("2^", 4000) + "1", false},
      {repeated("1?1:", 2000) + "1", false},
      {repeated("sin(", 2000), false},
      {repeated("1+", 4999) + "1", true},
      {repeated("max(1, 2) and ", 700) + "1", true},
      {repeated("width+", 999) + "width", true},
      {repeated("width+", 1000) + "width", false},
      {repeated("w", 256), false},
      {repeated("(1<width) or (1<width) and (1<width) == (1<width) + (1<width) * (", 40) + "1" +
           repeated(")", 40),
       true},
      {repeated("(1<width) or (1<width) and (1<width) == (1<width) + (1<width) * (", 90) + "1" +
           repeated(")", 90),
       false},
      {"max(" + repeated("1,", 300) + "1)", false},
      {repeated("1+", 5000) + "1", false},
      {repeated("9", 400), false},
      {"0." + repeated("0", 9000) + "1", false},
      {repeated("1 ft ", 500), false},
      {"1 " + repeated("m ", 11), false},
      {repeated("1*(width+(", 49) + "1" + repeated("))", 49), true},
  };
  for (const Row& row : rows) {
    OneName scope;
    Program program;
    Diagnostic diagnostic;
    EXPECT_EQ(compile(row.text, scope, {4, {}}, program, diagnostic), row.compiles)
        << row.text.left(40) << ": " << diagnostic.text();
    expectOutcome(row.text);
  }
}

TEST(ExpressionText, RefusalLeavesTheProgramAndTheListAsTheyWere) {
  OneName scope;
  Program program;
  Diagnostic diagnostic;
  ASSERT_TRUE(compile("width + 1", scope, {4, {}}, program, diagnostic));
  ASSERT_FALSE(compile("width +", scope, {4, {}}, program, diagnostic));
  const double slots[] = {3.0};
  double value = 0.0;
  ASSERT_TRUE(program.evaluate(slots, value));
  EXPECT_EQ(value, 4.0);
  const double infinite[] = {INFINITY};
  EXPECT_FALSE(program.evaluate(infinite, value));
  EXPECT_EQ(value, 4.0);
  std::vector<Mention> mentions{{"kept", 1}};
  EXPECT_FALSE(listNames("a + ", mentions, diagnostic));
  EXPECT_EQ(mentions.size(), 1U);
}

TEST(ExpressionText, RequiredDimensionIsChecked) {
  struct Row {
    const char* text;
    Dimension required;
    bool compiles;
  };
  for (const Row& row :
       {Row{"width", Dimension::length(), true}, Row{"width^2", Dimension::length(), false},
        Row{"7", Dimension::angle(), true}, Row{"width/width", Dimension::plain(), true},
        Row{"width/width", Dimension::length(), false}, Row{"90 deg", Dimension::plain(), false}}) {
    OneName scope;
    Program program;
    Diagnostic diagnostic;
    EXPECT_EQ(compile(row.text, scope, {4, row.required}, program, diagnostic), row.compiles)
        << row.text;
  }
}

TEST(ExpressionText, RenamingChangesTheMentionsAndNothingElse) {
  const wchar_t* const rows[][2] = {
      {L" Width*2 /  sin( WIDTH ) + widths + 3 mm ", L" B*2 /  sin( B ) + widths + 3 mm "},
      {L"width(1)", L"width(1)"},
      {L"width +", L"width +"},
      {L"2 mm/width + max(width, 1)", L"2 mm/B + max(B, 1)"},
      {L"\u4e2d\u6587+width\u00e4", L"\u4e2d\u6587+width\u00e4"},
  };
  for (const auto& row : rows) EXPECT_EQ(renameInText(row[0], "wIdTh", "B"), OdString(row[1]));
  EXPECT_EQ(renameInText("2 mm/width + 1", "width", "s"), "2 mm/ s + 1");
  EXPECT_EQ(renameInText("1/width", "width", "s"), "1/s");
  // A unit and the name of a function or a constant are no mentions.
  EXPECT_EQ(renameInText("2 mm + mm", "mm", "x"), "2 mm + x");
  EXPECT_EQ(renameInText("min(min, 1) + 5 min", "min", "x"), "min(x, 1) + 5 min");
  EXPECT_EQ(renameInText(L"STRASSE + stra\u00dfe", L"Stra\u00dfe", "x"), "x + x");
}

TEST(ExpressionText, NamesAreWordsThatTheLanguageLeavesFree) {
  Diagnostic diagnostic;
  for (const wchar_t* name :
       {L"a", L"_1", L"mm", L"min", L"\u00e4rger2", L"\u4e2d\u6587", L"\u0915\u093f"}) {
    EXPECT_TRUE(checkName(name, diagnostic)) << OdString(name);
  }
  for (const wchar_t* name : {L"", L"1a", L"a b", L"*a", L"PI", L"e", L"And", L"if", L"true",
                              L"NaN", L"a\u00b7b", L"a-b", L"a.b", L"\u0301a"}) {
    EXPECT_FALSE(checkName(name, diagnostic)) << OdString(name);
  }
  EXPECT_FALSE(checkName(OdString(L'a', 256), diagnostic));
}

TEST(ExpressionText, PrintedNumbersCompileToThemselves) {
  const char* const before = std::setlocale(LC_ALL, nullptr);
  const std::string saved(before);
  for (const char* name : {"de_DE.UTF-8", "C.UTF-8"}) {
    if (std::setlocale(LC_ALL, name) == nullptr) continue;
    std::mt19937_64 random(freshSeed());
    for (int i = 0; i < 20000; ++i) {
      const OdUInt64 bits = random();
      double value;
      static_assert(sizeof(value) == sizeof(bits));
      std::memcpy(&value, &bits, sizeof(value));
      if (!std::isfinite(value) || std::abs(value) > 1.797e308) continue;
      const OdString text = numberText(value);
      EXPECT_EQ(text, OdString().format(L"%.12g", value));
      EmptyScope scope;
      Program program;
      Diagnostic diagnostic;
      double read = NAN;
      ASSERT_TRUE(compile(text, scope, {}, program, diagnostic)) << text << diagnostic.text();
      ASSERT_TRUE(program.evaluate(nullptr, read));
      ASSERT_EQ(numberText(read), text);
    }
  }
  std::setlocale(LC_ALL, saved.c_str());
}

}  // namespace
