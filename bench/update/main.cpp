// Measures update passes and persistent references, each figure against a peer in the same run.
//
//   vdm_bench_update [--only moves|cuts|idle|resolve|wall|checks|fits|scripts] [--holes N,N,...]
//                    [--inserts N,N,...] [--features N,N,...] [--cuts N,N,...] [--rounds N]
//                    [--peers 0|1]
#include <cstdio>
#include <exception>
#include <optional>
#include <sstream>
#include <string>

#include "bench/update/component_drawing.h"
#include "bench/update/figures.h"

namespace {

struct TaskRow {
  const char* name;
  std::vector<Figure> (*measure)(const FigureOptions& options);
};
constexpr TaskRow kTasks[] = {{"moves", measureMoves},     {"cuts", measureCuts},
                              {"idle", measureIdlePasses}, {"resolve", measureResolving},
                              {"wall", measureWall},       {"checks", measureChecks},
                              {"fits", measureFits},       {"scripts", measureScripts}};

struct Arguments {
  FigureOptions figures;
  std::string only;
};

std::vector<std::size_t> numbers(const std::string& text) {
  std::vector<std::size_t> result;
  std::istringstream in(text);
  for (std::string part; std::getline(in, part, ',');) result.push_back(std::stoul(part));
  return result;
}

std::optional<Arguments> parse(int argc, char** argv) {
  Arguments result;
  for (int i = 1; i < argc; i += 2) {
    if (i + 1 == argc) return {};
    const std::string name = argv[i];
    const std::string value = argv[i + 1];
    if (name == "--only") {
      result.only = value;
    } else if (name == "--features") {
      result.figures.features = numbers(value);
    } else if (name == "--holes") {
      result.figures.holes = numbers(value);
    } else if (name == "--inserts") {
      result.figures.inserts = numbers(value);
    } else if (name == "--cuts") {
      result.figures.cuts = numbers(value);
    } else if (name == "--rounds") {
      result.figures.rounds = std::stoul(value);
    } else if (name == "--peers") {
      result.figures.peers = value != "0";
    } else {
      return {};
    }
  }
  return result;
}

void print(const Figure& figure) {
  std::printf("%-52s %12.4g", figure.name.c_str(), figure.ours);
  if (figure.peerName.empty()) {
    std::printf(" %12s %-11s\n", "", figure.unit);
  } else {
    std::printf(" %12.4g %-11s %8.2f  %s\n", figure.peer, figure.unit, figure.peer / figure.ours,
                figure.peerName.c_str());
  }
  std::fflush(stdout);
}

}  // namespace

int main(int argc, char** argv) {
  try {
    const auto arguments = parse(argc, argv);
    if (!arguments) {
      std::fputs("usage: see the head of bench/update/main.cpp\n", stderr);
      return 2;
    }
    const HostRuntime runtime;
    std::printf("%-52s %12s %12s %-11s %8s\n", "figure", "ours", "peer", "unit", "ratio");
    for (const TaskRow& task : kTasks) {
      if (!arguments->only.empty() && arguments->only != task.name) continue;
      for (const Figure& figure : task.measure(arguments->figures)) print(figure);
    }
    return 0;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "vdm_bench_update: %s\n", error.what());
    return 1;
  }
}
