// Groups of entities, and the ones that switch theirs off.
#include "platform/db/layer_table.h"
#include "tests/vdm_db/features/feature_testing.h"
#include "vdm_db/concrete_features/vdm_diff_feature.h"
#include "vdm_db/concrete_features/vdm_suppress_feature.h"
#include "vdm_db/parameters/vdm_assoc_variable_ext.h"
#include "vdm_db/parameters/vdm_variable_evaluation.h"
#include "vdm_db/parameters/vdm_variable_names.h"
#include "vdm_db/parameters/vdm_variable_values.h"

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
  EXPECT_TRUE(feature<VdmSuppressFeature>(id)->isSuppressed()) << "the expression says so";
  EXPECT_EQ(layerOf(m_carrier), L"Parts");
  EXPECT_EQ(layerOf(m_other), L"0");
  std::map<OdDbTypedId, OdDbTypedId> kept;
  ASSERT_TRUE(open<VdmDbFeatureData>(id)->getReadProperties().getProperty(L"aEntLayerKey", kept));
  EXPECT_TRUE(kept.empty()) << "layers are kept while they are needed";
}

TEST_F(VdmGroupFeatureTest, AnExpressionSwitchesSuppression) {
  edit<OdDbEntity>(m_carrier)->setLayer(addLayer(L"Parts"));
  OdDbObjectId id = add<VdmSuppressFeature>({m_carrier});
  const auto suppress = [&](OdDb::OpenMode mode = OdDb::kForRead) {
    return feature<VdmSuppressFeature>(id, mode);
  };
  EXPECT_EQ(suppress()->suppressExpression(), L"1");
  EXPECT_EQ(suppress()->name(), L"G");
  OdDbObjectId variable = suppress()->variableId();
  EXPECT_EQ(vdmu::getAssocVariable(m_modelSpace, L"g", false, L""), variable);
  EXPECT_TRUE(VdmAssocVariableExt::cast(open<OdDbAssocVariable>(variable))->isSuppressVariable());
  const OdDbObjectId count = vdmu::getAssocVariable(m_modelSpace, L"count", true, L"3");
  EXPECT_FALSE(VdmAssocVariableExt::cast(open<OdDbAssocVariable>(count))->isSuppressVariable());

  m_drawing->disableUndoRecording(false);
  m_drawing->startUndoRecord();
  EXPECT_EQ(suppress(OdDb::kForWrite)->setSuppressExpression(L"count - 3"), eOk);
  EXPECT_FALSE(suppress()->isSuppressed());
  EXPECT_EQ(layerOf(m_carrier), L"Parts");
  ASSERT_EQ(m_drawing->undo(), eOk);
  EXPECT_TRUE(suppress()->isSuppressed());
  EXPECT_EQ(layerOf(m_carrier), L"*SUPPRESS");
  ASSERT_EQ(m_drawing->redo(), eOk);
  EXPECT_EQ(suppress(OdDb::kForWrite)->setSuppressExpression(L"count -"), eInvalidInput);
  for (const double value : {2.0, 3.0, 4.0}) {
    vdmu::setConstExpression(edit<OdDbAssocVariable>(count).get(), value);
    vdmu::evaluateVariables(m_modelSpace);
    EXPECT_EQ(suppress()->isSuppressed(), value != 3.0);
    EXPECT_EQ(layerOf(m_carrier), value != 3.0 ? L"*SUPPRESS" : L"Parts");
  }
  EXPECT_EQ(suppress(OdDb::kForWrite)->setName(L"count"), eDuplicateKey);
  // The name is taken: the second one's variable is anonymous, and that is what the feature shows.
  const auto second =
      feature<VdmSuppressFeature>(add<VdmSuppressFeature>({m_other}), OdDb::kForWrite);
  const OdDbObjectId own = second->variableId();
  EXPECT_EQ(second->name(), L"*" + own.getHandle().ascii());
  // Each binding adds a reactor; the first one remains the feature's.
  second->init({face(m_other, 2)});
  EXPECT_EQ(second->reactors().size(), 3U);
  EXPECT_EQ(second->variableId(), own);
  EXPECT_EQ(suppress(OdDb::kForWrite)->setName(L"Off"), eOk);
  reopenWith({&id, &variable});
  EXPECT_EQ(suppress()->name(), L"Off");
  EXPECT_EQ(suppress()->suppressExpression(), L"count - 3");
  EXPECT_EQ(suppress(OdDb::kForWrite)->setName(L"not a name"), eInvalidKey);
  const OdDbObjectId reactor = suppress()->reactors().last();
  suppress(OdDb::kForWrite)->eraseReactor(reactor, 0, 0);
  EXPECT_TRUE(id.isErased() && variable.isErased());
  EXPECT_EQ(layerOf(m_carrier), L"Parts");
}

}  // namespace
