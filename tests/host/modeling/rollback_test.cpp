// Failures within a pass: everything is rolled back and reported.
#include "platform/db/database_reactor.h"
#include "platform/modeler_wall/walled_modeler.h"
#include "tests/host/modeling/modeling_testing.h"
#include "tests/support/faulty_modeler.h"
#include "vdm_db/features/vdm_db_feature_manager.h"

using namespace vdm_host;

namespace {

class RollbackTest : public ModelingTest {
 protected:
  RollbackTest() : m_modeler(std::make_shared<FailingModeler>(odCreateOcctModeler())) {
    odSetModeler(m_modeler);
  }
  std::shared_ptr<FailingModeler> m_modeler;
};

TEST_F(RollbackTest, EveryFailingBooleanLeavesTheDrawingAsItWas) {
  const OdDbObjectId small = hole(L"small", 20.0);
  const EditResult first = insert(small, 50.0, 50.0);
  put(small, 62.0, 50.0);
  const EditResult stud = insert(boss(L"boss", 30.0, 5.0), 60.0, 60.0);
  const auto before = snapshot();
  const std::vector<std::function<EditResult()>> edits = {
      [&] { return m_editor->moveObject(first.created, OdGeVector3d(3.0, 0.0, 0.0)); },
      [&] { return m_editor->moveObject(stud.created, OdGeVector3d(0.0, -3.0, 0.0)); },
      [&] { return m_editor->eraseObject(first.created); },
  };
  for (const auto& edit : edits) {
    m_modeler->failAt(0);
    ASSERT_TRUE(done(edit()));
    const int booleans = m_modeler->count();
    ASSERT_EQ(m_database->undo(), eOk);
    int rolledBack = 0;
    for (int n = 1; n <= booleans; ++n) {
      m_modeler->failAt(n);
      const EditResult result = edit();
      m_modeler->failAt(0);
      if (result.ok()) {
        // The same was come by in another way.
        EXPECT_TRUE(isAsFresh(m_base)) << "boolean " << n;
        ASSERT_EQ(m_database->undo(), eOk);
      } else {
        ++rolledBack;
        EXPECT_TRUE(result.report.rolledBack);
        EXPECT_GE(result.report.rollbackReason.find(L"the modeller gave up"), 0)
            << result.report.rollbackReason.utf8();
      }
      ASSERT_EQ(snapshot(), before) << "boolean " << n << " of " << booleans;
    }
    EXPECT_GE(rolledBack, 2);
  }
}

// A pass of another caller: no report, no editor that rolls back.
class BarePassTest : public RollbackTest {
 protected:
  // All components in one pass; assertions are no news here.
  void bareUpdate() {
    const AssertionSink silent([](const VdmAssertion&) {});
    const VdmDbFeatureManagerPtr manager =
        VdmDbFeatureManager::getInstance(m_database->getModelSpaceId(), /*create=*/false)
            .openAs<VdmDbFeatureManager>(OdDb::kForWrite);
    manager->update(manager->featureIds());
  }
  static void move(const OdDbObjectId& insert, double x) {
    insert.safeOpenAs<OdDbBlockReference>(OdDb::kForWrite)
        ->transformBy(OdGeMatrix3d::translation({x, 0.0, 0.0}));
  }
  [[nodiscard]] double recordedX(const EditResult& item) const {
    VdmComponentFeature::Placed placed;
    return component(item.feature)->placed(placed) ? placed.transform.translation().x : 0.0;
  }
  static void erase(const OdDbObjectId& insert) { insert.safeOpenObject(OdDb::kForWrite)->erase(); }
  void setTool(const OdDbObjectId& block, const OdModelerBodyPtr& tool) const {
    const OdDbBlockTableRecordPtr record = block.safeOpenAs<OdDbBlockTableRecord>();
    const OdDb3dSolidPtr solid = OdDb3dSolid::cast(record->newIterator()->entity(OdDb::kForWrite));
    solid->setBody(tool);
  }
};

TEST_F(BarePassTest, ABoreThatWasNotCutIsNotRecordedAsCut) {
  const EditResult bore = insert(hole(L"bore", 10.0), 50.0, 50.0);
  const EditResult gone = insert(hole(L"gone", 12.0), 100.0, 50.0);
  const OdDbObjectId wide = hole(L"wide", 20.0);
  put(wide, 150.0, 100.0);
  const OdModelerBodyPtr tool = cylinder(10.0, 400.0, {0.0, 0.0, -200.0});
  move(bore.created, 30.0);
  erase(gone.created);
  setTool(wide, cylinder(900.0, 400.0, {0.0, 0.0, -200.0}));
  const double before = volume();
  bareUpdate();
  EXPECT_EQ(volume(), before) << "a tool takes all of the plate";
  EXPECT_FALSE(gone.feature.isErased()) << "its hole is there";
  EXPECT_FALSE(m_editor->update(/*force=*/true).ok());
  setTool(wide, tool);
  bareUpdate();
  EXPECT_TRUE(isAsFresh(m_base));
  EXPECT_TRUE(gone.feature.isErased());
  ASSERT_TRUE(done(m_editor->update(/*force=*/true)));
  EXPECT_TRUE(isAsFresh(m_base));
}

// Two booleans in a row fail, from each on: what the pass leaves is caught up with.
TEST_F(BarePassTest, AnUpdateAfterAFailedPassMakesUpForIt) {
  const OdDbObjectId small = hole(L"small", 20.0);
  const EditResult first = insert(small, 50.0, 50.0);
  put(small, 62.0, 50.0);
  put(boss(L"boss", 30.0, 5.0), 60.0, 60.0);
  m_modeler->failAt(0);
  move(first.created, 3.0);
  bareUpdate();
  const int booleans = m_modeler->count();
  ASSERT_GE(booleans, 3);
  int rolledBack = 0;
  for (int n = 1; n <= booleans; ++n) {
    move(first.created, n % 2 == 0 ? 3.0 : -3.0);
    const OdModelerBodyPtr before = plateBody();
    m_modeler->failAt(n, /*times=*/2);
    bareUpdate();
    m_modeler->failAt(0);
    const bool isRolledBack = plateBody() == before;
    rolledBack += isRolledBack ? 1 : 0;
    EXPECT_TRUE(isRolledBack || isAsFresh(m_base)) << "boolean " << n;
    bareUpdate();
    ASSERT_TRUE(isAsFresh(m_base)) << "boolean " << n;
  }
  EXPECT_GE(rolledBack, 2);
  ASSERT_TRUE(done(m_editor->update(/*force=*/true)));
  EXPECT_TRUE(isAsFresh(m_base)) << "what is stored heals the plate";
}

/// Raises what is no standard exception when the n-th object of the drawing is opened to be
/// changed.
class RaisingReactor : public OdStaticRxObject<OdDbDatabaseReactor> {
 public:
  RaisingReactor(OdDbDatabase& database, int at) : m_database(database), m_waits(at) {
    m_database.addReactor(this);
  }
  ~RaisingReactor() override { m_database.removeReactor(this); }
  void objectOpenedForModify(const OdDbDatabase*, const OdDbObject*) override {
    if (--m_waits == 0) throw 1;
  }
  [[nodiscard]] bool hasRaised() const { return m_waits <= 0; }

 private:
  OdDbDatabase& m_database;
  int m_waits;
};

// Whatever write of a pass fails, the solid has the cuts that are recorded, and no others.
TEST_F(BarePassTest, AFailingWritePartsNoRecordFromItsCut) {
  const OdDbObjectId small = hole(L"small", 20.0);
  const EditResult cut = insert(small, 50.0, 50.0);
  put(small, 62.0, 50.0);
  const EditResult stud = insert(boss(L"boss", 30.0, 5.0), 70.0, 60.0);
  const EditResult apart = insert(hole(L"apart", 12.0), 200.0, 100.0);
  const EditResult gone = insert(hole(L"gone", 14.0), 250.0, 150.0);
  const AssertionSink silent([](const VdmAssertion&) {});
  int numCutApart = 0;
  bool hasRaised = true;
  for (int n = 1; hasRaised; ++n) {
    const OdDbTransaction trial(m_database);
    for (const EditResult& item : {cut, stud, apart}) move(item.created, 3.0);
    erase(gone.created);
    {
      const RaisingReactor reactor(*m_database, n);
      ASSERT_NO_THROW(bareUpdate()) << "write " << n;
      hasRaised = reactor.hasRaised();
    }
    EXPECT_TRUE(isAsRecorded(m_base)) << "write " << n;
    numCutApart += hasRaised && recordedX(apart) == 203.0 ? 1 : 0;
    bareUpdate();
    EXPECT_TRUE(isAsFresh(m_base)) << "after write " << n;
    EXPECT_TRUE(isAsRecorded(m_base)) << "after write " << n;
    EXPECT_EQ(recordedX(cut), 53.0) << "after write " << n;
    EXPECT_TRUE(gone.feature.isErased()) << "after write " << n;
    ASSERT_FALSE(HasFailure());
  }
  EXPECT_GE(numCutApart, 4) << "a component whose record cannot be written fails alone";
}

// The modeller dies of one tool, behind its wall: the pass ends as if that boolean had failed.
class WalledPassTest : public BarePassTest {
 protected:
  WalledPassTest() {
    auto faulty = std::make_shared<FaultyModeler>(odCreateOcctModeler());
    odSetModeler(odCreateWalledModeler(std::move(faulty)));
  }
};

TEST_F(WalledPassTest, APassOutlivesItsModeller) {
  const EditResult here = insert(hole(L"here", 10.0), 50.0, 50.0);
  const OdDbObjectId bad = hole(L"bad", 20.0);
  const EditResult failing = insert(bad, 150.0, 100.0);
  const OdModelerBodyPtr tool = cylinder(10.0, 400.0, {0.0, 0.0, -200.0});
  setTool(bad, cylinder(fault::kCrashingTool / 2.0, 400.0, {0.0, 0.0, -200.0}));
  move(here.created, 20.0);
  move(failing.created, 20.0);
  const double before = volume();
  bareUpdate();
  EXPECT_EQ(volume(), before);
  const EditResult refused = m_editor->update();
  EXPECT_FALSE(refused.ok());
  EXPECT_GE(refused.status.text.find(L"boolean: it crashed (segmentation fault)"), 0)
      << refused.status.text.utf8();
  EXPECT_EQ(volume(), before);
  setTool(bad, tool);
  ASSERT_TRUE(done(m_editor->update()));
  EXPECT_TRUE(isAsFresh(m_base));
}

TEST_F(RollbackTest, ACutThatLeavesNothingIsRefused) {
  const OdDbObjectId block = hole(L"huge", 900.0);
  const auto before = snapshot();
  EXPECT_FALSE(insertAt(block, {150.0, 100.0, 10.0}).ok());
  EXPECT_EQ(snapshot(), before);
}

}  // namespace
