// Reads the faces of a body under one motion: what moved together, or with the body's box.
//
// The idea: every open face votes for the ways to its look-alikes. A way with many votes is tried
// on all open faces, and counts when it puts them exactly on faces that are there. A single face
// lands somewhere by chance; two features, or three faces that touch each other, hardly do. Where
// another way explains nearly as much, nothing is taken, unless the first explains every look-alike
// on both sides, which no two ways can: the middles of both sets fix the vector.
//
// A stretched body is tried by the map of its box. It counts only when features land where it puts
// them, since the sides of the box do so by themselves.
#include <algorithm>
#include <cmath>
#include <functional>
#include <map>
#include <tuple>
#include <utility>

#include "host/naming/face_reader.h"

namespace vdm_host {

namespace {

/// Pairs of look-alikes that are compared in one class.
constexpr std::size_t kMaxPairs = 65536;
/// Vectors that are tried, the most voted first.
constexpr std::size_t kMaxVectors = 8;
/// Another vector that explains this share of what the best does contests it.
constexpr double kContest = 0.8;
/// Stretching changes measures in proportion but for holes, which do not stretch.
constexpr double kStretchedSize = 0.1;
/// Faces that touch each other and are displaced by one vector: so many say that it is no chance.
constexpr std::size_t kFacesOfFeature = 3;

constexpr double kCostOfField = 0.1;

/// The map of the old body's box onto the new one's, axis by axis.
class Stretch {
 public:
  Stretch(const OdGeExtents3d& from, const OdGeExtents3d& to) : m_low(from.minPoint()) {
    m_newLow = to.minPoint();
    const OdGeVector3d before = from.maxPoint() - from.minPoint();
    const OdGeVector3d now = to.maxPoint() - to.minPoint();
    if (std::min({before.x, before.y, before.z, now.x, now.y, now.z}) <= 0.0) return;
    m_factor.set(now.x / before.x, now.y / before.y, now.z / before.z);
    m_isValid = true;
  }

  /// The boxes are not of one size.
  [[nodiscard]] bool stretches(double relative) const {
    return m_isValid && std::max({std::abs(m_factor.x - 1.0), std::abs(m_factor.y - 1.0),
                                  std::abs(m_factor.z - 1.0)}) > relative;
  }
  [[nodiscard]] OdGePoint3d of(const OdGePoint3d& p) const {
    return {m_newLow.x + (p.x - m_low.x) * m_factor.x, m_newLow.y + (p.y - m_low.y) * m_factor.y,
            m_newLow.z + (p.z - m_low.z) * m_factor.z};
  }
  /// Planes grow across their normal, walls of revolution along their axis; radii stay.
  [[nodiscard]] SubentSignature of(const SubentSignature& face) const {
    SubentSignature s = face;
    const OdGeVector3d d = face.direction;
    const OdGeVector3d along(d.x * m_factor.x, d.y * m_factor.y, d.z * m_factor.z);
    const double alongFactor = along.length();
    const OdGePoint3d anchor = of(face.anchor);
    s.place = of(face.place);
    s.anchor = anchor;
    if (alongFactor <= 0.0) return s;
    const double volume = m_factor.x * m_factor.y * m_factor.z;
    s.size *= face.hasSign() ? volume / alongFactor : alongFactor;
    return s;
  }

 private:
  OdGePoint3d m_low;
  OdGePoint3d m_newLow;
  OdGeVector3d m_factor{1.0, 1.0, 1.0};
  bool m_isValid = false;
};

OdGeExtents3d boxOf(const OdModelerBody& body, const OdGeMatrix3d& motion) {
  OdGeExtents3d box;
  for (OdUInt32 i = 1; i <= body.numVertices(); ++i) box.addPoint(motion * body.vertex(i).point);
  return box;
}

}  // namespace

// ---- Law 3

void FaceReader::takeDisplacedTogether() {
  stageAt(kCostOfField, [this] {
    for (std::size_t i = 0; i < kMaxVectors; ++i) {
      if (!takeBestField()) return;
    }
  });
}

bool FaceReader::takeBestField() {
  std::vector<Field> fields;
  for (const OdGeVector3d& by : votedVectors()) fields.push_back(fieldOf(by));
  std::erase_if(fields, [this](const Field& f) {
    const bool says = countFeatures(f) >= 2 || f.landings.size() >= kFacesOfFeature;
    return !says || !isWithinReach(f) || isMostOfTheBody(f);
  });
  std::ranges::stable_sort(fields, std::ranges::greater(),
                           [](const Field& f) { return f.landings.size(); });
  if (fields.empty() || isContested(fields)) return false;
  take(fields.front());
  return true;
}

void FaceReader::take(const Field& field) {
  std::vector<OdUInt8> moves(m_old.size() + 1, 0);
  for (const Landing& one : field.landings) moves[one.old] = 1;
  for (const Landing& one : field.landings) {
    if (isHeldInPlace(one, moves)) {
      m_pairs.contest({&one.old, 1}, {&one.now, 1});
    } else {
      m_pairs.take(one.old, one.now);
    }
  }
}

// The face touches what does not move along, and a rest of it may be where it was: a land between
// two grooves that moved is the same land, or another part of the same face.
bool FaceReader::isHeldInPlace(const Landing& one, const std::vector<OdUInt8>& moves) const {
  const std::vector<OdUInt32>& around = m_scene.oldFaces.faces[one.old - 1];
  if (std::ranges::all_of(around, [&](OdUInt32 face) { return moves[face] != 0; })) return false;
  for (OdUInt32 other = 1; other <= m_now.size(); ++other) {
    if (other != one.now && liesOnSame(old(one.old), now(other), m_scene.tolerance) &&
        overlap(one.old, other)) {
      return true;
    }
  }
  return false;
}

// Vectors from open faces to open look-alikes, those with the most votes first.
std::vector<OdGeVector3d> FaceReader::votedVectors() const {
  using Key = std::tuple<OdInt64, OdInt64, OdInt64>;
  std::map<Key, std::pair<int, OdGeVector3d>> votes;
  const double step = 100.0 * length();
  const auto classes = classesOf([this](OdUInt32 face) { return m_pairs.isOpen(face); },
                                 [this](OdUInt32 face) { return isFresh(face); });
  for (const LookAlikes& row : classes) {
    if (row.olds.size() * row.nows.size() > kMaxPairs) continue;
    for (const OdUInt32 a : row.olds) {
      for (const OdUInt32 b : row.nows) {
        const OdGeVector3d by = now(b).place - old(a).place;
        auto& [count, vector] = votes[{std::llround(by.x / step), std::llround(by.y / step),
                                       std::llround(by.z / step)}];
        ++count;
        vector = by;
      }
    }
  }
  std::vector<std::pair<int, OdGeVector3d>> ranked;
  for (const auto& [key, row] : votes) ranked.push_back(row);
  std::ranges::stable_sort(ranked, std::ranges::greater(), &std::pair<int, OdGeVector3d>::first);
  std::vector<OdGeVector3d> vectors;
  for (std::size_t i = 0; i < std::min(kMaxVectors, ranked.size()); ++i) {
    vectors.push_back(ranked[i].second);
  }
  return vectors;
}

FaceReader::Field FaceReader::fieldOf(const OdGeVector3d& by) const {
  Field field{by, {}};
  for (OdUInt32 face = 1; face <= m_old.size(); ++face) {
    if (!m_pairs.isOpen(face)) continue;
    const OdUInt32 image = landing(shiftedBy(old(face), by));
    if (image != 0 && isFresh(image)) field.landings.push_back({face, image});
  }
  return field;
}

// Groups of faces that touch each other: a hole, a pocket, a boss.
std::size_t FaceReader::countGroups(std::vector<OdUInt32> faces, const SignatureLevel& level) {
  std::size_t groups = 0;
  std::ranges::sort(faces);
  while (!faces.empty()) {
    ++groups;
    std::vector<OdUInt32> front = {faces.back()};
    faces.pop_back();
    while (!front.empty()) {
      const OdUInt32 face = front.back();
      front.pop_back();
      for (const OdUInt32 other : level.faces[face - 1]) {
        const auto found = std::ranges::lower_bound(faces, other);
        if (found == faces.end() || *found != other) continue;
        front.push_back(other);
        faces.erase(found);
      }
    }
  }
  return groups;
}

// Faces that touch each other are one feature, but equal ones of one direction are several.
std::size_t FaceReader::countFeatures(const Field& field) const {
  std::vector<OdUInt32> faces;
  std::unordered_map<OdUInt32, std::vector<OdUInt32>> byShape;
  std::size_t most = 0;
  for (const Landing& one : field.landings) {
    faces.push_back(one.old);
    std::vector<OdUInt32>& equal = byShape[old(one.old).shapeHash()];
    equal.push_back(one.old);
    most = std::max<std::size_t>(
        most, static_cast<std::size_t>(std::ranges::count_if(equal, [&](OdUInt32 other) {
          return facesTheSameWay(old(one.old), old(other));
        })));
  }
  return std::max(most, countGroups(std::move(faces), m_scene.oldFaces));
}

// What moves most of the body moves the body: that is another reading.
bool FaceReader::isMostOfTheBody(const Field& field) const {
  double all = 0.0;
  double moved = 0.0;
  for (const SubentSignature& face : m_old) all += face.size;
  for (const Landing& one : field.landings) moved += old(one.old).size;
  return 2.0 * moved > all;
}

// What moves farther than it extends may as well have been mirrored or made anew.
bool FaceReader::isWithinReach(const Field& field) const {
  OdGeExtents3d box;
  double reach = 0.0;
  for (const Landing& one : field.landings) {
    box.addPoint(old(one.old).place);
    reach = std::max(reach, old(one.old).reach());
  }
  return field.by.length() <= box.minPoint().distanceTo(box.maxPoint()) + reach;
}

// Another vector explains nearly as many of the same faces, or by the same faces, and this one
// does not explain all of its look-alikes on both sides.
bool FaceReader::isContested(const std::vector<Field>& fields) const {
  const Field& best = fields.front();
  if (explainsAllLookAlikes(best)) return false;
  std::vector<OdUInt8> mine(m_old.size() + 1, 0);
  std::vector<OdUInt8> taken(m_now.size() + 1, 0);
  for (const Landing& one : best.landings) mine[one.old] = taken[one.now] = 1;
  return std::ranges::any_of(fields.begin() + 1, fields.end(), [&](const Field& other) {
    if ((other.by - best.by).length() <= 1000.0 * length()) return false;
    const auto shared = std::ranges::count_if(other.landings, [&](const Landing& one) {
      return mine[one.old] != 0 || taken[one.now] != 0;
    });
    return static_cast<double>(shared) >= kContest * static_cast<double>(best.landings.size());
  });
}

bool FaceReader::explainsAllLookAlikes(const Field& field) const {
  std::unordered_map<OdUInt32, int> balance;  // by shape: open faces that the field leaves over
  for (const Landing& one : field.landings) balance[old(one.old).shapeHash()] = 0;
  const auto add = [&](const SubentSignature& face, int count) {
    const auto row = balance.find(face.shapeHash());
    if (row != balance.end()) row->second += count;
  };
  for (OdUInt32 face = 1; face <= m_old.size(); ++face) {
    if (m_pairs.isOpen(face)) add(old(face), 1);
  }
  for (OdUInt32 face = 1; face <= m_now.size(); ++face) {
    if (isFresh(face)) add(now(face), 1);
  }
  for (const Landing& one : field.landings) add(old(one.old), -2);
  return std::ranges::all_of(balance, [](const auto& row) { return row.second == 0; });
}

// ---- Law 3, stretched

void FaceReader::takeStretched() {
  const Stretch stretch(boxOf(m_scene.before, m_motion.matrix),
                        boxOf(m_scene.now, OdGeMatrix3d::kIdentity));
  if (!stretch.stretches(m_scene.tolerance.length / m_scene.tolerance.size)) return;
  std::vector<Landing> landings;
  std::vector<OdUInt8> claimed(m_now.size() + 1, 0);
  for (OdUInt32 face = 1; face <= m_old.size(); ++face) {
    if (!m_pairs.isOpen(face)) continue;
    const OdUInt32 image = stretchedLanding(old(face), stretch.of(old(face)));
    if (image == 0) continue;
    landings.push_back({face, image});
    if (claimed[image] < 2) ++claimed[image];
  }
  std::erase_if(landings, [&](const Landing& one) { return claimed[one.now] > 1; });
  // The box itself always lands on the box: features must say the same.
  std::vector<OdUInt32> inner;
  for (const Landing& one : landings) {
    if (isInner(old(one.old))) inner.push_back(one.old);
  }
  if (countGroups(inner, m_scene.oldFaces) < 2) return;
  stageAt(kCostOfField, [&] {
    for (const Landing& one : landings) m_pairs.take(one.old, one.now);
  });
  // Features do not stretch themselves: what is open is looked for where its middle went.
  for (OdUInt32 face = 1; face <= m_old.size(); ++face) {
    if (!m_pairs.isOpen(face)) continue;
    const OdGePoint3d place = old(face).place;
    m_old[face - 1] = shiftedBy(old(face), stretch.of(place) - place);
  }
}

// Small against the body: a part of a feature, not a side of the box.
bool FaceReader::isInner(const SubentSignature& face) const {
  return face.radius > 0.0 || std::sqrt(face.size) < 0.2 * m_scene.tolerance.size;
}

// The one open face on the stretched surface, of the stretched measure (a side of the box) or of
// the old one (a feature); 0 for none or several.
OdUInt32 FaceReader::stretchedLanding(const SubentSignature& before,
                                      const SubentSignature& stretched) const {
  const auto isOfSize = [&](double size, double wanted) {
    return std::abs(size - wanted) <= kStretchedSize * wanted;
  };
  OdUInt32 found = 0;
  int count = 0;
  m_scene.grid.within(
      stretched.place, kStretchedSize * std::max(before.reach(), length()), [&](OdUInt32 i) {
        const SubentSignature& other = m_now[i];
        if (!isFresh(i + 1)) return;
        if (!liesOnSame(stretched, other, m_scene.tolerance)) return;
        if (!isOfSize(other.size, stretched.size) && !isOfSize(other.size, before.size)) {
          return;
        }
        found = i + 1;
        ++count;
      });
  return count == 1 ? found : 0;
}

}  // namespace vdm_host
