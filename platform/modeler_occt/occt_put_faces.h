// Puts faces into a body in the place of others.
#pragma once

#include <TopTools_DataMapOfShapeListOfShape.hxx>
#include <TopTools_ListOfShape.hxx>
#include <TopoDS_Shape.hxx>
#include <optional>

namespace od_occt {

/// Faces of a body that change, each with what takes its place: one or more faces, or none. A face
/// that takes the place of several counts at the first of them.
struct FaceChanges {
  TopTools_DataMapOfShapeListOfShape of;
  TopTools_ListOfShape added;  ///< faces that have no former one; they come last
};

/// The solids of a shape with their faces changed, in the order of the shape. Shells and faces that
/// do not change stay the very same. A cavity that loses all its faces is filled: the solid has no
/// shell for it any more. Empty unless all changes are in one shell, and where the outer shell of a
/// solid loses all its faces. New faces are oriented as they are given.
[[nodiscard]] std::optional<TopoDS_Shape> withChangedFaces(const TopoDS_Shape& shape,
                                                           const FaceChanges& changes);

/// A closed shell of faces, in their order.
[[nodiscard]] TopoDS_Shape closedShellOf(const TopTools_ListOfShape& faces);
/// A solid of shells, the outer one first.
[[nodiscard]] TopoDS_Shape solidOf(const TopTools_ListOfShape& shells);

}  // namespace od_occt
