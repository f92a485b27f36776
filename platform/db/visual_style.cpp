// OdDbVisualStyle: how a view shows solids.
#include "platform/db/visual_style.h"

#include <string>

#include "platform/base/error.h"
#include "platform/db/field_list.h"

OD_RX_DEFINE_DB(OdDbVisualStyle, OdDbObject, L"OdDbVisualStyle", 0, 0, 0, L"VISUALSTYLE",
                OdString())

namespace {

bool isEdgeModel(OdUInt8 number) { return number <= OdGiEdgeStyle::kFacetEdges; }
bool isLineType(OdUInt8 number) { return number <= OdGiEdgeStyle::kSparseDot; }
bool isCreaseAngle(double degrees) { return degrees >= 0.0 && degrees <= 180.0; }

bool isSound(const OdGiEdgeStyle& style) {
  return isEdgeModel(style.edgeModel) && isLineType(style.obscuredLinetype) &&
         isLineType(style.intersectionLinetype) && isCreaseAngle(style.creaseAngle);
}

}  // namespace

OdGiEdgeStyle OdDbVisualStyle::edgeStyle() const { return read(m_edges); }

void OdDbVisualStyle::setEdgeStyle(const OdGiEdgeStyle& style) {
  if (!isSound(style)) {
    throw OdError(eInvalidInput,
                  OdString("edge model " + std::to_string(style.edgeModel) + ", line types " +
                           std::to_string(style.obscuredLinetype) + " and " +
                           std::to_string(style.intersectionLinetype) + ", crease angle " +
                           std::to_string(style.creaseAngle) + " of visual style '") +
                      name() + "'");
  }
  assign(m_edges, style);
}

// Fields:
//
//   field                    binary        groups
//   version                  uint8
//   name, description        2 strings     2, 4
//   edge model               uint8         280      0 none, 1 isolines, 2 edges of facets
//   edge colour              4 x uint8     420
//   hidden edges             bool          290      whether they show
//   their colour             4 x uint8     421      none: the edge colour
//   their line type          uint8         281      see OdGiEdgeStyle::LineType
//   intersections            bool          291      whether they show
//   their colour, line type  as above      422, 282
//   crease angle             double        40       degrees, 0 to 180

template <class Fields, class Self>
void OdDbVisualStyle::fields(Fields& fields, Self& self) {
  nameFields(fields, self);
  fields.template number<OdUInt8>(280, self.m_edges.edgeModel, isEdgeModel);
  fields.value(420, self.m_edges.edgeColor);
  fields.value(290, self.m_edges.showsObscured);
  fields.value(421, self.m_edges.obscuredColor);
  fields.template number<OdUInt8>(281, self.m_edges.obscuredLinetype, isLineType);
  fields.value(291, self.m_edges.showsIntersections);
  fields.value(422, self.m_edges.intersectionColor);
  fields.template number<OdUInt8>(282, self.m_edges.intersectionLinetype, isLineType);
  fields.value(40, self.m_edges.creaseAngle, isCreaseAngle);
}

OD_DB_DEFINE_FILING(OdDbVisualStyle, OdDbObject)
