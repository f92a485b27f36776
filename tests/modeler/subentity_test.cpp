// Markers and the history tables that are made of them.
#include <gtest/gtest.h>

#include "platform/modeler/history.h"
#include "platform/modeler/subentity.h"

namespace {

using Type = OdModelerSubentType;

TEST(OdModelerSubent, FaceMarkersAreFiveNineThirteen) {
  EXPECT_EQ(odSubentToMarker({Type::kFace, 1}), 5);
  EXPECT_EQ(odSubentToMarker({Type::kFace, 2}), 9);
  EXPECT_EQ(odSubentToMarker({Type::kFace, 3}), 13);
}

TEST(OdModelerSubent, MarkersOfAllTypesRoundTripAndNothingElseDoes) {
  for (const Type type : {Type::kFace, Type::kEdge, Type::kVertex}) {
    for (const OdUInt32 index : {1u, 2u, 1000u, 0xFFFFFFFFu}) {
      const OdModelerSubent subent{type, index};
      EXPECT_EQ(odSubentFromMarker(odSubentToMarker(subent)), subent);
    }
  }
  for (const OdInt64 marker : {-5ll, 0ll, 1ll, 2ll, 3ll, 4ll, 8ll, 12ll, 1ll << 40}) {
    EXPECT_EQ(odSubentFromMarker(marker), OdModelerSubent{}) << marker;
  }
}

TEST(OdModelerHistory, TableNamesEveryOldFaceDeletedOnesWithoutImages) {
  OdModelerHistory history;
  OdModelerInputHistory& base = history.inputs.emplace_back();
  base.faces = {{{2, 3}, {}, true}, {{}, {}, false}, {{1}, {}, false}};
  const std::map<OdUInt32, std::vector<OdUInt32>> expected = {{5, {9, 13}}, {9, {}}, {13, {5}}};
  EXPECT_EQ(history.faceMarkers(0), expected);
  EXPECT_TRUE(history.faceMarkers(1).empty());
  EXPECT_TRUE(base.faces[1].deleted());
  EXPECT_EQ(base.find({Type::kFace, 4}), nullptr);
  EXPECT_EQ(base.find({Type::kFace, 0}), nullptr);
  EXPECT_EQ(base.find({Type::kEdge, 1}), nullptr);
  EXPECT_EQ(base.find({Type::kFace, 3}), &base.faces[2]);
}

}  // namespace
