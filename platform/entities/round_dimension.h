// Dimensions of a radius and of a diameter.
#pragma once

#include "platform/entities/dimension.h"

/// What both have: a line on through the point where it meets the circle. Not a run-time class.
class OdDbRoundDimension : public OdDbDimension {
 public:
  /// The dimension line goes on beyond the circle by this length; 0 keeps it within. Drawing units,
  /// not negative.
  [[nodiscard]] double leaderLength() const;
  void setLeaderLength(double length);
  [[nodiscard]] double measurement() const override { return point(0).distanceTo(point(1)); }

 protected:
  OdDbRoundDimension() : OdDbDimension(2) {}
  void moveValues(const OdDbPlaneMove& move) override { m_leader *= move.scale(); }
  /// The line from a point within to `on`, or from `on` outwards, with its arrowhead and text.
  void addRadialLine(OdDbDimPicture& picture, const OdGePoint3d& from, const OdGePoint3d& on) const;

  double m_leader = 0.0;
};

/// The radius of a circle or an arc.
class OdDbRadialDimension : public OdDbRoundDimension {
 public:
  OD_RX_DECLARE_MEMBERS(OdDbRadialDimension)

  /// In coordinates of the block.
  [[nodiscard]] OdGePoint3d center() const { return point(0); }
  void setCenter(const OdGePoint3d& center) { setPoint(0, "centre", center); }
  /// Where the dimension line meets the circle.
  [[nodiscard]] OdGePoint3d chordPoint() const { return point(1); }
  void setChordPoint(const OdGePoint3d& point) { setPoint(1, "chord point", point); }

 protected:
  void addPicture(OdDbDimPicture& picture) const override;
  [[nodiscard]] const wchar_t* prefix() const override { return L"R"; }

  OD_DB_DECLARE_FILING()
};
using OdDbRadialDimensionPtr = OdSmartPtr<OdDbRadialDimension>;

/// The diameter of a circle.
class OdDbDiametricDimension : public OdDbRoundDimension {
 public:
  OD_RX_DECLARE_MEMBERS(OdDbDiametricDimension)

  /// The points where the dimension line meets the circle, in coordinates of the block.
  [[nodiscard]] OdGePoint3d chordPoint() const { return point(0); }
  void setChordPoint(const OdGePoint3d& point) { setPoint(0, "chord point", point); }
  [[nodiscard]] OdGePoint3d farChordPoint() const { return point(1); }
  void setFarChordPoint(const OdGePoint3d& point) { setPoint(1, "far chord point", point); }

 protected:
  void addPicture(OdDbDimPicture& picture) const override;
  [[nodiscard]] const wchar_t* prefix() const override { return L"%%c"; }

  OD_DB_DECLARE_FILING()
};
using OdDbDiametricDimensionPtr = OdSmartPtr<OdDbDiametricDimension>;
