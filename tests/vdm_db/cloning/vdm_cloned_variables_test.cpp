// Tests of variables of clones: which a watcher has seen, which are cleaned up, and what
// expressions of copied blocks say.
#include <cmath>
#include <set>

#include "platform/assoc/assoc_2d_constraint_group.h"
#include "platform/assoc/assoc_network.h"
#include "platform/assoc/assoc_variable.h"
#include "tests/support/model_testing.h"
#include "vdm_db/cloning/vdm_assoc_variable_cloning_watcher.h"
#include "vdm_db/cloning/vdm_clone_utils.h"
#include "vdm_db/cloning/vdm_model_cloning.h"
#include "vdm_db/cloning/vdm_variable_cleanup.h"
#include "vdm_db/drawing_utils/vdm_assoc_action_utils.h"
#include "vdm_db/drawing_utils/vdm_block_utils.h"
#include "vdm_db/parameters/vdm_variable_names.h"

namespace {

class VdmClonedVariablesTest : public ModelTest {
 protected:
  VdmClonedVariablesTest()
      : m_block(addBlock(m_drawing, L"PART")),
        m_width(add(L"width", L"10")),
        m_height(add(L"height", L"width * 2")),
        m_volume(add(L"volume", L"height * 3")),
        m_mapping(OdDbIdMapping::createObject(OdDb::kDcObjects)) {}

  OdDbObjectId add(const wchar_t* name, const wchar_t* expression) const {
    return vdmu::getAssocVariable(m_block, name, /*create=*/true, expression);
  }
  static OdDbObjectId in(OdDbObjectId block, const wchar_t* name) {
    return vdmu::getAssocVariable(block, name, /*create=*/false, OdString());
  }
  static double valueOf(OdDbObjectId variable) {
    return open<OdDbAssocVariable>(variable)->numericValue();
  }
  void clone(const OdDbObjectIdArray& ids, OdDbObjectId block) {
    EXPECT_EQ(vdmu::cloneAssocActions(m_drawing, ids, block, *m_mapping, false), eOk);
  }

  OdDbObjectId m_block, m_width, m_height, m_volume;
  OdDbIdMappingPtr m_mapping;
};

TEST_F(VdmClonedVariablesTest, ACopiedBlockComputesWithItsOwn) {
  const OdDbDatabasePtr other = m_host.createDatabase();
  addLine(m_block);
  const OdDbObjectId full = addBlock(m_drawing, L"FULL");
  (void)vdmu::getAssocVariable(full, L"width", true, L"1");
  for (const OdDbObjectId& target :
       {addBlock(m_drawing, L"EMPTY"), full, other->getModelSpaceId()}) {
    m_mapping = nullptr;
    ASSERT_EQ(vdmu::cloneBlockWithModel(m_block, target, m_mapping), eOk);
    const OdDbObjectId width = vdmu::findClone(*m_mapping, m_width);
    const OdDbObjectId height = in(target, L"height");
    ASSERT_FALSE(width.isNull() || height.isNull());
    edit<OdDbAssocVariable>(width)->setExpression(L"20");
    (void)edit<OdDbAssocVariable>(height)->evaluate(nullptr);
    EXPECT_EQ(valueOf(height), 40.0);
    EXPECT_EQ(valueOf(m_height), 20.0);
  }
  EXPECT_EQ(valueOf(in(full, L"width")), 1.0);
  OdDbObjectId copy;
  {
    m_mapping = nullptr;
    copy = vdmu::cloneBlock(m_block, /*deferXlation=*/false, m_mapping);
  }
  EXPECT_EQ(vdmu::getAssocActions(copy).size(), 3u);
}

/// Notes the copy mode of the host whenever a variable is made.
class ModeWatcher : public OdStaticRxObject<OdDbDatabaseReactor> {
 public:
  void objectAppended(const OdDbDatabase* database, const OdDbObject* object) override {
    if (object->isA() != OdDbAssocVariable::desc()) return;
    modes.insert(database->appServices()->parameterCopyMode());
  }
  std::set<int> modes;
};

TEST_F(VdmClonedVariablesTest, AHostSeesTheModeOfCopyingWhileABlockIsCopied) {
  m_drawing->appServices()->setParameterCopyMode(2);
  ModeWatcher watcher;
  m_drawing->addReactor(&watcher);
  for (const bool withModel : {true, false}) {
    watcher.modes.clear();
    m_mapping = nullptr;
    if (withModel) {
      const OdDbObjectId target = addBlock(m_drawing, L"TARGET");
      EXPECT_EQ(vdmu::cloneBlockWithModel(m_block, target, m_mapping), eOk);
    } else {
      EXPECT_FALSE(vdmu::cloneBlock(m_block, /*deferXlation=*/false, m_mapping).isNull());
    }
    EXPECT_EQ(watcher.modes, std::set<int>{3});
    EXPECT_EQ(m_drawing->appServices()->parameterCopyMode(), 2);
  }
  (void)add(L"alone", L"1");
  EXPECT_TRUE(watcher.modes.contains(2)) << "no copy is running";
  m_drawing->removeReactor(&watcher);
}

TEST_F(VdmClonedVariablesTest, AWatcherKnowsWhatWasMade) {
  const OdDbObjectId target = addBlock(m_drawing, L"TARGET");
  m_mapping->assign(OdDbIdPair(m_width, m_width));  // not cloned: the copies use it
  const auto watcher = vdmu::AssocVariableCloningWatcher::createObject();
  watcher->setMasterVariables({m_height, m_carrier, m_height});
  watcher->cloningStarted(*m_mapping);
  clone({m_height, m_volume}, target);
  const OdDbObjectId height = vdmu::findClone(*m_mapping, m_height);
  EXPECT_EQ(watcher->getClonedWithMasterVars(*m_mapping), OdDbObjectIdArray{height});
  watcher->cloningEnded(*m_mapping);
  EXPECT_EQ(watcher->getClonedWithMasterVars(*m_mapping), OdDbObjectIdArray{height});

  m_mapping = OdDbIdMapping::createObject(OdDb::kDcObjects);
  watcher->cloningStarted(*m_mapping);
  clone({m_volume, m_height, m_width}, addBlock(m_drawing, L"WHOLE"));
  watcher->cloningEnded(*m_mapping);
  EXPECT_EQ(watcher->getClonedWithMasterVars(*m_mapping),
            (OdDbObjectIdArray{vdmu::findClone(*m_mapping, m_height),
                               vdmu::findClone(*m_mapping, m_width)}));
  const OdDbObjectId late = add(L"late", L"1");  // it watches no more
  m_mapping->assign(OdDbIdPair(m_height, late));
  EXPECT_TRUE(watcher->getClonedWithMasterVars(*m_mapping).isEmpty());
  {
    const OdDbDatabasePtr other = m_host.createDatabase();
    const OdDbIdMappingPtr mapping = OdDbIdMapping::createObject(OdDb::kDcObjects);
    mapping->setDestDb(other);
    watcher->cloningStarted(*mapping);
  }  // the drawing closes under it
}

TEST_F(VdmClonedVariablesTest, WhatNothingUsesIsCleanedUpWithWhatOnlyItUses) {
  edit<OdDbObject>(m_height)->addPersistentReactor(m_carrier);  // a use
  for (const bool isUsed : {true, false}) {
    m_drawing->startUndoRecord();
    if (!isUsed) edit<OdDbObject>(m_height)->removePersistentReactor(m_carrier);
    vdmu::cleanUnusedVariables(OdArray<OdDbObjectId>{m_width, m_height, m_volume, m_carrier});
    EXPECT_TRUE(m_volume.isErased());
    EXPECT_EQ(m_height.isErased(), !isUsed);
    EXPECT_EQ(m_width.isErased(), !isUsed);
    EXPECT_FALSE(m_carrier.isErased());
    EXPECT_EQ(vdmu::getAssocActions(m_block).size(), isUsed ? 2u : 0u);
    ASSERT_EQ(m_drawing->undo(), eOk);
    EXPECT_EQ(valueOf(m_volume), 60.0);
  }
  const OdDbObjectId target = addBlock(m_drawing, L"TARGET");
  clone({m_width, m_height, m_volume}, target);
  vdmu::cleanUnusedVariables(*m_mapping);
  EXPECT_FALSE(m_volume.isErased());
  EXPECT_EQ(in(target, L"volume"), OdDbObjectId::kNull);
  vdmu::cleanUnusedVariables(m_block, 0);
  EXPECT_EQ(vdmu::getAssocActions(m_block).size(), 2u);
}

// A group moves with the geometry, and only with the whole matrix.
TEST_F(VdmClonedVariablesTest, GroupsOf2dConstraintsAreTransformed) {
  const auto group = OdDbAssoc2dConstraintGroup::createObject();
  OdDbObjectId id;
  {
    const auto network = OdDbAssocNetwork::getInstanceFromObject(m_block, false)
                             .openAs<OdDbAssocNetwork>(OdDb::kForWrite);
    id = m_drawing->addOdDbObject(group, network->objectId());
    ASSERT_EQ(network->addAction(id, /*setThisNetworkAsOwner=*/true), eOk);
  }
  const OdGeMatrix3d quarter = OdGeMatrix3d::translation({1, 2, 3}) * OdGeMatrix3d::scaling(2.0) *
                               OdGeMatrix3d::rotation(std::acos(0.0), OdGeVector3d::kXAxis);
  expectUndoable([&] { vdmu::transform2dConstraints(m_block, quarter); });
  const OdGePlane plane = open<OdDbAssoc2dConstraintGroup>(id)->getWorkPlane();
  EXPECT_TRUE(plane.origin().isEqualTo({1, 2, 3}));
  EXPECT_TRUE(plane.uAxis().isEqualTo(OdGeVector3d::kXAxis));
  EXPECT_TRUE(plane.vAxis().isEqualTo(OdGeVector3d::kZAxis)) << "a unit vector after the scaling";
  EXPECT_EQ(raisedBy([&] { vdmu::transform2dConstraints(m_block, OdGeMatrix3d::scaling(0.0)); }),
            eDegenerateGeometry);
  clone({id}, addBlock(m_drawing, L"TARGET"));
  const auto copy = open<OdDbAssoc2dConstraintGroup>(vdmu::findClone(*m_mapping, id));
  EXPECT_EQ(copy->getWorkPlane().vAxis(), plane.vAxis());
  EXPECT_NO_THROW(vdmu::transform2dConstraints(m_carrier, quarter));
}

}  // namespace
