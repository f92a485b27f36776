// Pieces that the families of commands share.
#pragma once

#include <CLI/CLI.hpp>
#include <functional>
#include <string>

#include "host/cli/drawing_session.h"
#include "host/cli/paths.h"

namespace cli {

/// What parsing leaves: the common options, and what is to run.
struct CommandRun {
  SessionSettings settings;
  std::function<int()> run;
};

/// A command with the options that every command has. `example` stands below its help text.
CLI::App* addCommand(CLI::App& parent, CommandRun& line, const char* name, const char* purpose,
                     const std::string& example);
void addInput(CLI::App* command, std::string& path, const char* name = "FILE",
              const char* purpose = "drawing");
void addForce(CLI::App* command, OutputFile& output);
CLI::Option* addOutput(CLI::App* command, OutputFile& output, const char* purpose);

}  // namespace cli
