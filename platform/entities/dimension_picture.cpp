// What a dimension consists of, before it is drawn or taken apart.
#include "platform/entities/dimension_picture.h"

#include <cmath>
#include <utility>

#include "platform/entities/arc_chords.h"

namespace {

constexpr double kRoomForArrows = 2.5;  // lengths of an arrowhead between the ends

}  // namespace

OdDbDimPicture::OdDbDimPicture(const OdDbDimStyleValues& style, const OdDbPlaneFrame& frame,
                               double textWidth, double deviation, const OdGeVector3d& level)
    : m_style(style),
      m_frame(frame),
      m_textWidth(textWidth),
      m_deviation(deviation),
      m_level(level),
      m_textAlong(level) {}

OdGeVector3d OdDbDimPicture::readable(const OdGeVector3d& along) const {
  return oddbReadsUpsideDown(along, m_level, m_frame.normal()) ? -along : along;
}

void OdDbDimPicture::addStroke(Part part, std::vector<OdGePoint3d> points) {
  if (points.size() > 1) m_strokes.push_back({part, std::move(points)});
}

void OdDbDimPicture::addLine(Part part, const OdGePoint3d& from, const OdGePoint3d& to) {
  if (from != to) addStroke(part, {from, to});
}

void OdDbDimPicture::addExtension(unsigned index, const OdGePoint3d& from, const OdGePoint3d& to) {
  const OdGeVector3d way = to - from;
  const double length = way.length();
  if (!m_style.hasExtension[index] || !(length > m_style.extensionGap)) return;
  const OdGeVector3d unit = way / length;
  addLine(Part::kExtensionLine, from + unit * m_style.extensionGap,
          to + unit * m_style.extensionBeyond);
}

void OdDbDimPicture::addArrow(const OdGePoint3d& tip, const OdGeVector3d& direction) {
  if (m_style.arrow > 0.0) m_arrows.push_back({tip, direction});
}

void OdDbDimPicture::addDimensionLine(const OdGePoint3d& from, const OdGePoint3d& to) {
  const OdGeVector3d way = to - from;
  const double length = way.length();
  if (!(length > 0.0)) return placeText(from, m_level);
  const OdGeVector3d unit = way / length;
  const OdGePoint3d middle = from + way / 2;
  const double broken = m_style.isTextAbove || m_style.isTextLevel
                            ? 0.0
                            : std::min(length, m_textWidth + 2 * m_style.textGap) / 2;
  const bool hasRoom = length >= kRoomForArrows * m_style.arrow;
  const OdGePoint3d ends[] = {from, to};
  for (const unsigned i : {0u, 1u}) {
    if (!m_style.hasLine[i]) continue;
    const OdGeVector3d outward = i == 0 ? -unit : unit;
    addLine(Part::kDimensionLine, ends[i], middle + outward * broken);
    if (!hasRoom) addLine(Part::kDimensionLine, ends[i], ends[i] + outward * (2 * m_style.arrow));
    addArrow(ends[i], hasRoom ? outward : -outward);
  }
  placeText(middle, unit);
}

void OdDbDimPicture::addDimensionArc(const OdGePoint3d& center, double radius, double start,
                                     double sweep) {
  const OdDbArcShape arc{center, m_frame.xAxis() * radius, m_frame.yAxis() * radius, start, sweep};
  const bool hasRoom = radius * sweep >= kRoomForArrows * m_style.arrow;
  for (const unsigned i : {0u, 1u}) {
    if (!m_style.hasLine[i]) continue;
    OdDbArcShape half = arc;
    half.sweep = sweep / 2;
    if (i == 1) half.start += sweep / 2;
    std::vector<OdGePoint3d> points;
    half.addChords(m_deviation, points);
    addStroke(Part::kDimensionLine, std::move(points));
    const double angle = i == 0 ? start : start + sweep;
    const OdGeVector3d tangent = m_frame.normal().crossProduct(m_frame.direction(angle));
    const OdGeVector3d outward = i == 0 ? -tangent : tangent;
    addArrow(arc.at(angle), hasRoom ? outward : -outward);
  }
  const double middle = start + sweep / 2;
  placeText(arc.at(middle), m_frame.normal().crossProduct(m_frame.direction(middle)));
}

void OdDbDimPicture::addCenterMark(const OdGePoint3d& center) {
  if (!(m_style.centerMark > 0.0)) return;
  for (const OdGeVector3d& axis : {m_level, m_frame.normal().crossProduct(m_level)}) {
    addLine(Part::kDimensionLine, center - axis * m_style.centerMark,
            center + axis * m_style.centerMark);
  }
}

void OdDbDimPicture::placeText(const OdGePoint3d& place, const OdGeVector3d& along) {
  m_textAlong = m_style.isTextLevel ? m_level : readable(along);
  const OdGeVector3d up = m_frame.normal().crossProduct(m_textAlong);
  const bool isOver = m_style.isTextAbove && !m_style.isTextLevel;
  const double above = isOver ? m_style.textGap + m_style.textHeight / 2 : 0.0;
  m_textCenter = place + up * above;
}
