// A benchmark of persistent naming: generated and imported parts whose every face, edge and vertex
// is known from the construction, scripted edits, and several ways of naming judged against the
// truth (laws of judging: judge.h; of the truth: truth.h).
//
//   vdm_bench_naming [--seed N] [--models N] [--repeats N] [--sequences N]
//                    [--references N] [--edit NAME] [--family NAME] [--method NAME] [--json]
//                    [--explain]
//
// With the environment variable VDM_STEP_DIR the STEP parts of that folder take part.
// Exit code: 0; 1 when a reference of the drawing is wrong; 2 for wrong usage.
#include <array>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <optional>
#include <string>

#include "bench/naming/reference_drawing.h"
#include "bench/naming/report.h"

namespace {

using namespace naming_bench;

struct Arguments {
  RunOptions run;
  std::string method;
  bool json = false;
};

std::optional<Arguments> parse(int argc, char** argv) {
  Arguments result;
  for (int i = 1; i < argc; ++i) {
    const std::string name = argv[i];
    if (name == "--json" || name == "--explain") {
      (name == "--json" ? result.json : result.run.explain) = true;
      continue;
    }
    if (++i == argc) return {};
    const std::string value = argv[i];
    if (name == "--seed") {
      result.run.seed = std::stoull(value);
    } else if (name == "--models") {
      result.run.modelsPerFamily = std::stoul(value);
    } else if (name == "--repeats") {
      result.run.repeats = std::stoul(value);
    } else if (name == "--sequences") {
      result.run.sequences = std::stoul(value);
    } else if (name == "--references") {
      result.run.references = std::stoul(value);
    } else if (name == "--edit") {
      result.run.onlyEdit = value;
    } else if (name == "--family") {
      result.run.onlyFamily = value;
    } else if (name == "--method") {
      result.method = value;
    } else {
      return {};
    }
  }
  return result;
}

constexpr std::array<MethodMaker, 4> kMethods = {makeReferenceMethod, makeIndexMethod,
                                                 makeSignatureMethod, makeLabelMethod};

std::vector<MethodMaker> methodsFor(const std::string& only) {
  std::vector<MethodMaker> result;
  for (const MethodMaker make : kMethods) {
    if (only.empty() || only == make()->name()) result.push_back(make);
  }
  return result;
}

void print(const CaseResult& result) {
  if (result.lines.empty()) return;
  std::printf("%s, %s (seed %llu)\n", result.model.c_str(), result.edit.c_str(),
              static_cast<unsigned long long>(result.seed));
  for (const std::string& line : result.lines) std::printf("  %s\n", line.c_str());
}

bool oursIsWrong(const RunResult& result) {
  const std::string ours = makeReferenceMethod()->name();
  for (std::size_t m = 0; m < result.methods.size(); ++m) {
    if (result.methods[m] != ours) continue;
    for (const CaseResult& one : result.cases) {
      if (one.scores[m].all(Verdict::kWrong) != 0) return true;
    }
  }
  return false;
}

int run(Arguments arguments) {
  const DrawingRuntime runtime;
  if (const char* folder = std::getenv("VDM_STEP_DIR")) arguments.run.stepFolder = folder;
  const RunResult result =
      runBenchmark(arguments.run, methodsFor(arguments.method), arguments.json ? nullptr : print);
  std::fputs((arguments.json ? jsonOf(result) + "\n" : tableOf(result)).c_str(), stdout);
  return oursIsWrong(result) ? 1 : 0;
}

}  // namespace

int main(int argc, char** argv) {
  try {
    if (const auto arguments = parse(argc, argv)) return run(*arguments);
    std::fputs("usage: see the head of bench/naming/main.cpp\n", stderr);
    return 2;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "vdm_bench_naming: %s\n", error.what());
    return 2;
  }
}
