// The way from a body to its Open CASCADE shape and back, for code that works on shapes itself.
#pragma once

#include "platform/modeler/body.h"

class TopoDS_Shape;

/// The shape of a body, borrowed: it lives as long as the body and must not be changed (meshing a
/// shape changes it: mesh a copy). Faces, edges and vertices of the body are numbered as
/// TopExp::MapShapes numbers those of the shape. Raises OdError eNotThatKindOfClass for a body of
/// another modeller.
[[nodiscard]] const TopoDS_Shape& odOcctShape(const OdModelerBody& body);

/// A body that takes over the shape. Containers around a single shape are removed; null for a null
/// or empty shape. The shape's own flags are reset, so the caller must not keep changing it.
[[nodiscard]] OdModelerBodyPtr odBodyFromOcct(const TopoDS_Shape& shape,
                                              OdModelerBodyAttributes attributes = {});
