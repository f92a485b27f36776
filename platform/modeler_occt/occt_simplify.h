// Joins what a boolean brought together.
#pragma once

#include <BRepTools_History.hxx>
#include <TopTools_MapOfShape.hxx>
#include <TopoDS_Shape.hxx>
#include <span>
#include <vector>

#include "platform/modeler/body.h"

namespace od_occt {

/// The outcome of an operation with the fates of all that its inputs had.
struct Simplified {
  TopoDS_Shape shape;
  Handle(BRepTools_History) history;
  TopTools_MapOfShape kept;  ///< edges at which faces stay apart, vertices at which edges do
  bool leftApart = false;    ///< faces that should have been joined may be side by side

  /// Continues with the shape that a step made, and follows `kept` to it.
  void advance(const TopoDS_Shape& now, const Handle(BRepTools_History) & step);
};

enum class FacesToJoin { kNone, kPlanes, kAll };

/// What an operation made of its inputs. A part of an input that the history does not know is as it
/// was.
struct OperationOutcome {
  TopoDS_Shape shape;
  Handle(BRepTools_History) history;
};

/// The part of the base that an outcome has, where it does not have all of it.
struct PartOfBase {
  std::vector<OdUInt32> edges;     ///< indices in the base
  std::vector<OdUInt32> vertices;  ///< indices in the base
  TopTools_MapOfShape kept;        ///< edges and vertices that the rest of the base has too
};

/// Joins faces of one surface, and edges of one curve, that meet in the outcome of an operation.
/// Faces that were side by side in the base stay apart: a part that was imported with a cylinder in
/// two halves keeps them. So do those of a tool whose border continues such a border, as in a piece
/// that was cut out and is put back. With FacesToJoin::kNone the outcome stays as it is. `part` is
/// null for an outcome with the whole base.
Simplified simplified(const OperationOutcome& operation, std::span<const OdModelerBodyPtr> inputs,
                      const PartOfBase* part, FacesToJoin faces, bool unifyEdges);

}  // namespace od_occt
