// A part with components, known from its dimensions: which surface is whose, and where.
#pragma once

#include <compare>
#include <optional>
#include <string>
#include <vector>

#include "bench/naming/plan.h"

namespace naming_bench {

/// A surface by its maker: the face of a component's tool, or of the base.
struct Source {
  int maker = -1;  ///< number of the component; -1 for the base
  int face = 0;    ///< 0 floor or top; from 1 the walls

  friend auto operator<=>(const Source&, const Source&) = default;
};

enum class OpeningKind { kPocket, kSlot, kHole, kBoss };

/// A component on the part's top. Lengths in drawing units.
struct OpeningPlan {
  int number = 0;
  OpeningKind kind = OpeningKind::kPocket;
  double length = 0.0;  ///< along its own x; over all for a slot, the diameter for a hole
  double width = 0.0;   ///< along its own y; unused for a hole
  double depth = 0.0;   ///< height for a boss; 0 for a cut through everything
  double x = 0.0;
  double y = 0.0;
  double angle = 0.0;  ///< radians, about z
  bool suppressed = false;

  [[nodiscard]] bool fills() const { return kind == OpeningKind::kBoss; }
  [[nodiscard]] bool isRound() const { return kind == OpeningKind::kHole; }
  /// Its outline holds the point (x, y), not nearer to its boundary than `margin` if that is
  /// positive, not farther if it is negative.
  [[nodiscard]] bool holds(double px, double py, double margin) const;
};

/// A piece of a surface as the construction makes it: a strip of a wall, or a level area.
struct Patch {
  Source source;
  OdModelerSurfaceKind kind = OdModelerSurfaceKind::kPlane;
  OdGePoint3d origin;   ///< of the plane or axis
  OdGeVector3d axis;    ///< normal of the plane, away from the material; z for a cylinder
  double radius = 0.0;  ///< of a cylinder
  double inward = 0.0;  ///< cylinder: 1 when the material is outside, -1 when it is inside
  // A wall: along x and y from `from` to `to` or, on a cylinder, by `sweep` from `from`.
  OdGePoint3d from;
  OdGePoint3d to;
  double sweep = 0.0;
  double low = 0.0;
  double high = 0.0;
  // A level area: of this opening, or of a rectangle from `from` to `to`.
  bool isLevel = false;
  std::optional<OpeningPlan> area;

  /// The patch holds the point, its boundary included.
  [[nodiscard]] bool holds(const OdGePoint3d& point) const;
  [[nodiscard]] OdGeVector3d normalAt(const OdGePoint3d& point) const;
  /// Points spread over it, none on a multiple of five units of its own frame.
  [[nodiscard]] std::vector<OdGePoint3d> samples() const;
};

/// (base and fills) less cuts. The base is a plate from the origin, with a riser on its top from
/// `riserX` to its end when `riserHeight` is not 0.
struct PartPlan {
  double length = 120.0;
  double width = 80.0;
  double height = 20.0;
  double riserX = 0.0;
  double riserHeight = 0.0;
  std::vector<OpeningPlan> openings;

  /// Raise std::out_of_range for a number that is not there.
  [[nodiscard]] OpeningPlan& at(int number);
  [[nodiscard]] const OpeningPlan& at(int number) const;
  [[nodiscard]] bool isMaterial(const OdGePoint3d& point) const;
  [[nodiscard]] std::vector<Patch> patches() const;
  [[nodiscard]] OdModelerBodyPtr baseBody() const;
};

/// The tool of an opening in its own frame, origin on the part's top.
[[nodiscard]] OdModelerBodyPtr openingTool(const OpeningPlan& opening);

}  // namespace naming_bench
