// Attacks the command `vdm` and prints a table of what held.
//
//   vdm_attack [--seed N] [--times N] [--only TEXT] [--first N] --programs FOLDER --folder FOLDER
//
// Each case is decided by the seed, its family and its number; `--only` and `--first` play one
// again. The exit code is 1 when a law was broken.
#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <string>

#include "tests/attack/attack.h"

namespace {

using namespace attack;

struct Arguments {
  std::uint64_t seed = 1;
  unsigned times = 1;
  unsigned first = 0;
  std::string only;
  std::string programs;
  std::string folder;
};

constexpr std::array<const char*, kVerdicts> kColumns{"held",   "contained", "crash", "hang",
                                                      "memory", "silent",    "lost",  "rude"};

Arguments parse(int argc, char** argv) {
  Arguments result;
  for (int i = 1; i + 1 < argc; i += 2) {
    const std::string name = argv[i];
    const std::string value = argv[i + 1];
    if (name == "--seed") result.seed = std::stoull(value);
    if (name == "--times") result.times = static_cast<unsigned>(std::stoul(value));
    if (name == "--first") result.first = static_cast<unsigned>(std::stoul(value));
    if (name == "--only") result.only = value;
    if (name == "--programs") result.programs = value;
    if (name == "--folder") result.folder = value;
  }
  if (result.programs.empty() || result.folder.empty()) {
    throw std::invalid_argument("--programs and --folder are needed");
  }
  return result;
}

Finding play(const Family& family, const Stage& stage, Random random) {
  stage.clear();
  try {
    return family.run(stage, random);
  } catch (const std::exception& error) {
    return {Verdict::kLost, error.what()};
  }
}

std::uint64_t seedOf(const Arguments& arguments, const Family& family, unsigned number) {
  std::uint64_t seed = arguments.seed;
  for (const char* at = family.name; *at != '\0'; ++at) {
    seed = seed * 1099511628211ULL + static_cast<unsigned char>(*at);
  }
  return seed * 1099511628211ULL + number;
}

/// Plays a family and prints its row; the number of broken laws.
unsigned playFamily(const Arguments& arguments, const Family& family, const Stage& stage) {
  constexpr unsigned kShown = 5;
  std::array<unsigned, kVerdicts> counts{};
  unsigned broken = 0;
  const unsigned cases = family.cases * arguments.times;
  for (unsigned number = arguments.first; number < cases; ++number) {
    const Finding finding = play(family, stage, Random(seedOf(arguments, family, number)));
    ++counts.at(static_cast<std::size_t>(finding.verdict));
    if (finding.verdict <= Verdict::kContained) continue;
    if (++broken <= kShown) {
      std::fprintf(stderr, "%s %u: %s: %s\n", family.name, number,
                   kColumns.at(static_cast<std::size_t>(finding.verdict)), finding.text.c_str());
    }
  }
  std::printf("| %s | %s | %u |", family.name, family.law, cases - arguments.first);
  for (const unsigned count : counts) std::printf(" %u |", count);
  std::printf("\n");
  std::fflush(stdout);
  return broken;
}

unsigned playAll(const Arguments& arguments) {
  const Stage stage(fs::absolute(arguments.programs), fs::absolute(arguments.folder));
  std::printf("seed %llu\n| Attack | law | cases |",
              static_cast<unsigned long long>(arguments.seed));
  for (const char* column : kColumns) std::printf(" %s |", column);
  std::printf("\n|---|---|---|");
  for (std::size_t i = 0; i < kColumns.size(); ++i) std::printf("---|");
  std::printf("\n");
  unsigned broken = 0;
  for (const auto families : {stepFamilies(), drawingFamilies(), textFamilies(), fileFamilies()}) {
    for (const Family& family : families) {
      const std::string name = family.name;
      if (name.find(arguments.only) == std::string::npos) continue;
      broken += playFamily(arguments, family, stage);
    }
  }
  return broken;
}

}  // namespace

int main(int argc, char** argv) {
  try {
    const unsigned broken = playAll(parse(argc, argv));
    if (broken != 0) std::printf("%u laws broken\n", broken);
    return broken == 0 ? EXIT_SUCCESS : EXIT_FAILURE;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "vdm_attack: %s\n", error.what());
    return 2;
  }
}
