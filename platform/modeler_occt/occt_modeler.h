// The solid modeller of the drawing runtime, as implemented on Open CASCADE.
#pragma once

#include <memory>

class OdModeler;

/// A new modeller. Bodies outlive it. It keeps no state but the subtraction that its last
/// intersection computed on the way, until its next boolean. STEP exchange is serialised within the
/// process; everything else may run in several threads at once.
[[nodiscard]] std::shared_ptr<OdModeler> odCreateOcctModeler();

/// Creates a modeller and makes it the process's own (odSetModeler). Silences the modeller's own
/// console messages.
void odInstallOcctModeler();

/// Makes a modeller that is silent on the console, for programs that load this library at run time:
/// the entry has a plain name.
extern "C" void odMakeOcctModeler(std::shared_ptr<OdModeler>& result);
