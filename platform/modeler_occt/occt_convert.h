// Conversions between the runtime's geometry and text values and those of Open CASCADE.
#pragma once

#include <Quantity_Color.hxx>
#include <TCollection_ExtendedString.hxx>
#include <gp_Dir.hxx>
#include <gp_Pnt.hxx>
#include <gp_Trsf.hxx>
#include <gp_Vec.hxx>

#include "platform/base/string.h"
#include "platform/ge/matrix3d.h"
#include "platform/modeler/body_attributes.h"

namespace od_occt {

inline OdGePoint3d toPoint(const gp_Pnt& p) { return {p.X(), p.Y(), p.Z()}; }
inline OdGeVector3d toVector(const gp_Vec& v) { return {v.X(), v.Y(), v.Z()}; }
inline OdGeVector3d toVector(const gp_Dir& d) { return {d.X(), d.Y(), d.Z()}; }
inline gp_Pnt toOcct(const OdGePoint3d& p) { return {p.x, p.y, p.z}; }
inline gp_Vec toOcct(const OdGeVector3d& v) { return {v.x, v.y, v.z}; }
/// The vector must not be zero.
inline gp_Dir toOcctDir(const OdGeVector3d& v) { return {v.x, v.y, v.z}; }

OdGeMatrix3d toMatrix(const gp_Trsf& transformation);
/// The matrix must be a uniformly scaled orthogonal one.
gp_Trsf toTrsf(const OdGeMatrix3d& matrix);

OdModelerColor toColor(const Quantity_Color& color);
Quantity_Color toOcct(const OdModelerColor& color);

OdString toString(const TCollection_ExtendedString& text);
TCollection_ExtendedString toOcct(const OdString& text);

}  // namespace od_occt
