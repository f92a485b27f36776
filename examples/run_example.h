// The frame of an example program: its arguments, and what it says when something is raised.
#pragma once

#include <cstdio>
#include <exception>
#include <filesystem>
#include <span>
#include <string>

/// Runs `body` with the arguments, one for each of the `names`. Gives the exit code: 0, 1 after an
/// exception, whose text is written to standard error, 2 for another number of arguments.
template <class Body>
int runExample(int argc, char** argv, std::span<const char* const> names, const Body& body) {
  const std::string program = std::filesystem::path(argv[0]).filename().string();
  const std::span<char*> arguments(argv + 1, argv + argc);
  if (arguments.size() != names.size()) {
    std::fprintf(stderr, "usage: %s", program.c_str());
    for (const char* name : names) std::fprintf(stderr, " %s", name);
    std::fputc('\n', stderr);
    return 2;
  }
  try {
    body(arguments);
    return 0;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "%s: %s\n", program.c_str(), error.what());
    return 1;
  }
}
