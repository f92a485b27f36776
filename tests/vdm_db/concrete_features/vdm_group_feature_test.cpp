// Groups of entities, and the ones that switch theirs off.
#include "platform/db/layer_table.h"
#include "tests/vdm_db/features/feature_testing.h"
#include "vdm_db/concrete_features/vdm_diff_feature.h"
#include "vdm_db/concrete_features/vdm_suppress_feature.h"

namespace {

class VdmGroupFeatureTest : public FeatureTest {
 protected:
  template <class T>
  OdDbObjectId add(std::initializer_list<OdDbObjectId> entities) {
    const OdDbObjectId id = manager()->createFeatureData(T::desc(), L"G", false, false);
    OdDbFullSubentPathArray paths;
    for (const OdDbObjectId& entity : entities) paths.append(face(entity, 1));
    feature<T>(id, OdDb::kForWrite)->init(paths);
    return id;
  }
  template <class T>
  static OdSmartPtr<T> feature(OdDbObjectId id, OdDb::OpenMode mode = OdDb::kForRead) {
    return id.openAs<T>(mode);
  }
  using FeatureTest::addLayer;
  OdDbObjectId addLayer(const wchar_t* name) { return addLayer(m_drawing, name); }
  [[nodiscard]] OdString layerOf(OdDbObjectId entity) const {
    return open<OdDbEntity>(entity)->layer();
  }
  static OdResult change(OdDbObjectId id, const wchar_t* key, double value) {
    return feature<VdmSuppressFeature>(id, OdDb::kForWrite)->onPropertyModified(key, value);
  }
};

TEST_F(VdmGroupFeatureTest, BindsEntitiesAndKeepsItsDescription) {
  OdDbObjectId id = add<VdmDiffFeature>({m_carrier, m_other});
  feature<VdmGroupFeature>(id, OdDb::kForWrite)->setDescription(L"taken away");
  reopenWith({&id});
  const auto group = feature<VdmDiffFeature>(id);
  EXPECT_EQ(group->getTopEntities(), (std::unordered_set<OdDbObjectId>{m_carrier, m_other}));
  EXPECT_EQ(group->description(), L"taken away");
  EXPECT_EQ(group->getStatus(), VdmFeature::StatusInitialized);
}

TEST_F(VdmGroupFeatureTest, SuppressionMovesEntitiesAndBringsThemBack) {
  const OdDbObjectId gone = addLayer(L"Gone");
  edit<OdDbEntity>(m_carrier)->setLayer(addLayer(L"Parts"));
  edit<OdDbEntity>(m_other)->setLayer(gone);
  OdDbObjectId id = add<VdmSuppressFeature>({m_carrier, m_other});
  EXPECT_EQ(layerOf(m_carrier), L"*SUPPRESS");
  EXPECT_TRUE(VdmSuppressFeature::isEntitySuppressed(open<OdDbEntity>(m_other)));
  EXPECT_TRUE(open<OdDbLayerTableRecord>(open<OdDbEntity>(m_other)->layerId())->isFrozen());

  edit<OdDbLayerTableRecord>(gone)->erase();
  reopenWith({&id});
  EXPECT_TRUE(feature<VdmSuppressFeature>(id)->isSuppressed());
  EXPECT_EQ(change(id, L"other", 0.0), 5);
  EXPECT_EQ(change(id, L"suppress", 1.1e-10), eOk);
  EXPECT_EQ(layerOf(m_carrier), L"*SUPPRESS");
  EXPECT_EQ(change(id, L"suppress", 1e-10), eOk);
  EXPECT_FALSE(feature<VdmSuppressFeature>(id)->isSuppressed());
  EXPECT_EQ(layerOf(m_carrier), L"Parts");
  EXPECT_EQ(layerOf(m_other), L"0");
  std::map<OdDbTypedId, OdDbTypedId> kept;
  ASSERT_TRUE(open<VdmDbFeatureData>(id)->getReadProperties().getProperty(L"aEntLayerKey", kept));
  EXPECT_TRUE(kept.empty()) << "layers are kept while they are needed";
}

}  // namespace
