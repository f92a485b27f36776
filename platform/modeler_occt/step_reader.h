// One STEP file, without the files that it names.
#pragma once

#include <vector>

#include "platform/base/status.h"
#include "platform/modeler/assembly.h"
#include "platform/modeler/modeler.h"

namespace od_occt {

/// A product whose shape another file has.
struct StepMissingPart {
  OdUInt32 product = 0;  ///< index into the assembly's products
  OdString file;         ///< as the text has it
};

/// What one file gave. `parts` are the products without a shape of their own that name a file.
struct StepReading {
  OdModelerAssembly assembly;
  std::vector<StepMissingPart> parts;
};

/// Reads the text of a file. The assembly's notes say what was left out, what is damaged and what
/// is missing. A file without geometry is no failure here. Texts of failures do not name the file.
OdStatus readStepText(std::string text, const OdModelerReadOptions& options, StepReading& result);

}  // namespace od_occt
