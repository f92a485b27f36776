// Tests of editing a block in place: its constraint manager follows the copies and comes back.
#include "vdm_db/cloning/vdm_check_in.h"

#include "platform/db/audit_info.h"
#include "tests/support/dump_drawing.h"
#include "tests/support/model_testing.h"
#include "vdm_db/cloning/vdm_clone_utils.h"
#include "vdm_db/constraints/vdm_constraint_manager_services.h"
#include "vdm_db/drawing_utils/vdm_dictionary_utils.h"

namespace {

constexpr const wchar_t* kBack = L"CHECKED_IN";

/// Takes the constraint manager along, as a host does that edits blocks in place.
class ManagerEditing : public OdDbLongTransactionReactor {
 public:
  ManagerEditing() { OdDbLongTransactionMan::addReactor(this); }
  ~ManagerEditing() override { OdDbLongTransactionMan::removeReactor(this); }

  void checkingOut(OdDbLongTransaction& transaction) override {
    clone(transaction, transaction.originBlock(), transaction.destinationBlock(), L"VDM_DATABASE");
  }
  void checkedOut(OdDbLongTransaction& transaction) override {
    pairs = vdmu::convertIdMapToArray(*transaction.activeIdMap());
  }
  void checkingIn(OdDbLongTransaction& transaction) override {
    clone(transaction, transaction.destinationBlock(), transaction.originBlock(), kBack);
  }
  void checkedIn(OdDbLongTransaction& transaction) override {
    vdmu::checkInObjects(transaction, pairs, {&VdmDbConstraintManager::getInstance});
    const OdDbObjectId back =
        vdmu::getDict(transaction.database(), kBack, transaction.originBlock());
    const OdDbDictionaryPtr managers = back.safeOpenAs<OdDbDictionary>();
    for (const OdDbDictionaryIteratorPtr it = managers->newIterator(); !it->done(); it->next()) {
      const auto old = it->objectId().openAs<VdmDbConstraintManager>(OdDb::kForWrite);
      if (!old.isNull()) old->removeAllConstraints();
    }
    vdmu::deleteDict(transaction.database(), kBack, transaction.originBlock());
  }

  OdArray<OdDbIdPair> pairs;

 private:
  static void clone(OdDbLongTransaction& transaction, OdDbObjectId from, OdDbObjectId to,
                    const OdString& key) {
    const OdDbObjectId manager = VdmDbConstraintManager::getInstance(from, /*create=*/false);
    const OdDbObjectId owner = vdmu::createDict(transaction.database(), key, to);
    if (manager.isNull()) return;
    EXPECT_EQ(transaction.database()->deepCloneObjects({manager}, owner, *transaction.activeIdMap(),
                                                       /*deferXlation=*/true),
              eOk);
  }
};

class VdmCheckInTest : public ModelTest {
 protected:
  VdmCheckInTest()
      : m_part(addBlock(m_drawing, L"PART")),
        m_work(addBlock(m_drawing, L"WORK")),
        m_first(addCarrier(m_part)),
        m_second(addCarrier(m_part)) {}

  static void constrain(OdDbObjectId block, const OdDbObjectIdArray& entities,
                        const OdString& name) {
    VdmExtendedPathArray arguments;
    for (const OdDbObjectId& entity : entities) {
      VdmExtendedPath argument;
      argument.path = face(entity, 1);
      arguments.append(argument);
    }
    VdmConstraintManagerServices services;
    const auto manager =
        edit<VdmDbConstraintManager>(VdmDbConstraintManager::getInstance(block, /*create=*/true));
    const VdmConstraintPtr made =
        manager->addConstraint(1, arguments, services, name, /*flag=*/false);
    manager->setConstraintName(made, name);
  }
  static std::vector<std::pair<OdString, OdDbObjectIdArray>> constraintsOf(OdDbObjectId block) {
    std::vector<std::pair<OdString, OdDbObjectIdArray>> all;
    const auto manager =
        open<VdmDbConstraintManager>(VdmDbConstraintManager::getInstance(block, false));
    for (const VdmConstraintPtr& constraint : manager->constraints()) {
      EXPECT_EQ(constraint->owner(), manager->objectId());
      all.push_back({constraint->name(), {}});
      for (const OdDbFullSubentPath& path : constraint->getArguments()) {
        all.back().second.append(path.objectIds()[0]);
      }
    }
    return all;
  }
  [[nodiscard]] OdUInt32 findings() const {
    OdDbAuditInfo info;
    m_drawing->audit(&info);
    for (const OdString& line : std::as_const(info).lines()) ADD_FAILURE() << line.utf8();
    return info.numErrors();
  }

  ManagerEditing m_editing;
  OdDbObjectId m_part, m_work, m_first, m_second;
};

TEST_F(VdmCheckInTest, TheManagerOfTheOriginHasWhatWasEditedAndKeepsItsId) {
  for (const bool hadManager : {true, false}) {
    m_drawing->startUndoRecord();
    if (hadManager) constrain(m_part, {m_first}, L"OLD");
    const OdDbObjectId manager = VdmDbConstraintManager::getInstance(m_part, /*create=*/false);
    const VdmDbObjectPtr before = VdmDbObject::openVdmDbObject(m_first);
    const OdDbObjectId object = before.isNull() ? OdDbObjectId::kNull : before->objectId();
    OdDbObjectId transaction;
    ASSERT_EQ(OdDbLongTransactionMan::checkOut({m_first, m_second}, m_work, L"edit", transaction),
              eOk);
    const OdDbObjectIdArray copies = open<OdDbLongTransaction>(transaction)->workSet();
    constrain(m_work, copies, L"NEW");
    const std::string edited = dumpDrawing(m_drawing);
    m_drawing->startUndoRecord();
    ASSERT_EQ(OdDbLongTransactionMan::checkIn(transaction), eOk);

    std::vector<std::pair<OdString, OdDbObjectIdArray>> expected;
    if (hadManager) expected.push_back({L"OLD", {m_first}});
    expected.push_back({L"NEW", {m_first, m_second}});
    EXPECT_EQ(constraintsOf(m_part), expected);
    if (hadManager) {
      EXPECT_EQ(VdmDbConstraintManager::getInstance(m_part, /*create=*/false), manager);
      EXPECT_EQ(VdmDbObject::openVdmDbObject(m_first)->objectId(), object);
    }
    for (const OdDbObjectId& entity : {m_first, m_second}) {
      EXPECT_EQ(open<OdDbEntity>(entity)->getPersistentReactors().size(), 1u);
      EXPECT_EQ(VdmDbObject::openVdmDbObject(entity)->attachedEntityId(), entity);
    }
    EXPECT_EQ(findings(), 0u);
    ASSERT_EQ(m_drawing->undo(), eOk);
    EXPECT_EQ(dumpDrawing(m_drawing), edited);
    ASSERT_EQ(m_drawing->undo(), eOk);
  }
}

// The n-th object of the origin gets the state of the n-th that comes back. What was erased and
// added between shifts them, and an audit gives the entities the reactors that follow from it.
TEST_F(VdmCheckInTest, ModelObjectsArePairedByPosition) {
  constrain(m_part, {m_first}, L"A");
  constrain(m_part, {m_second}, L"B");
  const OdDbObjectId third = addCarrier(m_part);
  const OdDbObjectId objects[] = {VdmDbObject::openVdmDbObject(m_first)->objectId(),
                                  VdmDbObject::openVdmDbObject(m_second)->objectId()};
  OdDbObjectId transaction;
  ASSERT_EQ(
      OdDbLongTransactionMan::checkOut({m_first, m_second, third}, m_work, L"edit", transaction),
      eOk);
  const OdDbObjectIdArray copies = open<OdDbLongTransaction>(transaction)->workSet();
  edit<VdmDbObject>(VdmDbObject::openVdmDbObject(copies[0])->objectId())->eraseWithSubObjects();
  constrain(m_work, {copies[2]}, L"C");
  ASSERT_EQ(OdDbLongTransactionMan::checkIn(transaction), eOk);
  EXPECT_EQ(open<VdmDbObject>(objects[0])->attachedEntityId(), m_second);
  EXPECT_EQ(open<VdmDbObject>(objects[1])->attachedEntityId(), third);
  edit<VdmDbConstraintManager>(VdmDbConstraintManager::getInstance(m_part, false))->doAudit();
  OdDbAuditInfo info(/*fixErrors=*/true);
  m_drawing->audit(&info);
  EXPECT_EQ(VdmDbObject::openVdmDbObject(m_second)->objectId(), objects[0]);
  EXPECT_EQ(VdmDbObject::openVdmDbObject(third)->objectId(), objects[1]);
  EXPECT_EQ(findings(), 0u);
}

TEST_F(VdmCheckInTest, ALookupThatIsEmptyRaises) {
  OdDbObjectId transaction;
  ASSERT_EQ(OdDbLongTransactionMan::checkOut({m_first}, m_work, L"edit", transaction), eOk);
  const auto running = edit<OdDbLongTransaction>(transaction);
  vdmu::checkInObjects(*running, {}, {vdmu::VdmManagerLookup()});  // no active map: nothing
  struct Empty : OdDbLongTransactionReactor {
    void checkedIn(OdDbLongTransaction& ended) override {
      EXPECT_THROW(vdmu::checkInObjects(ended, {}, {vdmu::VdmManagerLookup()}),
                   std::bad_function_call);
    }
  } empty;
  OdDbLongTransactionMan::addReactor(&empty);
  EXPECT_EQ(OdDbLongTransactionMan::checkIn(transaction), eOk);
  OdDbLongTransactionMan::removeReactor(&empty);
}

}  // namespace
