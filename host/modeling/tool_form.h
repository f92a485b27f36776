// ToolForm: the tool of a built-in component; one that cuts is made anew for each place.
#pragma once

#include <optional>

#include "platform/base/status.h"
#include "platform/modeler/modeler.h"
#include "vdm_db/properties/vdm_properties.h"

namespace vdm_host {

enum class ToolShape { kHole = 0, kCounterbore = 1, kSlot = 2, kBoss = 3 };  ///< numbers are stored

/// How far a tool reaches from the face in which it is placed, along its axis.
struct ToolReach {
  double below = 0.0;
  double above = 0.0;
};

/// What a tool is, apart from how far it reaches. Lengths in the units of its block.
struct ToolForm {
  ToolShape shape = ToolShape::kHole;
  double width = 0.0;         ///< diameter of hole, counterbore's hole and boss; width of the slot
  double length = 0.0;        ///< of the slot, over all
  double boreDiameter = 0.0;  ///< of the counterbore
  double boreDepth = 0.0;
  /// From the face; without one it goes through everything below. The height of a boss.
  std::optional<double> depth;

  friend bool operator==(const ToolForm&, const ToolForm&) = default;

  /// The widest that it is at the face.
  [[nodiscard]] double widthAtFace() const;
  /// How far it reaches above a face that is not flat.
  [[nodiscard]] double clearance() const;
};

/// The tool, its axis along z and its face at z = 0; a boss has its height whatever the reach.
/// Faces have the same numbers whatever the reach; `reach.below` is more than the bore's depth.
OdStatus makeTool(const ToolForm& form, const ToolReach& reach, OdModelerBodyPtr& result);
/// What the tool takes up from z = `from` to z = `to` if it is as there as it is at its face.
OdStatus makeOpening(const ToolForm& form, double from, double to, OdModelerBodyPtr& result);

/// Kept in the bag of the component's block beside the tool that was made of it. Whoever edits that
/// tool makes the form void: it is read only for the very body.
void writeToolForm(const ToolForm& form, const OdModelerBody& tool, VdmProperties& bag);
[[nodiscard]] std::optional<ToolForm> readToolForm(const VdmProperties& bag,
                                                   const OdModelerBody& tool);

}  // namespace vdm_host
