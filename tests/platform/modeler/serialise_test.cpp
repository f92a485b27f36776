// The stored form of a body: same body same bytes, damage is refused.
#include <memory>
#include <random>

#include "platform/modeler/body_envelope.h"
#include "tests/support/modeler_testing.h"

namespace {

class OdModelerStoredBody : public ModelerTest {
 protected:
  static OdModelerBodyPtr decorated() {
    const OdModelerBodyPtr plate = plateWithHole();
    OdModelerBodyAttributes attributes;
    attributes.name = L"Plätte \x4E2D";
    attributes.color = OdModelerColor{10, 20, 30};
    attributes.faceColors = {{1, {1, 2, 3}}, {7, {255, 255, 255}}};
    attributes.faceNames = {{3, L"datum A"}, {4, L""}};
    return plate->withAttributes(attributes);
  }
  static std::vector<OdModelerBodyPtr> samples() {
    OdModelerBodyPtr torus;
    OdModelerBodyPtr blended;
    EXPECT_TRUE(odModeler().torus(5.0, 1.0, torus).ok());
    const OdUInt32 edges[] = {1, 2, 3};
    EXPECT_TRUE(odModeler().fillet(box(10.0, 9.0, 8.0), edges, 1.0, blended, nullptr).ok());
    return {torus,
            moved(decorated(), OdGeMatrix3d::rotation(1.0, {1.0, 1.0, 0.3}, {3.0, 0.0, 1.0})),
            moved(decorated(), OdGeMatrix3d::mirroring(OdGePlane::kXYPlane)),
            moved(blended, OdGeMatrix3d::scaling(OdGeScale3d(1.0, 2.0, 3.0))),
            combine(OdModelerBooleanKind::kUnite, torus, {box(1.0, 1.0, 1.0, {9.0, 0.0, 0.0})})};
  }
};

TEST_F(OdModelerStoredBody, RoundTripKeepsBytesOrderAndAttributes) {
  for (const OdModelerBodyPtr& body : samples()) {
    const OdBinaryData bytes = bytesOf(body);
    const OdModelerBodyPtr again = bodyOf(bytes);
    EXPECT_EQ(bytesOf(again), bytes);
    EXPECT_EQ(again->attributes(), body->attributes());
    ASSERT_EQ(again->numFaces(), body->numFaces());
    for (OdUInt32 i = 1; i <= body->numFaces(); ++i) {
      EXPECT_TRUE(again->face(i).normal.isEqualTo(body->face(i).normal));
      EXPECT_EQ(again->face(i).edges, body->face(i).edges);
    }
  }
}

TEST_F(OdModelerStoredBody, SameStepsGiveTheSameBytesWhateverTheMemoryLooksLike) {
  const OdBinaryData first = bytesOf(decorated());
  std::vector<std::unique_ptr<char[]>> blocks;
  std::mt19937 random(7);
  for (int i = 0; i < 20; ++i) {
    for (int k = 0; k < 500; ++k) {
      blocks.push_back(std::make_unique<char[]>(16 + random() % 400));
      if (random() % 2 != 0) blocks[random() % blocks.size()].reset();
    }
    ASSERT_EQ(bytesOf(decorated()), first) << "repetition " << i;
  }
}

TEST_F(OdModelerStoredBody, EveryTruncationAndEveryFlippedBitIsRefused) {
  const OdBinaryData good = bytesOf(decorated());
  const OdModelerBodyPtr before = box(1.0, 1.0, 1.0);
  const auto expectRefused = [&](const OdBinaryData& bytes) {
    OdModelerBodyPtr result = before;
    const OdStatus status = odModeler().deserialise(bytes, result);
    EXPECT_TRUE(status.code == eCorruptData || status.code == eUnsupportedVersion) << status.code;
    EXPECT_EQ(result, before);
  };
  for (OdUInt32 size = 0; size < good.size(); size += size < 200 ? 1 : 37) {
    OdBinaryData cut = good;
    cut.resize(size);
    expectRefused(cut);
  }
  OdBinaryData longer = good;
  longer.append(0);
  expectRefused(longer);
  for (OdUInt32 bit = 0; bit < good.size() * 8; ++bit) {
    OdBinaryData flipped = good;
    flipped.setAt(bit / 8, static_cast<OdUInt8>(flipped[bit / 8] ^ (1u << (bit % 8))));
    expectRefused(flipped);
  }
}

TEST_F(OdModelerStoredBody, NewerFormsAndOtherModellersAreNamed) {
  OdBinaryData bytes = bytesOf(box(1.0, 1.0, 1.0));
  OdBinaryData newer = bytes;
  newer.setAt(4, 2);
  OdBinaryData other;
  odWriteEnvelope({static_cast<OdModelerEngine>(77), {}, "?"}, other);
  for (const OdBinaryData& data : {newer, other}) {
    OdModelerBodyPtr result;
    const OdStatus status = odModeler().deserialise(data, result);
    EXPECT_EQ(status.code, eUnsupportedVersion);
    EXPECT_FALSE(status.text.isEmpty());
  }
}

}  // namespace
