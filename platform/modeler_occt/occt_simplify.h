// Joins what a boolean brought together.
#pragma once

#include <BRepTools_History.hxx>
#include <TopTools_MapOfShape.hxx>
#include <TopoDS_Shape.hxx>
#include <span>

#include "platform/modeler/body.h"

class BRepAlgoAPI_BooleanOperation;

namespace od_occt {

/// The outcome of an operation with the fates of all that its inputs had.
struct Simplified {
  TopoDS_Shape shape;
  Handle(BRepTools_History) history;
  TopTools_MapOfShape kept;  ///< edges at which faces stay apart, vertices at which edges do
  bool leftApart = false;    ///< faces that should have been joined may be side by side

  /// Takes what a step has made of the shape.
  void advance(const TopoDS_Shape& now, const Handle(BRepTools_History) & step);
};

enum class FacesToJoin { kNone, kPlanes, kAll };

/// Joins faces of one surface, and edges of one curve, that meet in the outcome of the operation.
/// What stood side by side in the base stays apart: an imported part may have a cylinder in two
/// halves, and keeps them; so does what stood side by side in a tool and goes on from there, as in
/// a piece that was cut out and is put back. With no faces to join the outcome is as it is.
Simplified simplified(BRepAlgoAPI_BooleanOperation& operation,
                      std::span<const OdModelerBodyPtr> inputs, FacesToJoin faces, bool unifyEdges);

}  // namespace od_occt
