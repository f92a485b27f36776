// Representation items of a STEP file, by their common arguments.
#pragma once

#include <optional>

#include "platform/modeler_occt/step_strings.h"

namespace od_occt {

/// The name of an item: the first argument, or that of the common part of an item in parts.
OdString itemName(const StepText& file, const StepStrings& strings, const StepInstance& instance);

/// What a styled item or an annotation is about; nothing for other items.
std::optional<OdUInt64> styledItem(const StepText& file, const StepInstance& instance);

}  // namespace od_occt
