// The part that a cut takes away, put together from what the cut has computed anyway.
#pragma once

#include <TopTools_ListOfShape.hxx>
#include <TopoDS_Shape.hxx>

class BRepAlgoAPI_Cut;

namespace od_occt {

/// The common part of the solids `bases` and `tools`, after `cut` subtracted the tools and before
/// its result is simplified. Null when there is none, or when the faces do not bound it plainly:
/// the caller then intersects.
TopoDS_Shape removedPart(BRepAlgoAPI_Cut& cut, const TopTools_ListOfShape& bases,
                         const TopTools_ListOfShape& tools);

}  // namespace od_occt
