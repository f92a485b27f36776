// `vdm refs`: the persistent references of a drawing.
#pragma once

#include <string>

#include "host/cli/drawing_session.h"

namespace cli {

struct RefsOptions {
  std::string input;
  std::string reference;  ///< explain
};

/// All references with their grades and what watches them.
int runRefsList(const SessionSettings& settings, const RefsOptions& options);
/// One reference: where it comes from and what decided on its way. kNotSound when it leads nowhere.
int runRefsExplain(const SessionSettings& settings, const RefsOptions& options);
/// Counts by grade, and the references that lead nowhere: kNotSound when there are any.
int runRefsAudit(const SessionSettings& settings, const RefsOptions& options);

}  // namespace cli
