// Dimensions of a radius and of a diameter.
#include "platform/entities/round_dimension.h"

#include "platform/db/field_list.h"
#include "platform/entities/property_rows.h"

OD_RX_DEFINE_DB(OdDbRadialDimension, OdDbDimension, L"OdDbRadialDimension", 0, 0, 0,
                L"DIMENSION_RADIAL", OdString())
OD_RX_DEFINE_DB(OdDbDiametricDimension, OdDbDimension, L"OdDbDiametricDimension", 0, 0, 0,
                L"DIMENSION_DIAMETRIC", OdString())

OD_DB_CHECKED_PROPERTY(OdDbRoundDimension, double, leaderLength, setLeaderLength, m_leader,
                       "leader length", oddbIsWidth)

void OdDbRoundDimension::addRadialLine(OdDbDimPicture& picture, const OdGePoint3d& from,
                                       const OdGePoint3d& on) const {
  const OdGeVector3d way = on - from;
  const double length = way.length();
  if (!(length > 0.0)) return picture.placeText(on, picture.level());
  const OdGeVector3d outward = way / length;
  if (m_leader > 0.0) {
    const OdGePoint3d end = on + outward * m_leader;
    picture.addLine(OdDbDimPicture::Part::kDimensionLine, on, end);
    picture.addArrow(on, -outward);
    return picture.placeText(on + (end - on) / 2, outward);
  }
  picture.addLine(OdDbDimPicture::Part::kDimensionLine, from, on);
  picture.addArrow(on, outward);
  picture.placeText(from + way / 2, outward);
}

void OdDbRadialDimension::addPicture(OdDbDimPicture& picture) const {
  picture.addCenterMark(center());
  addRadialLine(picture, center(), chordPoint());
}

// Within the circle it is a dimension line like any other; outside, a line from the near point.
void OdDbDiametricDimension::addPicture(OdDbDimPicture& picture) const {
  picture.addCenterMark(chordPoint() + (farChordPoint() - chordPoint()) / 2);
  if (m_leader > 0.0) return addRadialLine(picture, farChordPoint(), chordPoint());
  picture.addDimensionLine(farChordPoint(), chordPoint());
}

// Fields of both begin with those of a dimension. Points of a radius: centre, chord point; of a
// diameter: chord point, far chord point.
//
//   version         uint8
//   leader length   double   40   drawing units, not negative

template <class Fields, class Self>
void OdDbRadialDimension::fields(Fields& fields, Self& self) {
  fields.version(1);
  fields.value(40, self.m_leader, oddbIsWidth);
}

OD_DB_DEFINE_FILING(OdDbRadialDimension, OdDbDimension)

template <class Fields, class Self>
void OdDbDiametricDimension::fields(Fields& fields, Self& self) {
  fields.version(1);
  fields.value(40, self.m_leader, oddbIsWidth);
}

OD_DB_DEFINE_FILING(OdDbDiametricDimension, OdDbDimension)
