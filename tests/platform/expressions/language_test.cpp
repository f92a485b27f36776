// The language by tables: values, and refusals with their columns.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <map>
#include <numbers>

#include "platform/base/case_compare.h"
#include "platform/expressions/compile.h"
#include "platform/expressions/names.h"
#include "platform/expressions/number_text.h"
#include "platform/expressions/unit_factor.h"

namespace {

using OdExpression::Binding;
using OdExpression::CompileOptions;
using OdExpression::Diagnostic;
using OdExpression::Dimension;
using OdExpression::Program;

constexpr int kInches = 1;
constexpr int kMillimetres = 4;

/// Names with fixed values; slots in the order of the rows.
class TestScope : public OdExpression::NameScope {
 public:
  static constexpr double kValues[] = {10.0, 20.0, 4.0, 0.5, 7.0, 3.0};

  std::optional<Binding> find(const OdString& name) override {
    static const std::map<OdString, Binding> kNames = {
        {"width", {0, Dimension::length()}},
        {"height", {1, Dimension::length()}},
        {"face", {2, Dimension::length(2)}},
        {"tilt", {3, Dimension::angle()}},
        {"d1", {4, Dimension::plain()}},
        {OdString(L"gr\u00f6\u00dfe"), {5, {}}},
        {"s", {5, {}}},
    };
    for (const auto& [known, binding] : kNames) {
      if (odStrIEqual(known, name)) return binding;
    }
    return std::nullopt;
  }
};

struct Outcome {
  double value = NAN;
  Dimension dimension;
  Diagnostic diagnostic;
};

Outcome outcomeOf(const OdString& text, int lengthUnit = kMillimetres) {
  TestScope scope;
  Program program;
  Outcome outcome;
  if (!compile(text, scope, {lengthUnit, std::nullopt}, program, outcome.diagnostic)) {
    return outcome;
  }
  outcome.dimension = program.dimension();
  if (!program.evaluate(TestScope::kValues, outcome.value)) {
    outcome.diagnostic = program.explain(TestScope::kValues);
  }
  return outcome;
}

struct ValueRow {
  const wchar_t* text;
  double value;
  const char* dimension = "plain number";
};

void expectValue(const ValueRow& row) {
  const Outcome outcome = outcomeOf(row.text);
  const OdString shown(row.text);
  EXPECT_NEAR(outcome.value, row.value, 1e-14 * std::abs(row.value))
      << shown << ": " << outcome.diagnostic.text();
  EXPECT_EQ(outcome.dimension.text(), row.dimension) << shown;
}

TEST(Expression, HasTheValueOfItsText) {
  const double degree = std::numbers::pi / 180.0;
  const ValueRow rows[] = {
      {L"1+2*3", 7},
      {L"(1+2)*3", 9},
      {L"-2^2", -4},
      {L"2^3^2", 512},
      {L"2^-1", 0.5},
      {L"8/4/2", 1},
      {L"10 - 4 - 3", 3},
      {L"7 % 3", 1},
      {L"-7 % 3", 2},
      {L"--3", 3},
      {L"1e3", 1000},
      {L".5", .5},
      {L"5.", 5},
      {L"1E-3", 1e-3},
      {L"4.94065645841e-324", 5e-324},
      {L"width", 10, "length"},
      {L"WIDTH - height", -10, "length"},
      {L"GR\u00d6SSE * 2", 6},
      {L"width*height", 200, "area"},
      {L"width - width*(2+1)", -20, "length"},
      {L"width/height", .5, "ratio"},
      {L"1 + width", 11, "length"},
      {L"face/width", .4, "length"},
      {L"d1*(width/height)", 3.5},
      {L"width^2 + face", 104, "area"},
      {L"sqrt(face)", 2, "length"},
      {L"25.4 mm + 1 in", 50.8, "length"},
      {L"2 ft 3 in", 27 * 25.4, "length"},
      {L"90 deg", 90 * degree, "angle"},
      {L"1 1/2 in", 38.1, "length"},
      {L"1/2 in", 12.7, "length"},
      {L"1 / 2 in", 1 / 50.8, "length^-1"},
      {L"5'-3 1/2\"", 63.5 * 25.4, "length"},
      {L"5' - 3\"", 57 * 25.4, "length"},
      {L"5 ft-3\"", 57 * 25.4, "length"},
      {L"2 mm^2", 2, "area"},
      {L"(2 mm)^2", 4, "area"},
      {L"(1 + 1) cm", 20, "length"},
      {L"sin(30 deg)", .5, "ratio"},
      {L"sind(30)", .5, "ratio"},
      {L"sind(30 deg)", .5, "ratio"},
      {L"tand(45)", 1, "ratio"},
      {L"cosd(-60)", .5, "ratio"},
      {L"asin(1)", 90 * degree, "angle"},
      {L"asind(1)", 90, "ratio"},
      {L"atan2(height, height)", 45 * degree, "angle"},
      {L"width > 5 and height > 5", 1, "ratio"},
      {L"not width > 5 or false", 0, "ratio"},
      {L"width > 5 ? 1 mm : 2 mm", 1, "length"},
      {L"if(width < 5, 1, 2 cm)", 20, "length"},
      {L"0 == 1 && 1/0 > 2", 0, "ratio"},
      {L"if(d1 == 0, 1/0, d1)", 7},
      {L"d1 < 5 ? 1 : d1 < 8 ? 2 : 3", 2},
      {L"max(1, 7, 3)", 7},
      {L"min(width, 2 cm, 3 mm)", 3, "length"},
      {L"clamp(12, 0, 5)", 5},
      {L"round(2.5)", 3},
      {L"round(-2.5)", -3},
      {L"round(12.4 mm, 5 mm)", 10, "length"},
      {L"floor(0.3/0.1)", 3},
      {L"ceil(0.3/0.1)", 3},
      {L"mod(0.3, 0.1)", 0},
      {L"rem(-7, 3)", -1},
      {L"hypot(3, 4)", 5},
      {L"log(8, 2)", 3, "ratio"},
      {L"tilt * width", 5, "length"},
      {L"1.57079632679 == 90 deg", 1, "ratio"},
      {L"sign(-width)", -1, "ratio"},
      {L"d1 - (d1 - (d1 - (d1 - width)))", 10, "length"},
      {L"2 * pi", 2 * std::numbers::pi},
  };
  for (const ValueRow& row : rows) expectValue(row);
}

TEST(Expression, ReadsUnits) {
  const double arcMinute = std::numbers::pi / 10800.0;
  const ValueRow rows[] = {
      {L"3 kg/m^3", 3e-9, "density"},
      {L"3 kg/m3", 3e-9, "density"},
      {L"5 N", 5000, "force"},
      {L"5 N m", 5e6, "energy"},
      {L"5 N\u00b7m", 5e6, "energy"},
      {L"1 kPa", 1, "pressure"},
      {L"1 l", 1e6, "volume"},
      {L"30\u00b0 15' 20\"", (1815 + 1.0 / 3) * arcMinute, "angle"},
      {L"30 rpm", std::numbers::pi, "frequency"},
      {L"3 \u00b5in", 76.2e-6, "length"},
      {L"3 \u03bcm", 3e-3, "length"},
      {L"10 MM", 10, "length"},
      {L"10 Mm", 1e10, "length"},
      {L"6 mm/day * 2 day", 12, "length"},
      {L"6 mm/width", .6, "ratio"},
      {L"6 mm / s", 2, "length"},
      {L"1 AU/1 ly", 1.0 / 63241.07708426628, "ratio"},
      {L"2 mm\u00b2", 2, "area"},
      {L"1 lb", .45359237, "mass"},
      {L"2 s^-1", 2, "frequency"},
  };
  for (const ValueRow& row : rows) expectValue(row);
  for (const wchar_t* text : {L"20 degC", L"2 pi", L"5 per", L"5 mm^2^2", L"7 kg/m s",
                              L"3 ft\u00b7", L"5 m^11", L"9 e2m", L"6 mm/s"}) {
    EXPECT_TRUE(std::isnan(outcomeOf(text).value)) << OdString(text);
  }
}

TEST(Expression, ConvertsBetweenUnitTexts) {
  struct Row {
    const char* from;
    const char* to;
    double factor;
  };
  double factor = NAN;
  Diagnostic diagnostic;
  for (const Row& row : {Row{"kg/m^3", "g/cm^3", 1e-3}, Row{"kg * m / s^2", "N", 1},
                         Row{"1/s", "Hz", 1}, Row{"miles", "\xc2\xb5in", 1609.344 / 2.54e-8},
                         Row{"deg", "rad", std::numbers::pi / 180}}) {
    ASSERT_TRUE(unitFactor(row.from, row.to, factor, diagnostic)) << row.from << diagnostic.text();
    EXPECT_DOUBLE_EQ(factor, row.factor) << row.from;
  }
  for (const auto& [from, to] :
       {std::pair{"m", "s"}, {"", "m"}, {"m", "m*"}, {"2 m", "m"}, {"degC", "K"}}) {
    EXPECT_FALSE(unitFactor(from, to, factor, diagnostic)) << from;
    EXPECT_EQ(diagnostic.column, from == OdString("m") && to == OdString("m*") ? 3 : 1) << from;
  }
  EXPECT_DOUBLE_EQ(factor, std::numbers::pi / 180);
}

TEST(Expression, DegreesAreExactWhereRadiansCannotBe) {
  const std::pair<const char*, double> rows[] = {
      {"sind(30)", .5},  {"sind(-150)", -.5}, {"sind(180)", 0},     {"cosd(90)", 0},
      {"cosd(-60)", .5}, {"cosd(240)", -.5},  {"sind(720030)", .5}, {"tand(45)", 1},
      {"tand(-45)", -1}, {"tand(180)", 0},
  };
  for (const auto& [text, value] : rows) EXPECT_EQ(outcomeOf(text).value, value) << text;
  EXPECT_TRUE(std::isnan(outcomeOf("tand(270)").value));
  for (double degrees = -400.0; degrees < 400.0; degrees += 7.3) {
    const double radians = degrees * std::numbers::pi / 180.0;
    const OdString argument = "(" + OdExpression::numberText(degrees) + ")";
    EXPECT_NEAR(outcomeOf("sind" + argument).value, std::sin(radians), 1e-11) << degrees;
    EXPECT_NEAR(outcomeOf("cosd" + argument).value, std::cos(radians), 1e-11) << degrees;
    EXPECT_NEAR(outcomeOf("tand" + argument).value / std::tan(radians), 1.0, 1e-9) << degrees;
  }
}

TEST(Expression, CountsLengthsInTheDrawingsUnit) {
  EXPECT_EQ(outcomeOf("25.4 mm", kInches).value, 1.0);
  EXPECT_EQ(outcomeOf("2 ft^2", kInches).value, 288.0);
  EXPECT_EQ(outcomeOf("1 + 25.4 mm", kInches).value, 2.0);
  EXPECT_TRUE(std::isnan(outcomeOf("1 mm", 0).value));
}

struct RefusalRow {
  const wchar_t* text;
  int column;
  const char* found;
  const char* expected;
  const char* suggestion;
};

TEST(Expression, RefusesWithColumnAndWords) {
  const RefusalRow rows[] = {
      {L"width + face", 9, "area", "length", "length + sqrt(area)"},
      {L"1 + 2 mm + 3 mm^2", 12, "area", "length", "length + sqrt(area)"},
      {L"(1 + 2", 7, "the end", "an operator or ')'", ""},
      {L"1 + ", 5, "the end", "a number, a name or '('", ""},
      {L"", 1, "the end", "a number, a name or '('", ""},
      {L"2 * lenght", 5, "'lenght'", "a known name", ""},
      {L"1 < 2 < 3", 7, "'<'", "one comparison, or 'and' between two", "a < b and b < c"},
      {L"sqrtt(2)", 1, "'sqrtt'", "an operator or the name of a function", "sqrt"},
      {L"1e999", 1, "'1e999'", "a number between 5e-324 and 1.8e308", ""},
      {L"inf", 1, "'inf'", "a finite number", ""},
      {L"1/(d1 - 7)", 2, "a division by zero", "a divisor other than 0", ""},
      {L"1 + sqrt(-4)", 5, "sqrt of '-4'", "a number of at least 0", ""},
      {L"sin(width)", 5, "length", "an angle or a number in sin", "sin(angle)"},
      {L"floor(width)", 7, "length", "a number, or a step after it", "floor(length, length)"},
      {L"if(width, 1, 2)", 4, "length", "a comparison or a number", "length != 0"},
      {L"width ^ d1", 9, "an exponent that varies", "a constant exponent for length",
       "(length / length) ^ exponent"},
      {L"2 mm ^ 2", 6, "'^'", "a whole power from 1 to 10 right after the unit",
       "mm^2 for the power of a unit, (2 mm)^2 for the power of a value"},
      {L"2 in 3 ft", 6, "a unit that is not smaller", "units from large to small", "2 ft 3 in"},
      {L"min(1, 2 mm, 3 deg)", 14, "angle", "length", "length, length"},
  };
  for (const RefusalRow& row : rows) {
    const Outcome outcome = outcomeOf(row.text);
    const std::string shown(OdString(row.text).utf8());
    EXPECT_TRUE(std::isnan(outcome.value)) << shown;
    EXPECT_EQ(outcome.diagnostic.column, row.column) << shown;
    EXPECT_EQ(outcome.diagnostic.found, row.found) << shown;
    EXPECT_EQ(outcome.diagnostic.expected, row.expected) << shown;
    EXPECT_EQ(outcome.diagnostic.suggestion, row.suggestion) << shown;
  }
}

}  // namespace
