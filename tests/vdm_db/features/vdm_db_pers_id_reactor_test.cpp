// Tests of the reactors through which features refer to geometry.
#include "vdm_db/features/vdm_db_pers_id_reactor.h"

#include "tests/support/model_testing.h"
#include "vdm_db/features/vdm_db_feature_data.h"
#include "vdm_db/features/vdm_feature_impl.h"

/// Notes which references it is asked about, and lives without those of mask 8.
class LinkFeature : public VdmFeature {
 public:
  VDM_DECLARE_FEATURE_MEMBERS(LinkFeature)

  static inline std::vector<std::pair<int, int>> asked;

  [[nodiscard]] bool isRequiredDependency(int mask, int tag) override {
    asked.emplace_back(mask, tag);
    return mask != 8;
  }
};
VDM_DEFINE_FEATURE_CLASS(LinkFeature, VdmFeature, L"LinkFeature")

namespace {

class VdmDbPersIdReactorTest : public RegisteredClass<LinkFeature>, public ModelTest {
 protected:
  VdmDbPersIdReactorTest() {
    m_feature = m_drawing->addOdDbObject(VdmDbFeatureData::create(LinkFeature::desc(), L"Link"),
                                         m_modelSpace);
    m_ids = {addDependency(face(m_carrier, 1)), addDependency(face(m_carrier, 2))};
    LinkFeature::asked.clear();
  }
  OdDbObjectId addReactor(int mask) const {
    const VdmFeaturePtr feature = m_feature.safeOpenAs<VdmFeature>(OdDb::kForWrite);
    const OdDbObjectId id = feature->addReactor(VdmDbPersIdReactor::desc(), mask, 7);
    edit<VdmDbPersIdReactor>(id)->addPersIds(m_ids);
    return id;
  }
  [[nodiscard]] OdDbObjectIdArray held(OdDbObjectId reactor) const {
    return open<VdmDbPersIdReactor>(reactor)->persIds();
  }

  OdDbObjectId m_feature;
  OdDbObjectIdArray m_ids;
};

TEST_F(VdmDbPersIdReactorTest, WatchesWhatItHolds) {
  const OdDbObjectId id = watch({});
  const VdmDbPersIdReactorPtr reactor = edit<VdmDbPersIdReactor>(id);
  reactor->setMask(6);
  reactor->setTag(-1);
  reactor->addPersIds({m_ids[0], OdDbObjectId(), m_ids[1], m_ids[0]});
  EXPECT_EQ(reactor->persIds(), m_ids);
  EXPECT_TRUE(open<VdmDbObjectDependency>(m_ids[0])->isWatched());
  reactor->removePersIds({m_ids[0]});
  EXPECT_FALSE(open<VdmDbObjectDependency>(m_ids[0])->isWatched());
  EXPECT_TRUE(reactor->hasMask(4) && reactor->hasMask(-1) && !reactor->hasMask(8));
  EXPECT_TRUE(reactor->hasTag(-1) && !reactor->hasTag(0));
  const OdDbHandle handle = id.getHandle();
  reopen();
  const VdmDbPersIdReactorPtr read =
      open<VdmDbPersIdReactor>(m_drawing->getOdDbObjectId(handle), OdDb::kForWrite);
  EXPECT_EQ(read->mask(), 6u);
  EXPECT_EQ(read->tag(), -1);
  EXPECT_EQ(read->persIds(), OdDbObjectIdArray{listed()[1]});
  read->removePersIds();
  EXPECT_FALSE(open<VdmDbObjectDependency>(listed()[1])->isWatched());
}

TEST_F(VdmDbPersIdReactorTest, TheLastDependencyTakesTheReactorAlong) {
  const OdDbObjectId needed = addReactor(4);
  const OdDbObjectId optional = addReactor(8);
  expectUndoable([this] { edit<OdDbObject>(m_ids[0])->erase(); });
  EXPECT_EQ(held(needed), OdDbObjectIdArray{m_ids[1]});
  EXPECT_TRUE(LinkFeature::asked.empty());
  ASSERT_EQ(m_drawing->undo(), eOk);
  EXPECT_EQ(held(needed), m_ids);
  edit<VdmDbPersIdReactor>(needed)->removePersIds();
  edit<OdDbObject>(m_ids[1])->erase();
  expectUndoable([this] { edit<OdDbObject>(m_ids[0])->erase(); });
  EXPECT_TRUE(optional.isErased());
  EXPECT_FALSE(m_feature.isErased());
  EXPECT_EQ(LinkFeature::asked.front(), std::pair(8, 0));  // whatever the tag
  ASSERT_EQ(m_drawing->undo(), eOk);
  edit<VdmDbPersIdReactor>(needed)->addPersIds({m_ids[0]});
  expectUndoable([this] { edit<OdDbObject>(m_ids[0])->erase(); });
  EXPECT_TRUE(m_feature.isErased() && needed.isErased());
}

TEST_F(VdmDbPersIdReactorTest, TheAuditLetsGoWhatIsLost) {
  const OdDbObjectId id = watch(m_ids);
  edit<OdDbObject>(m_ids[0])->removePersistentReactor(id);
  EXPECT_TRUE(edit<VdmDbPersIdReactor>(id)->doAudit());
  EXPECT_TRUE(open<VdmDbObjectDependency>(m_ids[0])->isWatched());
  for (const OdDbObjectId& dependency : m_ids) {
    edit<OdDbObject>(dependency)->removePersistentReactor(id);
    edit<OdDbObject>(dependency)->erase();
  }
  EXPECT_FALSE(edit<VdmDbPersIdReactor>(id)->doAudit());
  EXPECT_TRUE(held(id).isEmpty());
}

}  // namespace
