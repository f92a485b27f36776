// Pieces that the families of commands share.
#pragma once

#include <CLI/CLI.hpp>
#include <functional>
#include <string>

#include "host/cli/drawing_session.h"
#include "host/cli/paths.h"

namespace cli {

/// What parsing gives: the settings that all commands share, and what is to run.
struct CommandRun {
  SessionSettings settings;
  std::function<int()> run;
};

/// Naming `command` makes `action` run with the settings and its own options.
template <class Options>
void setAction(CLI::App* command, CommandRun& line,
               int (*action)(const SessionSettings&, const Options&), const Options& options) {
  command->callback([&line, action, &options] {
    line.run = [&line, action, &options] { return action(line.settings, options); };
  });
}

/// A command with the options that every command has. Its help ends with `example`.
CLI::App* addCommand(CLI::App& parent, CommandRun& line, const char* name, const char* purpose,
                     const std::string& example);
void addInput(CLI::App* command, std::string& path, const char* name = "FILE",
              const char* purpose = "drawing");
void addForce(CLI::App* command, OutputFile& output);
CLI::Option* addOutput(CLI::App* command, OutputFile& output, const char* purpose);

}  // namespace cli
