// Constraints: the next combination of sides or alignment.
//
// The sides of a constraint are the digits of a binary number, argument 0 being the lowest: 1 is
// the positive side. Flipping counts it down or up, so that repeated flips reach every combination
// of the two arguments that have sides. Where an argument has none, the other one changes alone;
// without sides the alignment changes between its two values.
#include <vector>

#include "vdm_db/constraints/vdm_constraint.h"
#include "vdm_db/constraints/vdm_constraint_properties_utils.h"

namespace utils = VdmConstraintPropertiesUtils;

namespace {

using Sides = std::vector<HalfSpaceOrientation>;

constexpr OdUInt32 kLastMask = 3;  // below zero, whatever the number of arguments

bool isLeftToDrawing(OdInt32 stored) { return stored == 0 || stored == kHalfSpaceKeep; }

void flipAlignment(VdmConstraint* constraint) {
  AlignmentOrientation present = utils::getAlignment(*constraint);
  if (isLeftToDrawing(present)) {
    present = kAlignmentNotSpecified;
    utils::getAlignmentFromDrawing(constraint, present);
  }
  utils::setAlignment(constraint, present == kAlignmentFirst ? kAlignmentSecond : kAlignmentFirst);
}

/// The side of each argument, by the drawing where it is left to the drawing.
Sides sidesOf(const VdmConstraint& constraint) {
  Sides sides(constraint.getArgumentsCount(), kHalfSpaceKeep);
  Sides drawn;
  bool isDrawnKnown = false;
  for (std::size_t i = 0; i < sides.size(); ++i) {
    sides[i] = utils::getHalfSpace(constraint, static_cast<int>(i));
    if (!isLeftToDrawing(sides[i])) continue;
    if (!isDrawnKnown && !utils::getHalfSpacesFromDrawing(&constraint, drawn)) drawn.clear();
    isDrawnKnown = true;
    if (i >= drawn.size()) continue;
    sides[i] = drawn[i] == kHalfSpaceNotSpecified ? kHalfSpacePositive : drawn[i];
  }
  return sides;
}

/// The first argument without a side; the number of arguments when all have one.
OdUInt32 firstWithoutSide(const Sides& sides, const VdmConstraintOrientationProperties& offers) {
  OdUInt32 argument = 0;
  while (argument < sides.size() && offers.checkArgumentSupportsHalfSpaces(argument) &&
         sides[argument] != kHalfSpaceNotSpecified) {
    ++argument;
  }
  return argument;
}

void setSidesByMask(VdmConstraint* constraint, OdUInt32 count, OdUInt32 mask) {
  for (OdUInt32 i = 0; i < count; ++i) {
    const bool isPositive = (mask >> i & 1u) != 0;
    utils::setHalfSpace(constraint, static_cast<int>(i),
                        isPositive ? kHalfSpacePositive : kHalfSpaceNegative);
  }
}

}  // namespace

bool VdmConstraint::flipSide(bool down) {
  const VdmConstraintOrientationProperties offers = getConstraintOrientationProperties();
  if (!offers.checkConstraintSupportsHalfSpaces()) {
    if (!offers.checkConstraintSupportsAlignment()) return false;
    flipAlignment(this);
    return true;
  }
  const Sides sides = sidesOf(*this);
  const auto count = static_cast<OdUInt32>(sides.size());
  const OdUInt32 stop = firstWithoutSide(sides, offers);
  if (stop < count) {
    const OdUInt32 other = (stop + 1) % count;
    const bool wasPositive = sides[other] == kHalfSpacePositive;
    return utils::setHalfSpace(this, static_cast<int>(other),
                               wasPositive ? kHalfSpaceNegative : kHalfSpacePositive);
  }
  OdUInt32 mask = 0;
  for (OdUInt32 i = 0; i < count; ++i) mask |= OdUInt32{sides[i] != kHalfSpaceNegative} << i;
  const OdUInt32 previous = mask == 0 ? kLastMask : mask - 1;
  setSidesByMask(this, count, down ? previous : mask + 1);
  return true;
}
