// OdDbDimension: base of the dimensions.
#include "platform/entities/dimension.h"

#include <cmath>

#include "platform/db/field_list.h"
#include "platform/entities/arrowhead.h"
#include "platform/entities/curve.h"
#include "platform/entities/line.h"
#include "platform/entities/mtext.h"
#include "platform/entities/polyline.h"
#include "platform/entities/property_rows.h"
#include "platform/gi/world_draw.h"

OD_RX_DEFINE_ABSTRACT(OdDbDimension, OdDbEntity, L"OdDbDimension")

namespace {

const wchar_t* const kMeasured = L"<>";

OdDbTextBlock blockOf(const OdString& contents, const OdDbDimStyleValues& style) {
  return {contents, style.textHeight, 1.0, 0.0, 0.0, 1.0};
}

OdString tolerancesOf(const OdDbDimStyleValues& style) {
  const OdString up = oddbDimNumber(style.toleranceUp, style.toleranceDecimals, style);
  const OdString down = oddbDimNumber(style.toleranceDown, style.toleranceDecimals, style);
  if (up == down) return OdString(L"%%p") + up;
  return OdString(L"\\S+") + up + L"^-" + down + L";";
}

/// Sets the colour of a part; by block means the dimension's own.
void useColor(OdGiWorldDraw* context, const OdCmColor& color, const OdCmColor& own) {
  context->subEntityTraits().setTrueColor(color.isByBlock() ? own : color);
}

OdGePoint2d inPlane(const OdDbPlaneFrame& frame, const OdGePoint3d& point) {
  return frame.toPlane(point);
}

}  // namespace

void OdDbDimension::setPoint(OdUInt32 index, const char* what, const OdGePoint3d& point) {
  oddbChecked(this, what, point);
  if (this->point(index) == point) return;
  assertWriteEnabled();
  m_points[index] = point;
  noteGraphicsModified();
}

OD_DB_PROPERTY(OdDbDimension, OdString, dimensionText, setDimensionText, m_text)
bool OdDbDimension::isUsingDefaultTextPosition() const { return read(m_usualPlace); }
void OdDbDimension::useDefaultTextPosition() { change(m_usualPlace, true); }
OD_DB_CHECKED_PROPERTY(OdDbDimension, double, textRotation, setTextRotation, m_textRotation,
                       "text rotation", oddbIsNumber)
OD_DB_CHECKED_PROPERTY(OdDbDimension, double, horizontalRotation, setHorizontalRotation,
                       m_horizontal, "horizontal rotation", oddbIsNumber)
OD_DB_PROPERTY(OdDbDimension, OdDbObjectId, dimensionStyle, setDimensionStyle, m_style)

OdGePoint3d OdDbDimension::textPosition() const {
  if (!isUsingDefaultTextPosition()) return m_textPosition;
  const OdDbDimStyleValues style(m_style, database());
  return picture(style, blockOf(shownText(), style).width(), 0.0).textCenter();
}

void OdDbDimension::setTextPosition(const OdGePoint3d& position) {
  oddbChecked(this, "text position", position);
  change(m_textPosition, position);
  change(m_usualPlace, false);
}

OdString OdDbDimension::formatMeasurement() const {
  const OdDbDimStyleValues style(dimensionStyle(), database());
  constexpr double kDegree = kOdDbFullTurn / 360.0;
  double value = isAngular() ? measurement() / kDegree : measurement() * style.lengthFactor;
  if (!isAngular() && style.rounding > 0.0) {
    value = std::round(value / style.rounding) * style.rounding;
  }
  const int decimals = isAngular() ? style.angleDecimals : style.decimals;
  OdString text = OdString(prefix()) + oddbDimNumber(value, decimals, style);
  if (isAngular()) text += L"%%d";
  if (style.hasTolerances) text += tolerancesOf(style);
  if (style.post.isEmpty()) return text;
  OdString around = style.post;
  if (around.find(OdString(kMeasured)) < 0) return text + around;
  around.replace(OdString(kMeasured), text);
  return around;
}

OdString OdDbDimension::shownText() const {
  OdString contents = read(m_text).isEmpty() ? OdString(kMeasured) : m_text;
  if (contents.find(OdString(kMeasured)) >= 0) {
    contents.replace(OdString(kMeasured), formatMeasurement());
  }
  return contents;
}

OdDbDimPicture OdDbDimension::picture(const OdDbDimStyleValues& style, double textWidth,
                                      double deviation) const {
  const OdDbPlaneFrame frame(m_normal);
  OdDbDimPicture picture(style, frame, textWidth, deviation, frame.direction(m_horizontal));
  addPicture(picture);
  if (!m_usualPlace) picture.moveText(m_textPosition);
  if (m_textRotation != 0.0) picture.turnText(frame.direction(m_textRotation));
  return picture;
}

bool OdDbDimension::subWorldDraw(OdGiWorldDraw* context) const {
  const OdDbDimStyleValues style(dimensionStyle(), database());
  const OdDbTextBlock text = blockOf(shownText(), style);
  const OdDbDimPicture drawn = picture(style, text.width(), context->deviation());
  const OdCmColor own = context->subEntityTraits().trueColor();
  for (const OdDbDimPicture::Stroke& stroke : drawn.strokes()) {
    const bool isExtension = stroke.part == OdDbDimPicture::Part::kExtensionLine;
    useColor(context, isExtension ? style.extensionColor : style.lineColor, own);
    context->geometry().polyline(stroke.points);
  }
  useColor(context, style.lineColor, own);
  for (const OdDbDimPicture::Arrow& arrow : drawn.arrows()) {
    oddbDrawArrowhead(context, arrow.tip, arrow.direction, m_normal, style.arrow);
  }
  useColor(context, style.textColor, own);
  text.draw(context, drawn.textCenter(), drawn.textAlong(),
            m_normal.crossProduct(drawn.textAlong()), OdDb::kMiddleCenter);
  context->subEntityTraits().setTrueColor(own);
  return true;
}

OdResult OdDbDimension::explode(OdRxObjectPtrArray& parts) const {
  const OdDbDimStyleValues style(dimensionStyle(), database());
  const OdString contents = shownText();
  const OdDbDimPicture picture = this->picture(style, blockOf(contents, style).width(), 0.0);
  const OdDbPlaneFrame frame(m_normal);
  const auto add = [&](const OdDbEntityPtr& part, const OdCmColor& color) {
    part->setPropertiesFrom(this);
    if (!color.isByBlock()) part->setColor(color);
    parts.append(part);
  };
  const auto polylineAt = [&](const OdGePoint3d& place) {
    const OdDbPolylinePtr line = OdDbPolyline::createObject();
    line->setNormal(m_normal);
    line->setElevation(frame.elevationOf(place));
    return line;
  };
  for (const OdDbDimPicture::Stroke& stroke : picture.strokes()) {
    const bool isExtension = stroke.part == OdDbDimPicture::Part::kExtensionLine;
    const OdDbPolylinePtr line = polylineAt(stroke.points.front());
    for (const OdGePoint3d& point : stroke.points) {
      line->addVertexAt(line->numVerts(), inPlane(frame, point));
    }
    add(line, isExtension ? style.extensionColor : style.lineColor);
  }
  // An arrowhead is a segment that widens from nothing.
  for (const OdDbDimPicture::Arrow& arrow : picture.arrows()) {
    const OdDbPolylinePtr head = polylineAt(arrow.tip);
    head->addVertexAt(0, inPlane(frame, arrow.tip), 0.0, 0.0, style.arrow / 3);
    head->addVertexAt(1, inPlane(frame, arrow.tip - arrow.direction * style.arrow));
    add(head, style.lineColor);
  }
  const OdDbMTextPtr note = OdDbMText::createObject();
  note->setNormal(m_normal);
  note->setContents(contents);
  note->setTextHeight(style.textHeight);
  note->setTextStyle(style.textStyle);
  note->setLocation(picture.textCenter());
  note->setDirection(picture.textAlong());
  note->setAttachment(OdDb::kMiddleCenter);
  add(note, style.textColor);
  return eOk;
}

OdResult OdDbDimension::subTransformBy(const OdGeMatrix3d& transform) {
  const OdDbPlaneMove move(transform, m_normal);
  const OdGePoint3d textPosition = transform * m_textPosition;
  if (!move.isFinite() || !odgeIsFinite(textPosition)) return eInvalidInput;
  if (!oddbTransformPoints(transform, m_points)) return eInvalidInput;
  moveValues(move);
  m_textPosition = textPosition;
  if (m_textRotation != 0.0) {
    m_textRotation = move.angle(m_textRotation);
    if (m_textRotation == 0.0) m_textRotation = kOdDbFullTurn / 2;  // 0 follows the line
  }
  m_horizontal = move.to().angleOf(move.reading(move.from().direction(m_horizontal)));
  m_normal = move.normal();
  return eOk;
}

// Fields:
//
//   field               binary                 groups
//   version             uint8
//   points              int32 count, points    10     as many as the kind has; drawing units
//   text                string                 1      empty: the measurement
//   text position       point                  11
//   usual place         bool                   290    the text position does not count
//   text rotation       double                 50     radians; 0 follows the line
//   level               double                 51     radians, direction of level texts
//   style               hard pointer           340    null: "Standard"
//   normal              vector                 210    unit length

template <class Fields, class Self>
void OdDbDimension::fields(Fields& fields, Self& self) {
  constexpr OdUInt32 kMostPoints = 8;
  fields.version(1);
  fields.list(10, self.m_points, kMostPoints, oddbIsPoint);
  fields.value(1, self.m_text);
  fields.value(11, self.m_textPosition, oddbIsPoint);
  fields.value(290, self.m_usualPlace);
  fields.value(50, self.m_textRotation, oddbIsNumber);
  fields.value(51, self.m_horizontal, oddbIsNumber);
  fields.template pointer<OdDb::kHardPointerRef>(340, self.m_style);
  fields.value(210, self.m_normal, oddbIsNormal);
  fields.rule([&] { return self.m_points.size() == self.m_numPoints; });
}

OD_DB_DEFINE_FILING(OdDbDimension, OdDbEntity)

std::size_t OdDbDimension::approximateSize() const {
  return OdDbEntity::approximateSize() + m_points.size() * sizeof(OdGePoint3d) +
         static_cast<std::size_t>(m_text.getLength()) * sizeof(wchar_t);
}
