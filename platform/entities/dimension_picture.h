// What a dimension consists of, before it is drawn or taken apart.
#pragma once

#include <vector>

#include "platform/entities/dimension_style_values.h"
#include "platform/entities/plane_move.h"

/// Lines, arrowheads and the place of the text, collected by the kinds of dimensions. Sizes come
/// from the style; everything lies in a plane of the frame.
class OdDbDimPicture {
 public:
  enum class Part : OdUInt8 { kDimensionLine, kExtensionLine };
  struct Stroke {
    Part part;
    std::vector<OdGePoint3d> points;
  };
  struct Arrow {
    OdGePoint3d tip;
    OdGeVector3d direction;
  };

  /// `textWidth` is that of the laid-out text; `level` the direction of level texts.
  OdDbDimPicture(const OdDbDimStyleValues& style, const OdDbPlaneFrame& frame, double textWidth,
                 double deviation, const OdGeVector3d& level);

  [[nodiscard]] const OdDbDimStyleValues& style() const { return m_style; }
  [[nodiscard]] const OdDbPlaneFrame& frame() const { return m_frame; }
  [[nodiscard]] const OdGeVector3d& level() const { return m_level; }
  [[nodiscard]] double textWidth() const { return m_textWidth; }

  void addLine(Part part, const OdGePoint3d& from, const OdGePoint3d& to);
  void addStroke(Part part, std::vector<OdGePoint3d> points);
  /// From a measured point to the dimension line and a little beyond; `index` is 0 or 1.
  void addExtension(unsigned index, const OdGePoint3d& from, const OdGePoint3d& to);
  /// A straight dimension line with an arrowhead at each end, and the text at its middle.
  /// Arrowheads that find no room within point inwards from outside.
  void addDimensionLine(const OdGePoint3d& from, const OdGePoint3d& to);
  /// The same along an arc about a centre, counter-clockwise from an angle of the frame.
  void addDimensionArc(const OdGePoint3d& center, double radius, double start, double sweep);
  void addArrow(const OdGePoint3d& tip, const OdGeVector3d& direction);
  /// A cross along the level direction.
  void addCenterMark(const OdGePoint3d& center);
  /// Centres the text at a place of a line with that direction, over it or in it as the style says.
  void placeText(const OdGePoint3d& place, const OdGeVector3d& along);
  /// Centres the text just there.
  void moveText(const OdGePoint3d& center) { m_textCenter = center; }
  void turnText(const OdGeVector3d& along) { m_textAlong = readable(along); }

  [[nodiscard]] const std::vector<Stroke>& strokes() const { return m_strokes; }
  [[nodiscard]] const std::vector<Arrow>& arrows() const { return m_arrows; }
  [[nodiscard]] const OdGePoint3d& textCenter() const { return m_textCenter; }
  [[nodiscard]] const OdGeVector3d& textAlong() const { return m_textAlong; }

 private:
  /// The direction or its opposite, whichever reads from below or from the right.
  [[nodiscard]] OdGeVector3d readable(const OdGeVector3d& along) const;

  const OdDbDimStyleValues& m_style;
  OdDbPlaneFrame m_frame;
  double m_textWidth;
  double m_deviation;
  OdGeVector3d m_level;
  std::vector<Stroke> m_strokes;
  std::vector<Arrow> m_arrows;
  OdGePoint3d m_textCenter;
  OdGeVector3d m_textAlong;
};
