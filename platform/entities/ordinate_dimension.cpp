// OdDbOrdinateDimension: one coordinate of a point.
#include "platform/entities/ordinate_dimension.h"

#include <cmath>

#include "platform/db/field_list.h"

OD_RX_DEFINE_DB(OdDbOrdinateDimension, OdDbDimension, L"OdDbOrdinateDimension", 0, 0, 0,
                L"DIMENSION_ORDINATE", OdString())

bool OdDbOrdinateDimension::isUsingXAxis() const { return read(m_usesX); }

double OdDbOrdinateDimension::measurement() const {
  const OdGeVector3d x = OdDbPlaneFrame(normal()).direction(horizontalRotation());
  const OdGeVector3d axis = m_usesX ? x : m_normal.crossProduct(x);
  return std::abs((definingPoint() - origin()).dotProduct(axis));
}

// The line leaves the point across the measured axis, and comes to its end the same way; a slanted
// piece in the middle makes up the difference.
void OdDbOrdinateDimension::addPicture(OdDbDimPicture& picture) const {
  const OdGeVector3d x = picture.level();
  const OdGeVector3d run = m_usesX ? picture.frame().normal().crossProduct(x) : x;
  const OdGeVector3d way = leaderEndPoint() - definingPoint();
  const double length = way.dotProduct(run);
  const double sense = length < 0.0 ? -1.0 : 1.0;
  const double jog = std::min(2.0 * picture.style().arrow, std::abs(length) / 3) * sense;
  const double gap = std::min(picture.style().extensionGap, std::abs(length) / 3) * sense;
  const OdGePoint3d leave = definingPoint() + run * (length - 2.0 * jog);
  const OdGePoint3d arrive = leaderEndPoint() - run * jog;
  picture.addStroke(OdDbDimPicture::Part::kExtensionLine,
                    {definingPoint() + run * gap, leave, arrive, leaderEndPoint()});
  const double beyond = picture.style().textGap + picture.textWidth() / 2;
  picture.moveText(leaderEndPoint() + run * (sense * beyond));
  picture.turnText(run);
}

// Fields: those of a dimension, whose points are origin, defining point and end of the leader,
// then:
//
//   version   uint8
//   X         bool    290   measures X

template <class Fields, class Self>
void OdDbOrdinateDimension::fields(Fields& fields, Self& self) {
  fields.version(1);
  fields.value(290, self.m_usesX);
}

OD_DB_DEFINE_FILING(OdDbOrdinateDimension, OdDbDimension)
