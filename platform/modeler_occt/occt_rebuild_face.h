// Builds one face over adjacent faces of one surface of revolution.
#pragma once

#include <TopTools_ListOfShape.hxx>
#include <TopTools_MapOfShape.hxx>
#include <TopoDS_Edge.hxx>
#include <TopoDS_Face.hxx>
#include <vector>

namespace od_occt {

/// An edge of a face, each with the orientation that it has in the shape.
struct EdgeOfFace {
  TopoDS_Edge edge;
  TopoDS_Face face;
};

/// Faces for which haveOneSurface holds, as they are oriented in one shell.
struct FaceGroup {
  std::vector<TopoDS_Face> faces;
  std::vector<EdgeOfFace> boundary;  ///< edges at which the group ends, by each use
  std::vector<EdgeOfFace> inner;     ///< edges between two of its faces, and seams, each once
  TopTools_MapOfShape anchors;       ///< vertices of the boundary at which seams end
};

/// Edges that were inner, and the seam that runs where they ran.
struct RebuiltSeam {
  TopoDS_Edge edge;
  TopTools_ListOfShape former;
};

/// An edge of the boundary, and what takes its place because it was not defined on the face's
/// surface or passed its seam: a copy, or its parts in their order along it. All are forward.
struct ReplacedEdge {
  TopoDS_Edge edge;
  std::vector<TopoDS_Edge> parts;
};

struct RebuiltFace {
  TopoDS_Face face;  ///< oriented as in the shell
  std::vector<ReplacedEdge> boundary;
  std::vector<RebuiltSeam> seams;
};

/// The faces as one, on the surface of one of them. Laws of choice, the first that works:
/// 1. on a surface whose seam meets the boundary at vertices only;
/// 2. for faces that do not go all around, on one that is turned until its seam passes them by;
/// 3. on one that has parts of its seam in or between the faces, edges of the boundary divided;
/// 4. on one that is turned so that its seam continues that of a neighbour;
/// 5. on any of the others, and last on one that is turned to one of the first vertices.
/// False, with `result` undefined, when none works. Nothing of the group is changed.
bool rebuildFace(const FaceGroup& group, RebuiltFace& result);

}  // namespace od_occt
