// Driver of a fuzz target without a fuzzing engine: replays inputs, then random changes of them.
//
//   fuzz_<target> [--rounds <n>] [--seconds <n>] [--seed <n>] [--first-round <n>]
//                 [--write-corpus <folder>] [<file or folder>...]
//
// With seconds it goes on until it has used that much processor time, whatever the rounds.
// Round r of a seed is the same on every machine; a crash prints both, so that
// `--first-round r --rounds 1` plays it again.
#include <algorithm>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>
#include <string_view>

#include <sys/resource.h>
#include <unistd.h>

#include "fuzz/fuzz_target.h"
#include "tests/random/random_source.h"

namespace fs = std::filesystem;

namespace {

struct Options {
  std::uint64_t rounds = 1000;
  std::uint64_t seconds = 0;  ///< of processor time; 0: as many as the rounds take
  std::uint64_t seed = 1;
  std::uint64_t firstRound = 0;
  std::string corpusFolder;
  std::vector<std::string> paths;
};

// What is played now, as the text that a crash prints.
char playedNow[96] = "corpus";

extern "C" void tellRound(int signal) {
  const char lead[] = "fuzz target ended in: ";
  [[maybe_unused]] ssize_t written = write(STDERR_FILENO, lead, sizeof lead - 1);
  written = write(STDERR_FILENO, playedNow, std::strlen(playedNow));
  written = write(STDERR_FILENO, "\n", 1);
  std::signal(signal, SIG_DFL);
  std::raise(signal);
}

// ---- Changes of an input

void overwrite(FuzzInput& input, RandomSource& random) {
  static constexpr std::uint8_t kTelling[] = {0, 1, 0x7F, 0x80, 0xFF, 0xFE, 0x20, 4};
  const std::size_t at = random.below(input.size());
  for (std::size_t i = at; i < input.size() && i <= at + random.below(4); ++i) {
    input[i] = random.chance(50) ? kTelling[random.below(std::size(kTelling))]
                                 : static_cast<std::uint8_t>(random.next());
  }
}

void flipBit(FuzzInput& input, RandomSource& random) {
  input[random.below(input.size())] ^= static_cast<std::uint8_t>(1u << random.below(8));
}

void cut(FuzzInput& input, RandomSource& random) {
  const auto at = static_cast<std::ptrdiff_t>(random.below(input.size()));
  const auto length = static_cast<std::ptrdiff_t>(random.below(16));
  const auto end = std::min(at + length + 1, static_cast<std::ptrdiff_t>(input.size()));
  input.erase(input.begin() + at, random.chance(20) ? input.end() : input.begin() + end);
}

void repeat(FuzzInput& input, RandomSource& random) {
  const std::size_t at = random.below(input.size());
  const std::size_t length = std::min(1 + random.below(24), input.size() - at);
  const FuzzInput part(input.begin() + static_cast<std::ptrdiff_t>(at),
                       input.begin() + static_cast<std::ptrdiff_t>(at + length));
  const auto target = static_cast<std::ptrdiff_t>(random.below(input.size()));
  input.insert(input.begin() + target, part.begin(), part.end());
}

void splice(FuzzInput& input, const FuzzInput& other, RandomSource& random) {
  if (other.empty()) return;
  input.resize(random.below(input.size() + 1));
  input.insert(input.end(), other.begin() + static_cast<std::ptrdiff_t>(random.below(other.size())),
               other.end());
}

FuzzInput changed(const std::vector<FuzzInput>& corpus, RandomSource& random) {
  FuzzInput input = corpus[random.below(corpus.size())];
  for (std::size_t changes = 1 + random.below(6); changes > 0 && !input.empty(); --changes) {
    switch (random.below(6)) {
      case 0:
      case 1:
        overwrite(input, random);
        break;
      case 2:
        flipBit(input, random);
        break;
      case 3:
        cut(input, random);
        break;
      case 4:
        repeat(input, random);
        break;
      default:
        splice(input, corpus[random.below(corpus.size())], random);
    }
  }
  return input;
}

// ---- Files

FuzzInput readFile(const fs::path& path) {
  std::ifstream file(path, std::ios::binary);
  return FuzzInput(std::istreambuf_iterator<char>(file), {});
}

void addFiles(const std::string& path, std::vector<FuzzInput>& inputs) {
  if (!fs::is_directory(path)) {
    inputs.push_back(readFile(path));
    return;
  }
  for (const fs::directory_entry& entry : fs::directory_iterator(path)) {
    if (entry.is_regular_file()) inputs.push_back(readFile(entry.path()));
  }
}

void writeCorpus(const std::vector<FuzzInput>& corpus, const std::string& folder) {
  fs::create_directories(folder);
  for (std::size_t i = 0; i < corpus.size(); ++i) {
    std::ofstream file(fs::path(folder) / std::to_string(i), std::ios::binary);
    file.write(reinterpret_cast<const char*>(corpus[i].data()),
               static_cast<std::streamsize>(corpus[i].size()));
  }
}

// ---- The run

void play(const FuzzInput& input) {
  // A copy of exactly this size, so that the sanitizers see every read past its end.
  const auto exact = std::make_unique<std::uint8_t[]>(input.size());
  std::copy(input.begin(), input.end(), exact.get());
  LLVMFuzzerTestOneInput(exact.get(), input.size());
}

bool parse(int argc, char** argv, Options& options) {
  for (int i = 1; i < argc; ++i) {
    const std::string_view name = argv[i];
    if (!name.starts_with("--")) {
      options.paths.emplace_back(name);
      continue;
    }
    if (++i == argc) return false;
    const std::uint64_t number = std::strtoull(argv[i], nullptr, 10);
    if (name == "--rounds") {
      options.rounds = number;
    } else if (name == "--seconds") {
      options.seconds = number;
    } else if (name == "--seed") {
      options.seed = number;
    } else if (name == "--first-round") {
      options.firstRound = number;
    } else if (name == "--write-corpus") {
      options.corpusFolder = argv[i];
    } else {
      return false;
    }
  }
  return true;
}

std::uint64_t secondsUsed() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  return static_cast<std::uint64_t>(usage.ru_utime.tv_sec + usage.ru_stime.tv_sec);
}

bool isDue(const Options& options, std::uint64_t round) {
  if (options.seconds == 0) return round < options.firstRound + options.rounds;
  return secondsUsed() < options.seconds;
}

int run(const Options& options) {
  std::vector<FuzzInput> corpus = fuzzCorpus();
  if (!options.corpusFolder.empty()) writeCorpus(corpus, options.corpusFolder);
  for (const std::string& path : options.paths) addFiles(path, corpus);
  if (corpus.empty()) {
    std::fputs("fuzz target: the corpus is empty\n", stderr);
    return EXIT_FAILURE;
  }
  for (const FuzzInput& input : corpus) play(input);
  std::uint64_t round = options.firstRound;
  for (; isDue(options, round); ++round) {
    std::snprintf(playedNow, sizeof playedNow, "seed %llu, round %llu",
                  static_cast<unsigned long long>(options.seed),
                  static_cast<unsigned long long>(round));
    RandomSource random(options.seed * 0x100000001B3u + round);
    play(changed(corpus, random));
  }
  std::printf("%zu inputs and %llu changed ones of seed %llu, %llu s: sound\n", corpus.size(),
              static_cast<unsigned long long>(round - options.firstRound),
              static_cast<unsigned long long>(options.seed),
              static_cast<unsigned long long>(secondsUsed()));
  return EXIT_SUCCESS;
}

}  // namespace

int main(int argc, char** argv) {
  Options options;
  if (!parse(argc, argv, options)) {
    std::fprintf(stderr,
                 "usage: %s [--rounds <n>] [--seconds <n>] [--seed <n>] [--first-round <n>] "
                 "[--write-corpus <folder>] [<file or folder>...]\n",
                 argv[0]);
    return 2;
  }
  std::signal(SIGABRT, tellRound);
  return run(options);
}
