// Threads, and features that a copy does not take along.
#include "vdm_db/concrete_features/vdm_thread_feature.h"

#include <limits>

#include "platform/cloning/id_mapping.h"
#include "tests/vdm_db/features/feature_testing.h"
#include "vdm_db/concrete_features/vdm_drafting_group_feature.h"
#include "vdm_db/concrete_features/vdm_tracking_feature.h"

namespace {

using VdmThreadFeatureTest = FeatureTest;

TEST_F(VdmThreadFeatureTest, KeepsItsSizesAndReferences) {
  OdDbObjectId id = manager()->createFeatureData(VdmThreadFeature::desc(), L"M8", false, false);
  refer(id, {{1, -1, {1, 2}}, {2, -1, {3}}});
  {
    const auto thread = id.openAs<VdmThreadFeature>(OdDb::kForWrite);
    EXPECT_EQ(thread->pitch(), -1.0);
    EXPECT_EQ(thread->senseType(), 0);
    EXPECT_EQ(thread->setPitch(1.25), eOk);
    EXPECT_EQ(thread->setLength(20.0), eOk);
    EXPECT_EQ(thread->setStep(0.0), eOk);
    for (const double wrong : {-0.5, -std::numeric_limits<double>::infinity()}) {
      EXPECT_EQ(thread->setStep(wrong), 5);
    }
    EXPECT_EQ(thread->setLength(std::numeric_limits<double>::infinity()), eOk);
    EXPECT_EQ(thread->setSenseType(VdmThreadFeature::ESenseType(7)), eOk);
  }
  EXPECT_NE(raisedBy([&] { id.openAs<VdmThreadFeature>()->setStep(1.0); }), eOk);
  reopenWith({&id});
  const auto thread = id.openAs<VdmThreadFeature>();
  EXPECT_EQ(thread->pitch(), 1.25);
  EXPECT_EQ(thread->length(), std::numeric_limits<double>::infinity());
  EXPECT_EQ(thread->step(), 0.0);
  EXPECT_EQ(thread->senseType(), 7);
  EXPECT_EQ(thread->faces(), (OdDbFullSubentPathArray{face(m_carrier, 1), face(m_carrier, 2)}));
  EXPECT_EQ(thread->edges(), (OdDbFullSubentPathArray{face(m_carrier, 3)}));
  double depth = 0;
  open<VdmDbFeatureData>(id)->getReadProperties().getProperty(L"ThreadDepth", depth);
  EXPECT_EQ(depth, 1.25);
}

TEST_F(VdmThreadFeatureTest, TrackingOutlivesItsReferences) {
  const auto remainsOf = [this](OdRxClass* cls) {
    const OdDbObjectId id = manager()->createFeatureData(cls, L"F", false, false);
    refer(id, {{1, 0, {1}}, {1, 1, {2}}});
    const OdDbObjectIdArray dependencies = id.openAs<VdmFeature>()->getAllDependencies(false);
    edit<VdmDbObjectDependency>(dependencies[0])->erase();
    return id.isErased() ? 0u : id.openAs<VdmFeature>()->reactors().size();
  };
  EXPECT_EQ(remainsOf(VdmTrackingFeature::desc()), 1u);
  EXPECT_EQ(remainsOf(VdmDraftingGroupFeature::desc()), 0u);
  EXPECT_EQ(remainsOf(VdmThreadFeature::desc()), 0u);

  const OdDbIdMappingPtr mapping = OdDbIdMapping::createObject(OdDb::kDcCopy);
  const auto isTaken = [&](OdRxClass* cls) {
    const OdDbObjectId id = manager()->createFeatureData(cls, L"F", false, false);
    return id.openAs<VdmFeature>()->canBeCloned(*mapping);
  };
  EXPECT_TRUE(isTaken(VdmThreadFeature::desc()));
  EXPECT_FALSE(isTaken(VdmTrackingFeature::desc()));
  EXPECT_FALSE(isTaken(VdmDraftingGroupFeature::desc()));
}

}  // namespace
