// The modeller's own shapes of the subentities of a body.
#pragma once

#include <TopoDS_Shape.hxx>

#include "platform/modeler/body.h"

namespace naming_bench {

/// The shape of a subentity, orientation as in the body. The numbering of the last few bodies asked
/// for is kept.
[[nodiscard]] TopoDS_Shape shapeOf(const OdModelerBody& body, OdModelerSubent subent);

/// The number of a shape among those of its type in the body; a null subentity when it is not one.
[[nodiscard]] OdModelerSubent subentOf(const OdModelerBody& body, const TopoDS_Shape& shape);

}  // namespace naming_bench
