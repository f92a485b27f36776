// OdDbArc: a part of a circle.
#include "platform/entities/arc.h"

#include <utility>

#include "platform/db/field_list.h"

OD_RX_DEFINE_DB(OdDbArc, OdDbCurve, L"OdDbArc", 0, 0, 0, L"ARC", OdString())

namespace {

bool isAngle(double angle) { return angle >= 0.0 && angle < kOdDbFullTurn; }

}  // namespace

double OdDbArc::startAngle() const { return read(m_start); }
double OdDbArc::endAngle() const { return read(m_end); }
void OdDbArc::setStartAngle(double angle) {
  change(m_start, oddbNormalAngle(oddbChecked(this, "start angle", angle, oddbIsNumber)));
}
void OdDbArc::setEndAngle(double angle) {
  change(m_end, oddbNormalAngle(oddbChecked(this, "end angle", angle, oddbIsNumber)));
}
double OdDbArc::totalAngle() const {
  assertReadEnabled();
  return sweepOf();
}

// A flip turns the direction round: the start becomes the end. The sweep is kept to the last bit
// where it is a whole turn.
void OdDbArc::moveAngles(const OdDbPlaneMove& move) {
  const bool isWhole = m_start == m_end;
  m_start = oddbNormalAngle(move.angle(m_start));
  m_end = isWhole ? m_start : oddbNormalAngle(move.angle(m_end));
  if (move.flips()) std::swap(m_start, m_end);
}

// Fields: those of a circle, then:
//
//   start, end   2 doubles   50, 51   radians, 0 up to a whole turn

template <class Fields, class Self>
void OdDbArc::fields(Fields& fields, Self& self) {
  roundFields(fields, self);
  fields.value(50, self.m_start, isAngle);
  fields.value(51, self.m_end, isAngle);
}

OD_DB_DEFINE_FILING(OdDbArc, OdDbCurve)
