// OdDb3PointAngularDimension: the angle between two points, seen from a third.
#include "platform/entities/angular_dimension.h"

#include "platform/db/field_list.h"
#include "platform/entities/arc_chords.h"

OD_RX_DEFINE_DB(OdDb3PointAngularDimension, OdDbDimension, L"OdDb3PointAngularDimension", 0, 0, 0,
                L"DIMENSION_ANGULAR", OdString())

OdDb3PointAngularDimension::Span OdDb3PointAngularDimension::span() const {
  const OdDbPlaneFrame frame(normal());
  const double first = frame.angleOf(xLine1Point() - centerPoint());
  const double second = frame.angleOf(xLine2Point() - centerPoint());
  const double wanted = frame.angleOf(arcPoint() - centerPoint());
  const double sweep = oddbSweep(first, second);
  if (oddbNormalAngle(wanted - first) <= sweep) return {first, sweep, true};
  return {second, oddbSweep(second, first), false};
}

double OdDb3PointAngularDimension::measurement() const { return span().sweep; }

void OdDb3PointAngularDimension::addPicture(OdDbDimPicture& picture) const {
  const Span span = this->span();
  const double radius = arcPoint().distanceTo(centerPoint());
  const OdGePoint3d ends[] = {xLine1Point(), xLine2Point()};
  for (const unsigned i : {0u, 1u}) {
    const bool isStart = (i == 0) == span.beginsAtFirst;
    const double angle = isStart ? span.start : span.start + span.sweep;
    picture.addExtension(i, ends[i], centerPoint() + picture.frame().direction(angle) * radius);
  }
  picture.addDimensionArc(centerPoint(), radius, span.start, span.sweep);
}

// Fields: those of a dimension, whose points are centre, first, second and arc point, then:
//
//   version   uint8

template <class Fields, class Self>
void OdDb3PointAngularDimension::fields(Fields& fields, Self&) {
  fields.version(1);
}

OD_DB_DEFINE_FILING(OdDb3PointAngularDimension, OdDbDimension)
