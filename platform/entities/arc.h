// OdDbArc: a part of a circle.
#pragma once

#include "platform/db/filing_macros.h"
#include "platform/entities/round_curve.h"

/// An arc that runs counter-clockwise about its normal from the start angle to the end angle.
/// Angles are radians from the X axis of its frame, 0 up to a whole turn; equal ones are a whole
/// circle.
class OdDbArc : public OdDbRoundCurve {
 public:
  OD_RX_DECLARE_MEMBERS(OdDbArc)

  [[nodiscard]] double startAngle() const;
  [[nodiscard]] double endAngle() const;
  /// Kept between 0 and a whole turn. Raises eInvalidInput for an angle that is not finite.
  void setStartAngle(double angle);
  void setEndAngle(double angle);
  /// The sweep, above 0 up to a whole turn.
  [[nodiscard]] double totalAngle() const;

 protected:
  [[nodiscard]] double startOf() const override { return m_start; }
  [[nodiscard]] double sweepOf() const override { return oddbSweep(m_start, m_end); }
  void moveAngles(const OdDbPlaneMove& move) override;

 private:
  double m_start = 0.0;
  double m_end = kOdDbFullTurn / 2;

  OD_DB_DECLARE_FILING()
};
using OdDbArcPtr = OdSmartPtr<OdDbArc>;
