// OdDbAssoc2dConstraintGroup: its plane, filing.
#include "platform/assoc/assoc_2d_constraint_group.h"

#include <cmath>

#include "platform/db/field_list.h"
#include "platform/ge/finite.h"

OD_RX_DEFINE_DB(OdDbAssoc2dConstraintGroup, OdDbAssocAction, L"OdDbAssoc2dConstraintGroup", 0, 0, 0,
                L"ASSOC2DCONSTRAINTGROUP", OdString())

namespace {

const OdGeTol kUnit(1e-9);  // rounding of axes that were made perpendicular

bool arePerpendicularUnits(const OdGeVector3d& x, const OdGeVector3d& y) {
  return x.isUnitLength(kUnit) && y.isUnitLength(kUnit) &&
         std::abs(x.dotProduct(y)) <= kUnit.equalPoint();
}

}  // namespace

OdGePlane OdDbAssoc2dConstraintGroup::getWorkPlane() const {
  assertReadEnabled();
  return {m_origin, m_xAxis, m_yAxis};
}

OdResult OdDbAssoc2dConstraintGroup::setWorkPlane(const OdGePlane& plane) {
  const OdGeVector3d xAxis = plane.uAxis() / plane.uAxis().length();
  const OdGeVector3d yAxis = plane.normal().crossProduct(xAxis);
  if (!odgeIsFinite(plane.origin()) || !arePerpendicularUnits(xAxis, yAxis)) return eInvalidInput;
  assertWriteEnabled();
  m_origin = plane.origin();
  m_xAxis = xAxis;
  m_yAxis = yAxis;
  return eOk;
}

OdResult OdDbAssoc2dConstraintGroup::transformActionBy(const OdGeMatrix3d& transform) {
  assertReadEnabled();
  if (!odgeIsFinite(transform)) return eInvalidInput;
  if (transform.isSingular()) return eDegenerateGeometry;
  return setWorkPlane({transform * m_origin, transform * m_xAxis, transform * m_yAxis});
}

// Fields:
//
//   field         binary       groups
//   version       uint8
//   origin        point        10       coordinates of the block
//   x, y axes     2 vectors    11, 12   perpendicular unit vectors

template <class Fields, class Self>
void OdDbAssoc2dConstraintGroup::fields(Fields& fields, Self& self) {
  fields.version(1);
  fields.value(10, self.m_origin, [](const OdGePoint3d& point) { return odgeIsFinite(point); });
  fields.value(11, self.m_xAxis);
  fields.value(12, self.m_yAxis);
  fields.rule([&] { return arePerpendicularUnits(self.m_xAxis, self.m_yAxis); });
}

OD_DB_DEFINE_FILING(OdDbAssoc2dConstraintGroup, OdDbAssocAction)
