// Measures runs of the program `vdm`: a command with its child process against the same command in
// the program itself, in turn, by the clock.
//
//   vdm_bench_command [--rounds N] [--program FILE] DRAWING...
#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <exception>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

constexpr const char* kUnsupervised = "VDM_UNSUPERVISED=1";

struct Arguments {
  std::size_t rounds = 60;
  std::string program = VDM_PROGRAM;
  std::vector<std::string> drawings;
};

Arguments parse(int argc, char** argv) {
  Arguments result;
  for (int i = 1; i < argc; ++i) {
    const std::string word = argv[i];
    if (word == "--rounds" && i + 1 < argc) {
      result.rounds = std::stoul(argv[++i]);
    } else if (word == "--program" && i + 1 < argc) {
      result.program = argv[++i];
    } else {
      result.drawings.push_back(word);
    }
  }
  if (result.rounds == 0 || result.drawings.empty()) {
    throw std::invalid_argument("usage: see the head of bench/command/main.cpp");
  }
  return result;
}

/// Runs `vdm tree` on a drawing and gives its milliseconds; its output is dropped.
double runTree(const std::string& program, const std::string& drawing, const char* setting) {
  posix_spawn_file_actions_t files;
  posix_spawn_file_actions_init(&files);
  posix_spawn_file_actions_addopen(&files, 1, "/dev/null", O_WRONLY, 0);
  std::array<std::string, 3> words{program, "tree", drawing};
  std::array<char*, 4> arguments{words[0].data(), words[1].data(), words[2].data(), nullptr};
  std::string variable = setting;
  std::array<char*, 2> environment{variable.empty() ? nullptr : variable.data(), nullptr};
  const auto begin = std::chrono::steady_clock::now();
  pid_t process = 0;
  int status = -1;
  const int failure =
      posix_spawn(&process, program.c_str(), &files, nullptr, arguments.data(), environment.data());
  if (failure == 0) waitpid(process, &status, 0);
  const std::chrono::duration<double, std::milli> time = std::chrono::steady_clock::now() - begin;
  posix_spawn_file_actions_destroy(&files);
  if (status != 0) throw std::runtime_error(program + " tree " + drawing + " failed");
  return time.count();
}

double medianOf(std::vector<double> values) {
  std::ranges::sort(values);
  return values[values.size() / 2];
}

void measure(const Arguments& arguments, const std::string& drawing) {
  std::vector<double> child;
  std::vector<double> alone;
  for (std::size_t round = 0; round < arguments.rounds; ++round) {
    child.push_back(runTree(arguments.program, drawing, ""));
    alone.push_back(runTree(arguments.program, drawing, kUnsupervised));
  }
  const double with = medianOf(child);
  const double without = medianOf(alone);
  std::printf("%-40s %8.2f %8.2f %8.2f\n", drawing.c_str(), with, without, with - without);
}

}  // namespace

int main(int argc, char** argv) {
  try {
    const Arguments arguments = parse(argc, argv);
    std::printf("%-40s %8s %8s %8s\n", "vdm tree, ms", "child", "alone", "cost");
    for (const std::string& drawing : arguments.drawings) measure(arguments, drawing);
    return 0;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "%s\n", error.what());
    return 1;
  }
}
