// Faces of a body and of tools, divided where they meet.
#pragma once

#include <BRepTools_History.hxx>
#include <TopoDS_Face.hxx>
#include <memory>
#include <span>
#include <vector>

#include "platform/modeler_occt/occt_local_region.h"
#include "platform/modeler_occt/occt_operations.h"
#include "platform/modeler_occt/occt_side_at_edge.h"

namespace od_occt {

/// A part of a face of the base or of a tool.
struct FacePiece {
  TopoDS_Face face;  ///< as it is oriented in its body
  bool ofTool = false;
  /// Lies in a face of the other one; such a piece is there twice, once for each. Then `side` is
  /// unknown, and `facesAlike` says whether both bodies lie on the same side of it.
  bool coincides = false;
  bool facesAlike = false;
  Side side = Side::kUnknown;  ///< of a base's piece in the tools, of a tool's piece in the base
};

/// The faces of a region and of its tools, divided where they meet, each piece with its side.
/// Serves all booleans of these inputs. Immutable.
struct LocalSplit {
  LocalRegion region;
  std::vector<FacePiece> pieces;      ///< the base's in the order of its faces, then the tools'
  Handle(BRepTools_History) history;  ///< of the region's near faces and the tools' faces
};

/// eNotApplicable, with the reason, where the sides of pieces do not follow from the edges at which
/// they meet, or more of the base changes than the faces near the tools.
OdStatus splitLocally(std::span<const OdModelerBodyPtr> inputs, const Options& options,
                      std::shared_ptr<const LocalSplit>& result);

}  // namespace od_occt
