// Edits of a drawing: one operation of the command line, or a script of many.
#pragma once

#include <string>

#include "host/cli/drawing_session.h"
#include "host/cli/operation.h"

namespace cli {

/// What all edits share.
struct EditOptions {
  std::string input;
  bool dryRun = false;   ///< do it, show what happened, save nothing
  bool explain = false;  ///< reasons, phases and times
};

/// Opens the drawing, runs the operation, saves and prints. kNotSound when something failed, or
/// references became lost or ambiguous.
int runOperation(const SessionSettings& settings, const EditOptions& options,
                 const Operation& operation, const Arguments& arguments);

/// A JSON array of steps from a file, or from standard input for "-": all or nothing.
int runScript(const SessionSettings& settings, const EditOptions& options,
              const std::string& script);

}  // namespace cli
