// What operations of the modeller failed on, as files.
#pragma once

#include <filesystem>
#include <string>

#include "platform/modeler_wall/walled_modeler.h"

class OdDbHostAppServices;

namespace cli {

/// Writes the input of each failed operation into a folder: the bodies as solids of a drawing, in
/// model space, named "body", "tool 1", "tool 2" ...; a STEP file as a copy of it. A text file
/// beside it says what failed and of what. Numbers go on where earlier files end. What cannot be
/// written costs a warning.
class FailedInputs {
 public:
  /// Makes the folder. Raises CliError when that cannot be done.
  explicit FailedInputs(std::string folder);

  /// `services` makes the drawing.
  void keep(const OdWallFailure& failure, OdDbHostAppServices& services) const;

 private:
  [[nodiscard]] std::filesystem::path reserve(const std::string& operation) const;

  std::filesystem::path m_folder;
};

}  // namespace cli
