// How a body moved as a whole.
#pragma once

#include <span>

#include "host/naming/subent_signature.h"
#include "platform/base/string.h"
#include "platform/ge/matrix3d.h"

namespace vdm_host {

/// How a body may have moved as a whole. Numbers are in no file.
enum class MotionKind : OdUInt8 { kNone, kProper, kMirror, kScaling };

/// A motion and how many faces of the old body it lays on faces of the new one: on the same
/// surface, with middles that are at most half a reach apart.
struct BodyMotion {
  OdGeMatrix3d matrix;
  OdUInt32 laid = 0;
  MotionKind kind = MotionKind::kNone;

  /// How far it displaces the face that it displaces most.
  [[nodiscard]] double displacement(std::span<const SubentSignature> faces) const;
};

/// "nothing moved", "moved by (10, 0, 0)", "turned by 90 deg about (0, 0, 1) through (5, 5, 0)",
/// with "and moved by ... along it", "mirrored", "scaled by 25.4 (another unit?)", with
/// ", then ..." for a motion beside it. Lengths in
/// drawing units.
[[nodiscard]] OdString textOf(const BodyMotion& motion);

}  // namespace vdm_host
