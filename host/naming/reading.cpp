// Weighs readings of one change against each other.
//
// The idea: each reading has a cost, what it leaves unexplained. The cheapest counts, and those
// that are hardly dearer. "Nothing moved" has a privilege, because parts are edited in place far
// more often than they are turned: where much of the body is in its place, a turn or a mirror image
// that explains a little more is not believed, and one that explains much more makes both count.
#include "host/naming/reading.h"

#include <algorithm>
#include <utility>

#include "host/naming/body_signature.h"
#include "host/naming/face_reader.h"

namespace vdm_host {

namespace {

constexpr double kInPlaceAlone = 0.3;
constexpr double kIdenticalAlone = 1.0 / 3.0 - 1e-9;
constexpr double kLittle = 0.1;
constexpr double kSome = 0.25;
constexpr double kMayBeLost = 1.0 / 3.0 + 1e-9;
constexpr double kInPlace = 0.2;
constexpr double kMostLost = 0.5;
constexpr double kMarginShare = 0.02;
constexpr double kMarginFaces = 1.0;
constexpr double kSmallMotion = 0.01;
constexpr double kMuchFarther = 10.0;
constexpr double kScalingExplains = 0.75;

/// The laws of weighReadings().
class Weighing {
 public:
  Weighing(std::vector<FaceReading> readings, const FaceScene& scene)
      : m_readings(std::move(readings)), m_scene(scene) {
    const std::size_t faces = scene.oldFaces.items.size() + scene.newFaces.items.size();
    m_all = static_cast<double>(faces);
    m_margin = std::max(kMarginFaces, kMarginShare * m_all);
  }

  std::vector<FaceReading> run() {
    const FaceReading none = m_readings.front();
    std::vector<FaceReading> others(m_readings.begin() + 1, m_readings.end());
    dropPoorScalings(others);
    dropMirrors(others);
    const auto byCost = [](const FaceReading& a, const FaceReading& b) { return a.cost < b.cost; };
    std::ranges::stable_sort(others, byCost);
    if (others.empty() || none.cost <= others.front().cost + m_margin) return {none};
    if (staysForSure(none, others.front())) return {none};
    std::erase_if(others, [&, least = others.front().cost](const FaceReading& reading) {
      return reading.cost > least + m_margin;
    });
    if (keepSmallOne(others)) return others;
    if (none.areaInPlace >= kInPlace && none.lostShare <= kMostLost) others.push_back(none);
    return others;
  }

 private:
  [[nodiscard]] bool staysForSure(const FaceReading& none, const FaceReading& other) const {
    const double more = (none.cost - other.cost) / m_all;
    return none.areaInPlace >= kInPlaceAlone && none.lostShare <= kMayBeLost &&
           (none.identicalShare >= kIdenticalAlone || more <= kLittle ||
            (none.lostShare <= 0.0 && more <= kSome));
  }

  void dropPoorScalings(std::vector<FaceReading>& others) const {
    std::erase_if(others, [this](const FaceReading& reading) {
      return reading.motion.kind == MotionKind::kScaling &&
             reading.cost > (1.0 - kScalingExplains) * m_all;
    });
  }

  static void dropMirrors(std::vector<FaceReading>& others) {
    const auto isMirror = [](const FaceReading& reading) {
      return reading.motion.matrix.det() < 0.0;
    };
    double least = 1e300;
    for (const FaceReading& reading : others) {
      if (!isMirror(reading)) least = std::min(least, reading.cost);
    }
    std::erase_if(others, [&](const FaceReading& reading) {
      return isMirror(reading) && reading.cost >= least - kNoise;
    });
  }

  // Of equally good motions the one that displaces the body by very little is the likely one. True
  // when it is left alone.
  bool keepSmallOne(std::vector<FaceReading>& others) const {
    const auto displacement = [this](const FaceReading& reading) {
      return reading.motion.displacement(m_scene.oldFaces.items);
    };
    const double small = kSmallMotion * m_scene.tolerance.size;
    std::vector<FaceReading> sorted = others;
    std::ranges::stable_sort(sorted, std::ranges::less(), displacement);
    if (displacement(sorted[0]) >= small) return false;
    if (sorted.size() > 1 && displacement(sorted[1]) < kMuchFarther * displacement(sorted[0])) {
      return false;
    }
    sorted.resize(1);
    others = std::move(sorted);
    return true;
  }

  static constexpr double kNoise = 1e-6;
  std::vector<FaceReading> m_readings;
  const FaceScene& m_scene;
  double m_all = 0.0;
  double m_margin = 0.0;
};

}  // namespace

SignatureLevel::SignatureLevel(const OdModelerBody& body, OdModelerSubentType type)
    : items(signaturesOf(body, type)) {
  faces.reserve(items.size());
  for (OdUInt32 i = 1; i <= items.size(); ++i) faces.push_back(facesAround(body, {type, i}));
}

FaceReading readFaces(const FaceScene& scene, const BodyMotion& motion) {
  return FaceReader(scene, motion).run();
}

std::vector<FaceReading> weighReadings(std::vector<FaceReading> readings, const FaceScene& scene) {
  return Weighing(std::move(readings), scene).run();
}

}  // namespace vdm_host
