// The operations of the modeller, one family per source. Contracts: platform/modeler/modeler.h.
#pragma once

#include <span>

#include "platform/modeler/modeler.h"
#include "platform/modeler_occt/occt_modeler.h"

namespace od_occt {

class KeptCut;
using Options = OdOcctOptions;

/// The status of a local operation that leaves its work to the whole bodies.
inline OdStatus declined(const wchar_t* reason) { return {eNotApplicable, OdString(reason)}; }
/// Says that a step of a local operation begins.
inline void beginLocalStep(const Options& options, std::string_view step) {
  if (options.onLocalStep) options.onLocalStep(step);
}

// occt_primitives.cpp
OdStatus makeBox(double dx, double dy, double dz, OdModelerBodyPtr& result);
OdStatus makeCylinder(double radius, double height, OdModelerBodyPtr& result);
OdStatus makeCone(double bottomRadius, double topRadius, double height, OdModelerBodyPtr& result);
OdStatus makeSphere(double radius, OdModelerBodyPtr& result);
OdStatus makeTorus(double majorRadius, double minorRadius, OdModelerBodyPtr& result);
OdStatus makeWedge(double dx, double dy, double dz, double topDx, OdModelerBodyPtr& result);

// occt_sweep.cpp
OdStatus extrude(const OdModelerProfile& profile, const OdGeVector3d& direction,
                 OdModelerBodyPtr& result);
OdStatus revolve(const OdModelerProfile& profile, const OdGePoint3d& axisPoint,
                 const OdGeVector3d& axis, double angle, OdModelerBodyPtr& result);

// occt_boolean.cpp
OdStatus boolean(OdModelerBooleanKind kind, const OdModelerBodyPtr& base,
                 std::span<const OdModelerBodyPtr> tools, const Options& options, KeptCut& kept,
                 OdModelerBodyPtr& result, OdModelerHistory* history);
OdStatus compound(std::span<const OdModelerBodyPtr> bodies, OdModelerBodyPtr& result);

// occt_blend.cpp
OdStatus fillet(const OdModelerBodyPtr& body, std::span<const OdUInt32> edges, double radius,
                OdModelerBodyPtr& result, OdModelerHistory* history);
OdStatus chamfer(const OdModelerBodyPtr& body, std::span<const OdUInt32> edges, double distance,
                 OdModelerBodyPtr& result, OdModelerHistory* history);

// occt_remove_faces.cpp
OdStatus removeFaces(const OdModelerBodyPtr& body, std::span<const OdUInt32> faces,
                     const Options& options, OdModelerBodyPtr& result, OdModelerHistory* history);

// occt_body_serialise.cpp
OdStatus deserialise(const OdBinaryData& bytes, OdModelerBodyPtr& result);

// step_loading.cpp
OdStatus importStep(const OdString& path, const OdModelerReadOptions& options,
                    OdModelerAssembly& result);
OdStatus exportStep(const OdString& path, const OdModelerAssembly& assembly);

}  // namespace od_occt
