// What a STEP file holds beyond products and their shapes, by kind and number.
#pragma once

#include "platform/base/array.h"
#include "platform/modeler_occt/step_text.h"

namespace od_occt {

/// Kinds of content that drawings do not keep, one line each such as "9 dimensions", in the order
/// of a fixed table. Annotations are among them unless they are taken over.
OdStringArray stepLeftOut(const StepText& file, bool withAnnotations);

/// An instance that is drawn as a note of some kind, such as an annotation curve or plane.
bool isAnnotation(const StepText& file, const StepInstance& instance);

}  // namespace od_occt
