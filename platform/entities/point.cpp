// OdDbPoint: a point.
#include "platform/entities/point.h"

#include <array>
#include <vector>

#include "platform/db/database.h"
#include "platform/db/field_list.h"
#include "platform/entities/arc_chords.h"
#include "platform/entities/curve.h"
#include "platform/entities/plane_move.h"
#include "platform/entities/property_rows.h"
#include "platform/gi/world_draw.h"

OD_RX_DEFINE_DB(OdDbPoint, OdDbEntity, L"OdDbPoint", 0, 0, 0, L"POINT", OdString())

namespace {

constexpr double kUsualSize = 2.5;
enum Sign : int { kDot = 0, kNothing = 1, kPlus = 2, kCross = 3, kStroke = 4 };
constexpr int kSignMask = 31;
constexpr int kCircle = 32;
constexpr int kSquare = 64;

/// Strokes of the signs, in halves of the size.
struct SignRow {
  Sign sign;
  OdGePoint2d from;
  OdGePoint2d to;
};
constexpr SignRow kSigns[] = {
    {kDot, {0, 0}, {0, 0}},     {kPlus, {-2, 0}, {2, 0}},   {kPlus, {0, -2}, {0, 2}},
    {kCross, {-2, -2}, {2, 2}}, {kCross, {-2, 2}, {2, -2}}, {kStroke, {0, 0}, {0, 1}},
};
constexpr OdGePoint2d kSquareCorners[] = {{-1, -1}, {1, -1}, {1, 1}, {-1, 1}, {-1, -1}};

double settingOf(const OdDbDatabase* drawing, const char* name, double otherwise) {
  if (drawing == nullptr) return otherwise;
  const OdResBufPtr value = drawing->getSysVar(OdString(name));
  return value->restype() == 40 ? value->getDouble() : value->getInt16();
}

}  // namespace

OD_DB_CHECKED_PROPERTY(OdDbPoint, OdGePoint3d, position, setPosition, m_position, "position")
OD_DB_CHECKED_PROPERTY(OdDbPoint, double, ecsRotation, setEcsRotation, m_rotation, "rotation",
                       oddbIsNumber)

OdResult OdDbPoint::getGeomExtents(OdGeExtents3d& extents) const {
  OdGeExtents3d box;
  box.addPoint(position());
  oddbExtrude(box, m_normal * m_thickness);
  extents = box;
  return eOk;
}

bool OdDbPoint::subWorldDraw(OdGiWorldDraw* context) const {
  assertReadEnabled();
  const int mode = static_cast<int>(settingOf(database(), "PDMODE", 0));
  const double set = settingOf(database(), "PDSIZE", 0);
  const double half = (set > 0.0 ? set : kUsualSize) / 2;
  const OdDbPlaneFrame frame(m_normal);
  const OdGeVector3d x = frame.direction(m_rotation) * half;
  const OdGeVector3d y = m_normal.crossProduct(x);
  const auto place = [&](const OdGePoint2d& at) { return m_position + x * at.x + y * at.y; };
  const OdGeVector3d depth = m_normal * m_thickness;
  for (const SignRow& row : kSigns) {
    if (row.sign != (mode & kSignMask)) continue;
    oddbDrawThick(context, {place(row.from), place(row.to)}, depth);
  }
  std::vector<OdGePoint3d> points;
  if ((mode & kCircle) != 0) {
    OdDbArcShape{m_position, x, y}.addChords(context->deviation(), points);
    oddbDrawThick(context, points, depth);
  }
  if ((mode & kSquare) == 0) return true;
  points.clear();
  for (const OdGePoint2d& corner : kSquareCorners) points.push_back(place(corner));
  oddbDrawThick(context, points, depth);
  return true;
}

OdResult OdDbPoint::subTransformBy(const OdGeMatrix3d& transform) {
  const OdDbPlaneMove move(transform, m_normal);
  const OdGePoint3d position = transform * m_position;
  if (!move.takesThickness(m_thickness)) return eCannotScaleNonUniformly;
  if (!move.isFinite() || !odgeIsFinite(position)) return eInvalidInput;
  m_position = position;
  m_rotation = move.angle(m_rotation);
  m_thickness *= move.depthScale();
  m_normal = move.normal();
  return eOk;
}

// Fields:
//
//   field       binary    groups
//   version     uint8
//   position    point     10       drawing units, coordinates of the block
//   thickness   double    39
//   normal      vector    210      unit length
//   rotation    double    50       radians

template <class Fields, class Self>
void OdDbPoint::fields(Fields& fields, Self& self) {
  fields.version(1);
  fields.value(10, self.m_position, oddbIsPoint);
  fields.value(39, self.m_thickness, oddbIsNumber);
  fields.value(210, self.m_normal, oddbIsNormal);
  fields.value(50, self.m_rotation, oddbIsNumber);
}

OD_DB_DEFINE_FILING(OdDbPoint, OdDbEntity)
