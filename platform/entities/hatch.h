// OdDbHatch: an area that is filled or hatched.
#pragma once

#include "platform/db/filing_macros.h"
#include "platform/entities/hatch_fill.h"
#include "platform/entities/planar.h"
#include "platform/entities/plane_move.h"

namespace OdDb {

/// Which of nested loops bound the area. Numbers are stored.
enum HatchStyle : OdUInt8 {
  kHatchNormal = 0,  ///< every second ring
  kHatchOuter = 1,   ///< the outermost ring
  kHatchIgnore = 2,  ///< everything within the outermost loops
};

}  // namespace OdDb

/// An area in a plane, bounded by closed loops of straight lines and arcs, with a pattern. Loops
/// are in the coordinates of the frame of the normal, at one elevation. Loops should not cross
/// themselves or each other; where they do, every second crossing bounds the area.
class OdDbHatch : public OdDbPlanar<OdDbEntity> {
 public:
  OD_RX_DECLARE_MEMBERS(OdDbHatch)

  static constexpr OdUInt32 kMaxVertices = 1u << 20;
  static constexpr OdUInt32 kMaxLines = 64;         ///< families of a pattern
  static constexpr std::size_t kMaxDrawn = 200000;  ///< dashes; a denser hatch shows its outline

  [[nodiscard]] OdUInt32 numLoops() const;
  /// A closed loop of at least two vertices; `bulges` as those of a polyline, one for each vertex
  /// or none at all. Raises eInvalidInput, eLimitExceeded beyond kMaxVertices in all.
  void appendLoop(const OdArray<OdGePoint2d>& vertices, const OdArray<double>& bulges = {});
  /// Raises eInvalidIndex.
  void getLoopAt(OdUInt32 index, OdArray<OdGePoint2d>& vertices, OdArray<double>& bulges) const;
  void removeLoopAt(OdUInt32 index);
  [[nodiscard]] double elevation() const;
  void setElevation(double elevation);
  [[nodiscard]] OdDb::HatchStyle hatchStyle() const;
  void setHatchStyle(OdDb::HatchStyle style);

  /// A new hatch is solid.
  [[nodiscard]] bool isSolidFill() const;
  [[nodiscard]] OdString patternName() const;
  void setSolidFill();
  /// Lines at an angle (radians) and a distance; with `crossed` a second family across the first.
  void setLinePattern(double angle, double space, bool crossed = false);
  /// A pattern of its own. Raises eInvalidInput without families, for numbers that are not finite
  /// or a step along the lines, eLimitExceeded beyond kMaxLines.
  void setPattern(const OdString& name, const std::vector<OdDbHatchLines>& lines);
  /// None for a solid hatch.
  [[nodiscard]] std::vector<OdDbHatchLines> patternLines() const;

  OdResult getGeomExtents(OdGeExtents3d& extents) const override;
  [[nodiscard]] std::size_t approximateSize() const override;
  /// Drawing units squared.
  [[nodiscard]] double area() const;

 protected:
  bool subWorldDraw(OdGiWorldDraw* context) const override;
  /// The pattern follows as far as its lines stay apart. eCannotScaleNonUniformly for loops with
  /// arcs under a transform that is not similar in the plane.
  OdResult subTransformBy(const OdGeMatrix3d& transform) override;

 private:
  [[nodiscard]] bool isSound() const;
  [[nodiscard]] OdUInt32 beginOf(OdUInt32 loop) const;
  [[nodiscard]] OdUInt32 endOf(OdUInt32 loop) const;
  [[nodiscard]] std::vector<OdDbHatchOutline> outlines(double deviation) const;
  [[nodiscard]] std::vector<OdDbHatchOutline> bounds(double deviation) const;
  void drawLines(OdGiWorldDraw* context, const std::vector<OdDbHatchOutline>& area) const;
  void storeLines(const std::vector<OdDbHatchLines>& lines);

  OdArray<OdInt32> m_ends;  // of each loop, the vertex after its last
  OdArray<OdGePoint2d> m_points;
  OdArray<double> m_bulges;  // one for each vertex, or none when all are 0
  OdArray<double> m_lines;   // of each family: angle, base, step, number of dashes, dashes
  OdString m_pattern = L"SOLID";
  double m_elevation = 0.0;
  OdDb::HatchStyle m_style = OdDb::kHatchNormal;

  OD_DB_DECLARE_FILING()
};
using OdDbHatchPtr = OdSmartPtr<OdDbHatch>;
