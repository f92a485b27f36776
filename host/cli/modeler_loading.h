// The solid modeller of the command, loaded when it is needed.
#pragma once

#include <memory>

class OdModeler;

namespace cli {

/// A modeller of the library that lies beside the program's others. Loading it takes ten times as
/// long as all else that a small command does, so the program is not linked with it. Raises OdError
/// eNoModeler when the library cannot be loaded.
[[nodiscard]] std::shared_ptr<OdModeler> loadModeler();

}  // namespace cli
