// Reads the faces of a body under one motion, stage by stage.
//
// The idea: evidence is used in the order of its strength, and each stage looks only at what the
// stages before it left open. Identical geometry is strongest. Next comes what many faces say with
// one voice: a vector, or the stretching of the body's box, that puts several features exactly on
// faces that are there. Then the rest of the old surface where it was. Only then the likeness of
// single faces near by, which is a guess that must be clearly the best.
//
// Why it is right: a set of places lies on another one of the same size after one displacement at
// most, the difference of their middles. So a row of equal faces has two readings at most, in place
// or moved on, and where both explain it, its members stay unknown (law 2). A face that overlaps
// the old one on the same surface is a part of it whatever else lies near, so that neither a wider
// bore on the same axis nor a floor milled a little lower can take its name (law 4).
//
// The cost counts what a reading leaves unexplained on both sides; all readings of one change are
// measured alike. The work is linear but for classes of equal faces and for open faces of one
// surface, which are compared in pairs; both are bounded by kMaxPairs.
#include "host/naming/face_reader.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace vdm_host {

namespace {

using Type = OdModelerSubentType;

/// Rounds of near faces; each knows more neighbours than the one before.
constexpr int kMaxRounds = 4;
/// Cosine between directions of one class.
constexpr double kSameWay = 0.9;
/// A face whose boundary changed a little is in its place within these shares of size and reach.
constexpr double kSizeInPlace = 0.02;
constexpr double kShiftInPlace = 0.02;
/// Faces with more edges are compared by their middles alone.
constexpr std::size_t kMaxEdges = 64;

constexpr double kCostOfPart = 0.5;
constexpr double kCostOfNear = 0.75;
constexpr double kCostOfContested = 0.5;

}  // namespace

std::vector<SubentSignature> movedBy(const OdGeMatrix3d& motion,
                                     const std::vector<SubentSignature>& items) {
  std::vector<SubentSignature> result;
  result.reserve(items.size());
  for (const SubentSignature& item : items) result.push_back(item.movedBy(motion));
  return result;
}

SubentSignature shiftedBy(const SubentSignature& face, const OdGeVector3d& by) {
  SubentSignature shifted = face;
  shifted.place += by;
  shifted.anchor += by;
  return shifted;
}

bool facesTheSameWay(const SubentSignature& a, const SubentSignature& b) {
  const double cosine = a.direction.dotProduct(b.direction);
  return a.direction.lengthSqrd() <= 0.0 || (a.hasSign() ? cosine : std::abs(cosine)) > kSameWay;
}

FaceReading FaceReader::run() {
  takeIdentical();
  contestRows();
  takeDisplacedTogether();
  takeStretched();
  takeParts();
  takeNear();
  m_pairs.markLookAlikes();
  markMovedAway();
  FaceReading reading{m_motion, m_pairs.guesses(), m_cost, shareInPlace(), 0.0, 0.0};
  for (OdUInt32 now = 1; now <= m_now.size(); ++now) reading.cost += isFresh(now) ? 1.0 : 0.0;
  const auto contested = std::ranges::count_if(reading.guesses, &PairingGuess::contested);
  reading.cost -= static_cast<double>(contested) * (1.0 - kCostOfContested);
  const auto isLost = [](const PairingGuess& guess) {
    return guess.image == 0 && !guess.contested;
  };
  const auto all = static_cast<double>(std::max<std::size_t>(1, m_old.size()));
  reading.identicalShare = static_cast<double>(m_identical) / all;
  reading.lostShare = static_cast<double>(std::ranges::count_if(reading.guesses, isLost)) / all;
  return reading;
}

// Adds what the faces cost that have been decided since `open` was counted.
std::size_t FaceReader::countOpen() const {
  std::size_t open = 0;
  for (OdUInt32 face = 1; face <= m_old.size(); ++face) open += m_pairs.imageOf(face) == 0;
  return open;
}

// ---- Law 1

void FaceReader::takeIdentical() {
  m_cost = static_cast<double>(m_old.size());
  stageAt(0.0, [this] { m_pairs.pairIdentical([](OdUInt32, OdUInt32) { return true; }); });
  for (OdUInt32 face = 1; face <= m_old.size(); ++face) {
    if (m_pairs.imageOf(face) == 0) continue;
    m_isIdentical[m_pairs.imageOf(face)] = 1;
    ++m_identical;
  }
}

// ---- Law 2

OdUInt32 FaceReader::landing(const SubentSignature& face) const {
  OdUInt32 found = 0;
  const double radius = std::max(2.0 * length(), 1e-4 * face.reach());
  m_scene.grid.within(face.place, radius, [&](OdUInt32 i) {
    if (isIdentical(face, m_now[i], m_scene.tolerance)) found = i + 1;
  });
  return found;
}

void FaceReader::contestRows() {
  const auto all = [](OdUInt32) { return true; };
  for (const LookAlikes& row : classesOf(all, all)) {
    if (!isContestedRow(row)) continue;
    m_pairs.contest(row.olds, row.nows);
    for (const OdUInt32 face : row.nows) m_isIdentical[face] = 0;
  }
  m_cost = static_cast<double>(countOpen());
}

// Some are in their places, and one displacement lays all of them on all of the new ones as well.
bool FaceReader::isContestedRow(const LookAlikes& row) const {
  if (row.olds.size() != row.nows.size() || row.olds.size() < 2) return false;
  const auto isOpen = [this](OdUInt32 face) { return m_pairs.imageOf(face) == 0; };
  const auto open = std::ranges::count_if(row.olds, isOpen);
  if (open == 0 || open == static_cast<std::ptrdiff_t>(row.olds.size())) return false;
  OdGeVector3d by;
  for (std::size_t i = 0; i < row.olds.size(); ++i) {
    by += now(row.nows[i]).place - old(row.olds[i]).place;
  }
  by /= static_cast<double>(row.olds.size());
  if (by.length() <= length()) return false;
  return std::ranges::all_of(row.olds,
                             [&](OdUInt32 face) { return landing(shiftedBy(old(face), by)) != 0; });
}

// ---- Law 4

// Candidates are all but those that are identical to another one, which overlaps nothing else.
// A rest that another stage gave away, or could not decide about, makes the whole undecided.
void FaceReader::takeParts() {
  std::vector<OdUInt32> candidates;
  for (OdUInt32 face = 1; face <= m_now.size(); ++face) {
    if (m_isIdentical[face] == 0) candidates.push_back(face);
  }
  std::vector<std::pair<OdUInt32, std::vector<OdUInt32>>> found;
  for (OdUInt32 face = 1; face <= m_old.size(); ++face) {
    if (!m_pairs.isOpen(face)) continue;
    std::vector<OdUInt32> parts;
    for (const OdUInt32 other : candidates) {
      if (liesOnSame(old(face), now(other), m_scene.tolerance) && overlap(face, other)) {
        parts.push_back(other);
      }
    }
    if (!parts.empty()) found.emplace_back(face, std::move(parts));
  }
  std::vector<OdUInt32> undecided;
  for (const auto& [face, parts] : found) {
    const bool isSplit = parts.size() > 1;
    const auto isPart = [&, old = face](OdUInt32 part) {
      return isFresh(part) && (!isSplit || isContained(part, old));
    };
    if (!std::ranges::all_of(parts, isPart)) undecided.push_back(face);
  }
  m_pairs.contest(undecided, {});
  stageAt(kCostOfPart, [&] {
    for (auto& [face, parts] : found) {
      if (m_pairs.isOpen(face)) m_pairs.takeParts(face, std::move(parts));
    }
  });
}

// A point inside of one lies inside of the other.
bool FaceReader::overlap(OdUInt32 oldFace, OdUInt32 newFace) const {
  const OdGeMatrix3d back = m_motion.matrix.inverse();
  return anyInside(m_scene.now, newFace, back, m_scene.before, oldFace) ||
         anyInside(m_scene.before, oldFace, m_motion.matrix, m_scene.now, newFace);
}

// The new face reaches nowhere out of the old one.
bool FaceReader::isContained(OdUInt32 newFace, OdUInt32 oldFace) const {
  const OdModelerFace& part = m_scene.now.face(newFace);
  const OdGeMatrix3d back = m_motion.matrix.inverse();
  return part.edges.size() > kMaxEdges || std::ranges::all_of(part.edges, [&](OdUInt32 edge) {
           return m_scene.before.distanceTo({Type::kFace, oldFace},
                                            back * m_scene.now.edge(edge).midPoint) <=
                  10.0 * length();
         });
}

// Whether the middle of one face, or of an edge of it, lies inside of the other.
bool FaceReader::anyInside(const OdModelerBody& from, OdUInt32 face, const OdGeMatrix3d& motion,
                           const OdModelerBody& into, OdUInt32 other) const {
  const OdModelerFace& description = from.face(face);
  if (isInside(motion * description.pointOnFace, into, other)) return true;
  if (description.edges.size() > kMaxEdges) return false;
  return std::ranges::any_of(description.edges, [&](OdUInt32 edge) {
    return isInside(motion * from.edge(edge).midPoint, into, other);
  });
}

bool FaceReader::isInside(const OdGePoint3d& point, const OdModelerBody& body,
                          OdUInt32 face) const {
  const double close = 10.0 * length();
  if (body.distanceTo({Type::kFace, face}, point) > close) return false;
  return std::ranges::none_of(body.edgesOfFace(face), [&](OdUInt32 edge) {
    return !body.edge(edge).seam && body.distanceTo({Type::kEdge, edge}, point) <= close;
  });
}

// ---- Law 5

void FaceReader::takeNear() {
  const auto neighbourCost = [this](OdUInt32 a, OdUInt32 b) { return costOfNeighbours(a, b); };
  stageAt(kCostOfNear, [&] {
    for (int round = 0; round < kMaxRounds; ++round) {
      if (!m_pairs.pairNear(neighbourCost)) break;
    }
  });
}

// The share of the old face's known neighbours that the new face does not meet; none when that is
// more than half.
std::optional<double> FaceReader::costOfNeighbours(OdUInt32 oldFace, OdUInt32 newFace) const {
  const std::vector<OdUInt32>& around = m_scene.newFaces.faces[newFace - 1];
  OdUInt32 known = 0;
  OdUInt32 met = 0;
  for (const OdUInt32 neighbour : m_scene.oldFaces.faces[oldFace - 1]) {
    const std::vector<OdUInt32> images = m_pairs.guesses()[neighbour - 1].images();
    if (images.empty()) continue;
    ++known;
    met += std::ranges::any_of(
        images, [&](OdUInt32 image) { return std::ranges::binary_search(around, image); });
  }
  if (known == 0) return 0.0;
  if (2 * met < known) return std::nullopt;
  return 1.0 - static_cast<double>(met) / static_cast<double>(known);
}

// ---- What the weighing asks

// The share of the old area that is where it was, but for small changes of its boundary.
double FaceReader::shareInPlace() const {
  double all = 0.0;
  double inPlace = 0.0;
  for (OdUInt32 face = 1; face <= m_old.size(); ++face) {
    all += old(face).size;
    if (isInPlace(face)) inPlace += old(face).size;
  }
  return all > 0.0 ? inPlace / all : 0.0;
}

bool FaceReader::isInPlace(OdUInt32 face) const {
  const OdUInt32 image = m_pairs.imageOf(face);
  return image != 0 && liesOnSame(old(face), now(image), m_scene.tolerance) &&
         std::abs(now(image).size - old(face).size) <= kSizeInPlace * old(face).size &&
         now(image).place.distanceTo(old(face).place) <=
             std::max(length(), kShiftInPlace * old(face).reach());
}

// ---- Law 6

// A look-alike that nothing became, however far away: it may have gone there.
void FaceReader::markMovedAway() {
  const auto classes = classesOf([this](OdUInt32 face) { return m_pairs.isOpen(face); },
                                 [this](OdUInt32 face) { return isFresh(face); });
  for (const LookAlikes& row : classes) {
    if (!row.nows.empty()) m_pairs.markUnclear(row.olds);
  }
}

}  // namespace vdm_host
