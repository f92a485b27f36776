// Products of a STEP file whose shapes are in other files.
#pragma once

#include <vector>

#include "platform/base/string.h"
#include "platform/modeler_occt/step_strings.h"

namespace od_occt {

/// The entity type by which a file names another one. The modeller's reader would look for such
/// files itself, also where the process happens to run, and keep silent when it finds none.
inline constexpr std::string_view kStepFileType = "DOCUMENT_FILE";

/// A file that a product definition names.
struct StepExternal {
  OdUInt64 definition = 0;  ///< the product definition; 0 when the file belongs to none
  OdString file;            ///< as the text has it
};

/// In the order of the text, each pair once.
std::vector<StepExternal> stepExternals(const StepText& file, const StepStrings& strings);

}  // namespace od_occt
