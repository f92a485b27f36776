// Old and new subentities of one type, paired by how alike they are.
#pragma once

#include <optional>
#include <span>
#include <vector>

#include "host/naming/place_grid.h"
#include "host/naming/subent_signature.h"

namespace vdm_host {

/// What is known of one old subentity.
struct PairingGuess {
  OdUInt32 image = 0;           ///< 0 when none was taken
  bool unclear = false;         ///< there were candidates, none of which was to be taken
  bool contested = false;       ///< it has two good readings: nothing at it can be known either
  std::vector<OdUInt32> parts;  ///< where it became several: all of them, rising; else empty

  [[nodiscard]] std::vector<OdUInt32> images() const;
  bool operator==(const PairingGuess&) const = default;
};

/// The best of several candidates, if it is clearly the best.
class PairingChoice {
 public:
  void offer(OdUInt32 image, double cost);
  /// There are candidates, and none of them is to be taken.
  void spoil() { m_isSpoilt = true; }
  [[nodiscard]] bool empty() const { return m_image == 0 && !m_isSpoilt; }
  [[nodiscard]] bool clear() const;
  [[nodiscard]] OdUInt32 image() const { return m_image; }
  [[nodiscard]] double cost() const { return m_best; }

 private:
  static constexpr double kNone = 1e300;
  OdUInt32 m_image = 0;
  bool m_isSpoilt = false;
  double m_best = kNone;
  double m_second = kNone;
};

/// Pairs in rounds: what an earlier round took is not offered to a later one. Indices are counted
/// from 1. All arguments outlive this; the grid is that of `now`. Laws:
///   1. an old subentity proposes its best candidate when the next one costs at least twice as
///      much;
///   2. of several that propose the same new one the cheapest gets it, when the next costs at least
///      twice as much; otherwise none does;
///   3. a new subentity is taken once, and what was taken stays so;
///   4. where two parts of one old subentity are found, neither is it.
class SignaturePairing {
 public:
  using Signatures = std::span<const SubentSignature>;

  SignaturePairing(Signatures before, Signatures now, const PlaceGrid& grid,
                   const MatchTolerance& tolerance);

  [[nodiscard]] const std::vector<PairingGuess>& guesses() const { return m_guesses; }
  /// 0 when none was taken.
  [[nodiscard]] OdUInt32 imageOf(OdUInt32 old) const { return m_guesses[old - 1].image; }

  /// One round over identical geometry that `fits(old, now)`.
  template <class Fits>
  void pairIdentical(const Fits& fits);
  /// One round over what was displaced or resized a little. `extraCost(old, now)` gives none for
  /// what cannot be. True when something was paired.
  template <class ExtraCost>
  bool pairNear(const ExtraCost& extraCost);
  /// Pairs these two whatever they look like.
  void take(OdUInt32 old, OdUInt32 now);
  /// What is left of an old one: one or several, rising, which others may be left of, too.
  void takeParts(OdUInt32 old, std::vector<OdUInt32> parts);
  /// None of these is known, and nothing else is paired with them.
  void contest(std::span<const OdUInt32> olds, std::span<const OdUInt32> nows);
  [[nodiscard]] bool isOpen(OdUInt32 old) const {
    return imageOf(old) == 0 && !m_guesses[old - 1].contested;
  }
  [[nodiscard]] bool isTaken(OdUInt32 now) const { return m_taken[now - 1] != 0; }

  void markUnclear(std::span<const OdUInt32> olds);
  /// What has no image and several look-alikes not far away is unclear: it is not lost for sure.
  void markLookAlikes();
  /// What has no image and touches an unclear face is unclear too. `faces` are those around each
  /// old subentity.
  void markAtUnclearFaces(std::span<const std::vector<OdUInt32>> faces,
                          std::span<const PairingGuess> faceGuesses);

 private:
  [[nodiscard]] double identicalRadius(const SubentSignature& item) const;
  [[nodiscard]] double nearRadius(const SubentSignature& item) const;
  [[nodiscard]] bool isPartOf(const SubentSignature& item, const SubentSignature& old) const;
  [[nodiscard]] std::optional<double> costOf(const SubentSignature& old,
                                             const SubentSignature& now) const;
  [[nodiscard]] bool hasLookAlikes(const SubentSignature& item) const;
  template <class Choose>
  bool propose(const Choose& choose);
  bool takeMutual(std::span<const PairingChoice> choices);

  Signatures m_before;
  Signatures m_now;
  const PlaceGrid& m_grid;
  const MatchTolerance& m_tolerance;
  std::vector<PairingGuess> m_guesses;
  std::vector<OdUInt8> m_taken;  // by new index - 1
};

template <class Fits>
void SignaturePairing::pairIdentical(const Fits& fits) {
  propose([&](OdUInt32 old, PairingChoice& choice) {
    const SubentSignature& item = m_before[old - 1];
    m_grid.within(item.place, identicalRadius(item), [&](OdUInt32 i) {
      if (m_taken[i] == 0 && isIdentical(item, m_now[i], m_tolerance) && fits(old, i + 1)) {
        choice.offer(i + 1, 0.0);
      }
    });
  });
}

template <class ExtraCost>
bool SignaturePairing::pairNear(const ExtraCost& extraCost) {
  return propose([&](OdUInt32 old, PairingChoice& choice) {
    const SubentSignature& item = m_before[old - 1];
    int parts = 0;
    m_grid.within(item.place, nearRadius(item), [&](OdUInt32 i) {
      if (m_taken[i] != 0) return;
      const std::optional<double> extra = extraCost(old, i + 1);
      if (!extra) return;
      if (isPartOf(m_now[i], item)) ++parts;
      if (const std::optional<double> cost = costOf(item, m_now[i])) {
        choice.offer(i + 1, *cost + *extra);
      }
    });
    if (parts > 1) choice.spoil();
  });
}

// Asks each open old one for its choice, then takes those that are mutual.
template <class Choose>
bool SignaturePairing::propose(const Choose& choose) {
  std::vector<PairingChoice> choices(m_before.size());
  for (OdUInt32 old = 1; old <= m_before.size(); ++old) {
    if (isOpen(old)) choose(old, choices[old - 1]);
  }
  return takeMutual(choices);
}

}  // namespace vdm_host
