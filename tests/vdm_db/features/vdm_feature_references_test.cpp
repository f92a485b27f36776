// Tests of the references of features: masks and tags, loss, changes, transactions.
#include "tests/vdm_db/features/feature_testing.h"
#include "vdm_db/features/vdm_db_feature_manager_transaction.h"
#include "vdm_db/features/vdm_feature_color_pe.h"
#include "vdm_db/features/vdm_feature_colors.h"
#include "vdm_db/features/vdm_feature_manager_utils.h"
#include "vdm_db/features/vdm_feature_results.h"

class VdmFeatureReferences : public FeatureTest {
 protected:
  VdmFeatureReferences() : m_id(addHole()) {}

  HoleFeaturePtr hole(OdDb::OpenMode mode = OdDb::kForRead) const {
    return FeatureTest::hole(m_id, mode);
  }
  void refer(std::initializer_list<Group> groups) const { FeatureTest::refer(m_id, groups); }
  OdDbObjectId reactor(OdUInt32 index) const { return hole()->reactors()[index]; }

  OdDbObjectId m_id;
};

TEST_F(VdmFeatureReferences, MasksAreBitsAndTagsAreExact) {
  refer({{0, 5, {1}}, {1, 5, {2}}, {3, 6, {3, 1}}, {1, 6, {}}});
  struct Row {
    int mask;
    OdUInt32 all;
    OdUInt32 tag5;
  };
  for (const Row row : {Row{0, 0, 0}, {1, 3, 1}, {2, 2, 0}, {4, 0, 0}, {-1, 4, 2}}) {
    EXPECT_EQ(hole()->getDependencies(row.mask, false).size(), row.all) << row.mask;
    EXPECT_EQ(hole()->getDependencies(row.mask, 5, false).size(), row.tag5) << row.mask;
    EXPECT_EQ(hole()->getEntities(row.mask, 5).size(), row.tag5) << row.mask;
  }
  OdArray<int> tags;
  hole()->getTags(1, tags);
  EXPECT_EQ(tags, (OdArray<int>{5, 6}));
  std::map<int, OdDbObjectIdArray> byTag;
  hole()->getDependenciesGroupedByTags(-1, byTag);
  EXPECT_EQ(byTag.size(), 2u);
  EXPECT_EQ(byTag[5].size(), 2u);
  edit<VdmDbObjectDependency>(byTag[6][0])->setLinkObject(OdDbFullSubentPath());
  EXPECT_EQ(hole()->getFeatureEntities(-1, false).size(), 3u);
}

TEST_F(VdmFeatureReferences, NewOnesReplaceTheOld) {
  refer({{1, -1, {1, 2}}, {2, -1, {3}}});
  const OdDbObjectId first = reactor(0);
  const OdDbObjectId dependency = hole()->getDependencies(1, false)[0];
  hole(OdDb::kForWrite)->updatePaths(1, {face(m_carrier, 3)});
  EXPECT_EQ(reactor(0), first);
  EXPECT_EQ(hole()->getFeatureEntities(1, false), OdDbFullSubentPathArray{face(m_carrier, 3)});
  EXPECT_FALSE(open<VdmDbObjectDependency>(dependency)->isWatched());
  refer({});
  EXPECT_TRUE(hole()->reactors().isEmpty());
  EXPECT_TRUE(first.isErased());
}

TEST_F(VdmFeatureReferences, TransactionsJoinAndEndWithTheOutermostOwner) {
  const auto paths = [this](int index) { return OdDbFullSubentPathArray{face(m_carrier, index)}; };
  {
    const auto outer = VdmDbFeatureManagerTransaction::createObject();
    EXPECT_EQ(raisedBy([&] { outer->append(nullptr, paths(1), 1); }), kVdmNullFeature);
    const HoleFeaturePtr feature = hole(OdDb::kForWrite);
    {
      const auto inner = VdmDbFeatureManagerTransaction::createObject();
      EXPECT_EQ(inner.get(), outer.get());
      inner->append(feature, paths(1), 1);
      inner->append(feature, {}, 8);
    }
    outer->append(feature, paths(2), 1);
    outer->append(feature, paths(3), 3);
    outer->append(feature, paths(3), 1, 9);
    outer->append(feature, paths(2), 1, 9);
    EXPECT_TRUE(feature->getAllDependencies(false).isEmpty());
    EXPECT_TRUE(m_managerHost->calls.isEmpty());
  }
  EXPECT_EQ(m_managerHost->calls.size(), 3u);
  EXPECT_EQ(hole()->reactors().size(), 3u);
  EXPECT_EQ(hole()->getDependencies(1, 0, false).size(), 3u);
  EXPECT_EQ(hole()->getDependencies(1, 9, false).size(), 2u);
  m_managerHost->calls.clear();
  VdmDbFeatureManagerTransaction::createObject();
  EXPECT_TRUE(m_managerHost->calls.isEmpty());
}

TEST_F(VdmFeatureReferences, TooFewIdsLeaveReactorsEmptyWithoutAReport) {
  class ShortHost : public ManagerHost {
   public:
    void createDependencies(OdDbObjectIdArray& made, VdmDbPersIdManager* manager,
                            const OdDbFullSubentPathArray& paths, OdDbUserIO* userIO,
                            OdDbObjectIdArray& existing) override {
      ManagerHost::createDependencies(made, manager, paths, userIO, existing);
      existing.removeLast();
    }
  };
  VdmDbPersIdManager::desc()->addX(VdmDbPersIdManagerPE::desc(),
                                   OdRxObjectPtr(new ShortHost, kOdRxObjAttach));
  hole(OdDb::kForWrite)->updatePaths(1, {face(m_carrier, 1), face(m_carrier, 2)});
  EXPECT_EQ(hole()->reactors().size(), 1u);
  EXPECT_TRUE(hole()->getAllDependencies(false).isEmpty());
  EXPECT_TRUE(m_assertions.empty());
}

TEST_F(VdmFeatureReferences, TheLastLostDependencyDecidesAboutTheFeature) {
  refer({{4, 7, {1, 2}}, {1, -1, {3}}});
  const OdDbObjectId lost = reactor(0);
  const OdDbObjectIdArray dependencies = hole()->getDependencies(4, false);
  HoleFeature::required = false;
  m_drawing->startUndoRecord();
  edit<VdmDbObjectDependency>(dependencies[0])->erase();
  EXPECT_EQ(hole()->getDependencies(4, false), OdDbObjectIdArray{dependencies[1]});
  EXPECT_TRUE(HoleFeature::asked.empty());
  edit<VdmDbObjectDependency>(dependencies[1])->erase();
  EXPECT_EQ(HoleFeature::asked, (std::vector<std::pair<int, int>>{{4, 0}}));
  EXPECT_TRUE(lost.isErased());
  EXPECT_EQ(hole()->reactors().size(), 1u);
  ASSERT_EQ(m_drawing->undo(), eOk);
  EXPECT_EQ(hole()->getDependencies(4, false), dependencies);
  HoleFeature::required = true;
  hole(OdDb::kForWrite)->eraseReactor(m_carrier, 4, 0);
  EXPECT_FALSE(m_id.isErased());
  for (const OdDbObjectId& id : dependencies) edit<VdmDbObjectDependency>(id)->erase();
  EXPECT_TRUE(m_id.isErased());
  EXPECT_TRUE(lost.openAs<VdmDbFeatureReactor>(OdDb::kForRead, true)->blockId().isNull());
}

TEST_F(VdmFeatureReferences, OnlyReactorsThatAnswerAreAsked) {
  refer({{1, -1, {1}}});
  bool recalculation = true;
  EXPECT_FALSE(hole()->hasChanges(recalculation));
  EXPECT_FALSE(recalculation);
  const OdDbObjectId telling = hole(OdDb::kForWrite)->addReactor(TellingReactor::desc(), 1, 2);
  EXPECT_TRUE(hole()->hasChanges(recalculation));
  EXPECT_FALSE(recalculation);
  EXPECT_EQ(TellingReactor::calls, 1);
  EXPECT_EQ(open<VdmDbFeatureReactor>(telling)->blockId(), m_modelSpace);
  EXPECT_TRUE(hole(OdDb::kForWrite)->addReactor(nullptr, 1).isNull());
  EXPECT_THROW(hole(OdDb::kForWrite)->addReactor(HoleFeature::desc(), 1),
               OdError_NotThatKindOfClass);
}

namespace {

class Painter : public OdRxObjectImpl<VdmFeatureColorPE> {
 public:
  bool overrideColor(int mask, OdCmEntityColor& color) override {
    return color.isByColor() && mask == 1;
  }
};

class RedrawWatch : public OdDbObjectReactor {
 public:
  int redraws = 0;
  void modifiedGraphics(const OdDbObject*) override { ++redraws; }
};

}  // namespace

TEST_F(VdmFeatureReferences, WhatGetsOrLosesAColourIsDrawnAgain) {
  VdmFeature::desc()->addX(VdmFeatureColorPE::desc(), OdRxObjectPtr(new Painter, kOdRxObjAttach));
  RedrawWatch watch;
  open<OdDbEntity>(m_carrier)->addReactor(&watch);
  for (const bool isOn : {false, true}) {
    vdmu::GetFEATURECOLORS::setImpl(isOn ? +[] { return true; } : nullptr);
    m_id = addHole();
    const auto redraws = [&] { return std::exchange(watch.redraws, 0); };
    refer({{1, -1, {1}}});
    EXPECT_EQ(redraws(), isOn ? 1 : 0);
    refer({{2, -1, {1}}});
    EXPECT_EQ(redraws(), 0) << "no colour for this mask";
    edit<VdmDbFeatureData>(m_id)->erase();
    EXPECT_EQ(redraws(), isOn ? 1 : 0);
  }
  vdmu::GetFEATURECOLORS::setImpl(nullptr);
  open<OdDbEntity>(m_carrier)->removeReactor(&watch);
  VdmFeature::desc()->delX(VdmFeatureColorPE::desc());
}

TEST_F(VdmFeatureReferences, FeaturesAreFoundFromEntitiesAndFaces) {
  refer({{1, 4, {1, 2}}});
  hole(OdDb::kForWrite)->updatePaths(2, {face(m_carrier, 1)});  // tag 0
  const OdDbObjectId other = addHole(L"other");
  FeatureTest::refer(other, {{1, 6, {2}}});
  namespace utils = VdmFeatureManagerUtils;
  EXPECT_EQ(utils::getFeatures(m_carrier, {}), (OdDbObjectIdArray{m_id, other}));
  EXPECT_EQ(utils::getFeatures(m_carrier, {VdmFeature::desc()}).size(), 2u);
  EXPECT_TRUE(utils::getFeatures(m_carrier, {OdDbLine::desc()}).isEmpty());
  EXPECT_TRUE(utils::getFeatures(m_other, {}).isEmpty());
  EXPECT_EQ(utils::getFeatures(face(m_carrier, 1), {}), OdDbObjectIdArray{m_id});
  EXPECT_TRUE(utils::getFeatures(OdDbFullSubentPath(), {}).isEmpty());
  EXPECT_EQ(utils::getFeature(m_carrier, {}), m_id);
  utils::TagsByFeature tags;
  utils::getFeaturesByDep(hole()->getDependencies(2, false)[0], tags, {});
  EXPECT_EQ(tags[m_id], (std::set<int>{0, 4}));
}
