// How a body moved as a whole.
#include "host/naming/body_motion.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <numbers>
#include <string>

namespace vdm_host {

namespace {

/// Angles and lengths below this are nothing, in radians and drawing units.
constexpr double kNothing = 1e-9;
/// Six digits, and no minus before a zero.
std::string numberText(double value) {
  std::array<char, 32> buffer{};
  const double shown = std::abs(value) < 1e-6 ? 0.0 : value;
  std::snprintf(buffer.data(), buffer.size(), "%.6g", shown);
  return buffer.data();
}

template <class Triple>
std::string tripleText(const Triple& v) {
  return "(" + numberText(v.x) + ", " + numberText(v.y) + ", " + numberText(v.z) + ")";
}

/// The turn of a rigid motion: its angle, axis and what is left along the axis.
struct Turn {
  double angle = 0.0;  // radians
  OdGeVector3d axis;   // unit
  OdGePoint3d through;
  double along = 0.0;
};

// The axis is where the turn's antisymmetric part points; at half a turn, where that vanishes, the
// largest column of R + 1 does. With t the displacement across the axis and h half the angle, a
// point of the axis is (t + cot(h) axis x t) / 2.
Turn turnOf(const OdGeMatrix3d& motion) {
  const auto at = [&](unsigned row, unsigned column) { return motion(row, column); };
  Turn turn;
  const double cosine = (at(0, 0) + at(1, 1) + at(2, 2) - 1.0) / 2.0;
  turn.angle = std::acos(std::clamp(cosine, -1.0, 1.0));
  if (turn.angle <= kNothing) return turn;
  turn.axis.set(at(2, 1) - at(1, 2), at(0, 2) - at(2, 0), at(1, 0) - at(0, 1));
  if (turn.axis.length() < 1e-6) {
    for (unsigned column = 0; column < 3; ++column) {
      OdGeVector3d candidate(at(0, column), at(1, column), at(2, column));
      (column == 0 ? candidate.x : column == 1 ? candidate.y : candidate.z) += 1.0;
      if (candidate.length() > turn.axis.length()) turn.axis = candidate;
    }
  }
  turn.axis.normalize();
  const OdGeVector3d offset = motion.translation();
  turn.along = turn.axis.dotProduct(offset);
  const OdGeVector3d across = offset - turn.axis * turn.along;
  const double half = turn.angle / 2.0;
  const double cotangent = std::cos(half) / std::sin(half);
  turn.through = OdGePoint3d() + (across + turn.axis.crossProduct(across) * cotangent) * 0.5;
  return turn;
}

std::string rigidText(const OdGeMatrix3d& motion) {
  const Turn turn = turnOf(motion);
  if (turn.angle <= 1e-7) return "moved by " + tripleText(motion.translation());
  std::string text = "turned by " + numberText(turn.angle * 180.0 / std::numbers::pi) +
                     " deg about " + tripleText(turn.axis) + " through " + tripleText(turn.through);
  if (std::abs(turn.along) > 1e-6) text += " and moved by " + numberText(turn.along) + " along it";
  return text;
}

std::string scaledText(const OdGeMatrix3d& motion) {
  const double factor = motion.scale();
  std::string text = "scaled by " + numberText(factor) + " (another unit?)";
  const OdGeMatrix3d rest = motion * OdGeMatrix3d::scaling(1.0 / factor);
  if (rest.det() < 0.0) return text + ", then mirrored";
  const OdGeTol close(1e-6 * std::max(1.0, rest.translation().length()), 1e-7);
  return rest.isIdentity(close) ? text : text + ", then " + rigidText(rest);
}

}  // namespace

double BodyMotion::displacement(std::span<const SubentSignature> faces) const {
  double farthest = 0.0;
  for (const SubentSignature& face : faces) {
    farthest = std::max(farthest, face.place.distanceTo(matrix * face.place));
  }
  return farthest;
}

OdString textOf(const BodyMotion& motion) {
  switch (motion.kind) {
    case MotionKind::kNone:
      return L"nothing moved";
    case MotionKind::kProper:
      return OdString::fromUtf8(rigidText(motion.matrix));
    case MotionKind::kMirror:
      return L"mirrored";
    case MotionKind::kScaling:
      return OdString::fromUtf8(scaledText(motion.matrix));
  }
  return {};
}

}  // namespace vdm_host
