// OdDbArcAlignedText: a text along an arc.
#include "platform/entities/arc_aligned_text.h"

#include <cmath>
#include <utility>

#include "platform/db/field_list.h"
#include "platform/db/text_style_table.h"
#include "platform/entities/curve.h"
#include "platform/entities/plane_move.h"
#include "platform/entities/property_rows.h"
#include "platform/entities/text_line.h"
#include "platform/gi/stroke_font.h"

OD_RX_DEFINE_DB(OdDbArcAlignedText, OdDbEntity, L"OdDbArcAlignedText", 0, 0, 0, L"ARCALIGNEDTEXT",
                OdString())

namespace {

constexpr auto kIsAngle = [](double angle) { return angle >= 0.0 && angle < kOdDbFullTurn; };
constexpr auto kIsAlignment = [](OdUInt8 number) {
  return number >= OdDb::kArcTextFit && number <= OdDb::kArcTextCenter;
};
constexpr auto kIsOneOfTwo = [](OdUInt8 number) { return number == 1 || number == 2; };

}  // namespace

OD_DB_PROPERTY(OdDbArcAlignedText, OdString, textString, setTextString, m_text)
OD_DB_CHECKED_PROPERTY(OdDbArcAlignedText, OdGePoint3d, center, setCenter, m_center, "centre")
OD_DB_CHECKED_PROPERTY(OdDbArcAlignedText, double, radius, setRadius, m_radius, "radius",
                       oddbIsLength)
double OdDbArcAlignedText::startAngle() const { return read(m_start); }
void OdDbArcAlignedText::setStartAngle(double angle) {
  change(m_start, oddbNormalAngle(oddbChecked(this, "start angle", angle, oddbIsNumber)));
}
double OdDbArcAlignedText::endAngle() const { return read(m_end); }
void OdDbArcAlignedText::setEndAngle(double angle) {
  change(m_end, oddbNormalAngle(oddbChecked(this, "end angle", angle, oddbIsNumber)));
}
OD_DB_CHECKED_PROPERTY(OdDbArcAlignedText, double, textSize, setTextSize, m_size, "height",
                       oddbIsLength)
OD_DB_CHECKED_PROPERTY(OdDbArcAlignedText, double, xScale, setXScale, m_xScale, "width factor",
                       oddbIsWidthFactor)
OD_DB_CHECKED_PROPERTY(OdDbArcAlignedText, double, offsetFromArc, setOffsetFromArc, m_offset,
                       "offset", oddbIsWidth)
OD_DB_CHECKED_PROPERTY(OdDbArcAlignedText, double, leftOffset, setLeftOffset, m_left, "left offset",
                       oddbIsNumber)
OD_DB_CHECKED_PROPERTY(OdDbArcAlignedText, double, rightOffset, setRightOffset, m_right,
                       "right offset", oddbIsNumber)
OD_DB_CHECKED_PROPERTY(OdDbArcAlignedText, OdDb::ArcTextAlignment, alignment, setAlignment,
                       m_alignment, "alignment", kIsAlignment)
OD_DB_CHECKED_PROPERTY(OdDbArcAlignedText, OdDb::ArcTextPosition, textPosition, setTextPosition,
                       m_position, "position", kIsOneOfTwo)
OD_DB_CHECKED_PROPERTY(OdDbArcAlignedText, OdDb::ArcTextDirection, textDirection, setTextDirection,
                       m_direction, "direction", kIsOneOfTwo)

// The text occupies a ring of its height beside the arc. Its base line is the inner circle of the
// ring when the heads point outward, else the outer one.
double OdDbArcAlignedText::baseRadius() const {
  const bool isOutside = m_position == OdDb::kArcTextConvexSide;
  const double inner = isOutside ? m_radius + m_offset : m_radius - m_offset - m_size;
  return m_direction == OdDb::kArcTextOutward ? inner : inner + m_size;
}

bool OdDbArcAlignedText::subWorldDraw(OdGiWorldDraw* context) const {
  assertReadEnabled();
  const OdString text = oddbPlainText(m_text).text;
  const double base = baseRadius();
  if (text.isEmpty() || !(base > 0.0)) return true;
  const int count = text.getLength();
  const double room = base * oddbSweep(m_start, m_end) - m_left - m_right;
  const double usual = oddbTextWidth(text, m_size, m_xScale);
  double gap = kOdGiCharacterGap * m_size * m_xScale;
  double place = m_left;
  if (m_alignment == OdDb::kArcTextRight) place += room - usual;
  if (m_alignment == OdDb::kArcTextCenter) place += (room - usual) / 2;
  if (m_alignment == OdDb::kArcTextFit && count > 1) gap += (room - usual) / (count - 1);
  const bool isOutward = m_direction == OdDb::kArcTextOutward;
  const double sense = isOutward ? -1.0 : 1.0;
  const OdDbPlaneFrame frame(m_normal);
  for (int i = 0; i < count; ++i) {
    const OdString character(text.getAt(i), 1);
    const double width = oddbTextWidth(character, m_size, m_xScale);
    const double angle = (isOutward ? m_end : m_start) + sense * (place + width / 2) / base;
    const OdGeVector3d out = frame.direction(angle);
    const OdGeVector3d up = isOutward ? out : -out;
    const OdGeVector3d along = up.crossProduct(m_normal);
    const OdGePoint3d middle = m_center + out * base;
    const OdDbTextLine line{middle - along * (width / 2), along, up, m_size, m_xScale};
    line.draw(context, {character, {}, {}});
    place += width + gap;
  }
  return true;
}

// A flip exchanges the ends of the arc, and left and right of the text with them.
OdResult OdDbArcAlignedText::subTransformBy(const OdGeMatrix3d& transform) {
  const OdDbPlaneMove move(transform, m_normal);
  const OdGePoint3d center = transform * m_center;
  if (!move.isSimilar()) return eCannotScaleNonUniformly;
  if (!move.isFinite() || !odgeIsFinite(center)) return eInvalidInput;
  m_center = center;
  m_start = oddbNormalAngle(move.angle(m_start));
  m_end = oddbNormalAngle(move.angle(m_end));
  for (double* length : {&m_radius, &m_size, &m_offset, &m_left, &m_right}) *length *= move.scale();
  m_normal = move.normal();
  if (!move.flips()) return eOk;
  std::swap(m_start, m_end);
  std::swap(m_left, m_right);
  if (m_alignment == OdDb::kArcTextLeft || m_alignment == OdDb::kArcTextRight) {
    m_alignment = m_alignment == OdDb::kArcTextLeft ? OdDb::kArcTextRight : OdDb::kArcTextLeft;
  }
  return eOk;
}

// Fields:
//
//   field                 binary         groups
//   version               uint8
//   text                  string         1            with codes
//   centre                point          10           drawing units, coordinates of the block
//   radius                double         40           positive
//   start, end            2 doubles      50, 51       radians, 0 up to a turn
//   height                double         42           positive
//   width factor          double         41           0.01 to 100
//   offsets               3 doubles      43, 44, 45   from the arc (not negative), left, right
//   alignment, position,
//   direction             3 uint8        280 to 282   see OdDb::ArcTextAlignment and so on
//   style                 hard pointer   340          null: "Standard"
//   normal                vector         210          unit length

template <class Fields, class Self>
void OdDbArcAlignedText::fields(Fields& fields, Self& self) {
  fields.version(1);
  fields.value(1, self.m_text);
  fields.value(10, self.m_center, oddbIsPoint);
  fields.value(40, self.m_radius, oddbIsLength);
  fields.value(50, self.m_start, kIsAngle);
  fields.value(51, self.m_end, kIsAngle);
  fields.value(42, self.m_size, oddbIsLength);
  fields.value(41, self.m_xScale, oddbIsWidthFactor);
  fields.value(43, self.m_offset, oddbIsWidth);
  fields.value(44, self.m_left, oddbIsNumber);
  fields.value(45, self.m_right, oddbIsNumber);
  fields.template number<OdUInt8>(280, self.m_alignment, kIsAlignment);
  fields.template number<OdUInt8>(281, self.m_position, kIsOneOfTwo);
  fields.template number<OdUInt8>(282, self.m_direction, kIsOneOfTwo);
  fields.template pointer<OdDb::kHardPointerRef>(340, self.m_style);
  fields.value(210, self.m_normal, oddbIsNormal);
}

OD_DB_DEFINE_FILING(OdDbArcAlignedText, OdDbEntity)
