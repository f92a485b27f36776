// What each face adds to the area and volume of a body.
#pragma once

#include <GProp_GProps.hxx>
#include <TopoDS_Face.hxx>
#include <TopoDS_Shape.hxx>
#include <gp_Pnt.hxx>
#include <memory>
#include <optional>
#include <vector>

#include "platform/modeler/body.h"

namespace od_occt {

struct Topology;

/// The integrals over one face, as it is oriented in its body: of its area, and of the volume
/// between it and an origin.
struct FaceMeasures {
  GProp_GProps area;
  GProp_GProps volume;
};

/// The measures of the faces of a body about one origin, by index - 1; null where one is not known.
/// A sum over faces: bodies that share faces share their measures, and a change of some faces takes
/// the measures of these alone, without adding up any error.
struct BodyMeasures {
  gp_Pnt origin;
  std::vector<std::shared_ptr<const FaceMeasures>> faces;
};

/// Completes `measures` and sums them up. Empty for a shape whose volume is not the sum over its
/// numbered faces: with parts outside of solids, open shells, or faces between two solids.
std::optional<OdModelerMassProperties> massByFaces(const TopoDS_Shape& shape,
                                                   const Topology& topology,
                                                   BodyMeasures& measures);

}  // namespace od_occt
