// `vdm batch`: all variants of a drawing in one call.
#pragma once

#include <string>
#include <vector>

#include "host/cli/drawing_session.h"
#include "host/cli/paths.h"

namespace cli {

struct BatchOptions {
  std::string input;
  std::string block;  ///< empty: model space
  std::string table;  ///< empty: the only one

  // Which rows.
  std::vector<std::string> rows;  ///< names, ranges, "all", sweeps
  std::vector<std::string> sets;  ///< assignments for all rows

  // What each row gives. Paths with {row} or {number}; empty: none.
  std::string exportTo;
  std::string renderTo;
  std::string size = "1280x960";
  std::string view = "iso";
  std::string density;  ///< parameter or value; empty: the parameter "density" where there is one

  // What all give together.
  OutputFile report;  ///< .csv or .json; empty: none
  OutputFile sheet;   ///< .png; empty: none

  // How rows are computed.
  std::string results;     ///< folder of the finished rows; empty: beside the drawing
  unsigned jobs = 0;       ///< processes at a time; 0: one for each processor
  double timeout = 300.0;  ///< seconds a row may take; 0 for any
  double memory = 4096.0;  ///< MiB a process may have; 0 for any
  bool fresh = false;      ///< each row from the drawing, none from its neighbour
  bool retry = false;      ///< rows that are not sound are computed again
  bool force = false;      ///< files of rows may be replaced
};

/// kNotSound when a row is not sound. The drawing is not changed. An interrupt keeps the rows that
/// are finished, and ends the process by its signal.
int runBatch(const SessionSettings& settings, const BatchOptions& options);

}  // namespace cli
