// OdDb2dPolyline: a polyline of the older kind.
#include "platform/entities/polyline_2d.h"

#include "platform/db/field_list.h"

OD_RX_DEFINE_DB(OdDb2dPolyline, OdDbCurve, L"OdDb2dPolyline", 0, 0, 0, L"POLYLINE", OdString())

namespace {

constexpr auto kIsType = [](OdUInt8 number) { return number <= OdDb::k2dCubicSplinePoly; };

}  // namespace

OdDb::Poly2dType OdDb2dPolyline::polyType() const { return read(m_type); }

void OdDb2dPolyline::setPolyType(OdDb::Poly2dType type) {
  change(m_type, oddbChecked(this, "type", type, kIsType));
}

void OdDb2dPolyline::appendVertex(const OdGePoint3d& position, double bulge, double startWidth,
                                  double endWidth) {
  addVertexAt(numVerts(), {position.x, position.y}, bulge, startWidth, endWidth);
}

// Fields: those of a light-weight polyline, then:
//
//   type   uint8   280   see OdDb::Poly2dType

template <class Fields, class Self>
void OdDb2dPolyline::fields(Fields& fields, Self& self) {
  runFields(fields, self);
  fields.template number<OdUInt8>(280, self.m_type, kIsType);
}

OD_DB_DEFINE_FILING(OdDb2dPolyline, OdDbCurve)
