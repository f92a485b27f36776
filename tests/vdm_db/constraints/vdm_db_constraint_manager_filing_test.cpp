// Constraint managers: files, undo, clones, ids.
#include "platform/cloning/id_mapping.h"
#include "platform/db/xrecord.h"
#include "tests/vdm_db/constraints/constraint_testing.h"

namespace {

class VdmDbConstraintManagerFiling : public ConstraintTest {
 protected:
  /// The whole record as undo keeps it.
  [[nodiscard]] std::string wholeState() const override {
    OdDbFilerBuffer buffer;
    OdDbMemoryFiler filer(OdDbDwgFiler::kUndoFiler, buffer, m_drawing);
    manager()->dwgOutFields(&filer);
    return {buffer.bytes.begin(), buffer.bytes.end()};
  }
  void expectUndoable(const char* what, const std::function<void()>& call) {
    SCOPED_TRACE(what);
    ModelTest::expectUndoable(call);
  }
  [[nodiscard]] VdmConstraintPtr constraint(OdULong nodeId) const {
    return manager()->getConstraintByNodeId(nodeId);
  }
};

TEST_F(VdmDbConstraintManagerFiling, UndoRestoresEveryByte) {
  const OdDbObjectId line = newLine();
  const OdDbObjectId other = newLine();
  addConstraint(10, {line});
  setStatus(Manager::kUpToDate);
  m_drawing->disableUndoRecording(false);
  expectUndoable("an object modified", [&] { manager()->notifyAboutModifications(line, true); });
  expectUndoable("another set", [&] { manager()->setModifiedObjects({other}); });
  expectUndoable("status", [&] { setStatus(Manager::kNotEvaluated); });
  expectUndoable("a model object", [&] { manager()->getVdmDbObject(other); });
  expectUndoable("a child", [&] { editManager()->addChildConstraintManager(line); });
  expectUndoable("a value", [&] { constraint(1)->setUserValue(2.0); });
  expectUndoable("a constraint", [&] { addConstraint(12, {line, other}, L"D"); });
  expectUndoable("removal", [&] { editManager()->removeConstraint(constraint(2)); });
  expectUndoable("parts and the whole", [&] {
    manager()->notifyAboutModifications(other, true);
    constraint(1)->setEnabled(false);
    manager()->notifyAboutModifications(line, true);
  });
  EXPECT_EQ(constraint(1)->owner(), m_constraints);

  manager()->notifyAboutModifications(other, true);
  const int before = m_solver.invalidations;
  ASSERT_EQ(m_drawing->undo(), eOk);
  EXPECT_GT(m_solver.invalidations, before) << "what the solver derived is outdated";
}

TEST_F(VdmDbConstraintManagerFiling, EditsOfAConstraintInUseReachItsManager) {
  addConstraint(3, {newLine()});
  reopen();
  const VdmConstraintPtr held = constraint(1);
  m_drawing->pageOut(0);
  held->setEnabled(false);
  EXPECT_FALSE(constraint(1)->isEnabled());
  reopen();
  EXPECT_TRUE(held->owner().isNull()) << "its drawing is closed";
  held->setEnabled(true);
  EXPECT_FALSE(constraint(1)->isEnabled());
}

TEST_F(VdmDbConstraintManagerFiling, FilesHoldNoStatus) {
  addConstraint(16, {newLine()}, L"D_1");
  setStatus(Manager::kUpToDate);
  reopen();
  EXPECT_EQ(status(), Manager::kNotEvaluated);
  EXPECT_EQ(constraint(1)->owner(), m_constraints);
  EXPECT_EQ(constraint(1)->getArguments().size(), 1u);
  EXPECT_EQ(registry().size(), 1u);
}

TEST_F(VdmDbConstraintManagerFiling, OlderRecords) {
  OdDbFilerBuffer buffer;
  OdDbMemoryFiler filer(OdDbDwgFiler::kFileFiler, buffer, m_drawing);
  std::size_t begin = 0, strings = 0;
  const auto read = [&](OdInt16 version, const OdString& className) {
    OdDbXrecord::createObject()->OdDbObject::dwgOutFields(&filer);
    filer.wrInt16(version);
    for (const OdInt32 count : {0, 0, 2}) filer.wrInt32(count);
    for (int i = 0; i < 2; ++i) filer.wrSoftPointerId(m_modelSpace);
    filer.wrInt32(3);
    for (const OdULong nodeId : {5u, 5u, 2u}) {
      const VdmConstraintPtr constraint = VdmConstraint::createObject();
      constraint->setNodeId(nodeId);
      filer.wrString(className);
      constraint->dwgOutFields(&filer);
    }
    filer.startReading(std::exchange(begin, buffer.bytes.size()),
                       std::exchange(strings, buffer.strings.size()));
    return editManager()->dwgInFields(&filer);
  };
  EXPECT_EQ(read(1, L"VdmDbConstraint"), eOk);
  EXPECT_EQ(nodeIds(), (std::vector<OdULong>{5, 6, 7}));
  EXPECT_EQ(constraint(7)->owner(), m_constraints);
  EXPECT_EQ(manager()->getDesignIntentOptions(), L"");
  expectUndoable("the audit", [&] { editManager()->doAudit(); });
  EXPECT_EQ(manager()->getAllConstraintManagers(), OdDbObjectIdArray({m_modelSpace, {}}));

  EXPECT_EQ(read(3, L"VdmDbConstraint"), eCorruptData);
  EXPECT_EQ(raisedBy([&] { read(1, L"VdmNoConstraint"); }), eCorruptData);
}

TEST_F(VdmDbConstraintManagerFiling, NothingIsFrozenAfterLoadingAndUndoKeepsIt) {
  editManager()->freezeVariable(m_carrier);
  for (const auto type : {OdDbDwgFiler::kUndoFiler, OdDbDwgFiler::kFileFiler}) {
    EXPECT_TRUE(manager()->isVariableFrozen(m_carrier));
    VersionedFiler filer(type, 33);
    manager()->dwgOutFields(&filer);
    ASSERT_EQ(editManager()->dwgInFields(&filer.rewound()), eOk);
  }
  EXPECT_FALSE(manager()->isVariableFrozen(m_carrier));
}

TEST_F(VdmDbConstraintManagerFiling, AChildThatAFileRepeatsLeavesOnceForEachInsert) {
  const OdDbObjectId block = addBlock(m_drawing, L"B");
  const OdDbObjectId child = Manager::getInstance(block, /*create=*/true);
  const OdDbObjectId reference = addReference(m_modelSpace, block);
  manager()->getVdmDbObject(reference);
  OdDbFilerBuffer buffer;
  OdDbMemoryFiler filer(OdDbDwgFiler::kFileFiler, buffer, m_drawing);
  OdDbXrecord::createObject()->OdDbObject::dwgOutFields(&filer);
  filer.wrInt16(1);
  for (const OdInt32 count : {1, 0, 3}) {
    filer.wrInt32(count);
    if (count == 1) filer.wrHardOwnershipId(registry()[0]);
    for (int i = 0; count == 3 && i < count; ++i) filer.wrSoftPointerId(child);
  }
  filer.wrInt32(0);
  filer.startReading(0, 0);
  ASSERT_EQ(editManager()->dwgInFields(&filer), eOk);
  ASSERT_EQ(manager()->getAllConstraintManagers().size(), 3u);
  expectUndoable("erasing the insert", [&] { edit<OdDbBlockReference>(reference)->erase(); });
  EXPECT_EQ(manager()->getAllConstraintManagers().size(), 2u);
}

TEST_F(VdmDbConstraintManagerFiling, ClonesTakeModelObjectsOfClonedEntities) {
  const OdDbObjectId line = newLine();
  const OdDbObjectId object = manager()->getVdmDbObject(line);
  manager()->getVdmDbObject(newLine());
  const OdDbObjectIdArray whole = registry();
  const auto cloned = [&](OdDb::DeepCloneType context) {
    const OdDbIdMappingPtr mapping = OdDbIdMapping::createObject(context);
    mapping->setOrigDb(m_drawing);
    mapping->setDestDb(m_drawing);
    mapping->assign(OdDbIdPair(line, line));
    const OdDbObjectPtr owner = edit<OdDbObject>(m_drawing->getNamedObjectsDictionaryId());
    OdDbObjectPtr clone = manager()->deepClone(*mapping, owner);
    EXPECT_EQ(registry(), whole) << "the source is as it was";
    return VdmDbConstraintManagerPtr(clone)->vdmDbObjects();
  };
  EXPECT_EQ(cloned(OdDb::kDcCopy), OdDbObjectIdArray{object});
  EXPECT_EQ(cloned(OdDb::kDcInsertCopy), whole);
}

TEST_F(VdmDbConstraintManagerFiling, ACloneOfTheBlockHasConstraintsOfItsOwn) {
  const OdDbObjectId block = addBlock(m_drawing, L"B");
  m_constraints = Manager::getInstance(block, /*create=*/true);
  const OdDbObjectId line = addLine(block);
  addConstraint(3, {line});
  const OdDbIdMappingPtr mapping = OdDbIdMapping::createObject(OdDb::kDcObjects);
  ASSERT_EQ(m_drawing->deepCloneObjects({block}, m_drawing->getBlockTableId(), *mapping), eOk);
  OdDbIdPair ofLine(line);
  ASSERT_TRUE(mapping->compute(ofLine));
  m_constraints = Manager::getInstance(ofLine.value().ownerId(), /*create=*/false);
  EXPECT_EQ(constraint(1)->owner(), m_constraints);
  EXPECT_EQ(constraint(1)->getArguments()[0], face(ofLine.value(), 1));
  EXPECT_EQ(VdmDbObject::openVdmDbObject(ofLine.value())->objectId(), registry()[0]);
}

TEST_F(VdmDbConstraintManagerFiling, ConstraintsFollowToANewId) {
  const VdmConstraintPtr mine = addConstraint(3, {newLine()});
  const OdDbObjectId otherId = Manager::getInstance(addBlock(m_drawing, L"B"), /*create=*/true);
  const OdDbObjectId object = registry()[0];
  m_drawing->disableUndoRecording(false);
  m_drawing->startUndoRecord();
  editManager()->swapIdWith(otherId);
  EXPECT_EQ(mine->owner(), otherId);
  EXPECT_EQ(object.ownerId(), otherId);
  ASSERT_EQ(m_drawing->undo(), eOk);
  EXPECT_EQ(constraint(1)->owner(), m_constraints);
  EXPECT_EQ(object.ownerId(), m_constraints);
  ASSERT_EQ(m_drawing->redo(), eOk);
  EXPECT_EQ(open<Manager>(otherId)->getConstraintByNodeId(1)->owner(), otherId);
}

}  // namespace
