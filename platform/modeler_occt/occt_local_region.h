// The part of a body that tools can reach.
#pragma once

#include <TopTools_IndexedMapOfShape.hxx>
#include <TopTools_ListOfShape.hxx>
#include <TopoDS_Face.hxx>
#include <span>
#include <vector>

#include "platform/modeler_occt/occt_body.h"
#include "platform/modeler_occt/occt_face_boxes.h"

namespace od_occt {

/// A face of the base that tools may reach.
struct ReachedFace {
  OdUInt32 index = 0;  ///< in the base
  TopoDS_Face whole;   ///< as it is in the base
  /// The same without the loops that no tool can reach; `whole` itself when there are none of
  /// these.
  TopoDS_Face near;
  TopTools_ListOfShape far;  ///< those loops
};

/// The faces of a body whose boxes meet those of tools, and the tools. The rest of the body is not
/// looked at. Everything that an operation changes lies within the boxes of the tools.
struct LocalRegion {
  std::vector<ReachedFace> faces;  ///< in the order of the base
  std::vector<bool> isReached;     ///< by face index - 1
  /// Edges and vertices of reached faces, by their index in the base, rising.
  std::vector<OdUInt32> edges;
  std::vector<OdUInt32> vertices;
  std::vector<TopoDS_Face> toolFaces;  ///< as they are in the tools
  BoxSet toolBoxes;                    ///< one for each solid of the tools

  /// True when a face that is not reached has the edge.
  [[nodiscard]] bool isShared(const Topology& base, OdUInt32 edge) const;
};

/// eNotApplicable, with the reason, where an operation must look at the whole bodies: a body that
/// is no solid or whose faces wait for being joined, tools with cavities or that may meet each
/// other, and where every face is reached or none is. inputs[0] is the base.
OdStatus findRegion(std::span<const OdModelerBodyPtr> inputs, LocalRegion& region);

}  // namespace od_occt
