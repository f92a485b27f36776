// Histories of operations, and the attributes that follow them.
#pragma once

#include <span>

#include "platform/modeler/history.h"
#include "platform/modeler_occt/occt_body.h"

class BRepBuilderAPI_MakeShape;
class BRepTools_History;

namespace od_occt {

/// What became of each subentity of the inputs in `result`, which an operation with this history
/// made.
OdModelerHistory collectHistory(BRepTools_History& history,
                                std::span<const OdModelerBodyPtr> inputs, const Body& result);

/// Attributes of a result: name and colour of the first input; a face keeps the colour and name of
/// the face it comes from, the lowest input and index first. A face of a tool whose body has a
/// colour of its own takes that.
OdModelerBodyAttributes inheritAttributes(std::span<const OdModelerBodyPtr> inputs,
                                          const OdModelerHistory& history);

/// The end of an operation on one body that has been built: checks the outcome as a whole, and
/// gives the body with its attributes, and its history where that is wanted. `name` is for
/// messages.
OdStatus takeOutcome(const char* name, BRepBuilderAPI_MakeShape& operation,
                     const OdModelerBodyPtr& input, OdModelerBodyPtr& result,
                     OdModelerHistory* history);

}  // namespace od_occt
