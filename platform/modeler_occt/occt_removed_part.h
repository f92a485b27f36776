// The part that a cut takes away, put together from what the cut has computed anyway.
#pragma once

#include <TopTools_ListOfShape.hxx>
#include <TopoDS_Shape.hxx>

class BRepAlgoAPI_Cut;

namespace od_occt {

/// What solids `bases` and `tools` have in common, after `cut` took the one from the other and
/// before its result is simplified. Null when nothing is in common, and when it is not plainly
/// told: the caller intersects then.
TopoDS_Shape removedPart(BRepAlgoAPI_Cut& cut, const TopTools_ListOfShape& bases,
                         const TopTools_ListOfShape& tools);

}  // namespace od_occt
