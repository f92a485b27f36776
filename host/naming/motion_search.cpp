// The motion that lays one body on another.
//
// The idea: guess few motions from a handful of faces, then let all faces judge each guess. A guess
// is as good as the number of old faces that it lays on new ones ("laid").
//
//   1. "None" is counted first. When it lays every face the search is over.
//   2. Displacements are guessed by votes: each face that looks like no other in its body votes for
//      the way to its only look-alike, each other face for the way to the nearest congruent one.
//   3. Turns and mirrors are guessed from three old faces that are not on one line. Each triple of
//      look-alikes at the same distances from each other gives one turn and one mirror. Seeds are
//      the faces with the fewest look-alikes, so that there are few triples.
//   4. Every guess is counted on a sample first, and on all faces when the sample is promising.
//
// Why it is right: a motion that is chosen lays at least kMost of all faces, whatever it was
// guessed from, so that a bad seed costs time but gives no wrong motion. Motions that are equally
// good are all returned; the caller takes only what they agree on. A motion that is not found, for
// instance because no seed is left of the old body, leaves "none", and with it references that are
// lost, not wrong.
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
constexpr double kMost = 0.75;
/// "None" does not count, although it lays some faces, when another motion lays this share and
/// "none" lays less than kMost.
constexpr double kWholeBody = 0.95;
/// Of several motions the smallest is taken when it displaces the body by less than this share of
/// its size and the others displace it ten times as far.
constexpr double kSmallMotion = 0.01;
constexpr double kMuchFarther = 10.0;
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

  std::vector<BodyMotion> run() {
    const BodyMotion none{OdGeMatrix3d::kIdentity, count(OdGeMatrix3d::kIdentity, m_before)};
    if (m_before.empty() || none.laid == m_before.size()) return {none};
    collectDisplacements();
    collectTurns();
    return choose(none);
  }

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
    const std::vector<Seed> seeds = rankedSeeds();
    if (seeds.empty()) return;
    // The farther apart the seeds, the less their tolerance turns the body at its other end.
    const double apart = kSeedDistance * m_tolerance.size;
    const Seed& a = seeds.front();
    const auto b = std::ranges::find_if(
        seeds, [&](const Seed& s) { return oldPlace(s).distanceTo(oldPlace(a)) > apart; });
    if (b == seeds.end()) return;
    const auto c = std::ranges::find_if(seeds, [&](const Seed& s) {
      return distanceFromLine(oldPlace(a), oldPlace(*b), oldPlace(s)) > apart;
    });
    const Seed* third = c == seeds.end() ? nullptr : &*c;
    // Counts all triples of the search, whatever pair they belong to.
    std::size_t tried = 0;
    for (const OdUInt32 na : a.candidates) {
      for (const OdUInt32 nb : b->candidates) {
        if (na == nb || !sameDistance(a.face, b->face, na, nb)) continue;
        if (third == nullptr) {
          addTurnAlongAxis(a, *b, na, nb);
        } else if (!addTurnsOfPair({&a, &*b, third}, na, nb, tried)) {
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

  // How far the face that moves farthest does.
  [[nodiscard]] double displacement(const OdGeMatrix3d& motion) const {
    double farthest = 0.0;
    for (const SubentSignature& face : m_before) {
      farthest = std::max(farthest, face.place.distanceTo(motion * face.place));
    }
    return farthest;
  }

  [[nodiscard]] std::vector<BodyMotion> choose(const BodyMotion& none) const {
    const std::vector<SubentSignature> few = sample();
    std::vector<BodyMotion> better;
    OdUInt32 best = none.laid;
    for (const OdGeMatrix3d& motion : m_motions) {
      // A good motion lays kMost of all faces; half of the sample leaves room for chance.
      if (2 * count(motion, few) < few.size()) continue;
      better.push_back({motion, count(motion, m_before)});
      best = std::max(best, better.back().laid);
    }
    const double all = static_cast<double>(m_before.size());
    if (best == none.laid || best < kMost * all) return {none};
    std::erase_if(better, [&](const BodyMotion& motion) { return motion.laid < best; });
    keepSmallOne(better);
    const bool moves = best >= kWholeBody * all && none.laid < kMost * all;
    // A symmetric body may as well have stayed: then both are possible, and both are returned.
    const bool mayStay = none.laid * 2 >= m_before.size();
    if (mayStay && !moves && !isSmall(better.front())) better.push_back(none);
    return better;
  }

  [[nodiscard]] bool isSmall(const BodyMotion& motion) const {
    return displacement(motion.matrix) < kSmallMotion * m_tolerance.size;
  }

  // Of equally good motions the one that displaces the body by very little is the likely one.
  void keepSmallOne(std::vector<BodyMotion>& motions) const {
    std::ranges::stable_sort(motions, [this](const BodyMotion& a, const BodyMotion& b) {
      return displacement(a.matrix) < displacement(b.matrix);
    });
    if (motions.size() < 2 || !isSmall(motions[0])) return;
    if (displacement(motions[1].matrix) < kMuchFarther * displacement(motions[0].matrix)) return;
    motions.resize(1);
  }

  Signatures m_before;
  Signatures m_now;
  const PlaceGrid& m_grid;
  const MatchTolerance& m_tolerance;
  std::vector<OdGeMatrix3d> m_motions;
};

}  // namespace

std::vector<BodyMotion> findMotions(Signatures before, Signatures now, const PlaceGrid& nowGrid,
                                    const MatchTolerance& tolerance) {
  return MotionSearch(before, now, nowGrid, tolerance).run();
}

}  // namespace vdm_host
