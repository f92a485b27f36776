// Constraint managers: files, undo, clones, ids.
#include "platform/db/id_mapping.h"
#include "platform/db/xrecord.h"
#include "tests/constraints/constraint_testing.h"

namespace {

class VdmDbConstraintManagerFiling : public ConstraintTest {
 protected:
  /// The whole record as undo keeps it.
  [[nodiscard]] std::vector<OdUInt8> bytes() const {
    OdDbFilerBuffer buffer;
    OdDbMemoryFiler filer(OdDbDwgFiler::kUndoFiler, buffer, m_drawing);
    manager()->dwgOutFields(&filer);
    return buffer.bytes;
  }
  /// Does one undo step, and expects undo and redo to give both states exactly.
  template <class Call>
  void expectUndoable(const char* what, const Call& call) {
    const std::vector<OdUInt8> before = bytes();
    m_drawing->startUndoRecord();
    call();
    const std::vector<OdUInt8> after = bytes();
    EXPECT_NE(before, after) << what;
    ASSERT_EQ(m_drawing->undo(), eOk);
    EXPECT_EQ(bytes(), before) << what << ", undone";
    ASSERT_EQ(m_drawing->redo(), eOk);
    EXPECT_EQ(bytes(), after) << what << ", redone";
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
}

TEST_F(VdmDbConstraintManagerFiling, FilesHoldNoStatus) {
  addConstraint(16, {newLine()}, L"D_1")->setUserValue(4.5);
  setStatus(Manager::kUpToDate);
  reopen();
  EXPECT_EQ(status(), Manager::kNotEvaluated);
  const VdmConstraintPtr read = constraint(1);
  EXPECT_EQ(read->type(), 16);
  EXPECT_EQ(read->name(), L"D_1");
  EXPECT_EQ(read->userValue(), 4.5);
  EXPECT_EQ(read->owner(), m_constraints);
  EXPECT_EQ(read->getArguments().size(), 1u);
  EXPECT_EQ(registry().size(), 1u);
}

TEST_F(VdmDbConstraintManagerFiling, OlderRecords) {
  OdDbFilerBuffer buffer;
  OdDbMemoryFiler filer(OdDbDwgFiler::kFileFiler, buffer, m_drawing);
  const auto write = [&](OdInt16 version, const OdString& className) {
    OdDbXrecord::createObject()->OdDbObject::dwgOutFields(&filer);
    filer.wrInt16(version);
    for (int list = 0; list < 3; ++list) filer.wrInt32(0);
    filer.wrInt32(3);
    for (const OdULong nodeId : {5u, 5u, 2u}) {
      const VdmConstraintPtr constraint = VdmConstraint::createObject();
      constraint->setNodeId(nodeId);
      filer.wrString(className);
      constraint->dwgOutFields(&filer);
    }
  };
  const auto read = [&](std::size_t at, std::size_t strings) {
    filer.startReading(at, strings);
    return editManager()->dwgInFields(&filer);
  };
  write(1, L"VdmDbConstraint");
  EXPECT_EQ(read(0, 0), eOk);
  EXPECT_EQ(nodeIds(), (std::vector<OdULong>{5, 6, 7}));
  EXPECT_EQ(constraint(7)->owner(), m_constraints);
  EXPECT_EQ(manager()->getDesignIntentOptions(), L"");

  std::size_t end = buffer.bytes.size();
  std::size_t strings = buffer.strings.size();
  write(3, L"VdmDbConstraint");
  EXPECT_EQ(read(end, strings), eCorruptData);
  end = buffer.bytes.size();
  strings = buffer.strings.size();
  write(1, L"VdmNoConstraint");
  EXPECT_EQ(raisedBy([&] { read(end, strings); }), eCorruptData);
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
  EXPECT_EQ(open<Manager>(otherId)->constraintsCount(), 1u);
  EXPECT_EQ(mine->owner(), otherId);
  EXPECT_EQ(object.ownerId(), otherId);
  ASSERT_EQ(m_drawing->undo(), eOk);
  EXPECT_EQ(constraint(1)->owner(), m_constraints);
  EXPECT_EQ(object.ownerId(), m_constraints);
  EXPECT_EQ(open<Manager>(otherId)->constraintsCount(), 0u);
  ASSERT_EQ(m_drawing->redo(), eOk);
  EXPECT_EQ(open<Manager>(otherId)->getConstraintByNodeId(1)->owner(), otherId);
}

}  // namespace
