// One way of reading a change that has no history: how the body moved as a whole, and what each
// face became under that.
#pragma once

#include <vector>

#include "host/naming/motion_search.h"
#include "host/naming/signature_pairing.h"
#include "platform/modeler/body.h"

namespace vdm_host {

/// All signatures of a body of one type, with the faces around each.
struct SignatureLevel {
  std::vector<SubentSignature> items;        ///< by index - 1
  std::vector<std::vector<OdUInt32>> faces;  ///< by index - 1; rising, each once

  SignatureLevel(const OdModelerBody& body, OdModelerSubentType type);
};

/// The faces of two bodies. What it refers to outlives it.
struct FaceScene {
  const OdModelerBody& before;
  const OdModelerBody& now;
  const SignatureLevel& oldFaces;
  const SignatureLevel& newFaces;
  const PlaceGrid& grid;  ///< of the new faces
  const MatchTolerance& tolerance;
};

/// The faces under one motion.
struct FaceReading {
  BodyMotion motion;
  std::vector<PairingGuess> guesses;  ///< by old face - 1
  double cost = 0.0;                  ///< in faces, 0 when all is as it was
  double areaInPlace = 0.0;           ///< share of the old faces' area
  double identicalShare = 0.0;        ///< of the old faces, by number
  double lostShare = 0.0;             ///< of the old faces, by number; without contested ones

  [[nodiscard]] bool agreesWith(const FaceReading& other) const { return guesses == other.guesses; }
};

/// Reads the faces under a motion. Laws, in this order:
///   1. identical geometry is the same face;
///   2. where all equal faces of a row, of which some are in their places, are as well all
///   displaced
///      by one and the same vector, none of them is known: the row moved on, or its first member
///      went to its end;
///   3. faces that are displaced by one vector, or stretched with the body's box, and lie exactly
///      where that puts them, are the same, when it explains two features or three faces, no other
///      vector explains as much, it is no longer than what it moves, and that is at most half of
///      the body;
///   4. what lies on the old surface and overlaps the old face is what is left of it; where that is
///      several faces that all lie within the old one, it is split. Such a rest outranks every face
///      on another surface;
///   5. what was displaced by less than its reach or resized a little and meets the same neighbours
///      is the same, when it is clearly the best choice both ways;
///   6. the rest is lost, and unclear where several look-alikes are near or one is anywhere that
///      nothing else became.
/// The cost of an old face is 0 for identical ones, 0.1 by law 3, 0.5 by laws 2 and 4, 0.75 by law
/// 5 and 1 otherwise; a new face that none became costs 1.
[[nodiscard]] FaceReading readFaces(const FaceScene& scene, const BodyMotion& motion);

/// The readings that are left when the evidence is weighed; the best first, at least one. Laws:
///   1. "nothing moved" is taken alone when nothing else costs less by more than the margin; also
///      when 30 % of the area is in its place, at most a third of the faces is lost, and either a
///      third is identical, or the best other reading costs less by a tenth of all faces at most,
///      or by a quarter where none is lost;
///   2. it stays beside others while 20 % of the area is identical in its place;
///   3. of the others those count whose cost is within the margin of the least;
///   4. a mirror image yields to a proper motion that costs no more;
///   5. of several the one that displaces the body by less than 1 % of its size is taken alone when
///      the next displaces it ten times as far;
///   6. a scaling counts only where it explains three quarters of all faces.
/// The margin is one face, or 2 % of all faces of both bodies.
[[nodiscard]] std::vector<FaceReading> weighReadings(std::vector<FaceReading> readings,
                                                     const FaceScene& scene);

}  // namespace vdm_host
