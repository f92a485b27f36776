// Constraint managers: finding them, status, registry, names, audit.
#include "vdm_db/constraints/vdm_db_constraint_manager.h"

#include "tests/vdm_db/constraints/constraint_testing.h"
#include "vdm_db/constraints/vdm_constraint_manager_services.h"

namespace {

using VdmDbConstraintManagerTest = ConstraintTest;

TEST_F(VdmDbConstraintManagerTest, StandsInItsBlockAndUnderTheRoot) {
  const OdDbObjectId block = addBlock(m_drawing, L"B");
  EXPECT_TRUE(Manager::getInstance(block, /*create=*/false).isNull());
  const OdDbObjectId root = Manager::getRootCM(m_drawing, /*create=*/false);
  EXPECT_EQ(open<Manager>(root)->getAllConstraintManagers(), OdDbObjectIdArray{m_constraints});

  const OdDbObjectId manager = Manager::getInstance(block, /*create=*/true);
  EXPECT_EQ(Manager::getInstance(block, /*create=*/true), manager);
  EXPECT_EQ(open<Manager>(root)->getAllConstraintManagers(),
            (OdDbObjectIdArray{m_constraints, manager}));
  EXPECT_EQ(open<Manager>(manager)->blockId(), block);
  EXPECT_TRUE(open<Manager>(root)->blockId().isNull());
  EXPECT_TRUE(m_assertions.empty());

  Manager::getInstance(m_drawing->getPaperSpaceId(), /*create=*/true);
  EXPECT_EQ(m_assertions,
            std::vector<std::string>{
                "blockTableRecordId != blockTableRecordId.database()->getPaperSpaceId()"});
  edit<Manager>(root)->setStatus(Manager::kUpToDate);
  Manager::notifyRootCM(m_drawing);
  EXPECT_EQ(open<Manager>(root)->getStatus(), Manager::kFullyModified);
}

// The node id decides, also that of a constraint of another manager. A model object that ends asks
// for the persistent ids of its block, which this one has none of.
TEST_F(VdmDbConstraintManagerTest, RemovesByNodeId) {
  const VdmConstraintPtr own = addConstraint(3, {newLine()});
  const OdDbObjectId block = addBlock(m_drawing, L"OTHER");
  const auto other = edit<Manager>(Manager::getInstance(block, /*create=*/true));
  VdmConstraintManagerServices services;
  const VdmExtendedPathArray arguments{argument(addCarrier(block))};
  const VdmConstraintPtr foreign = other->addConstraint(3, arguments, services, L"F", false);
  editManager()->removeConstraint(foreign);
  EXPECT_EQ(manager()->constraintsCount(), 0u);
  EXPECT_TRUE(own->owner().isNull() && foreign->owner().isNull());
  m_assertions.clear();
  other->removeAllConstraints();
  EXPECT_EQ(m_assertions, std::vector<std::string>{"!csm.isNull()"});
}

TEST_F(VdmDbConstraintManagerTest, ArgumentsComeAndGo) {
  const OdDbObjectId a = newLine();
  const OdDbObjectId b = newLine();
  const VdmConstraintPtr constraint = addConstraint(3, {a});
  const VdmDbConstraintManagerPtr manager = editManager();
  VdmExtendedPathArray added;
  manager->addArguments(constraint, {argument(a), argument(b), argument(b)}, added);
  EXPECT_EQ(added.size(), 1u);
  EXPECT_EQ(constraint->getArgumentsCount(), 2u);
  EXPECT_THROW(manager->addArguments(constraint, {argument(newLine()), VdmExtendedPath()}, added),
               OdError);
  EXPECT_EQ(constraint->getArgumentsCount(), 2u);
  EXPECT_EQ(added.size(), 1u);

  const OdDbObjectId ofA = constraint->argumentIds()[0];
  const OdDbObjectId ofB = constraint->argumentIds()[1];
  manager->replaceConstraintDependencies(VdmDbObject::openVdmDbObject(a), {{ofA, m_modelSpace}},
                                         {{m_modelSpace, ofB}});
  EXPECT_EQ(constraint->argumentIds(), (OdDbObjectIdArray{ofB, ofB}));
  manager->removeArguments(constraint, {argument(b)});
  EXPECT_EQ(constraint->getArgumentsCount(), 0u);
}

TEST_F(VdmDbConstraintManagerTest, RegistersModelObjectsAndTheBlocksTheyInsert) {
  const OdDbObjectId block = addBlock(m_drawing, L"B");
  const OdDbObjectId inBlock = Manager::getInstance(block, /*create=*/true);
  const OdDbObjectId first = manager()->getVdmDbObject(addReference(m_modelSpace, block));
  const OdDbObjectId reference = addReference(m_modelSpace, block);
  const OdDbObjectId second = manager()->getVdmDbObject(reference);
  EXPECT_EQ(manager()->getVdmDbObject(reference), second);
  EXPECT_EQ(registry(), (OdDbObjectIdArray{first, second}));
  EXPECT_EQ(manager()->getAllConstraintManagers(), OdDbObjectIdArray{inBlock});

  edit<OdDbBlockReference>(reference)->erase();
  EXPECT_EQ(registry(), OdDbObjectIdArray{first});
  EXPECT_TRUE(manager()->getAllConstraintManagers().isEmpty()) << "whoever else inserts the block";

  open<Manager>(inBlock)->freezeVariable(first);
  editManager()->addChildConstraintManager(inBlock);
  edit<Manager>(inBlock)->addChildConstraintManager(m_constraints);
  manager()->unfreezeVariables();
  EXPECT_FALSE(open<Manager>(inBlock)->isVariableFrozen(first));
}

TEST_F(VdmDbConstraintManagerTest, NamesOfModelObjectsAreUnique) {
  const OdDbObjectId object = manager()->getVdmDbObject(newLine());
  const OdDbObjectId other = manager()->getVdmDbObject(newLine());
  EXPECT_NE(open<VdmDbObject>(object)->name(), open<VdmDbObject>(other)->name());
  const auto generated = [this](const wchar_t* base) {
    return manager()->generateVdmDbObjectName(base);
  };
  EXPECT_EQ(generated(L"Arm_7"), L"Arm_1");
  EXPECT_EQ(generated(L"Arm_7"), L"Arm_1") << "nobody has it yet";
  edit<VdmDbObject>(object)->setName(L"ARM_1");
  EXPECT_EQ(generated(L"Arm"), L"Arm_2");
  edit<VdmDbObject>(object)->setName(L"Leg_1");
  EXPECT_EQ(generated(L"Arm"), L"Arm_1") << "free again";
  const VdmDbObjectPtr unnamed = VdmDbObject::createObject();
  const OdDbObjectId id = m_drawing->addOdDbObject(unnamed, m_constraints);
  unnamed->attachTo(newLine());
  editManager()->setVdmDbObjects({object, other, id});
  manager()->generateVdmDbObjectNames();
  EXPECT_EQ(unnamed->name(), L"LINE_1") << "as a new one would be called";
}

TEST_F(VdmDbConstraintManagerTest, AuditFindsModelObjectsOfOtherEntities) {
  const OdDbObjectId line = newLine();
  const OdDbObjectId object = manager()->getVdmDbObject(line);
  const OdDbObjectId other = newLine();
  edit<OdDbLine>(other)->addPersistentReactor(object);
  OdDbAuditInfo found;
  editManager()->audit(&found);
  EXPECT_EQ(found.numErrors(), 1u);
  EXPECT_TRUE(found.lines().contains(other.getHandle().ascii() + L" reactor " +
                                     object.getHandle().ascii() + L" attached to " +
                                     line.getHandle().ascii()));
  OdDbAuditInfo mended(/*fixErrors=*/true);
  editManager()->audit(&mended);
  EXPECT_EQ(mended.numFixes(), 1u);
  EXPECT_FALSE(open<OdDbLine>(other)->hasPersistentReactor(object));
  EXPECT_TRUE(open<OdDbLine>(line)->hasPersistentReactor(object));
}

TEST_F(VdmDbConstraintManagerTest, MendsItsOwnReferences) {
  const OdDbObjectId line = newLine();
  const VdmConstraintPtr constraint = addConstraint(3, {line});
  const OdDbObjectId object = registry()[0];
  edit<OdDbLine>(line)->removePersistentReactor(object);
  const VdmDbObjectPtr gone = VdmDbObject::createObject();
  const OdDbObjectId erased = m_drawing->addOdDbObject(gone, m_constraints);
  editManager()->setVdmDbObjects({object, erased});
  EXPECT_THROW(editManager()->doAudit(), OdError) << "an object without entity";
  editManager()->dropFromRegistry({erased});
  editManager()->doAudit();
  EXPECT_EQ(registry(), OdDbObjectIdArray{object});
  EXPECT_TRUE(open<OdDbLine>(line)->hasPersistentReactor(object));
  EXPECT_EQ(nodeIds().size(), 1u);

  const VdmDbObjectPtr twice = edit<VdmDbObject>(manager()->getVdmDbObject(newLine()));
  editManager()->setVdmDbObjects({twice->objectId(), object, twice->objectId()});
  editManager()->unregisterVdmDbObject(twice);
  EXPECT_EQ(registry(), OdDbObjectIdArray{object});
  edit<OdDbLine>(line)->removePersistentReactor(object);
  edit<OdDbLine>(line)->erase();
  const int told = m_objectHost->changes;
  editManager()->doAudit();
  EXPECT_EQ(m_objectHost->changes, told) << "there is no entity to tell of";
  EXPECT_TRUE(nodeIds().empty() && registry().isEmpty());
}

}  // namespace
