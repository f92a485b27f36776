// Which subentities of a body are those of another one, by their looks.
#include "host/naming/body_match.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>
#include <unordered_map>

#include "host/naming/motion_search.h"
#include "host/naming/place_grid.h"

namespace vdm_host {

namespace {

using Type = OdModelerSubentType;
using Signatures = std::vector<SubentSignature>;

/// The second best candidate is at least this much worse than the best.
constexpr double kClearlyBetter = 2.0;
/// Costs differ by more than this, which is noise, to differ at all.
constexpr double kNoise = 0.02;
/// What a cost may be at most: a displacement by the reach counts 1, and so does twice the size. A
/// feature that is displaced by less than its radius or half its width overlaps where it was.
constexpr double kMaxCost = 1.5;
/// Sizes may differ by this factor.
constexpr double kMaxGrowth = 2.0;
/// Directions may differ by 5 degrees, radii by a quarter.
constexpr double kMinCosine = 0.9962;
constexpr double kMaxRadiusChange = 0.25;
/// A piece of less than this share of the old size is a part and not the whole.
constexpr double kWhole = 0.95;
/// Vertices have no reach: they may move by this share of the body's size.
constexpr double kVertexReach = 0.02;
/// Each round knows more neighbours than the one before.
constexpr int kMaxRounds = 4;

/// What is known of one old subentity under one motion.
struct Guess {
  OdUInt32 image = 0;
  bool unclear = false;
};

double displacementLimit(const SubentSignature& old, const MatchTolerance& tolerance) {
  const double reach = old.type == Type::kVertex ? kVertexReach * tolerance.size : old.reach();
  return std::max(reach, tolerance.length);
}

// 0 for the identical subentity, more the less alike they are; none when they cannot be the same.
std::optional<double> costOf(const SubentSignature& old, const SubentSignature& now,
                             const MatchTolerance& tolerance) {
  if (old.kind != now.kind || old.inward != now.inward || old.closed != now.closed) return {};
  double cosine = old.direction.dotProduct(now.direction);
  if (!old.hasSign()) cosine = std::abs(cosine);
  if (old.direction.lengthSqrd() > 0.0 && cosine < kMinCosine) return {};
  if (std::abs(old.radius - now.radius) > kMaxRadiusChange * old.radius) return {};
  double cost = old.radius > 0.0 ? std::abs(old.radius - now.radius) / old.radius : 0.0;
  const double displacement = old.place.distanceTo(now.place) / displacementLimit(old, tolerance);
  if (displacement > 1.0 && !liesOnSame(old, now, tolerance)) return {};
  cost += displacement;
  if (old.size > 0.0 && now.size > 0.0) {
    cost += std::abs(std::log(now.size / old.size)) / std::log(kMaxGrowth);
  }
  return cost <= kMaxCost ? std::optional(cost) : std::nullopt;
}

// The best of several candidates, if it is clearly so.
class Choice {
 public:
  void offer(OdUInt32 image, double cost) {
    if (cost < m_best) {
      m_second = m_best;
      m_best = cost;
      m_image = image;
    } else {
      m_second = std::min(m_second, cost);
    }
  }
  /// There are candidates, and none of them is to be taken.
  void spoil() { m_isSpoilt = true; }
  [[nodiscard]] bool empty() const { return m_image == 0 && !m_isSpoilt; }
  [[nodiscard]] bool clear() const {
    return m_image != 0 && !m_isSpoilt && m_second >= kClearlyBetter * m_best + kNoise;
  }
  [[nodiscard]] OdUInt32 image() const { return m_image; }
  [[nodiscard]] double cost() const { return m_best; }

 private:
  static constexpr double kNone = 1e300;
  OdUInt32 m_image = 0;
  bool m_isSpoilt = false;
  double m_best = kNone;
  double m_second = kNone;
};

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

/// Old and new subentities of one type under one motion. Each new one is taken once.
class Pairing {
 public:
  Pairing(const Signatures& before, const Level& now, const PlaceGrid& grid,
          const MatchTolerance& tolerance)
      : m_before(before),
        m_now(now),
        m_grid(grid),
        m_tolerance(tolerance),
        m_guesses(before.size()),
        m_taken(now.items.size(), 0) {}

  std::vector<Guess>& guesses() { return m_guesses; }
  [[nodiscard]] OdUInt32 imageOf(OdUInt32 old) const { return m_guesses[old - 1].image; }

  /// Identical geometry that `fits(old, now)`, both from 1.
  template <class Fits>
  void pairIdentical(const Fits& fits) {
    propose([&](OdUInt32 old, Choice& choice) {
      const SubentSignature& item = m_before[old - 1];
      m_grid.within(item.place, identicalRadius(item), [&](OdUInt32 i) {
        if (m_taken[i] == 0 && isIdentical(item, m_now.items[i], m_tolerance) && fits(old, i + 1)) {
          choice.offer(i + 1, 0.0);
        }
      });
    });
  }

  /// What was displaced or resized a little. `extraCost(old, now)` gives none for what cannot be.
  /// True when something was paired.
  template <class ExtraCost>
  bool pairNear(const ExtraCost& extraCost) {
    return propose([&](OdUInt32 old, Choice& choice) {
      const SubentSignature& item = m_before[old - 1];
      int pieces = 0;
      m_grid.within(item.place, 2.0 * displacementLimit(item, m_tolerance), [&](OdUInt32 i) {
        if (m_taken[i] != 0) return;
        const SubentSignature& other = m_now.items[i];
        const std::optional<double> extra = extraCost(old, i + 1);
        if (!extra) return;
        if (item.size > 0.0 && other.size < kWhole * item.size &&
            liesOnSame(item, other, m_tolerance)) {
          ++pieces;
        }
        if (const std::optional<double> cost = costOf(item, other, m_tolerance)) {
          choice.offer(i + 1, *cost + *extra);
        }
      });
      // Two parts of one old subentity: neither of them is it.
      if (pieces > 1) choice.spoil();
    });
  }

  /// What is still open and has several look-alikes within `kSearch` times its limit, or touches
  /// something unclear, is unclear too: nothing is taken, but it is not lost for sure either.
  void markLookAlikes(const std::vector<std::vector<OdUInt32>>& faces,
                      const std::vector<Guess>* faceGuesses) {
    constexpr double kSearch = 4.0;
    for (OdUInt32 old = 1; old <= m_before.size(); ++old) {
      Guess& guess = m_guesses[old - 1];
      if (guess.image != 0 || guess.unclear) continue;
      if (faceGuesses != nullptr) {
        guess.unclear = std::ranges::any_of(faces[old - 1], [&](OdUInt32 face) {
          return (*faceGuesses)[face - 1].unclear && (*faceGuesses)[face - 1].image == 0;
        });
        continue;
      }
      const SubentSignature& item = m_before[old - 1];
      int alike = 0;
      m_grid.within(item.place, kSearch * displacementLimit(item, m_tolerance), [&](OdUInt32 i) {
        const SubentSignature& other = m_now.items[i];
        const bool sameWay =
            !item.hasSign() || item.direction.dotProduct(other.direction) > kMinCosine;
        if (m_taken[i] == 0 && sameWay && isCongruent(item, other, m_tolerance)) ++alike;
      });
      guess.unclear = alike > 1;
    }
  }

  void take(OdUInt32 old, OdUInt32 now) {
    m_guesses[old - 1] = {now, false};
    m_taken[now - 1] = 1;
  }
  [[nodiscard]] bool isTaken(OdUInt32 now) const { return m_taken[now - 1] != 0; }

 private:
  double identicalRadius(const SubentSignature& item) const {
    return std::max(2.0 * m_tolerance.length, 1e-4 * item.reach());
  }

  // Asks each open old one for its choice, then takes the choices that are mutual.
  template <class Choose>
  bool propose(const Choose& choose) {
    struct Claim {
      OdUInt32 old = 0;
      double cost = 0.0;
      bool contested = false;
    };
    std::unordered_map<OdUInt32, Claim> claims;
    std::vector<OdUInt32> claimed;
    for (OdUInt32 old = 1; old <= m_before.size(); ++old) {
      if (m_guesses[old - 1].image != 0) continue;
      Choice choice;
      choose(old, choice);
      m_guesses[old - 1].unclear = !choice.empty();
      if (!choice.clear()) continue;
      const auto [place, isNew] = claims.try_emplace(choice.image(), Claim{old, choice.cost()});
      if (isNew) {
        claimed.push_back(choice.image());
        continue;
      }
      Claim& claim = place->second;
      const double low = std::min(claim.cost, choice.cost());
      const double high = std::max(claim.cost, choice.cost());
      claim.contested |= high < kClearlyBetter * low + kNoise;
      if (choice.cost() < claim.cost) claim = {old, choice.cost(), claim.contested};
    }
    bool any = false;
    for (const OdUInt32 now : claimed) {
      const Claim& claim = claims.at(now);
      if (claim.contested) continue;
      take(claim.old, now);
      any = true;
    }
    return any;
  }

  const Signatures& m_before;
  const Level& m_now;
  const PlaceGrid& m_grid;
  const MatchTolerance& m_tolerance;
  std::vector<Guess> m_guesses;
  std::vector<OdUInt8> m_taken;
};

/// Guesses for a whole body under one motion.
struct BodyGuess {
  std::array<std::vector<Guess>, 3> byType;

  std::vector<Guess>& of(Type type) { return byType[static_cast<std::size_t>(type) - 1]; }
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
  static Signatures moved(const Signatures& items, const OdGeMatrix3d& motion) {
    Signatures result;
    result.reserve(items.size());
    for (const SubentSignature& item : items) result.push_back(item.movedBy(motion));
    return result;
  }

  BodyGuess guessUnder(const OdGeMatrix3d& motion) const {
    BodyGuess guess;
    const Signatures faces = moved(m_before.faces.items, motion);
    Pairing facePairs(faces, m_now.faces, m_faceGrid, m_tolerance);
    pairFaces(facePairs);
    guess.of(Type::kFace) = facePairs.guesses();
    const auto rest = [&](Type type, const Level& before, const Level& now, const PlaceGrid& grid) {
      const Signatures items = moved(before.items, motion);
      Pairing pairs(items, now, grid, m_tolerance);
      pairByFaces(pairs, before, now, items, facePairs);
      guess.of(type) = pairs.guesses();
    };
    rest(Type::kEdge, m_before.edges, m_now.edges, m_edgeGrid);
    rest(Type::kVertex, m_before.vertices, m_now.vertices, m_vertexGrid);
    return guess;
  }

  // ---- Faces

  void pairFaces(Pairing& pairs) const {
    pairs.pairIdentical([](OdUInt32, OdUInt32) { return true; });
    const auto neighbourCost = [&](OdUInt32 old, OdUInt32 now) {
      return costOfNeighbours(pairs, old, now);
    };
    for (int round = 0; round < kMaxRounds; ++round) {
      if (!pairs.pairNear(neighbourCost)) break;
    }
    pairs.markLookAlikes({}, nullptr);
  }

  // The share of the old face's known neighbours that the new face does not meet; none when that is
  // more than half.
  std::optional<double> costOfNeighbours(const Pairing& pairs, OdUInt32 old, OdUInt32 now) const {
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

  using FaceKey = std::vector<OdUInt32>;
  struct FaceKeyHash {
    std::size_t operator()(const FaceKey& key) const {
      std::size_t hash = key.size();
      for (const OdUInt32 face : key) hash = hash * 0x9E3779B97F4A7C15ULL + face;
      return hash ^ (hash >> 29U);
    }
  };
  using Groups = std::unordered_map<FaceKey, std::vector<OdUInt32>, FaceKeyHash>;

  // The new faces where the old ones were; empty when one of them is not known.
  static FaceKey imagesOf(const FaceKey& faces, const Pairing& facePairs) {
    FaceKey images;
    for (const OdUInt32 face : faces) {
      const OdUInt32 image = facePairs.imageOf(face);
      if (image == 0) return {};
      images.push_back(image);
    }
    std::ranges::sort(images);
    return images;
  }

  // Old and new ones between the same faces: a single one on either side is the same; of several,
  // the identical and then the near ones. Those at faces that are not known must be identical.
  void pairByFaces(Pairing& pairs, const Level& before, const Level& now, const Signatures& items,
                   Pairing& facePairs) const {
    std::vector<FaceKey> keys(items.size());
    Groups oldGroups;
    Groups nowGroups;
    for (OdUInt32 i = 0; i < items.size(); ++i) {
      keys[i] = imagesOf(before.faces[i], facePairs);
      if (!keys[i].empty()) oldGroups[keys[i]].push_back(i + 1);
    }
    for (OdUInt32 i = 0; i < now.items.size(); ++i) nowGroups[now.faces[i]].push_back(i + 1);
    for (const auto& [key, group] : oldGroups) {
      const auto found = nowGroups.find(key);
      if (found == nowGroups.end() || group.size() != 1 || found->second.size() != 1) continue;
      const OdUInt32 image = found->second.front();
      if (items[group.front() - 1].kind == now.items[image - 1].kind) {
        pairs.take(group.front(), image);
      }
    }
    const auto knownFacesMeet = [&](OdUInt32 old, OdUInt32 other) {
      return std::ranges::all_of(before.faces[old - 1], [&](OdUInt32 face) {
        const OdUInt32 image = facePairs.imageOf(face);
        return image == 0 || std::ranges::binary_search(now.faces[other - 1], image);
      });
    };
    pairs.pairIdentical(knownFacesMeet);
    pairs.pairNear([&](OdUInt32 old, OdUInt32 other) -> std::optional<double> {
      const FaceKey& key = keys[old - 1];
      if (key.empty() || key != now.faces[other - 1]) return std::nullopt;
      return 0.0;
    });
    pairs.markLookAlikes(before.faces, &facePairs.guesses());
  }

  // ---- What all motions agree on

  static std::vector<SubentMatch> agreed(std::vector<BodyGuess>& guesses, Type type) {
    std::vector<SubentMatch> matches(guesses.front().of(type).size());
    for (std::size_t i = 0; i < matches.size(); ++i) {
      const Guess first = guesses.front().of(type)[i];
      bool same = true;
      bool any = false;
      for (BodyGuess& guess : guesses) {
        const Guess& other = guess.of(type)[i];
        same &= other.image == first.image;
        any |= other.image != 0 || other.unclear;
      }
      if (same && first.image != 0) {
        matches[i] = {ReferenceGrade::kBySignature, {first.image}};
      } else {
        matches[i].grade = any ? ReferenceGrade::kAmbiguous : ReferenceGrade::kLost;
      }
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
    Signatures items;
    std::vector<std::size_t> places;
    for (std::size_t i = 0; i < wanted.size(); ++i) {
      if (wanted[i].type != type) continue;
      items.push_back(wanted[i]);
      places.push_back(i);
    }
    if (items.empty()) continue;
    const Level level(now, type);
    const PlaceGrid grid(level.items);
    Pairing pairs(items, level, grid, tolerance);
    pairs.pairIdentical([](OdUInt32, OdUInt32) { return true; });
    pairs.pairNear([&](OdUInt32 old, OdUInt32 other) -> std::optional<double> {
      const SubentSignature& a = items[old - 1];
      const SubentSignature& b = level.items[other - 1];
      if (a.neighbours != b.neighbours || a.bounds != b.bounds) return std::nullopt;
      return 0.0;
    });
    for (std::size_t i = 0; i < items.size(); ++i) {
      const Guess& guess = pairs.guesses()[i];
      SubentMatch& match = matches[places[i]];
      if (guess.image != 0) {
        match = {ReferenceGrade::kBySignature, {guess.image}};
      } else {
        match.grade = guess.unclear ? ReferenceGrade::kAmbiguous : ReferenceGrade::kLost;
      }
    }
  }
  return matches;
}

}  // namespace vdm_host
