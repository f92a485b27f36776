// OdDbMText: a block of text.
#include "platform/entities/mtext.h"

#include "platform/db/database.h"
#include "platform/db/field_list.h"
#include "platform/db/text_style_table.h"
#include "platform/entities/curve.h"
#include "platform/entities/plane_move.h"
#include "platform/entities/property_rows.h"

OD_RX_DEFINE_DB(OdDbMText, OdDbEntity, L"OdDbMText", 0, 0, 0, L"MTEXT", OdString())

namespace {

bool isSpacing(double factor) { return factor >= 0.25 && factor <= 4.0; }

}  // namespace

OD_DB_PROPERTY(OdDbMText, OdString, contents, setContents, m_contents)
OdString OdDbMText::text() const { return block().plainText(); }
OD_DB_CHECKED_PROPERTY(OdDbMText, OdGePoint3d, location, setLocation, m_location, "location")
OdGeVector3d OdDbMText::direction() const { return read(m_direction); }
void OdDbMText::setDirection(const OdGeVector3d& direction) {
  const OdGeVector3d flat = direction - normal() * direction.dotProduct(m_normal);
  oddbChecked(this, "length of the direction across the normal", flat.length(), oddbIsLength);
  change(m_direction, flat / flat.length());
}
double OdDbMText::rotation() const { return OdDbPlaneFrame(normal()).angleOf(m_direction); }
void OdDbMText::setRotation(double angle) {
  oddbChecked(this, "rotation", angle, oddbIsNumber);
  change(m_direction, OdDbPlaneFrame(normal()).direction(angle));
}
void OdDbMText::setNormal(const OdGeVector3d& normal) {
  const double angle = rotation();
  OdDbPlanar::setNormal(normal);
  setRotation(angle);
}
OD_DB_CHECKED_PROPERTY(OdDbMText, double, width, setWidth, m_width, "width", oddbIsWidth)
OD_DB_CHECKED_PROPERTY(OdDbMText, double, textHeight, setTextHeight, m_height, "height",
                       oddbIsLength)
OD_DB_CHECKED_PROPERTY(OdDbMText, OdDb::AttachmentPoint, attachment, setAttachment, m_attachment,
                       "attachment", oddbIsAttachment)
OD_DB_CHECKED_PROPERTY(OdDbMText, double, lineSpacingFactor, setLineSpacingFactor, m_spacing,
                       "line spacing", isSpacing)
double OdDbMText::actualWidth() const { return block().width(); }
double OdDbMText::actualHeight() const { return block().height(); }

OdDbTextBlock OdDbMText::block() const {
  assertReadEnabled();
  const OdDbTextStyleTableRecordPtr style =
      oddbStyleOrStandard(m_style, database(), OdDbRootHandles::kTextStyleStandard)
          .openAs<OdDbTextStyleTableRecord>();
  const double widthFactor = style.isNull() ? 1.0 : style->xScale();
  const double oblique = style.isNull() ? 0.0 : style->obliquingAngle();
  return {m_contents, m_height, widthFactor, oblique, m_width, m_spacing};
}

bool OdDbMText::subWorldDraw(OdGiWorldDraw* context) const {
  block().draw(context, m_location, m_direction, m_normal.crossProduct(m_direction), m_attachment);
  return true;
}

// A flip would write the characters backwards. The lines run along the image of their direction or
// against it, whichever leaves the block as readable as it was; the attachment changes sides with
// them, from left to right or from top to bottom, so that the block stays in place.
OdResult OdDbMText::subTransformBy(const OdGeMatrix3d& transform) {
  const OdDbPlaneMove move(transform, m_normal);
  const OdGePoint3d location = transform * m_location;
  const OdGeVector3d along = move.reading(m_direction);
  if (!move.isFinite() || !odgeIsFinite(location)) return eInvalidInput;
  if (move.flips()) {
    const bool isReversed = along.dotProduct(transform * m_direction) < 0.0;
    m_attachment = isReversed ? oddbMirrored(m_attachment) : oddbTurnedOver(m_attachment);
  }
  m_location = location;
  m_direction = along;
  m_width *= move.scale();
  m_height *= move.scale();
  m_normal = move.normal();
  return eOk;
}

// Fields:
//
//   field         binary         groups
//   version       uint8
//   contents      string         1         with formats
//   location      point          10        drawing units, coordinates of the block
//   direction     vector         11        unit length, across the normal
//   normal        vector         210       unit length
//   style         hard pointer   340       null: "Standard"
//   width         double         41        0: lines do not break
//   height        double         40        positive
//   spacing       double         44        0.25 to 4
//   attachment    uint8          280       1 to 9, see OdDb::AttachmentPoint

template <class Fields, class Self>
void OdDbMText::fields(Fields& fields, Self& self) {
  fields.version(1);
  fields.value(1, self.m_contents);
  fields.value(10, self.m_location, oddbIsPoint);
  fields.value(11, self.m_direction, oddbIsNormal);
  fields.value(210, self.m_normal, oddbIsNormal);
  fields.template pointer<OdDb::kHardPointerRef>(340, self.m_style);
  fields.value(41, self.m_width, oddbIsWidth);
  fields.value(40, self.m_height, oddbIsLength);
  fields.value(44, self.m_spacing, isSpacing);
  fields.template number<OdUInt8>(280, self.m_attachment, oddbIsAttachment);
  fields.rule([&] { return std::abs(self.m_direction.dotProduct(self.m_normal)) <= 1e-6; });
}

OD_DB_DEFINE_FILING(OdDbMText, OdDbEntity)

std::size_t OdDbMText::approximateSize() const {
  return OdDbEntity::approximateSize() +
         static_cast<std::size_t>(m_contents.getLength()) * sizeof(wchar_t);
}
