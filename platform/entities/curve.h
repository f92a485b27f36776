// OdDbCurve: base of the entities that are one line from a start to an end.
#pragma once

#include <vector>

#include "platform/db/entity.h"

/// Places on a curve have parameters that rise from its start to its end; what they measure is said
/// by the class. Open for read.
class OdDbCurve : public OdDbEntity {
 public:
  OD_RX_DECLARE_MEMBERS(OdDbCurve)

  /// The end is the start.
  [[nodiscard]] virtual bool isClosed() const;
  /// eDegenerateGeometry for a curve that has no place at all.
  OdResult getStartParam(double& parameter) const;
  OdResult getEndParam(double& parameter) const;
  /// In coordinates of the block. eInvalidInput outside of start and end; 1e-9 of that range beyond
  /// either is taken for it.
  OdResult getPointAtParam(double parameter, OdGePoint3d& point) const;
  OdResult getStartPoint(OdGePoint3d& point) const;
  OdResult getEndPoint(OdGePoint3d& point) const;
  /// Drawing units.
  [[nodiscard]] virtual double length() const = 0;
  /// Points from the start to the end; what joins them stays within `deviation` (drawing units) of
  /// the curve, 0 for a thousandth of the radius.
  [[nodiscard]] std::vector<OdGePoint3d> chords(double deviation) const;

 protected:
  bool subWorldDraw(OdGiWorldDraw* context) const override;

  /// The parameters of start and end.
  virtual OdResult getRange(double& start, double& end) const = 0;
  /// The point at a parameter within the curve.
  [[nodiscard]] virtual OdGePoint3d pointAt(double parameter) const = 0;
  /// Appends what chords() says.
  virtual void addChords(double deviation, std::vector<OdGePoint3d>& points) const = 0;
  /// From the curve to what its thickness draws; zero for none.
  [[nodiscard]] virtual OdGeVector3d extrusion() const { return {}; }
};
using OdDbCurvePtr = OdSmartPtr<OdDbCurve>;

class OdGiWorldDraw;

/// Draws a run of points, and with an extrusion that is not zero the band between the run and
/// itself moved by it.
void oddbDrawThick(OdGiWorldDraw* context, const std::vector<OdGePoint3d>& points,
                   const OdGeVector3d& extrusion);
/// Grows the box by itself moved along the extrusion.
void oddbExtrude(OdGeExtents3d& box, const OdGeVector3d& extrusion);
/// The box around what an entity draws; eNotApplicable when it draws nothing.
OdResult oddbDrawnExtents(const OdDbEntity* entity, OdGeExtents3d& extents);

/// Gives a class these extents. Not a run-time class: the class that derives from it names the base
/// as its parent.
template <class Base>
class OdDbBoundedByDrawing : public Base {
 public:
  OdResult getGeomExtents(OdGeExtents3d& extents) const override {
    return oddbDrawnExtents(this, extents);
  }
};
