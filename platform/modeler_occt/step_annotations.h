// Drawn annotations of a STEP file: dimensions, notes and symbols as curves.
#pragma once

#include <TopTools_MapOfShape.hxx>
#include <vector>

#include "platform/modeler/assembly.h"
#include "platform/modeler_occt/step_strings.h"
#include "platform/modeler_occt/step_transfer.h"

namespace od_occt {

/// The faces and edges that the modeller's reader made of annotations: they are no part of a body.
TopTools_MapOfShape annotationShapes(const StepText& file, const StepTransfer& transfer);

/// The curves of each annotation, in millimetres; filled areas give their outlines. `leftOut` gets
/// a line when there are annotations without curves that can be drawn, such as texts.
std::vector<OdModelerAnnotation> stepAnnotations(const StepText& file, const StepStrings& strings,
                                                 double millimetres, OdStringArray& leftOut);

}  // namespace od_occt
