// OdDbCircle: a circle.
#pragma once

#include "platform/db/filing_macros.h"
#include "platform/entities/round_curve.h"

/// A circle in the plane through its centre; its start is on the X axis of its frame. A new one has
/// the radius 1 about the origin.
class OdDbCircle : public OdDbRoundCurve {
 public:
  OD_RX_DECLARE_MEMBERS(OdDbCircle)

  [[nodiscard]] double diameter() const { return 2.0 * radius(); }
  void setDiameter(double diameter) { setRadius(diameter / 2.0); }
  [[nodiscard]] double circumference() const { return length(); }
  [[nodiscard]] bool isClosed() const override { return true; }

 protected:
  [[nodiscard]] double startOf() const override { return 0.0; }
  [[nodiscard]] double sweepOf() const override { return kOdDbFullTurn; }

  OD_DB_DECLARE_FILING()
};
using OdDbCirclePtr = OdSmartPtr<OdDbCircle>;
