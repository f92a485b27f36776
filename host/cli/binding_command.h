// `vdm component show`, `vdm feature show`: what they take from numbers and expressions.
#pragma once

#include <string>

#include "host/cli/drawing_session.h"

namespace cli {

struct BindingOptions {
  std::string input;
  std::string name;
};

/// Sizes of a component.
int runComponentShow(const SessionSettings& settings, const BindingOptions& options);
/// Sizes, place, angle and suppression of an insert.
int runFeatureShow(const SessionSettings& settings, const BindingOptions& options);

}  // namespace cli
