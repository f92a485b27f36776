// Which subentities of a body are those of another one, by their looks.
//
// The idea: geometry alone tells what is where, if one knows how the body as a whole moved. The
// motions that it may have made are therefore looked for first (motion_search.h); the faces are
// read under each of them, and the readings weighed (reading.h). An edge or vertex is then named by
// the faces that meet there, which says more than its own geometry.
//
// Where several readings are left, the change looks alike in several ways, and what really happened
// cannot be known. All of them are carried through, and a match counts only when each of them gives
// it. So a symmetric body whose position is unknown yields ambiguous references, and never a wrong
// one.
//
// The cost is linear in the number of subentities times the number of readings, as long as places
// are spread; signatures are measured once.
#include "host/naming/body_match.h"

#include <algorithm>
#include <array>
#include <optional>
#include <unordered_map>

#include "host/naming/body_signature.h"
#include "host/naming/face_reader.h"
#include "host/naming/place_grid.h"
#include "host/naming/reading.h"
#include "host/naming/signature_pairing.h"
#include "platform/base/sort_unique.h"

namespace vdm_host {

namespace {

using Type = OdModelerSubentType;
using Signatures = std::vector<SubentSignature>;

/// Faces that were split give an edge or vertex several places where it may be; so many are looked
/// at.
constexpr std::size_t kMaxKeys = 64;

struct Levels {
  SignatureLevel faces;
  SignatureLevel edges;
  SignatureLevel vertices;

  explicit Levels(const OdModelerBody& body)
      : faces(body, Type::kFace), edges(body, Type::kEdge), vertices(body, Type::kVertex) {}
};

SubentMatch matchOf(const PairingGuess& guess) {
  if (!guess.parts.empty()) return {ReferenceGrade::kSplit, guess.parts};
  if (guess.image != 0) return {ReferenceGrade::kBySignature, {guess.image}};
  return {guess.unclear ? ReferenceGrade::kAmbiguous : ReferenceGrade::kLost, {}};
}

/// The faces that meet somewhere, rising.
using FaceKey = std::vector<OdUInt32>;
struct FaceKeyHash {
  std::size_t operator()(const FaceKey& key) const {
    std::size_t hash = key.size();
    for (const OdUInt32 face : key) hash = hash * 0x9E3779B97F4A7C15ULL + face;
    return hash ^ (hash >> 29U);
  }
};
/// Indices by the faces that meet there.
using FaceGroups = std::unordered_map<FaceKey, std::vector<OdUInt32>, FaceKeyHash>;

using Guesses = std::vector<PairingGuess>;

// All sets of new faces that the old ones may be, one image of each; none when one is not known.
std::vector<FaceKey> keysOf(const FaceKey& faces, const Guesses& guesses) {
  std::vector<FaceKey> keys(1);
  for (const OdUInt32 face : faces) {
    const std::vector<OdUInt32> images = guesses[face - 1].images();
    if (images.empty() || keys.size() * images.size() > kMaxKeys) return {};
    std::vector<FaceKey> longer;
    for (const FaceKey& key : keys) {
      for (const OdUInt32 image : images) {
        longer.push_back(key);
        longer.back().push_back(image);
      }
    }
    keys = std::move(longer);
  }
  for (FaceKey& key : keys) odSortUnique(key);
  odSortUnique(keys);
  return keys;
}

FaceGroups groupsOf(const SignatureLevel& level) {
  FaceGroups groups;
  for (OdUInt32 i = 0; i < level.items.size(); ++i) groups[level.faces[i]].push_back(i + 1);
  return groups;
}

/// Pairs edges or vertices under one reading of the faces.
class BoundaryReader {
 public:
  BoundaryReader(const OdModelerBody& before, const OdModelerBody& now,
                 const SignatureLevel& oldLevel, const SignatureLevel& newLevel,
                 const PlaceGrid& grid, const MatchTolerance& tolerance, const FaceReading& reading)
      : m_before(before),
        m_now(now),
        m_oldLevel(oldLevel),
        m_newLevel(newLevel),
        m_reading(reading),
        m_tolerance(tolerance),
        m_old(movedBy(reading.motion.matrix, oldLevel.items)),
        m_pairs(m_old, newLevel.items, grid, tolerance) {}

  Guesses run() {
    contestAtContestedFaces();
    collectPlaces();
    takeSingles();
    m_pairs.pairIdentical([this](OdUInt32 old, OdUInt32 now) { return mayBe(old, now); });
    takeParts();
    m_pairs.pairNear([this](OdUInt32 old, OdUInt32 now) -> std::optional<double> {
      if (!std::ranges::binary_search(m_places[old - 1], now)) return std::nullopt;
      return 0.0;
    });
    m_pairs.markAtUnclearFaces(m_oldLevel.faces, m_reading.guesses);
    return m_pairs.guesses();
  }

 private:
  void contestAtContestedFaces() {
    std::vector<OdUInt32> contested;
    for (OdUInt32 old = 1; old <= m_old.size(); ++old) {
      const bool isContested = std::ranges::any_of(
          m_oldLevel.faces[old - 1],
          [this](OdUInt32 face) { return m_reading.guesses[face - 1].contested; });
      if (isContested) contested.push_back(old);
    }
    m_pairs.contest(contested, {});
  }

  // The new ones between images of the old one's faces.
  void collectPlaces() {
    const FaceGroups groups = groupsOf(m_newLevel);
    m_places.resize(m_oldLevel.items.size());
    for (std::size_t i = 0; i < m_places.size(); ++i) {
      std::vector<OdUInt32>& places = m_places[i];
      for (const FaceKey& key : keysOf(m_oldLevel.faces[i], m_reading.guesses)) {
        const auto found = groups.find(key);
        if (found == groups.end()) continue;
        places.insert(places.end(), found->second.begin(), found->second.end());
      }
      odSortUnique(places);
    }
  }

  [[nodiscard]] bool isLikely(OdUInt32 old, OdUInt32 now) const {
    return m_oldLevel.items[old - 1].kind == m_newLevel.items[now - 1].kind;
  }

  // Alone between its faces, before and after. They need not look alike: a circle that became
  // larger is still the rim of its hole.
  void takeSingles() {
    const FaceGroups rivals = groupsOf(m_oldLevel);
    for (OdUInt32 old = 1; old <= m_places.size(); ++old) {
      const std::vector<OdUInt32>& places = m_places[old - 1];
      if (places.size() != 1 || !m_pairs.isOpen(old) || !isLikely(old, places.front())) continue;
      if (rivals.at(m_oldLevel.faces[old - 1]).size() != 1) continue;
      m_pairs.takeParts(old, places);
    }
  }

  // At faces that are not known it must be identical, and meet the images of those that are.
  [[nodiscard]] bool mayBe(OdUInt32 old, OdUInt32 now) const {
    const std::vector<OdUInt32>& around = m_newLevel.faces[now - 1];
    return std::ranges::all_of(m_oldLevel.faces[old - 1], [&](OdUInt32 face) {
      const std::vector<OdUInt32> images = m_reading.guesses[face - 1].images();
      return images.empty() || std::ranges::any_of(images, [&](OdUInt32 image) {
               return std::ranges::binary_search(around, image);
             });
    });
  }

  // Edges of which several parts are left, or one of several between the same faces.
  void takeParts() {
    for (OdUInt32 old = 1; old <= m_places.size(); ++old) {
      if (!m_pairs.isOpen(old) || m_old[old - 1].type != Type::kEdge) continue;
      std::vector<OdUInt32> parts;
      for (const OdUInt32 now : m_places[old - 1]) {
        if (overlap(old, now)) parts.push_back(now);
      }
      const auto isContained = [&](OdUInt32 part) { return reachesNowhereOut(part, old); };
      if (parts.size() > 1 && !std::ranges::all_of(parts, isContained)) {
        m_pairs.contest({&old, 1}, {});
      } else if (!parts.empty()) {
        m_pairs.takeParts(old, std::move(parts));
      }
    }
  }

  [[nodiscard]] bool reachesNowhereOut(OdUInt32 part, OdUInt32 old) const {
    const OdGeMatrix3d back = m_reading.motion.matrix.inverse();
    const auto isOnOld = [&](const OdGePoint3d& point) {
      return m_before.distanceTo({Type::kEdge, old}, back * point) <= 10.0 * m_tolerance.length;
    };
    const OdModelerEdge& edge = m_now.edge(part);
    return isOnOld(edge.midPoint) &&
           std::ranges::all_of(std::array{edge.startVertex, edge.endVertex}, [&](OdUInt32 vertex) {
             return vertex == 0 || isOnOld(m_now.vertex(vertex).point);
           });
  }

  // On one curve, and a point inside of one lies inside of the other.
  [[nodiscard]] bool overlap(OdUInt32 old, OdUInt32 now) const {
    if (!liesOnSame(m_old[old - 1], m_newLevel.items[now - 1], m_tolerance)) return false;
    const OdGeMatrix3d& motion = m_reading.motion.matrix;
    return anyInside(m_now, now, motion.inverse(), m_before, old) ||
           anyInside(m_before, old, motion, m_now, now);
  }

  // Whether the middle or an end of one edge lies on the other, and not at its ends.
  [[nodiscard]] bool anyInside(const OdModelerBody& from, OdUInt32 edge, const OdGeMatrix3d& motion,
                               const OdModelerBody& into, OdUInt32 other) const {
    const double close = 10.0 * m_tolerance.length;
    const auto isAt = [&](OdUInt32 vertex, const OdGePoint3d& point) {
      return vertex != 0 && into.vertex(vertex).point.distanceTo(point) <= close;
    };
    const OdModelerEdge& there = into.edge(other);
    const auto isInside = [&](const OdGePoint3d& point) {
      return into.distanceTo({Type::kEdge, other}, point) <= close &&
             !isAt(there.startVertex, point) && !isAt(there.endVertex, point);
    };
    const OdModelerEdge& here = from.edge(edge);
    if (isInside(motion * here.midPoint)) return true;
    return std::ranges::any_of(std::array{here.startVertex, here.endVertex}, [&](OdUInt32 vertex) {
      return vertex != 0 && isInside(motion * from.vertex(vertex).point);
    });
  }

  const OdModelerBody& m_before;
  const OdModelerBody& m_now;
  const SignatureLevel& m_oldLevel;
  const SignatureLevel& m_newLevel;
  const FaceReading& m_reading;
  const MatchTolerance& m_tolerance;
  Signatures m_old;  // under the motion
  SignaturePairing m_pairs;
  std::vector<std::vector<OdUInt32>> m_places;  // by old number - 1
};

/// Guesses for a whole body under one reading.
struct BodyGuess {
  std::array<Guesses, 3> byType;

  Guesses& of(Type type) { return byType[static_cast<std::size_t>(type) - 1]; }
};

class SignatureMatcher {
 public:
  SignatureMatcher(const OdModelerBody& before, const OdModelerBody& now)
      : m_tolerance(MatchTolerance::of(before, now)),
        m_bodyBefore(before),
        m_bodyNow(now),
        m_before(before),
        m_now(now),
        m_faceGrid(m_now.faces.items),
        m_edgeGrid(m_now.edges.items),
        m_vertexGrid(m_now.vertices.items) {}

  BodyMatch run() const {
    const std::vector<FaceReading> readings = readAll();
    std::vector<BodyGuess> guesses;
    guesses.reserve(readings.size());
    for (const FaceReading& reading : readings) guesses.push_back(guessUnder(reading));
    BodyMatch match;
    match.motion = readings.front().motion;
    match.readings = readings.size();
    match.faces = agreed(guesses, Type::kFace);
    match.edges = agreed(guesses, Type::kEdge);
    match.vertices = agreed(guesses, Type::kVertex);
    return match;
  }

 private:
  [[nodiscard]] std::vector<FaceReading> readAll() const {
    const FaceScene scene{m_bodyBefore, m_bodyNow,  m_before.faces,
                          m_now.faces,  m_faceGrid, m_tolerance};
    std::vector<FaceReading> readings;
    for (const BodyMotion& motion :
         findMotions(m_before.faces.items, m_now.faces.items, m_faceGrid, m_tolerance)) {
      readings.push_back(readFaces(scene, motion));
    }
    return weighReadings(std::move(readings), scene);
  }

  [[nodiscard]] BodyGuess guessUnder(const FaceReading& reading) const {
    BodyGuess guess;
    guess.of(Type::kFace) = reading.guesses;
    const auto read = [&](const SignatureLevel& before, const SignatureLevel& now,
                          const PlaceGrid& grid) {
      return BoundaryReader(m_bodyBefore, m_bodyNow, before, now, grid, m_tolerance, reading).run();
    };
    guess.of(Type::kEdge) = read(m_before.edges, m_now.edges, m_edgeGrid);
    guess.of(Type::kVertex) = read(m_before.vertices, m_now.vertices, m_vertexGrid);
    return guess;
  }

  // What all readings agree on. An image that not all of them give is a candidate, no more.
  static std::vector<SubentMatch> agreed(std::vector<BodyGuess>& guesses, Type type) {
    std::vector<SubentMatch> matches;
    const Guesses& first = guesses.front().of(type);
    matches.reserve(first.size());
    for (std::size_t i = 0; i < first.size(); ++i) {
      PairingGuess common = first[i];
      for (BodyGuess& guess : guesses) {
        const PairingGuess& other = guess.of(type)[i];
        const bool differs = other.image != first[i].image || other.parts != first[i].parts;
        common.unclear |= other.unclear || differs;
        if (!differs) continue;
        common.image = 0;
        common.parts.clear();
      }
      matches.push_back(matchOf(common));
    }
    return matches;
  }

  MatchTolerance m_tolerance;
  const OdModelerBody& m_bodyBefore;
  const OdModelerBody& m_bodyNow;
  Levels m_before;
  Levels m_now;
  PlaceGrid m_faceGrid;
  PlaceGrid m_edgeGrid;
  PlaceGrid m_vertexGrid;
};

/// The signatures of one type among those that are wanted.
struct WantedLevel {
  Signatures items;
  std::vector<std::size_t> places;  // in the whole list

  WantedLevel(std::span<const SubentSignature> wanted, Type type) {
    for (std::size_t i = 0; i < wanted.size(); ++i) {
      if (wanted[i].type != type) continue;
      items.push_back(wanted[i]);
      places.push_back(i);
    }
  }
};

}  // namespace

const SubentMatch& BodyMatch::of(OdModelerSubent subent) const {
  static const SubentMatch kNone;
  const std::vector<SubentMatch>& list = subent.type == Type::kFace   ? faces
                                         : subent.type == Type::kEdge ? edges
                                                                      : vertices;
  const bool known = subent.index >= 1 && subent.index <= list.size();
  return subent.type != Type::kNull && known ? list[subent.index - 1] : kNone;
}

BodyMatch matchBySignature(const OdModelerBody& before, const OdModelerBody& now) {
  return SignatureMatcher(before, now).run();
}

std::vector<SubentMatch> matchSignatures(std::span<const SubentSignature> wanted,
                                         const OdModelerBody& now) {
  std::vector<SubentMatch> matches(wanted.size());
  const MatchTolerance tolerance = MatchTolerance::of(now);
  for (const Type type : {Type::kFace, Type::kEdge, Type::kVertex}) {
    const WantedLevel level(wanted, type);
    // The new body is measured only for types that are wanted.
    if (level.items.empty()) continue;
    const Signatures fresh = signaturesOf(now, type);
    const PlaceGrid grid(fresh);
    SignaturePairing pairs(level.items, fresh, grid, tolerance);
    pairs.pairIdentical([](OdUInt32, OdUInt32) { return true; });
    // Without a body there are no neighbours to compare, only what the signature says of them.
    pairs.pairNear([&](OdUInt32 old, OdUInt32 other) -> std::optional<double> {
      const SubentSignature& a = level.items[old - 1];
      const SubentSignature& b = fresh[other - 1];
      if (a.neighbours != b.neighbours || a.bounds != b.bounds) return std::nullopt;
      return 0.0;
    });
    for (std::size_t i = 0; i < level.items.size(); ++i) {
      matches[level.places[i]] = matchOf(pairs.guesses()[i]);
    }
  }
  return matches;
}

}  // namespace vdm_host
