// Compiles and evaluates expressions, each against a peer parser in the same run.
//
//   vdm_bench_expressions [rounds]
//
// Peer and own work take turns; the table shows medians of the rounds in nanoseconds of processor
// time, and own / peer.
#include <muParser.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "bench/naming/stopwatch.h"
#include "platform/base/case_compare.h"
#include "platform/expressions/compile.h"

namespace {

constexpr const char* kNames[] = {"width", "height", "depth", "pitch", "count"};
double values[] = {120.0, 80.0, 12.5, 6.25, 8.0};

struct Row {
  const char* name;
  const char* text;
  const char* peerText;
};

constexpr Row kRows[] = {
    {"two names", "width * height", nullptr},
    {"five names", "width * height + depth * pitch - count", nullptr},
    {"five names, nested", "(width + 2 * pitch) * (height - depth) / (count + 1)", nullptr},
    {"function", "sqrt(width^2 + height^2) + depth - pitch * count", nullptr},
    {"angle", "width * sin(count / 10) + height * cos(pitch) - depth", nullptr},
    {"condition", "width > height ? depth * count : pitch", nullptr},
    {"functions", "min(width, height, depth) + max(pitch, count) - abs(width - height)", nullptr},
};

class BenchScope : public OdExpression::NameScope {
 public:
  std::optional<OdExpression::Binding> find(const OdString& name) override {
    for (OdUInt32 slot = 0; slot < std::size(kNames); ++slot) {
      if (name == kNames[slot]) return OdExpression::Binding{slot, {}};
    }
    return std::nullopt;
  }
};

template <class Call>
double nanosecondsOf(int repetitions, Call call) {
  const naming_bench::Stopwatch watch;
  for (int i = 0; i < repetitions; ++i) call();
  return watch.seconds() * 1e9 / repetitions;
}

double medianOf(std::vector<double> times) {
  const auto middle = times.begin() + static_cast<std::ptrdiff_t>(times.size() / 2);
  std::nth_element(times.begin(), middle, times.end());
  return *middle;
}

double sink = 0.0;

void measure(const Row& row, int rounds) {
  constexpr int kCompiles = 20000;
  constexpr int kEvaluations = 1000000;
  std::vector<double> compiles, peerCompiles, evaluations, peerEvaluations;
  BenchScope scope;
  const OdString text(row.text);
  const std::string peerText = row.text;
  OdExpression::Program program;
  OdExpression::Diagnostic diagnostic;
  mu::Parser peer;
  const auto define = [](mu::Parser& parser) {
    for (std::size_t i = 0; i < std::size(kNames); ++i) parser.DefineVar(kNames[i], &values[i]);
  };
  define(peer);
  peer.SetExpr(peerText);
  if (!compile(text, scope, {}, program, diagnostic)) {
    std::printf("%s: %s\n", row.name, diagnostic.text().utf8().data());
    std::exit(1);
  }
  double value = 0.0;
  if (!program.evaluate(values, value) || std::abs(value - peer.Eval()) > 1e-9) {
    std::printf("%s: %.17g, peer %.17g\n", row.name, value, peer.Eval());
    std::exit(1);
  }
  for (int i = 0; i < rounds; ++i) {
    compiles.push_back(nanosecondsOf(kCompiles, [&] {
      if (!compile(text, scope, {}, program, diagnostic)) std::exit(1);
    }));
    peerCompiles.push_back(nanosecondsOf(kCompiles, [&] {
      peer.SetExpr(peerText);
      sink += peer.Eval();
    }));
    evaluations.push_back(nanosecondsOf(kEvaluations, [&] {
      values[0] += 1e-9;
      if (program.evaluate(values, value)) sink += value;
    }));
    peerEvaluations.push_back(nanosecondsOf(kEvaluations, [&] {
      values[0] += 1e-9;
      sink += peer.Eval();
    }));
  }
  const double compiled = medianOf(compiles), peerCompiled = medianOf(peerCompiles);
  const double evaluated = medianOf(evaluations), peerEvaluated = medianOf(peerEvaluations);
  std::printf(
      "%-20s compile %7.0f  peer %7.0f  %.2f   evaluate %6.1f  peer %6.1f  %.2f   %zu bytes\n",
      row.name, compiled, peerCompiled, compiled / peerCompiled, evaluated, peerEvaluated,
      evaluated / peerEvaluated, program.memoryBytes());
}

}  // namespace

int main(int argc, char** argv) {
  const int rounds = argc > 1 ? std::atoi(argv[1]) : 9;
  for (const Row& row : kRows) measure(row, rounds);
  return sink == 0.125 ? 1 : 0;
}
