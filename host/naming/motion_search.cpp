// The motions that may lay one body on another.
//
// The idea: guess few motions from a handful of faces, then let all faces judge each guess. A guess
// is as good as the number of old faces that it lays on new ones ("laid").
//
//   1. "None" is counted first. When it lays every face on one of the same measure the search is
//      over.
//   2. Displacements are guessed by votes: each face that looks like no other in its body votes for
//      the way to its only look-alike, each other face for the way to the nearest congruent one.
//   3. Turns and mirrors are guessed from three old faces that are not on one line. Each triple of
//      look-alikes at the same distances from each other gives one turn and one mirror. Seeds are
//      the faces with the fewest look-alikes, so that there are few triples. Several triples of
//      seeds are tried, since an edit may have changed any of them.
//   4. Where no rigid motion lays half of the faces, the old body is scaled by the ratio of the
//      areas and the search is done once more.
//   5. Every guess is counted on a sample first, and on all faces when the sample is promising.
//
// Why it is right: nothing is chosen here. A motion that is returned lays half of all faces,
// whatever it was guessed from, and the readings of the faces under all of them are weighed against
// each other (reading.h). A motion that is not found, for instance because no seed is left of the
// old body, leaves "none", and with it references that are lost, not wrong.
//
// It ends after kMaxTriples triples and kMaxMotions motions. The cost is (motions) times (faces),
// each with one look into the grid.
#include "host/naming/motion_search.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <functional>
#include <map>
#include <tuple>
#include <unordered_map>
#include <unordered_set>
#include <utility>

namespace vdm_host {

namespace {

using Signatures = std::span<const SubentSignature>;

/// A motion is one of the body as a whole when it lays this share of the faces.
constexpr double kMost = 0.5;
/// Motions that lay fewer than the best by more than this share are not looked at.
constexpr double kNearlyAsMany = 0.1;
/// Readings of the faces cost time: so many motions are handed on.
constexpr std::size_t kMaxHandedOn = 16;
/// Triples of seeds, each from faces that the others do not use.
constexpr std::size_t kSeedTriples = 8;
/// The ratio of areas must differ from 1 by this to be a scaling.
constexpr double kScales = 1e-4;
/// Seeds are apart by this share of the size, so that the motion is accurate across the body.
constexpr double kSeedDistance = 0.05;
/// Bounds of the search; what symmetric bodies of everyday parts need is far below.
constexpr std::size_t kMaxTriples = 4096;
constexpr std::size_t kMaxMotions = 64;
constexpr std::size_t kSampleSize = 48;
constexpr std::size_t kMaxVotes = 6;
/// Cosine between outward normals of planes that face the same way.
constexpr double kSameSide = 0.9;

/// How many faces say that the body was displaced by this or that vector.
class DisplacementVotes {
 public:
  explicit DisplacementVotes(const MatchTolerance& tolerance)
      : m_step(std::max(tolerance.length * 100.0, 1e-9)) {}

  void add(const OdGeVector3d& by) {
    auto& [count, vector] = m_rows[{std::llround(by.x / m_step), std::llround(by.y / m_step),
                                    std::llround(by.z / m_step)}];
    ++count;
    vector = by;
  }
  /// Those with the most votes, at most `limit`; equal ones by coordinates.
  [[nodiscard]] std::vector<OdGeVector3d> most(std::size_t limit) const {
    std::vector<Row> ranked;
    for (const auto& [key, row] : m_rows) ranked.push_back(row);
    std::ranges::stable_sort(ranked, std::ranges::greater(), &Row::first);
    std::vector<OdGeVector3d> vectors;
    for (const Row& row : ranked) {
      if (vectors.size() < limit) vectors.push_back(row.second);
    }
    return vectors;
  }

 private:
  using Row = std::pair<int, OdGeVector3d>;
  double m_step;  // drawing units; vectors in one cell of a grid of this step count as one
  std::map<std::tuple<OdInt64, OdInt64, OdInt64>, Row> m_rows;
};

// Faces whose shape no other face has: the hash of the shape, and the face counted from 0. In the
// order of hashes, so that the votes come in the same order in every run.
std::map<OdUInt32, OdUInt32> singles(Signatures faces) {
  std::map<OdUInt32, OdUInt32> found;
  std::unordered_set<OdUInt32> repeated;
  for (OdUInt32 i = 0; i < faces.size(); ++i) {
    const OdUInt32 hash = faces[i].shapeHash();
    if (!found.try_emplace(hash, i).second) repeated.insert(hash);
  }
  for (const OdUInt32 hash : repeated) found.erase(hash);
  return found;
}

class MotionSearch {
 public:
  MotionSearch(Signatures before, Signatures now, const PlaceGrid& grid,
               const MatchTolerance& tolerance)
      : m_before(before), m_now(now), m_grid(grid), m_tolerance(tolerance) {}

  /// Without "none".
  std::vector<BodyMotion> run() {
    collectDisplacements();
    collectTurns();
    return best();
  }
  [[nodiscard]] OdUInt32 laidInPlace() const { return count(OdGeMatrix3d::kIdentity, m_before); }

 private:
  [[nodiscard]] bool isLaid(const SubentSignature& face) const {
    bool laid = false;
    m_grid.within(face.place, std::max(face.reach() / 2.0, m_tolerance.length),
                  [&](OdUInt32 i) { laid = laid || liesOnSame(face, m_now[i], m_tolerance); });
    return laid;
  }

  [[nodiscard]] OdUInt32 count(const OdGeMatrix3d& motion, Signatures faces) const {
    return static_cast<OdUInt32>(std::ranges::count_if(
        faces, [&](const SubentSignature& face) { return isLaid(face.movedBy(motion)); }));
  }

  void add(const OdGeMatrix3d& motion) {
    const OdGeTol close(m_tolerance.length * 10.0, 1e-6);
    const auto isKnown = [&](const OdGeMatrix3d& m) { return m.isEqualTo(motion, close); };
    if (motion.isIdentity(close) || std::ranges::any_of(m_motions, isKnown)) return;
    if (m_motions.size() < kMaxMotions) m_motions.push_back(motion);
  }

  // ---- Displacements

  void collectDisplacements() {
    DisplacementVotes votes(m_tolerance);
    voteBySingles(votes);
    voteByNeighbours(votes);
    for (const OdGeVector3d& by : votes.most(kMaxVotes)) add(OdGeMatrix3d::translation(by));
  }

  // Faces that look like no other vote for the way to the only face that looks like them.
  void voteBySingles(DisplacementVotes& votes) const {
    const auto old = singles(m_before);
    const auto fresh = singles(m_now);
    for (const auto& [hash, face] : old) {
      const auto other = fresh.find(hash);
      if (other == fresh.end()) continue;
      votes.add(m_now[other->second].place - m_before[face].place);
    }
  }

  // Faces of which there are many vote for the way to the nearest one that is congruent.
  void voteByNeighbours(DisplacementVotes& votes) const {
    for (const SubentSignature& face : m_before) {
      double nearest = face.reach();
      OdGeVector3d by;
      m_grid.within(face.place, nearest, [&](OdUInt32 i) {
        const double distance = face.place.distanceTo(m_now[i].place);
        if (distance >= nearest || !isCongruent(face, m_now[i], m_tolerance)) return;
        if (face.hasSign() && face.direction.dotProduct(m_now[i].direction) < kSameSide) return;
        nearest = distance;
        by = m_now[i].place - face.place;
      });
      if (nearest < face.reach()) votes.add(by);
    }
  }

  // ---- Turns and mirrors: three faces and where they may be

  /// An old face and the new ones that it may be.
  struct Seed {
    OdUInt32 face = 0;
    std::vector<OdUInt32> candidates;
  };

  // The most telling first: those with the fewest candidates.
  [[nodiscard]] std::vector<Seed> rankedSeeds() const {
    std::unordered_map<OdUInt32, std::vector<OdUInt32>> byShape;
    for (OdUInt32 i = 0; i < m_now.size(); ++i) byShape[m_now[i].shapeHash()].push_back(i);
    std::vector<Seed> seeds;
    for (OdUInt32 i = 0; i < m_before.size(); ++i) {
      const auto found = byShape.find(m_before[i].shapeHash());
      if (found != byShape.end() && found->second.size() <= kMaxMotions) {
        seeds.push_back({i, found->second});
      }
    }
    std::ranges::stable_sort(seeds, [](const Seed& a, const Seed& b) {
      return a.candidates.size() < b.candidates.size();
    });
    return seeds;
  }

  [[nodiscard]] const OdGePoint3d& oldPlace(const Seed& seed) const {
    return m_before[seed.face].place;
  }

  static double distanceFromLine(const OdGePoint3d& a, const OdGePoint3d& b,
                                 const OdGePoint3d& point) {
    const OdGeVector3d along = b - a;
    return along.crossProduct(point - a).length() / along.length();
  }

  [[nodiscard]] bool sameDistance(OdUInt32 oldA, OdUInt32 oldB, OdUInt32 nowA,
                                  OdUInt32 nowB) const {
    const double before = m_before[oldA].place.distanceTo(m_before[oldB].place);
    const double now = m_now[nowA].place.distanceTo(m_now[nowB].place);
    return std::abs(before - now) <= std::max(m_tolerance.length, 1e-5 * before);
  }

  // The frame with its origin at a, x towards b and c in the upper half of its xy plane.
  static OdGeMatrix3d frame(const OdGePoint3d& a, const OdGePoint3d& b, const OdGePoint3d& c,
                            double hand) {
    const OdGeVector3d x = (b - a).normal();
    const OdGeVector3d z = x.crossProduct(c - a).normal();
    return OdGeMatrix3d::coordSystem(a, x, z.crossProduct(x), z * hand);
  }

  void addTurns(const std::array<OdGePoint3d, 3>& from, const std::array<OdGePoint3d, 3>& to) {
    const OdGeMatrix3d back = frame(from[0], from[1], from[2], 1.0).inverse();
    for (const double hand : {1.0, -1.0}) add(frame(to[0], to[1], to[2], hand) * back);
  }

  void collectTurns() {
    std::vector<Seed> seeds = rankedSeeds();
    // Counts all triples of the search, whatever pair they belong to.
    std::size_t tried = 0;
    for (std::size_t i = 0; i < kSeedTriples && !seeds.empty(); ++i) {
      const std::vector<Seed> chosen = takeTriple(seeds);
      if (chosen.size() >= 2) addTurnsOf(chosen, tried);
    }
  }

  // Moves three seeds that are far apart out of the list; two when all places are on one line.
  [[nodiscard]] std::vector<Seed> takeTriple(std::vector<Seed>& seeds) const {
    // The farther apart the seeds, the less their tolerance turns the body at its other end.
    const double apart = kSeedDistance * m_tolerance.size;
    std::vector<Seed> chosen;
    const auto takeFirst = [&](const auto& fits) {
      const auto found = std::ranges::find_if(seeds, fits);
      if (found == seeds.end()) return;
      chosen.push_back(std::move(*found));
      seeds.erase(found);
    };
    takeFirst([](const Seed&) { return true; });
    takeFirst([&](const Seed& s) { return oldPlace(s).distanceTo(oldPlace(chosen[0])) > apart; });
    if (chosen.size() < 2) return chosen;
    takeFirst([&](const Seed& s) {
      return distanceFromLine(oldPlace(chosen[0]), oldPlace(chosen[1]), oldPlace(s)) > apart;
    });
    return chosen;
  }

  void addTurnsOf(const std::vector<Seed>& chosen, std::size_t& tried) {
    const Seed& a = chosen[0];
    const Seed& b = chosen[1];
    for (const OdUInt32 na : a.candidates) {
      for (const OdUInt32 nb : b.candidates) {
        if (na == nb || !sameDistance(a.face, b.face, na, nb)) continue;
        if (chosen.size() == 2) {
          addTurnAlongAxis(a, b, na, nb);
        } else if (!addTurnsOfPair({&a, &b, &chosen[2]}, na, nb, tried)) {
          return;
        }
      }
    }
  }

  // All turns that lay the first two seeds on `na` and `nb`. False when too many were tried.
  bool addTurnsOfPair(const std::array<const Seed*, 3>& seeds, OdUInt32 na, OdUInt32 nb,
                      std::size_t& tried) {
    const auto& [a, b, c] = seeds;
    for (const OdUInt32 nc : c->candidates) {
      if (++tried > kMaxTriples) return false;
      // Three distances fix a triangle up to its mirror image; addTurns() tries both.
      if (!sameDistance(a->face, c->face, na, nc)) continue;
      if (!sameDistance(b->face, c->face, nb, nc)) continue;
      addTurns({oldPlace(*a), oldPlace(*b), oldPlace(*c)},
               {m_now[na].place, m_now[nb].place, m_now[nc].place});
    }
    return true;
  }

  // All places are on one line: a turned part, for which the turn about its axis means nothing.
  void addTurnAlongAxis(const Seed& a, const Seed& b, OdUInt32 na, OdUInt32 nb) {
    const OdGePoint3d& from = oldPlace(a);
    const OdGePoint3d& to = m_now[na].place;
    const OdGeVector3d before = oldPlace(b) - from;
    const OdGeVector3d now = m_now[nb].place - to;
    const OdGeVector3d side = before.perpVector();
    const OdGeVector3d newSide =
        now.isCodirectionalTo(before, OdGeTol(1e-9)) ? side : now.perpVector();
    addTurns({from, from + before, from + side}, {to, to + now, to + newSide});
  }

  // ---- Choice

  // Faces at even steps, for a first look at a motion.
  [[nodiscard]] std::vector<SubentSignature> sample() const {
    const std::size_t step = std::max<std::size_t>(1, m_before.size() / kSampleSize);
    std::vector<SubentSignature> faces;
    for (std::size_t i = 0; i < m_before.size(); i += step) faces.push_back(m_before[i]);
    return faces;
  }

  // Those that lay half of the faces, and nearly as many as the best.
  [[nodiscard]] std::vector<BodyMotion> best() const {
    const std::vector<SubentSignature> few = sample();
    const double all = static_cast<double>(m_before.size());
    std::vector<BodyMotion> good;
    OdUInt32 most = 0;
    for (const OdGeMatrix3d& motion : m_motions) {
      // Half of what a good motion lays leaves room for chance in the sample.
      if (static_cast<double>(count(motion, few)) < kMost / 2.0 * static_cast<double>(few.size())) {
        continue;
      }
      const MotionKind kind = motion.det() < 0.0 ? MotionKind::kMirror : MotionKind::kProper;
      good.push_back({motion, count(motion, m_before), kind});
      most = std::max(most, good.back().laid);
    }
    const double least = std::max(kMost * all, most - std::max(1.0, kNearlyAsMany * all));
    std::erase_if(good, [&](const BodyMotion& motion) { return motion.laid < least; });
    std::ranges::stable_sort(good, std::ranges::greater(), &BodyMotion::laid);
    if (good.size() > kMaxHandedOn) good.resize(kMaxHandedOn);
    return good;
  }

  Signatures m_before;
  Signatures m_now;
  const PlaceGrid& m_grid;
  const MatchTolerance& m_tolerance;
  std::vector<OdGeMatrix3d> m_motions;
};

double areaOf(Signatures faces) {
  double sum = 0.0;
  for (const SubentSignature& face : faces) sum += face.size;
  return sum;
}

// The search with the old body scaled by the ratio of the areas.
std::vector<BodyMotion> findScaled(Signatures before, Signatures now, const PlaceGrid& grid,
                                   const MatchTolerance& tolerance) {
  const double areas = areaOf(before);
  const double factor = areas > 0.0 ? std::sqrt(areaOf(now) / areas) : 0.0;
  if (factor <= 0.0 || std::abs(factor - 1.0) < kScales) return {};
  const OdGeMatrix3d scaling = OdGeMatrix3d::scaling(factor);
  std::vector<SubentSignature> scaled;
  scaled.reserve(before.size());
  for (const SubentSignature& face : before) scaled.push_back(face.movedBy(scaling));
  MotionSearch search(scaled, now, grid, tolerance);
  std::vector<BodyMotion> found = search.run();
  // A part in other units is not turned: where scaling alone explains it, that is what happened.
  const BodyMotion alone{OdGeMatrix3d::kIdentity, search.laidInPlace()};
  if (std::ranges::all_of(found, [&](const BodyMotion& m) { return m.laid <= alone.laid; })) {
    found.clear();
  }
  found.push_back(alone);
  std::erase_if(found, [&](const BodyMotion& motion) {
    return static_cast<double>(motion.laid) < kMost * static_cast<double>(before.size());
  });
  for (BodyMotion& motion : found) {
    motion.matrix = motion.matrix * scaling;
    motion.kind = MotionKind::kScaling;
  }
  return found;
}

bool laysAllAsLarge(Signatures before, Signatures now, const PlaceGrid& grid,
                    const MatchTolerance& tolerance) {
  if (before.size() != now.size()) return false;
  return std::ranges::all_of(before, [&](const SubentSignature& face) {
    bool found = false;
    grid.within(face.place, std::max(1e-4 * face.reach(), 2.0 * tolerance.length),
                [&](OdUInt32 i) { found = found || isIdentical(face, now[i], tolerance); });
    return found;
  });
}

}  // namespace

std::vector<BodyMotion> findMotions(Signatures before, Signatures now, const PlaceGrid& nowGrid,
                                    const MatchTolerance& tolerance) {
  MotionSearch search(before, now, nowGrid, tolerance);
  std::vector<BodyMotion> motions = {{OdGeMatrix3d::kIdentity, search.laidInPlace()}};
  if (before.empty() || laysAllAsLarge(before, now, nowGrid, tolerance)) return motions;
  std::vector<BodyMotion> others = search.run();
  const bool staysInPart = 2 * motions.front().laid >= before.size();
  if (others.empty() && !staysInPart) others = findScaled(before, now, nowGrid, tolerance);
  motions.insert(motions.end(), others.begin(), others.end());
  return motions;
}

}  // namespace vdm_host
