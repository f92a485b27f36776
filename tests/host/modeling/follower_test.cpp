// Features of another module's class: every edit of what they refer to reaches them.
#include <algorithm>
#include <functional>
#include <map>
#include <utility>
#include <vector>

#include "host/naming/reference_query.h"
#include "platform/entities/line.h"
#include "tests/host/modeling/modeling_testing.h"
#include "vdm_db/features/vdm_db_feature_manager.h"
#include "vdm_db/features/vdm_feature_group_faces.h"
#include "vdm_db/features/vdm_simple_feature_interface.h"
#include "vdm_db/references/vdm_dependencies_replacement_map.h"
#include "vdm_db/update/vdm_feature_update_data.h"

using namespace vdm_host;

/// Refers to what a test gives it.
class FollowerFeature : public VdmFeature {
 public:
  VDM_DECLARE_FEATURE_MEMBERS(FollowerFeature)
  bool update(VdmFeatureUpdateData& data) override;
};
VDM_DEFINE_FEATURE_CLASS(FollowerFeature, VdmFeature, L"TestFollowerFeature")

/// Writes down for each feature how often it was called, and does what the test says.
class FollowerInterface : public VdmSimpleFeatureInterface {
 public:
  OD_RX_DECLARE_MEMBERS(FollowerInterface)

  bool prepareUpdateData(VdmFeatureUpdateData& data, bool) override {
    ++prepared[objectId()];
    const auto* moved = data.replacementMap()->findTransformedObject(watched);
    if (moved != nullptr) motion = moved->transform;
    return false;
  }
  bool initAfterUpdate(VdmFeatureUpdateData&) override {
    ++initialised[objectId()];
    const auto found = closings.find(objectId());
    if (found != closings.end()) found->second();
    return found != closings.end();
  }
  static void reset() {
    prepared.clear();
    initialised.clear();
    updates.clear();
    closings.clear();
    motion = OdGeMatrix3d();
  }

  static std::map<OdDbObjectId, int> prepared;
  static std::map<OdDbObjectId, int> initialised;
  static std::map<OdDbObjectId, std::function<void()>> updates;   ///< in the feature's update
  static std::map<OdDbObjectId, std::function<void()>> closings;  ///< in initAfterUpdate
  static OdDbObjectId watched;
  static OdGeMatrix3d motion;
};
OD_RX_DEFINE(FollowerInterface, VdmSimpleFeatureInterface, L"TestFollowerInterface")
std::map<OdDbObjectId, int> FollowerInterface::prepared;
std::map<OdDbObjectId, int> FollowerInterface::initialised;
std::map<OdDbObjectId, std::function<void()>> FollowerInterface::updates;
std::map<OdDbObjectId, std::function<void()>> FollowerInterface::closings;
OdDbObjectId FollowerInterface::watched;
OdGeMatrix3d FollowerInterface::motion;

bool FollowerFeature::update(VdmFeatureUpdateData&) {
  const auto found = FollowerInterface::updates.find(objectId());
  if (found == FollowerInterface::updates.end()) return false;
  found->second();
  return true;
}

namespace {

class FollowerTest : public ModelingTest {
 protected:
  FollowerTest() {
    FollowerFeature::rxInit();
    FollowerInterface::rxInit();
    FollowerFeature::desc()->addX(VdmUpdateFeatureInterface::desc(),
                                  FollowerInterface::createObject());
    m_block = addSolid(box(40.0, 40.0, 40.0, {0.0, 0.0, 100.0}));
    FollowerInterface::watched = m_block;
    FollowerInterface::reset();
  }
  ~FollowerTest() override {
    FollowerInterface::reset();
    m_editor.reset();
    m_database.release();
    FollowerFeature::desc()->delX(VdmUpdateFeatureInterface::desc());
    FollowerInterface::rxUninit();
    FollowerFeature::rxUninit();
  }

  OdDbObjectId follow(const std::vector<OdDbFullSubentPath>& paths) {
    const auto manager = VdmDbFeatureManager::getInstance(m_database->getModelSpaceId(), true)
                             .safeOpenAs<VdmDbFeatureManager>(OdDb::kForWrite);
    const OdDbObjectId id =
        manager->createFeatureData(FollowerFeature::desc(), L"follower", true, false);
    OdArray<VdmFeatureGroupFaces> groups;
    for (const OdDbFullSubentPath& path : paths) {
      groups.append(VdmFeatureGroupFaces(1, {path}, static_cast<int>(groups.size())));
    }
    VdmFeature::open(id, OdDb::kForWrite)->init(groups);
    return id;
  }
  static OdDbFullSubentPath face(const OdDbObjectId& solid, int index) {
    return {solid, OdDbSubentId(OdDb::kFaceSubentType, index)};
  }
  /// How often the feature was called for it.
  int calls(const OdDbObjectId& feature, const EditResult& result) {
    EXPECT_TRUE(done(result));
    m_calls = std::exchange(FollowerInterface::prepared, {});
    const int count = m_calls[feature];
    EXPECT_EQ(FollowerInterface::initialised[feature], count);
    const bool isReported =
        std::ranges::count(result.report.features, feature, &FeatureReport::feature) == 1;
    EXPECT_EQ(isReported, count != 0);
    FollowerInterface::initialised.clear();
    return count;
  }

  OdDbObjectId m_block;
  std::map<OdDbObjectId, int> m_calls;  // of all features in the last edit
};

TEST_F(FollowerTest, EveryEditOfTheSolidReachesTheFeatureOnce) {
  const OdDbObjectId follower = follow({face(m_block, 1)});
  const OdDbObjectId bystander = follow({face(m_plate, 1)});
  const OdDbObjectId tool = addSolid(box(10.0, 10.0, 10.0, {-5.0, -5.0, 135.0}));
  const std::vector<OdUInt32> edges = {3};
  struct Edit {
    const char* name;
    std::function<EditResult()> run;
  };
  const std::vector<Edit> edits = {
      {"move", [&] { return m_editor->moveObject(m_block, OdGeVector3d(1.0, 2.0, 0.0)); }},
      {"rotate", [&] { return m_editor->rotateObject(m_block, OdGeVector3d::kZAxis, 0.1); }},
      {"fillet", [&] { return m_editor->filletEdges(m_block, edges, 2.0); }},
      {"chamfer", [&] { return m_editor->chamferEdges(m_block, edges, 1.0); }},
      {"boolean",
       [&] {
         return m_editor->booleanSolid(OdModelerBooleanKind::kSubtract, m_block, tool, true);
       }},
      {"replace", [&] { return m_editor->replaceBody(m_block, box(50.0, 40.0, 40.0)); }},
      {"erase", [&] { return m_editor->eraseObject(m_block); }},
  };
  for (const Edit& edit : edits) {
    SCOPED_TRACE(edit.name);
    EXPECT_EQ(calls(follower, edit.run()), 1);
    EXPECT_EQ(m_calls[bystander], 0);
  }
}

TEST_F(FollowerTest, AllMovesOfAnEditAreInTheMapAsOne) {
  follow({face(m_block, 1)});
  const OdGeMatrix3d turn = OdGeMatrix3d::rotation(0.5, OdGeVector3d::kZAxis);
  const OdGeMatrix3d shift = OdGeMatrix3d::translation({3.0, 0.0, 0.0});
  ASSERT_TRUE(done(m_editor->edit(L"twice", [&]() -> OdStatus {
    for (const OdGeMatrix3d& move : {turn, shift})
      solid(m_block, OdDb::kForWrite)->transformBy(move);
    return {};
  })));
  EXPECT_TRUE(FollowerInterface::motion.isEqualTo(shift * turn));
}

// What a component does to the plate comes after the features were asked.
TEST_F(FollowerTest, WhatAPassDoesReachesTheFeature) {
  const OdDbObjectId follower = follow({face(m_plate, 6)});
  const EditResult made = insert(hole(L"H", 20.0), 100.0, 100.0);
  EXPECT_EQ(calls(follower, made), 1);
  EXPECT_EQ(made.report.numRounds, 2U);
  EXPECT_EQ(calls(follower, m_editor->moveObject(made.created, {50.0, 0.0, 0.0})), 1);
  EXPECT_EQ(calls(follower, m_editor->suppress(made.created)), 1);
  EXPECT_EQ(calls(follower, m_editor->update()), 0);
}

TEST_F(FollowerTest, OtherEntitiesReachTheFeatureToo) {
  const OdDbObjectId lineId = blockRecord(m_database->getModelSpaceId(), OdDb::kForWrite)
                                  ->appendOdDbEntity(OdDbLine::createObject());
  const EditResult made = insert(hole(L"H", 20.0), 100.0, 100.0);
  const OdDbObjectId ofLine = follow({OdDbFullSubentPath(lineId, OdDbSubentId())});
  const OdDbObjectId ofInsert = follow({OdDbFullSubentPath(made.created, OdDbSubentId())});
  EXPECT_EQ(calls(ofLine, m_editor->moveObject(lineId, {1.0, 0.0, 0.0})), 1);
  FollowerInterface::watched = made.created;
  EXPECT_EQ(calls(ofInsert, m_editor->moveObject(made.created, {0.0, 7.0, 0.0})), 1);
  EXPECT_TRUE(FollowerInterface::motion.isEqualTo(OdGeMatrix3d::translation({0.0, 7.0, 0.0})));
}

TEST_F(FollowerTest, AFeatureThatChangesItsSolidSettlesAndTellsTheOthers) {
  const OdDbObjectId reader = follow({face(m_block, 1)});
  const OdDbObjectId writer = follow({face(m_block, 2)});
  FollowerInterface::updates[writer] = [&] {
    solid(m_block, OdDb::kForWrite)->setBody(box(50.0, 40.0, 40.0, {1.0, 0.0, 100.0}));
  };
  const EditResult result = m_editor->moveObject(m_block, {1.0, 0.0, 0.0});
  EXPECT_TRUE(resolveReference(VdmFeature::open(reader)->getAllDependencies(false)[0]).resolved());
  EXPECT_EQ(calls(writer, result), 1);
  EXPECT_EQ(m_calls[reader], 2) << "for the move, then for the new body";
  const auto& reports = result.report.features;
  EXPECT_EQ(std::ranges::find(reports, writer, &FeatureReport::feature)->outcome,
            FeatureOutcome::kUpdated);
}

TEST_F(FollowerTest, WhatAFeatureDoesAtTheEndIsNoNewsToItself) {
  const OdDbObjectId reader = follow({face(m_block, 1)});
  const OdDbObjectId writer = follow({face(m_block, 2)});
  FollowerInterface::closings[writer] = [&] {
    solid(m_block, OdDb::kForWrite)->setBody(box(50.0, 40.0, 40.0, {1.0, 0.0, 100.0}));
  };
  EXPECT_EQ(calls(writer, m_editor->moveObject(m_block, {1.0, 0.0, 0.0})), 1);
  EXPECT_EQ(m_calls[reader], 2);
}

TEST_F(FollowerTest, FeaturesThatUndoEachOthersWorkAreRefused) {
  const OdDbObjectId first = follow({face(m_block, 1)});
  const OdDbObjectId second = follow({face(m_block, 2)});
  for (const OdDbObjectId& id : {first, second}) {
    FollowerInterface::updates[id] = [this] {
      solid(m_block, OdDb::kForWrite)->setBody(box(50.0, 40.0, 40.0, {1.0, 0.0, 100.0}));
    };
  }
  const auto state = snapshot();
  const EditResult result = m_editor->moveObject(m_block, {1.0, 0.0, 0.0});
  EXPECT_FALSE(result.ok());
  EXPECT_GE(result.status.text.find(L"does not settle"), 0) << result.status.text.utf8();
  EXPECT_EQ(snapshot(), state);
}

}  // namespace
