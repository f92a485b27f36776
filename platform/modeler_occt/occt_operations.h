// The operations of the modeller, one family per source. Contracts: platform/modeler/modeler.h.
#pragma once

#include <span>

#include "platform/modeler/modeler.h"

class BRepBuilderAPI_MakeShape;

namespace od_occt {

// occt_primitives.cpp
OdModelerStatus makeBox(double dx, double dy, double dz, OdModelerBodyPtr& result);
OdModelerStatus makeCylinder(double radius, double height, OdModelerBodyPtr& result);
OdModelerStatus makeCone(double bottomRadius, double topRadius, double height,
                         OdModelerBodyPtr& result);
OdModelerStatus makeSphere(double radius, OdModelerBodyPtr& result);
OdModelerStatus makeTorus(double majorRadius, double minorRadius, OdModelerBodyPtr& result);
OdModelerStatus makeWedge(double dx, double dy, double dz, double topDx, OdModelerBodyPtr& result);

// occt_sweep.cpp
OdModelerStatus extrude(const OdModelerProfile& profile, const OdGeVector3d& direction,
                        OdModelerBodyPtr& result);
OdModelerStatus revolve(const OdModelerProfile& profile, const OdGePoint3d& axisPoint,
                        const OdGeVector3d& axis, double angle, OdModelerBodyPtr& result);

// occt_boolean.cpp
OdModelerStatus boolean(OdModelerBooleanKind kind, const OdModelerBodyPtr& base,
                        std::span<const OdModelerBodyPtr> tools, OdModelerBodyPtr& result,
                        OdModelerHistory* history);
OdModelerStatus compound(std::span<const OdModelerBodyPtr> bodies, OdModelerBodyPtr& result);

// occt_blend.cpp
OdModelerStatus fillet(const OdModelerBodyPtr& body, std::span<const OdUInt32> edges, double radius,
                       OdModelerBodyPtr& result, OdModelerHistory* history);
OdModelerStatus chamfer(const OdModelerBodyPtr& body, std::span<const OdUInt32> edges,
                        double distance, OdModelerBodyPtr& result, OdModelerHistory* history);

// occt_remove_faces.cpp
OdModelerStatus removeFaces(const OdModelerBodyPtr& body, std::span<const OdUInt32> faces,
                            OdModelerBodyPtr& result, OdModelerHistory* history);

// occt_serialise.cpp
OdModelerStatus deserialise(const OdBinaryData& bytes, OdModelerBodyPtr& result);

// step_import.cpp, step_export.cpp
OdModelerStatus importStep(const OdString& path, OdModelerAssembly& result);
OdModelerStatus exportStep(const OdString& path, const OdModelerAssembly& assembly);

}  // namespace od_occt
