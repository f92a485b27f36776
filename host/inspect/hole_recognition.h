// Holes, slots and pockets of a body, also of one that came without features.
#pragma once

#include <vector>

#include "host/inspect/body_facts.h"

namespace vdm_host {

/// What an opening is; `holeKindName` gives the words.
enum class HoleKind { kPlain, kCounterbore, kCountersink, kStepped, kSlot, kPocket };
/// "hole", "counterbore", "countersink", "stepped hole", "slot", "pocket"; static text.
[[nodiscard]] const char* holeKindName(HoleKind kind);

/// One part of a round hole between two places on its axis, from the mouth inwards.
struct HoleStep {
  double diameter = 0.0;     ///< at its beginning
  double endDiameter = 0.0;  ///< the same for a cylinder
  double from = 0.0;         ///< from the mouth
  double to = 0.0;
};

/// One opening. Lengths in drawing units, angles in radians, in the body's own coordinates.
struct HoleFacts {
  HoleKind kind = HoleKind::kPlain;
  OdGePoint3d mouth;   ///< on the axis, where the opening begins; the middle of a slot or pocket
  OdGeVector3d axis;   ///< unit, into the material
  double depth = 0.0;  ///< from the mouth to the end of the wall, a drill's point left aside
  bool through = false;
  double diameter = 0.0;        ///< of the narrowest cylinder; of a slot its width
  double outerDiameter = 0.0;   ///< of counterbore or countersink at the mouth; 0 else
  double outerDepth = 0.0;      ///< of counterbore or countersink; 0 else
  double coneAngle = 0.0;       ///< whole angle of a countersink, or of a drill's point; 0 else
  double length = 0.0;          ///< of a slot over all, of a pocket along its longest straight wall
  double width = 0.0;           ///< of a slot, of a pocket
  double cornerRadius = 0.0;    ///< of a pocket, 0 for sharp corners
  OdGeVector3d lengthwise;      ///< unit, along the length; zero for round ones
  std::vector<HoleStep> steps;  ///< of round ones
  std::vector<OdUInt32> faces;  ///< walls and floors, rising; the first wall is `wall`
  OdUInt32 wall = 0;            ///< represents the opening: its narrowest cylinder
};

/// All openings of a body: round ones first, then slots, then pockets, each by the number of their
/// first face. A face belongs to one opening at most. What is no opening of these kinds is left
/// out: grooves around a boss, closed cavities, pockets with open sides or with rounded floors.
[[nodiscard]] std::vector<HoleFacts> recognizeHoles(BodyFacts& facts);

}  // namespace vdm_host
