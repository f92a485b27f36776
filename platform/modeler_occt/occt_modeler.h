// The solid modeller of the drawing runtime, as implemented on Open CASCADE.
#pragma once

#include <memory>

class OdModeler;

/// A new modeller. It keeps no state of its own but what the last intersection of each thread has
/// computed, until that thread's next operation; bodies outlive it. STEP exchange is serialised
/// within the process, everything else may run in several threads at once.
[[nodiscard]] std::shared_ptr<OdModeler> odCreateOcctModeler();

/// Creates a modeller and makes it the process's own (odSetModeler). Silences the modeller's own
/// console messages.
void odInstallOcctModeler();
