// The construction plan of a part: a base and features, from which its body and the names of all
// its surfaces follow independently of each other.
#pragma once

#include <random>
#include <string>
#include <vector>

#include "bench/naming/carrier.h"

namespace naming_bench {

using Random = std::mt19937_64;

/// Between low and high; the same on every platform.
[[nodiscard]] double between(Random& random, double low, double high);
/// 0 to count - 1.
[[nodiscard]] std::size_t pick(Random& random, std::size_t count);

enum class BaseKind {
  kBlock,    ///< length x width x height from the origin
  kShell,    ///< a block, hollow, open at the top, with walls of `wall`
  kShaft,    ///< cylinders along z, one on the other
  kRounded,  ///< a block with upright edges filleted by `wall` and top edges by half of it
};

/// Sizes in drawing units, in the order a, b, c, d.
enum class FeatureKind {
  kHole,         ///< radius, depth
  kCounterbore,  ///< radius, depth, wider radius, its depth
  kPocket,       ///< length along x, width along y, depth
  kSlot,         ///< distance of the two ends' axes along x, radius, depth
  kBoss,         ///< radius, height
  kRib,          ///< length along x, width along y, height
};

/// One feature. Its frame has its origin on the surface and z out of the material.
struct Feature {
  std::string name;
  FeatureKind kind = FeatureKind::kHole;
  double a = 0.0;
  double b = 0.0;
  double c = 0.0;
  double d = 0.0;
  OdGeMatrix3d frame;
  double slack = 0.0;  ///< how far it may move along x and y, or grow, without meeting another one

  [[nodiscard]] bool unites() const {
    return kind == FeatureKind::kBoss || kind == FeatureKind::kRib;
  }
  /// The greatest extension along x or y from the frame's origin.
  [[nodiscard]] double reach() const;
};

struct ShaftStep {
  double radius = 0.0;
  double length = 0.0;
};

struct Plan {
  BaseKind base = BaseKind::kBlock;
  double length = 0.0;
  double width = 0.0;
  double height = 0.0;
  double wall = 0.0;
  std::vector<ShaftStep> steps;
  std::vector<Feature> features;
  OdGeMatrix3d placement;  ///< of the whole; rigid, or mirroring

  std::vector<OdGeMatrix3d> free;      ///< frames where another feature of slack `cell` fits
  double cell = 0.0;                   ///< half the room around a free frame
  std::vector<double> lanes;           ///< x where a groove across the top meets no feature
  std::vector<OdGeMatrix3d> symmetry;  ///< what maps the part onto itself, the identity left out

  [[nodiscard]] const Feature* find(const std::string& name) const;
  /// The frame of a feature in space.
  [[nodiscard]] OdGeMatrix3d frameOf(const Feature& feature) const {
    return placement * feature.frame;
  }
};

/// All surfaces of the part; those of features go before those of the base.
[[nodiscard]] std::vector<Carrier> carriersOf(const Plan& plan);

/// The base alone, in space. `variant` chooses among ways of making the same geometry.
[[nodiscard]] OdModelerBodyPtr baseBody(const Plan& plan, unsigned variant = 0);
/// The tool of a feature, in space: reaches a unit out of the material when it cuts.
[[nodiscard]] OdModelerBodyPtr toolBody(const Plan& plan, const Feature& feature);
/// The part, made in another order: of features, of steps, one by one or at once.
[[nodiscard]] OdModelerBodyPtr rebuild(const Plan& plan, Random& random);

[[nodiscard]] OdModelerBodyPtr moved(const OdModelerBodyPtr& body, const OdGeMatrix3d& motion);

}  // namespace naming_bench
