// Which subentities of a body are those of another one, by their looks.
//
// The idea: geometry alone tells what is where, if one knows how the body as a whole moved. The
// motion is therefore looked for first (motion_search.h); under it, old and new faces are paired by
// how alike they are (signature_pairing.h), and an edge or vertex is named by the faces that meet
// there, which says more than its own geometry.
//
// Where several motions lay the old body on the new one equally well, the body looks alike in
// several positions, and what really happened cannot be known. All of them are carried through, and
// a match counts only when each of them gives it. So a symmetric body whose position is unknown
// yields ambiguous references, and never a wrong one.
//
// The order of the phases matters for being right: what is identical is taken out of the way before
// anything is compared that may have moved, since a neighbour that stayed would otherwise lose its
// own image to one that came close. Each round of near faces knows more neighbours than the one
// before; the rounds end when one pairs nothing, and after kMaxRounds at the latest.
//
// The cost is linear in the number of subentities times the number of motions, as long as places
// are spread; signatures are measured once.
#include "host/naming/body_match.h"

#include <algorithm>
#include <array>
#include <optional>
#include <unordered_map>

#include "host/naming/body_signature.h"
#include "host/naming/motion_search.h"
#include "host/naming/place_grid.h"
#include "host/naming/signature_pairing.h"

namespace vdm_host {

namespace {

using Type = OdModelerSubentType;
using Signatures = std::vector<SubentSignature>;

/// Rounds of near faces; each knows more neighbours than the one before.
constexpr int kMaxRounds = 4;

/// All signatures of a body of one type, with the faces around each.
struct Level {
  Signatures items;
  std::vector<std::vector<OdUInt32>> faces;

  Level(const OdModelerBody& body, Type type) : items(signaturesOf(body, type)) {
    faces.reserve(items.size());
    for (OdUInt32 i = 1; i <= items.size(); ++i) faces.push_back(facesAround(body, {type, i}));
  }
};

struct Levels {
  Level faces;
  Level edges;
  Level vertices;

  explicit Levels(const OdModelerBody& body)
      : faces(body, Type::kFace), edges(body, Type::kEdge), vertices(body, Type::kVertex) {}
};

Signatures movedBy(const OdGeMatrix3d& motion, const Signatures& items) {
  Signatures result;
  result.reserve(items.size());
  for (const SubentSignature& item : items) result.push_back(item.movedBy(motion));
  return result;
}

SubentMatch matchOf(const PairingGuess& guess) {
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

// The new faces that the old ones are; empty when one of them is not known.
FaceKey imagesOf(const FaceKey& faces, const SignaturePairing& facePairs) {
  FaceKey images;
  for (const OdUInt32 face : faces) {
    const OdUInt32 image = facePairs.imageOf(face);
    if (image == 0) return {};
    images.push_back(image);
  }
  std::ranges::sort(images);
  return images;
}

/// Guesses for a whole body under one motion.
struct BodyGuess {
  std::array<std::vector<PairingGuess>, 3> byType;

  std::vector<PairingGuess>& of(Type type) { return byType[static_cast<std::size_t>(type) - 1]; }
};

class SignatureMatcher {
 public:
  SignatureMatcher(const OdModelerBody& before, const OdModelerBody& now)
      : m_tolerance(MatchTolerance::of(before, now)),
        m_before(before),
        m_now(now),
        m_faceGrid(m_now.faces.items),
        m_edgeGrid(m_now.edges.items),
        m_vertexGrid(m_now.vertices.items) {}

  BodyMatch run() const {
    const std::vector<BodyMotion> motions =
        findMotions(m_before.faces.items, m_now.faces.items, m_faceGrid, m_tolerance);
    std::vector<BodyGuess> guesses;
    guesses.reserve(motions.size());
    for (const BodyMotion& motion : motions) guesses.push_back(guessUnder(motion.matrix));
    BodyMatch match;
    match.motion = motions.front().matrix;
    match.faces = agreed(guesses, Type::kFace);
    match.edges = agreed(guesses, Type::kEdge);
    match.vertices = agreed(guesses, Type::kVertex);
    return match;
  }

 private:
  BodyGuess guessUnder(const OdGeMatrix3d& motion) const {
    BodyGuess guess;
    const Signatures faces = movedBy(motion, m_before.faces.items);
    SignaturePairing facePairs(faces, m_now.faces.items, m_faceGrid, m_tolerance);
    pairFaces(facePairs);
    guess.of(Type::kFace) = facePairs.guesses();
    const auto pairRest = [&](const Level& before, const Level& now, const PlaceGrid& grid) {
      const Signatures items = movedBy(motion, before.items);
      SignaturePairing pairs(items, now.items, grid, m_tolerance);
      pairByFaces(pairs, before, now, facePairs);
      return pairs.guesses();
    };
    guess.of(Type::kEdge) = pairRest(m_before.edges, m_now.edges, m_edgeGrid);
    guess.of(Type::kVertex) = pairRest(m_before.vertices, m_now.vertices, m_vertexGrid);
    return guess;
  }

  // ---- Faces

  void pairFaces(SignaturePairing& pairs) const {
    pairs.pairIdentical([](OdUInt32, OdUInt32) { return true; });
    const auto neighbourCost = [&](OdUInt32 old, OdUInt32 now) {
      return costOfNeighbours(pairs, old, now);
    };
    for (int round = 0; round < kMaxRounds; ++round) {
      if (!pairs.pairNear(neighbourCost)) break;
    }
    pairs.markLookAlikes();
  }

  // The share of the old face's known neighbours that the new face does not meet; none when that is
  // more than half.
  std::optional<double> costOfNeighbours(const SignaturePairing& pairs, OdUInt32 old,
                                         OdUInt32 now) const {
    const std::vector<OdUInt32>& around = m_now.faces.faces[now - 1];
    OdUInt32 known = 0;
    OdUInt32 met = 0;
    for (const OdUInt32 neighbour : m_before.faces.faces[old - 1]) {
      const OdUInt32 image = pairs.imageOf(neighbour);
      if (image == 0) continue;
      ++known;
      if (std::ranges::binary_search(around, image)) ++met;
    }
    if (known == 0) return 0.0;
    if (2 * met < known) return std::nullopt;
    return 1.0 - static_cast<double>(met) / static_cast<double>(known);
  }

  // ---- Edges and vertices

  // Old and new ones between the same faces: a single one on either side is the same; of several,
  // the identical and then the near ones. Those at faces that are not known must be identical.
  void pairByFaces(SignaturePairing& pairs, const Level& before, const Level& now,
                   const SignaturePairing& facePairs) const {
    std::vector<FaceKey> keys;
    keys.reserve(before.items.size());
    for (const FaceKey& faces : before.faces) keys.push_back(imagesOf(faces, facePairs));
    pairSingles(pairs, keys, before, now);
    pairs.pairIdentical([&](OdUInt32 old, OdUInt32 other) {
      return std::ranges::all_of(before.faces[old - 1], [&](OdUInt32 face) {
        const OdUInt32 image = facePairs.imageOf(face);
        return image == 0 || std::ranges::binary_search(now.faces[other - 1], image);
      });
    });
    pairs.pairNear([&](OdUInt32 old, OdUInt32 other) -> std::optional<double> {
      const FaceKey& key = keys[old - 1];
      if (key.empty() || key != now.faces[other - 1]) return std::nullopt;
      return 0.0;
    });
    pairs.markAtUnclearFaces(before.faces, facePairs.guesses());
  }

  // Pairs those that are alone between their faces, before and after. They need not look alike: a
  // circle that became larger is still the rim of its hole.
  static void pairSingles(SignaturePairing& pairs, const std::vector<FaceKey>& keys,
                          const Level& before, const Level& now) {
    FaceGroups oldGroups;
    FaceGroups nowGroups;
    for (OdUInt32 i = 0; i < keys.size(); ++i) {
      if (!keys[i].empty()) oldGroups[keys[i]].push_back(i + 1);
    }
    for (OdUInt32 i = 0; i < now.items.size(); ++i) nowGroups[now.faces[i]].push_back(i + 1);
    for (const auto& [key, group] : oldGroups) {
      const auto found = nowGroups.find(key);
      if (found == nowGroups.end() || group.size() != 1 || found->second.size() != 1) continue;
      const OdUInt32 old = group.front();
      const OdUInt32 image = found->second.front();
      if (before.items[old - 1].kind == now.items[image - 1].kind) pairs.take(old, image);
    }
  }

  // ---- What all motions agree on

  static std::vector<SubentMatch> agreed(std::vector<BodyGuess>& guesses, Type type) {
    std::vector<SubentMatch> matches;
    const std::vector<PairingGuess>& first = guesses.front().of(type);
    matches.reserve(first.size());
    for (std::size_t i = 0; i < first.size(); ++i) {
      PairingGuess common = first[i];
      for (BodyGuess& guess : guesses) {
        const PairingGuess& other = guess.of(type)[i];
        // An image that not all motions give is a candidate, no more.
        common.unclear |= other.unclear || other.image != first[i].image;
        if (other.image != first[i].image) common.image = 0;
      }
      matches.push_back(matchOf(common));
    }
    return matches;
  }

  MatchTolerance m_tolerance;
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
