// Dimensions of a distance: aligned with their points, or in a direction of their own.
#include "platform/entities/linear_dimension.h"

#include <cmath>

#include "platform/db/field_list.h"
#include "platform/entities/property_rows.h"

OD_RX_DEFINE_DB(OdDbAlignedDimension, OdDbDimension, L"OdDbAlignedDimension", 0, 0, 0,
                L"DIMENSION_ALIGNED", OdString())
OD_RX_DEFINE_DB(OdDbRotatedDimension, OdDbDimension, L"OdDbRotatedDimension", 0, 0, 0,
                L"DIMENSION_ROTATED", OdString())

double OdDbLinearDimension::measurement() const {
  return std::abs((xLine2Point() - xLine1Point()).dotProduct(along()));
}

void OdDbLinearDimension::addPicture(OdDbDimPicture& picture) const {
  const OdGeVector3d across = m_normal.crossProduct(along());
  const auto onLine = [&](const OdGePoint3d& point) {
    return point + across * (dimLinePoint() - point).dotProduct(across);
  };
  const OdGePoint3d first = onLine(xLine1Point());
  const OdGePoint3d second = onLine(xLine2Point());
  picture.addExtension(0, xLine1Point(), first);
  picture.addExtension(1, xLine2Point(), second);
  picture.addDimensionLine(first, second);
}

// Points that coincide in the plane are measured along its X axis.
OdGeVector3d OdDbAlignedDimension::along() const {
  const OdGeVector3d way = xLine2Point() - xLine1Point();
  const OdGeVector3d flat = way - m_normal * way.dotProduct(m_normal);
  const double length = flat.length();
  return length > 0.0 ? flat / length : OdDbPlaneFrame(m_normal).xAxis();
}

OdGeVector3d OdDbRotatedDimension::along() const {
  return OdDbPlaneFrame(normal()).direction(m_rotation);
}

OD_DB_CHECKED_PROPERTY(OdDbRotatedDimension, double, rotation, setRotation, m_rotation, "rotation",
                       oddbIsNumber)

// Fields of both begin with those of a dimension. Its points: first, second, a point of the line.
//
//   aligned: version   uint8
//
//   rotated: version   uint8
//            rotation  double   50   radians

template <class Fields, class Self>
void OdDbAlignedDimension::fields(Fields& fields, Self&) {
  fields.version(1);
}

OD_DB_DEFINE_FILING(OdDbAlignedDimension, OdDbDimension)

template <class Fields, class Self>
void OdDbRotatedDimension::fields(Fields& fields, Self& self) {
  fields.version(1);
  fields.value(50, self.m_rotation, oddbIsNumber);
}

OD_DB_DEFINE_FILING(OdDbRotatedDimension, OdDbDimension)
