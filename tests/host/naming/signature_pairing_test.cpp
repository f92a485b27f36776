// Pairing by looks, law by law, on made-up signatures: what is not clear is not taken.
#include "host/naming/signature_pairing.h"

#include <gtest/gtest.h>

namespace vdm_host {
namespace {

using Signatures = std::vector<SubentSignature>;

/// A wall 20 x 20 at x that faces along it: its reach is 10.
SubentSignature wallAt(double x, double facing = 1.0) {
  SubentSignature wall;
  wall.type = OdModelerSubentType::kFace;
  wall.kind = static_cast<OdUInt8>(OdModelerSurfaceKind::kPlane);
  wall.bounds = 4;
  wall.size = 400.0;
  wall.place = wall.anchor = {x, 0.0, 0.0};
  wall.direction = {facing, 0.0, 0.0};
  return wall;
}

/// A part of the wall at x = 0, with its middle at height z.
SubentSignature partAt(double z, double size) {
  SubentSignature part = wallAt(0.0);
  part.size = size;
  part.place.z = part.anchor.z = z;
  return part;
}

std::vector<SubentSignature> wallsAt(std::initializer_list<double> places) {
  std::vector<SubentSignature> walls;
  for (const double x : places) walls.push_back(wallAt(x));
  return walls;
}

/// What each old one is after one round of near ones, from 1; 0 for none and -1 for unclear.
std::vector<int> nearImages(const Signatures& before, const Signatures& now) {
  const PlaceGrid grid(now);
  const MatchTolerance tolerance;
  SignaturePairing pairs(before, now, grid, tolerance);
  pairs.pairNear([](OdUInt32, OdUInt32) { return std::optional(0.0); });
  std::vector<int> images;
  for (const PairingGuess& guess : pairs.guesses()) {
    images.push_back(guess.unclear && guess.image == 0 ? -1 : static_cast<int>(guess.image));
  }
  return images;
}

TEST(SignaturePairing, Law1ProposesWhatIsAtLeastTwiceAsNearAsTheNext) {
  const Signatures old = wallsAt({0.0});
  EXPECT_EQ(nearImages(old, wallsAt({4.0, -9.0})), (std::vector{1}));
  EXPECT_EQ(nearImages(old, wallsAt({-9.0, 4.0})), (std::vector{2})) << "whatever the order";
  EXPECT_EQ(nearImages(old, wallsAt({5.0, -9.0})), (std::vector{-1})) << "1.8 times as near";
  EXPECT_EQ(nearImages(old, wallsAt({5.0, -5.0})), (std::vector{-1}));
  EXPECT_EQ(nearImages(old, wallsAt({10.5})), (std::vector{0})) << "farther than the reach";
}

TEST(SignaturePairing, Law2OfSeveralProposalsOnlyAClearOneIsAccepted) {
  EXPECT_EQ(nearImages(wallsAt({2.0, -9.0}), wallsAt({0.0})), (std::vector{1, -1}));
  EXPECT_EQ(nearImages(wallsAt({-9.0, 2.0}), wallsAt({0.0})), (std::vector{-1, 1}));
  EXPECT_EQ(nearImages(wallsAt({5.0, -9.0}), wallsAt({0.0})), (std::vector{-1, -1}));
  // The third makes it unclear again, although the first two were not.
  EXPECT_EQ(nearImages(wallsAt({2.0, -9.0, 3.0}), wallsAt({0.0})), (std::vector{-1, -1, -1}));
}

TEST(SignaturePairing, Law3WhatWasTakenIsOfferedToNoOther) {
  const Signatures before = wallsAt({0.0, 1.0});
  const Signatures now = wallsAt({0.0});
  const PlaceGrid grid(now);
  const MatchTolerance tolerance;
  SignaturePairing pairs(before, now, grid, tolerance);
  pairs.pairIdentical([](OdUInt32, OdUInt32) { return true; });
  EXPECT_FALSE(pairs.pairNear([](OdUInt32, OdUInt32) { return std::optional(0.0); }));
  EXPECT_EQ(pairs.imageOf(1), 1u);
  EXPECT_EQ(pairs.imageOf(2), 0u);
}

TEST(SignaturePairing, Law4PartsOfOneWallAreNotTheWall) {
  EXPECT_EQ(nearImages({wallAt(0.0)}, {partAt(1.0, 350.0)}), (std::vector{1})) << "it shrank";
  EXPECT_EQ(nearImages({wallAt(0.0)}, {partAt(1.0, 350.0), partAt(9.5, 40.0)}), (std::vector{-1}));
}

TEST(SignaturePairing, SizesRadiiAndDirectionsBoundWhatMayBeTheSame) {
  const SubentSignature wall = wallAt(0.0);
  EXPECT_EQ(nearImages({wall}, {wallAt(1.0, -1.0)}), (std::vector{0})) << "the other side";
  EXPECT_EQ(nearImages({wall}, {partAt(0.0, 150.0)}), (std::vector{1}));
  EXPECT_EQ(nearImages({wall}, {partAt(0.0, 100.0)}), (std::vector{0})) << "a quarter of it";
  EXPECT_EQ(nearImages({wall}, {partAt(12.0, 400.0)}), (std::vector{1})) << "along its plane";
  SubentSignature hole = wall;
  hole.kind = static_cast<OdUInt8>(OdModelerSurfaceKind::kCylinder);
  hole.radius = 4.0;
  SubentSignature turned = hole;
  turned.direction = hole.direction * -1.0;
  EXPECT_EQ(nearImages({hole}, {turned}), (std::vector{1})) << "an axis has no sign";
  for (const auto& [radius, image] : {std::pair(4.9, 1), std::pair(5.1, 0)}) {
    SubentSignature wider = hole;
    wider.radius = radius;
    EXPECT_EQ(nearImages({hole}, {wider}), (std::vector{image})) << radius;
  }
}

TEST(SignaturePairing, SeveralLookAlikesNearbyMakeALossUnclear) {
  const Signatures before = wallsAt({0.0});
  const MatchTolerance tolerance;
  const auto isUnclear = [&](const Signatures& now) {
    const PlaceGrid grid(now);
    SignaturePairing pairs(before, now, grid, tolerance);
    pairs.markLookAlikes();
    return pairs.guesses()[0].unclear;
  };
  EXPECT_TRUE(isUnclear(wallsAt({30.0, -30.0})));
  EXPECT_FALSE(isUnclear(wallsAt({30.0}))) << "one look-alike is not it, and no second is there";
  EXPECT_FALSE(isUnclear(wallsAt({50.0, -50.0}))) << "too far";
  EXPECT_FALSE(isUnclear({wallAt(30.0), wallAt(-30.0, -1.0)})) << "one faces the other way";
}

}  // namespace
}  // namespace vdm_host
