// OdDbText: one line of text.
#include "platform/entities/text.h"

#include <cmath>

#include "platform/db/database.h"
#include "platform/db/field_list.h"
#include "platform/db/text_style_table.h"
#include "platform/entities/curve.h"
#include "platform/entities/plane_move.h"
#include "platform/entities/property_rows.h"
#include "platform/gi/stroke_font.h"
#include "platform/gi/world_draw.h"

OD_RX_DEFINE_DB(OdDbText, OdDbEntity, L"OdDbText", 0, 0, 0, L"TEXT", OdString())

namespace {

constexpr double kDescender = 1.0 / 3;  // below the base line, in heights

constexpr auto kIsHorizontal = [](OdUInt8 mode) { return mode <= OdDb::kTextFit; };
constexpr auto kIsVertical = [](OdUInt8 mode) { return mode <= OdDb::kTextTop; };

// Shares of the width to the left of the point that the text hangs on.
constexpr double kLeftShare[] = {0.0, 0.5, 1.0, 0.0, 0.5, 0.0};
// Heights from the base line up to that point.
constexpr double kUp[] = {0.0, -kDescender, 0.5, 1.0};

}  // namespace

OD_DB_PROPERTY(OdDbText, OdString, textString, setTextString, m_text)
OD_DB_CHECKED_PROPERTY(OdDbText, OdGePoint3d, position, setPosition, m_position, "position")
OD_DB_CHECKED_PROPERTY(OdDbText, OdGePoint3d, alignmentPoint, setAlignmentPoint, m_alignment,
                       "alignment point")
bool OdDbText::usesAlignmentPoint() const {
  return read(m_horizontal) != OdDb::kTextLeft || m_vertical != OdDb::kTextBase;
}
OD_DB_CHECKED_PROPERTY(OdDbText, OdDb::TextHorzMode, horizontalMode, setHorizontalMode,
                       m_horizontal, "horizontal mode", kIsHorizontal)
OD_DB_CHECKED_PROPERTY(OdDbText, OdDb::TextVertMode, verticalMode, setVerticalMode, m_vertical,
                       "vertical mode", kIsVertical)
OD_DB_CHECKED_PROPERTY(OdDbText, double, height, setHeight, m_height, "height", oddbIsLength)
OD_DB_CHECKED_PROPERTY(OdDbText, double, rotation, setRotation, m_rotation, "rotation",
                       oddbIsNumber)
OD_DB_CHECKED_PROPERTY(OdDbText, double, widthFactor, setWidthFactor, m_widthFactor, "width factor",
                       oddbIsWidthFactor)
OD_DB_CHECKED_PROPERTY(OdDbText, double, oblique, setOblique, m_oblique, "slant",
                       oddbIsObliquingAngle)
OD_DB_PROPERTY(OdDbText, bool, isMirroredInX, mirrorInX, m_mirroredInX)
OD_DB_PROPERTY(OdDbText, bool, isMirroredInY, mirrorInY, m_mirroredInY)

void OdDbText::setTextDefaults(OdDbDatabase* drawing) {
  const OdDbTextStyleTableRecordPtr style =
      drawing->getTEXTSTYLE().safeOpenAs<OdDbTextStyleTableRecord>();
  setTextStyle(style->objectId());
  const double fixed = style->textSize();
  setHeight(fixed > 0.0 ? fixed : drawing->getSysVar(OdString("TEXTSIZE"))->getDouble());
  setWidthFactor(style->xScale());
  setOblique(style->obliquingAngle());
  mirrorInX(style->isBackwards());
  mirrorInY(style->isUpsideDown());
}

// The line as its modes place it.
OdDbTextLine OdDbText::line(const OdString& plain) const {
  const OdDbPlaneFrame frame(m_normal);
  OdDbTextLine line{m_position,
                    frame.direction(m_rotation),
                    {},
                    m_height,
                    m_widthFactor,
                    m_oblique,
                    m_mirroredInX,
                    m_mirroredInY};
  const double width = odgiTextWidth(plain);
  const double run = (m_alignment - m_position).length();
  const bool isBetween = m_horizontal == OdDb::kTextAlign || m_horizontal == OdDb::kTextFit;
  if (isBetween && width > 0.0 && run > 0.0) {
    line.xAxis = (m_alignment - m_position) / (m_mirroredInX ? -run : run);
    if (m_horizontal == OdDb::kTextAlign) line.height = run / (width * m_widthFactor);
    if (m_horizontal == OdDb::kTextFit) line.widthFactor = run / (width * m_height);
  }
  line.yAxis = m_normal.crossProduct(line.xAxis);
  if (!usesAlignmentPoint() || isBetween) return line;
  const bool isMiddle = m_horizontal == OdDb::kTextMid;
  const double left = kLeftShare[m_horizontal] * width * line.height * line.widthFactor;
  const double up = (isMiddle ? 0.5 : kUp[m_vertical]) * line.height;
  line.position = m_alignment - line.xAxis * (m_mirroredInX ? -left : left) -
                  line.yAxis * (m_mirroredInY ? -up : up);
  return line;
}

bool OdDbText::subWorldDraw(OdGiWorldDraw* context) const {
  assertReadEnabled();
  const OdDbPlainText plain = oddbPlainText(m_text);
  OdDbTextLine drawn = line(plain.text);
  drawn.draw(context, plain);
  if (m_thickness == 0.0) return true;
  drawn.position += m_normal * m_thickness;
  drawn.draw(context, plain);
  return true;
}

// The axes of the characters are the base line and the slanted upright. Their images give the new
// direction, the height across it and the slant. After a reflection the upright would hang below
// the base line; the text is turned round and reads backwards instead.
OdResult OdDbText::subTransformBy(const OdGeMatrix3d& transform) {
  const OdDbPlaneMove move(transform, m_normal);
  const OdGePoint3d position = transform * m_position;
  const OdGePoint3d alignment = transform * m_alignment;
  if (!move.isFinite() || !odgeIsFinite(position) || !odgeIsFinite(alignment)) return eInvalidInput;
  if (!move.takesThickness(m_thickness)) return eCannotScaleNonUniformly;
  const OdGeVector3d oldX = move.from().direction(m_rotation);
  const OdGeVector3d oldY = m_normal.crossProduct(oldX);
  const double sense = m_mirroredInX != m_mirroredInY ? -1.0 : 1.0;
  OdGeVector3d x = transform * oldX;
  const OdGeVector3d upright = transform * (oldY + oldX * (std::tan(m_oblique) * sense));
  const double stretch = x.length();
  x = x / stretch;
  if (move.flips()) x = -x;
  const OdGeVector3d y = move.normal().crossProduct(x);
  const double up = upright.dotProduct(y);
  double widthFactor = m_widthFactor;
  double oblique = m_oblique;
  if (!move.isSimilar()) {
    const bool staysMirrored = move.flips() ? sense > 0.0 : sense < 0.0;
    widthFactor = m_widthFactor * stretch / up;
    oblique = std::atan2(upright.dotProduct(x) * (staysMirrored ? -1.0 : 1.0), up);
  }
  if (!oddbIsWidthFactor(widthFactor) || !oddbIsObliquingAngle(oblique)) {
    return eCannotScaleNonUniformly;
  }
  m_position = position;
  m_alignment = alignment;
  m_rotation = move.to().angleOf(x);
  m_height *= move.isSimilar() ? move.scale() : up;
  m_widthFactor = widthFactor;
  m_oblique = oblique;
  m_thickness *= move.depthScale();
  m_normal = move.normal();
  if (move.flips()) m_mirroredInX = !m_mirroredInX;
  return eOk;
}

// Fields:
//
//   field                  binary         groups
//   version                uint8
//   text                   string         1         with codes
//   position, alignment    2 points       10, 11    drawing units, coordinates of the block
//   style                  hard pointer   340       null: "Standard"
//   height                 double         40        positive
//   rotation               double         50        radians
//   width factor           double         41        0.01 to 100
//   slant                  double         51        radians, within 85 degrees
//   modes                  2 uint8        280, 281  see OdDb::TextHorzMode, OdDb::TextVertMode
//   mirrored in X, Y       2 bools        290, 291
//   thickness              double         39
//   normal                 vector         210       unit length

template <class Fields, class Self>
void OdDbText::fields(Fields& fields, Self& self) {
  fields.version(1);
  fields.value(1, self.m_text);
  fields.value(10, self.m_position, oddbIsPoint);
  fields.value(11, self.m_alignment, oddbIsPoint);
  fields.template pointer<OdDb::kHardPointerRef>(340, self.m_style);
  fields.value(40, self.m_height, oddbIsLength);
  fields.value(50, self.m_rotation, oddbIsNumber);
  fields.value(41, self.m_widthFactor, oddbIsWidthFactor);
  fields.value(51, self.m_oblique, oddbIsObliquingAngle);
  fields.template number<OdUInt8>(280, self.m_horizontal, kIsHorizontal);
  fields.template number<OdUInt8>(281, self.m_vertical, kIsVertical);
  fields.value(290, self.m_mirroredInX);
  fields.value(291, self.m_mirroredInY);
  fields.value(39, self.m_thickness, oddbIsNumber);
  fields.value(210, self.m_normal, oddbIsNormal);
}

OD_DB_DEFINE_FILING(OdDbText, OdDbEntity)

std::size_t OdDbText::approximateSize() const {
  return OdDbEntity::approximateSize() +
         static_cast<std::size_t>(m_text.getLength()) * sizeof(wchar_t);
}
