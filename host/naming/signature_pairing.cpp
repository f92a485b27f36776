// Old and new subentities of one type, paired by how alike they are.
//
// The idea: a round is one exchange of proposals. Each old subentity without an image proposes the
// cheapest new one, and a new one accepts the cheapest proposal. Both sides must be clear about it:
// the next candidate, and the next proposal, cost at least twice as much. What is unclear stays
// open, and a later round, which knows more neighbours, may make it clear.
//
// The invariant: a pair that was taken is never given up, and no new subentity is in two pairs. A
// round without a new pair would be followed by an equal one, so callers stop there.
//
// Why it is never a guess: two look-alikes at equal distances give equal costs, and equal costs are
// never clear, in whichever order they come. The order of numbers decides nothing.
//
// A round costs a look into the grid for each open old subentity; the radii are those within which
// a cost can be finite.
#include "host/naming/signature_pairing.h"

#include <algorithm>
#include <cmath>
#include <unordered_map>

namespace vdm_host {

namespace {

/// The next candidate costs at least this many times as much.
constexpr double kClearlyBetter = 2.0;
/// Costs that differ by less than this do not differ: it is noise of the measures.
constexpr double kNoise = 0.02;
/// What a cost may be at most: a displacement by the reach counts 1, and so does twice the size. A
/// feature that is displaced by less than its radius or half its width overlaps where it was.
constexpr double kMaxCost = 1.5;
/// Sizes may differ by this factor.
constexpr double kMaxGrowth = 2.0;
/// Directions may differ by 5 degrees, radii by a quarter.
constexpr double kMinCosine = 0.9962;
constexpr double kMaxRadiusChange = 0.25;
/// The middle of half a wall lies 0.64 of the radius off the axis, that of a whole one on it.
constexpr double kSideShare = 0.2;
/// A piece of less than this share of the old size is a part and not the whole.
constexpr double kWhole = 0.95;
/// Vertices have no reach: they may move by this share of the body's size.
constexpr double kVertexReach = 0.02;
/// Look-alikes count within this many times the limit of displacement.
constexpr double kLookAlikeRange = 4.0;

bool isClearlyLess(double best, double second) { return second >= kClearlyBetter * best + kNoise; }

double displacementLimit(const SubentSignature& old, const MatchTolerance& tolerance) {
  const bool isVertex = old.type == OdModelerSubentType::kVertex;
  const double reach = isVertex ? kVertexReach * tolerance.size : old.reach();
  return std::max(reach, tolerance.length);
}

// Of two sizes, as a cost; nothing for what has no size.
double growthCost(double old, double now) {
  if (old <= 0.0 || now <= 0.0) return 0.0;
  return std::abs(std::log(now / old)) / std::log(kMaxGrowth);
}

bool looksTheSameWay(const SubentSignature& old, const SubentSignature& now) {
  double cosine = old.direction.dotProduct(now.direction);
  if (!old.hasSign()) cosine = std::abs(cosine);
  return old.direction.lengthSqrd() <= 0.0 || cosine >= kMinCosine;
}

// Where on a wall of revolution the face lies: across from its axis; zero when all around.
OdGeVector3d sideOf(const SubentSignature& face) {
  const bool isWall = face.type == OdModelerSubentType::kFace && face.radius > 0.0 &&
                      face.direction.lengthSqrd() > 0.0 && !face.hasSign();
  if (!isWall) return {};
  const OdGeVector3d out = face.place - face.anchor;
  return out - face.direction * face.direction.dotProduct(out);
}

// The two ends of a slot have equal walls on opposite sides of their axes.
bool liesOnSameSide(const SubentSignature& old, const SubentSignature& now) {
  const OdGeVector3d a = sideOf(old);
  const OdGeVector3d b = sideOf(now);
  const bool hasSide = a.length() > kSideShare * old.radius && b.length() > kSideShare * now.radius;
  return !hasSide || a.dotProduct(b) > 0.0;
}

/// The cheapest proposal for a new subentity.
struct Claim {
  OdUInt32 old = 0;
  double cost = 0.0;
  bool isContested = false;

  void offer(OdUInt32 other, double otherCost) {
    isContested |= !isClearlyLess(std::min(cost, otherCost), std::max(cost, otherCost));
    if (otherCost < cost) {
      old = other;
      cost = otherCost;
    }
  }
};

}  // namespace

// ---- PairingGuess

std::vector<OdUInt32> PairingGuess::images() const {
  if (!parts.empty()) return parts;
  return image != 0 ? std::vector<OdUInt32>{image} : std::vector<OdUInt32>{};
}

// ---- PairingChoice

void PairingChoice::offer(OdUInt32 image, double cost) {
  if (cost < m_best) {
    m_second = m_best;
    m_best = cost;
    m_image = image;
  } else {
    m_second = std::min(m_second, cost);
  }
}

bool PairingChoice::clear() const {
  return m_image != 0 && !m_isSpoilt && isClearlyLess(m_best, m_second);
}

// ---- SignaturePairing

SignaturePairing::SignaturePairing(Signatures before, Signatures now, const PlaceGrid& grid,
                                   const MatchTolerance& tolerance)
    : m_before(before),
      m_now(now),
      m_grid(grid),
      m_tolerance(tolerance),
      m_guesses(before.size()),
      m_taken(now.size(), 0) {}

void SignaturePairing::take(OdUInt32 old, OdUInt32 now) {
  m_guesses[old - 1] = {now, false, false, {}};
  m_taken[now - 1] = 1;
}

void SignaturePairing::takeParts(OdUInt32 old, std::vector<OdUInt32> parts) {
  for (const OdUInt32 now : parts) m_taken[now - 1] = 1;
  m_guesses[old - 1] = {parts.front(), false, false, {}};
  if (parts.size() > 1) m_guesses[old - 1].parts = std::move(parts);
}

void SignaturePairing::contest(std::span<const OdUInt32> olds, std::span<const OdUInt32> nows) {
  for (const OdUInt32 now : nows) m_taken[now - 1] = 1;
  for (const OdUInt32 old : olds) {
    m_guesses[old - 1] = {0, true, true, {}};
  }
}

// Wider than places of identical geometry can be apart: isIdentical() has the last word.
double SignaturePairing::identicalRadius(const SubentSignature& item) const {
  return std::max(2.0 * m_tolerance.length, 1e-4 * item.reach());
}

// Twice the limit: what only grew or shrank on its surface has its middle farther away.
double SignaturePairing::nearRadius(const SubentSignature& item) const {
  return 2.0 * displacementLimit(item, m_tolerance);
}

bool SignaturePairing::isPartOf(const SubentSignature& item, const SubentSignature& old) const {
  return old.size > 0.0 && item.size < kWhole * old.size && liesOnSame(old, item, m_tolerance);
}

// 0 for the identical subentity, more the less alike they are; none when they cannot be the same.
std::optional<double> SignaturePairing::costOf(const SubentSignature& old,
                                               const SubentSignature& now) const {
  if (old.kind != now.kind || old.inward != now.inward || old.closed != now.closed) return {};
  if (!looksTheSameWay(old, now) || !liesOnSameSide(old, now)) return {};
  const double radiusChange = std::abs(old.radius - now.radius);
  if (radiusChange > kMaxRadiusChange * old.radius) return {};
  const double displacement = old.place.distanceTo(now.place) / displacementLimit(old, m_tolerance);
  // On the same surface the middle may be anywhere: the boundary was moved, not the face.
  if (displacement > 1.0 && !liesOnSame(old, now, m_tolerance)) return {};
  double cost = old.radius > 0.0 ? radiusChange / old.radius : 0.0;
  cost += displacement;
  cost += growthCost(old.size, now.size);
  return cost <= kMaxCost ? std::optional(cost) : std::nullopt;
}

bool SignaturePairing::takeMutual(std::span<const PairingChoice> choices) {
  std::unordered_map<OdUInt32, Claim> claims;  // by new index
  std::vector<OdUInt32> claimed;               // its keys, in the order of the old subentities
  for (OdUInt32 old = 1; old <= choices.size(); ++old) {
    if (!isOpen(old)) continue;
    const PairingChoice& choice = choices[old - 1];
    m_guesses[old - 1].unclear = !choice.empty();
    if (!choice.clear()) continue;
    const auto [place, isNew] = claims.try_emplace(choice.image(), Claim{old, choice.cost()});
    if (isNew) {
      claimed.push_back(choice.image());
    } else {
      place->second.offer(old, choice.cost());
    }
  }
  bool any = false;
  for (const OdUInt32 now : claimed) {
    const Claim& claim = claims.at(now);
    if (claim.isContested) continue;
    take(claim.old, now);
    any = true;
  }
  return any;
}

void SignaturePairing::markUnclear(std::span<const OdUInt32> olds) {
  for (const OdUInt32 old : olds) m_guesses[old - 1].unclear = true;
}

// Congruent ones that nothing was paired with, facing the same way.
bool SignaturePairing::hasLookAlikes(const SubentSignature& item) const {
  int alike = 0;
  const double radius = kLookAlikeRange * displacementLimit(item, m_tolerance);
  m_grid.within(item.place, radius, [&](OdUInt32 i) {
    const SubentSignature& other = m_now[i];
    const bool sameWay = !item.hasSign() || item.direction.dotProduct(other.direction) > kMinCosine;
    if (m_taken[i] == 0 && sameWay && isCongruent(item, other, m_tolerance)) ++alike;
  });
  return alike > 1;
}

void SignaturePairing::markLookAlikes() {
  for (OdUInt32 old = 1; old <= m_before.size(); ++old) {
    PairingGuess& guess = m_guesses[old - 1];
    if (guess.image == 0 && !guess.unclear) guess.unclear = hasLookAlikes(m_before[old - 1]);
  }
}

void SignaturePairing::markAtUnclearFaces(std::span<const std::vector<OdUInt32>> faces,
                                          std::span<const PairingGuess> faceGuesses) {
  const auto isUnclear = [&](OdUInt32 face) {
    const PairingGuess& guess = faceGuesses[face - 1];
    return guess.unclear && guess.image == 0;
  };
  for (OdUInt32 old = 1; old <= m_before.size(); ++old) {
    PairingGuess& guess = m_guesses[old - 1];
    if (guess.image != 0 || guess.unclear) continue;
    guess.unclear = std::ranges::any_of(faces[old - 1], isUnclear);
  }
}

}  // namespace vdm_host
