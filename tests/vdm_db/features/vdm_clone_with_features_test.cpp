// Tests of copies of entities: alone they know no features, otherwise they have their own.
#include "vdm_db/features/vdm_clone_with_features.h"

#include <functional>

#include "platform/db/audit_info.h"
#include "tests/vdm_db/features/feature_testing.h"
#include "vdm_db/drawing_utils/vdm_block_utils.h"
#include "vdm_db/features/vdm_feature_manager_utils.h"

class VdmCopies : public FeatureTest {
 protected:
  VdmCopies() {
    m_seat = addHole(L"seat");
    refer(m_seat, {{1, 7, {1, 2}}});
    modelObject(m_carrier, OdDb::kForWrite)->append(face(m_carrier, 3));
  }

  static OdDbObjectIdArray featuresOf(const OdDbObjectId& entity) {
    return VdmFeatureManagerUtils::getFeatures(entity, {});
  }
  [[nodiscard]] OdUInt32 findings() const {
    OdDbAuditInfo info;
    m_drawing->audit(&info);
    return info.numErrors();
  }
  static OdDbObjectId clone(OdDbDatabase* from, const OdDbObjectId& entity,
                            const OdDbObjectId& block, const OdDbIdMappingPtr& mapping) {
    const OdResult result =
        from == block.originalDatabase()
            ? from->deepCloneObjects({entity}, block, *mapping)
            : from->wblockCloneObjects({entity}, block, *mapping, OdDb::kDrcIgnore);
    EXPECT_EQ(result, eOk);
    return vdmu::findClone(*mapping, entity);
  }
  static OdDbObjectId clone(OdDbDatabase* from, const OdDbObjectId& entity,
                            const OdDbObjectId& block) {
    return clone(from, entity, block, OdDbIdMapping::createObject(OdDb::kDcObjects));
  }

  OdDbObjectId m_seat;
};

TEST_F(VdmCopies, ACopyHasNoShareInTheOriginalsModelObject) {
  const OdDbObjectId object = modelObject(m_carrier)->objectId();
  const OdDbObjectIdArray before = modelObject(m_carrier)->dependencies();
  const OdDbDatabasePtr other = m_host.createDatabase();
  std::vector<OdDbObjectId> copies;
  expectUndoable([&] {
    copies = {clone(m_drawing, m_carrier, m_modelSpace)};
    copies.push_back(clone(m_drawing, copies[0], m_modelSpace));
    copies.push_back(clone(m_drawing, m_carrier, addBlock(m_drawing, L"A")));
  });
  copies.push_back(clone(m_drawing, m_carrier, other->getModelSpaceId()));
  for (const OdDbObjectId& copy : copies) {
    EXPECT_TRUE(open<OdDbEntity>(copy)->getPersistentReactors().isEmpty());
    EXPECT_TRUE(VdmDbObject::openVdmDbObject(copy).isNull());
    EXPECT_TRUE(featuresOf(copy).isEmpty());
  }
  EXPECT_EQ(modelObject(m_carrier)->objectId(), object);
  EXPECT_EQ(modelObject(m_carrier)->dependencies(), before);
  EXPECT_EQ(featuresOf(m_carrier), OdDbObjectIdArray{m_seat});
  EXPECT_EQ(findings(), 0u);
  EXPECT_NE(modelObject(copies[0])->objectId(), object) << "it gets one when it needs one";
  edit<OdDbEntity>(m_carrier)->erase();
  EXPECT_TRUE(object.isErased());
  EXPECT_FALSE(modelObject(copies[0])->isErased());
  EXPECT_EQ(findings(), 0u);
}

TEST_F(VdmCopies, ABlockThatIsCopiedWholeKeepsItsLinksToItself) {
  const OdDbIdMappingPtr mapping = OdDbIdMapping::createObject(OdDb::kDcObjects);
  hole(m_seat, OdDb::kForWrite)->depth = -1;  // stays behind; its dependencies come along
  ASSERT_EQ(m_drawing->deepCloneObjects({m_modelSpace}, m_drawing->getBlockTableId(), *mapping),
            eOk);
  const OdDbObjectId copy = vdmu::findClone(*mapping, m_carrier);
  const VdmDbObjectPtr object = VdmDbObject::openVdmDbObject(copy);
  ASSERT_FALSE(object.isNull());
  EXPECT_EQ(object->objectId(), vdmu::findClone(*mapping, modelObject(m_carrier)->objectId()));
  EXPECT_EQ(object->attachedEntityId(), copy);
  for (const OdDbObjectId& id : object->persIdDependencies()) {
    EXPECT_EQ(placeOf(id).objectIds()[0], copy);
    EXPECT_FALSE(open<VdmDbObjectDependency>(id)->isWatched()) << "by a feature of the original";
  }
  EXPECT_EQ(featuresOf(m_carrier), OdDbObjectIdArray{m_seat});
  EXPECT_EQ(findings(), 0u);
}

TEST_F(VdmCopies, FeaturesAreTakenThatAreAboutNothingElse) {
  VdmIndexMap attributes;
  attributes.set(OdDbSubentId(OdDb::kFaceSubentType, 1), {4, 5});
  modelObject(m_carrier, OdDb::kForWrite)->setAttributes(attributes);
  hole(m_seat, OdDb::kForWrite)->depth = 12;
  const OdDbObjectId refused = addHole(L"refused"), both = addHole(L"both"), none = addHole();
  refer(refused, {{1, 0, {1}}});
  hole(refused, OdDb::kForWrite)->depth = -1;
  OdArray<VdmFeatureGroupFaces> groups;
  groups.append(VdmFeatureGroupFaces(1, {face(m_carrier, 1), face(m_other, 1)}, 0));
  hole(both, OdDb::kForWrite)->init(groups);
  const OdUInt32 numDependencies = listed().size();
  const OdDbIdMappingPtr mapping = OdDbIdMapping::createObject(OdDb::kDcObjects);
  expectUndoable(
      [&] { ASSERT_EQ(vdmu::cloneWithFeatures({m_carrier}, m_modelSpace, *mapping), eOk); });
  const OdDbObjectId copy = vdmu::findClone(*mapping, m_carrier);
  const OdDbObjectIdArray taken = featuresOf(copy);
  ASSERT_EQ(taken.size(), 1u);
  EXPECT_EQ(taken[0], vdmu::findClone(*mapping, m_seat));
  EXPECT_EQ(manager()->featureIds(), (OdDbObjectIdArray{m_seat, refused, both, none, taken[0]}));
  EXPECT_EQ(hole(taken[0])->depth, 12);
  const OdDbFullSubentPathArray faces = hole(taken[0])->getEntities(1, 7);
  ASSERT_EQ(faces.size(), 2u);
  EXPECT_EQ(faces[0], face(copy, 1));
  EXPECT_EQ(faces[1], face(copy, 2));
  EXPECT_EQ(listed().size(), numDependencies + 2);
  EXPECT_EQ(modelObject(copy)->attributes(), attributes);
  EXPECT_TRUE(modelObject(copy)->constraintDependencies().isEmpty());
  edit<OdDbEntity>(m_carrier)->erase();
  edit<VdmDbFeatureData>(m_seat)->erase();
  EXPECT_EQ(featuresOf(copy), taken);
  edit<VdmDbPersIdManager>(m_manager)->doAudit();
  EXPECT_EQ(hole(taken[0])->getEntities(1, 7), faces);
  EXPECT_EQ(findings(), 0u);
}

TEST_F(VdmCopies, ThingsThatAreCopiedTogetherKeepWhatIsBetweenThem) {
  const OdDbObjectId both = addHole(L"both");
  OdArray<VdmFeatureGroupFaces> groups;
  groups.append(VdmFeatureGroupFaces(1, {face(m_carrier, 1), face(m_other, 1)}, 0));
  hole(both, OdDb::kForWrite)->init(groups);
  const OdDbDatabasePtr drawing = m_host.createDatabase();
  for (const OdDbObjectId& block : {addBlock(m_drawing, L"A"), drawing->getModelSpaceId()}) {
    const OdDbIdMappingPtr mapping = OdDbIdMapping::createObject(OdDb::kDcObjects);
    ASSERT_EQ(vdmu::cloneWithFeatures({m_carrier, m_other}, block, *mapping), eOk);
    const OdDbObjectId copy = vdmu::findClone(*mapping, both);
    ASSERT_FALSE(hole(copy).isNull());
    EXPECT_EQ(hole(copy)->featureManagerId(), VdmDbFeatureManager::getInstance(block, false));
    const OdDbFullSubentPathArray faces = hole(copy)->getEntities(1, 0);
    ASSERT_EQ(faces.size(), 2u);
    EXPECT_EQ(faces[0], face(vdmu::findClone(*mapping, m_carrier), 1));
    EXPECT_EQ(faces[1], face(vdmu::findClone(*mapping, m_other), 1));
    EXPECT_EQ(faces[0].objectIds()[0].ownerId(), block);
  }
  const OdDbIdMappingPtr mapping = OdDbIdMapping::createObject(OdDb::kDcObjects);
  const OdDbObjectId elsewhere = addCarrier(addBlock(m_drawing, L"B"));
  EXPECT_EQ(vdmu::cloneWithFeatures({m_carrier, elsewhere}, m_modelSpace, *mapping), eInvalidInput);
}
