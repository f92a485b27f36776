// Sweeps of parameters.
#include "host/batch/sweep.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <optional>

#include "platform/base/case_compare.h"

namespace batch {
namespace {

OdStatus refuse(std::string_view text, const std::string& why) {
  return {eInvalidInput, OdString("sweep '" + std::string(text) + "': " + why)};
}

std::string_view trimmed(std::string_view text) {
  constexpr std::string_view kBlanks = " \t";
  const std::size_t first = text.find_first_not_of(kBlanks);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

/// "0.5 mm" as number and unit.
struct Measure {
  double number = 0.0;
  std::string_view unit;
};
std::optional<Measure> parseMeasure(std::string_view text) {
  text = trimmed(text);
  Measure measure;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), measure.number);
  if (error != std::errc() || !std::isfinite(measure.number)) return std::nullopt;
  measure.unit = trimmed(text.substr(static_cast<std::size_t>(end - text.data())));
  return measure;
}

/// Twelve digits: 6.1, where adding steps gives 6.1000000000000005.
std::string shortNumber(double number) {
  constexpr int kDigits = 12;
  std::array<char, 32> text{};
  const auto end = std::to_chars(text.data(), text.data() + text.size(), number,
                                 std::chars_format::general, kDigits);
  return {text.data(), end.ptr};
}

OdStatus parseRange(std::string_view text, std::string_view values, std::size_t dots,
                    Sweep& sweep) {
  constexpr double kEndTolerance = 1e-9;  // of a step
  const std::string_view rest = values.substr(dots + 2);
  const std::size_t colon = rest.find(':');
  const auto from = parseMeasure(values.substr(0, dots));
  const auto to = parseMeasure(rest.substr(0, colon));
  const auto step =
      colon == std::string_view::npos ? Measure{1.0, {}} : parseMeasure(rest.substr(colon + 1));
  if (!from || !to || !step) return refuse(text, "write from..to:step, such as d=6..12:0.5");
  std::string_view unit;
  for (const Measure& one : {*from, *to, *step}) {
    if (one.unit.empty()) continue;
    if (!unit.empty() && unit != one.unit) {
      return refuse(text, "the units " + std::string(unit) + " and " + std::string(one.unit) +
                              " cannot be mixed");
    }
    unit = one.unit;
  }
  if (step->number <= 0.0) return refuse(text, "the step must be above 0");
  const double length = std::abs(to->number - from->number) / step->number + kEndTolerance;
  if (length >= static_cast<double>(kMostPoints)) return refuse(text, "there are too many values");
  const double stride = to->number < from->number ? -step->number : step->number;
  for (std::size_t i = 0; i <= static_cast<std::size_t>(length); ++i) {
    const double number = from->number + static_cast<double>(i) * stride;
    const bool isZero = std::abs(number) < kEndTolerance * step->number;
    sweep.values.push_back(shortNumber(isZero ? 0.0 : number) +
                           (unit.empty() ? "" : " " + std::string(unit)));
  }
  return {};
}

/// Commas part values, but for those within brackets.
OdStatus parseList(std::string_view text, std::string_view values, Sweep& sweep) {
  int depth = 0;
  std::size_t begin = 0;
  for (std::size_t i = 0; i <= values.size(); ++i) {
    const char ch = i < values.size() ? values[i] : ',';
    if (ch == '(') ++depth;
    if (ch == ')') --depth;
    if (ch != ',' || (depth > 0 && i < values.size())) continue;
    const std::string value(trimmed(values.substr(begin, i - begin)));
    if (value.empty()) return refuse(text, "a value is missing");
    if (std::ranges::find(sweep.values, value) != sweep.values.end()) {
      return refuse(text, "the value " + value + " comes twice");
    }
    sweep.values.push_back(value);
    begin = i + 1;
  }
  return {};
}

}  // namespace

OdStatus parseSweep(std::string_view text, Sweep& sweep) {
  const std::size_t equals = text.find('=');
  Sweep parsed{std::string(trimmed(text.substr(0, equals))), {}};
  if (equals == std::string_view::npos || parsed.parameter.empty()) {
    return refuse(text, "write parameter=from..to:step, or parameter=value,value");
  }
  const std::string_view values = text.substr(equals + 1);
  const std::size_t dots = values.find("..");
  OdStatus status = dots == std::string_view::npos ? parseList(text, values, parsed)
                                                   : parseRange(text, values, dots, parsed);
  if (status.ok()) sweep = std::move(parsed);
  return status;
}

OdStatus multiplySweeps(const std::vector<Sweep>& sweeps, std::vector<SweepPoint>& points) {
  std::vector<SweepPoint> product(1);
  for (const Sweep& sweep : sweeps) {
    for (const auto& [name, value] : product.front()) {
      if (odStrICmp(OdString(name), OdString(sweep.parameter)) != 0) continue;
      return {eInvalidInput, OdString("there are two sweeps of parameter " + sweep.parameter)};
    }
    if (product.size() * sweep.values.size() > kMostPoints) {
      return {eInvalidInput, OdString("the sweeps have more than " + std::to_string(kMostPoints) +
                                      " points together")};
    }
    std::vector<SweepPoint> longer;
    for (const SweepPoint& point : product) {
      for (const std::string& value : sweep.values) {
        longer.push_back(point);
        longer.back().emplace_back(sweep.parameter, value);
      }
    }
    product = std::move(longer);
  }
  points = std::move(product);
  return {};
}

}  // namespace batch
