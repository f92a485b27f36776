// The solid modeller of the drawing runtime, as implemented on Open CASCADE.
#pragma once

#include <functional>
#include <memory>
#include <string_view>

class OdModeler;

/// What the booleans of a modeller look at, and its taking off of faces. The results are the same,
/// but for the order of their subentities.
enum class OdOcctReach {
  kLocal,  ///< the faces concerned; the whole bodies where these do not decide
  kWhole,  ///< always the whole bodies: for comparisons
};

struct OdOcctOptions {
  OdOcctReach reach = OdOcctReach::kLocal;
  /// Called with the name of each step of a local operation before it begins. What it throws counts
  /// as the modeller's failure in that step. May be empty.
  std::function<void(std::string_view step)> onLocalStep;
};

/// A new modeller. Bodies outlive it. It keeps no state but the subtraction that its last
/// intersection computed on the way, until its next boolean. STEP exchange is serialised within the
/// process; everything else may run in several threads at once.
[[nodiscard]] std::shared_ptr<OdModeler> odCreateOcctModeler(OdOcctOptions options = {});

/// Creates a modeller and makes it the process's own (odSetModeler). Silences the modeller's own
/// console messages.
void odInstallOcctModeler();

/// Makes a modeller that is silent on the console, for programs that load this library at run time:
/// the entry has a plain name.
extern "C" void odMakeOcctModeler(std::shared_ptr<OdModeler>& result);
