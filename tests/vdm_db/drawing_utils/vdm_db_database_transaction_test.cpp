// Tests of the guard that rolls a drawing back.
#include "vdm_db/drawing_utils/vdm_db_database_transaction.h"

#include "platform/db/layer_table.h"
#include "platform/db/locked_layers.h"
#include "platform/entities/viewport.h"
#include "tests/support/reference_testing.h"

namespace {

constexpr bool kByUndo[] = {false, true};

class VdmDbDatabaseTransactionTest : public ReferenceTest {
 protected:
  VdmDbDatabaseTransactionTest() {
    m_drawing->startUndoRecord();
    addLine(m_modelSpace);
  }
};

TEST_F(VdmDbDatabaseTransactionTest, RollsBackUnlessToldNotTo) {
  for (const bool byUndo : kByUndo) {
    const OdUInt32 before = countEntities(m_modelSpace);
    const OdUInt32 steps = m_drawing->numUndoSteps();
    { const VdmDbDatabaseTransaction unused(m_drawing, true, byUndo); }
    EXPECT_EQ(m_drawing->numUndoSteps(), steps);
    {
      const VdmDbDatabaseTransaction guard(m_drawing, false, byUndo);
      addLine(m_modelSpace);
      m_drawing->startUndoRecord();
      addLine(m_modelSpace);
    }
    EXPECT_EQ(countEntities(m_modelSpace), before);
    EXPECT_EQ(m_drawing->numUndoSteps(), steps);
    EXPECT_FALSE(m_drawing->hasRedo());
    {
      VdmDbDatabaseTransaction guard(m_drawing, false, byUndo);
      addLine(m_modelSpace);
      guard.setNoAbort();
    }
    EXPECT_EQ(countEntities(m_modelSpace), before + 1);
    EXPECT_EQ(m_drawing->numActiveTransactions(), 0u);
    EXPECT_TRUE(m_drawing->undoRecording());
  }
}

TEST_F(VdmDbDatabaseTransactionTest, KeepsTheViewOnRequest) {
  const OdDbObjectId space = m_drawing->getPaperSpaceId();
  OdDbObjectIdArray ids;
  for (const OdInt16 number : {OdInt16{5}, OdInt16{2}}) {  // the second one is active
    const OdDbViewportPtr viewport = OdDbViewport::createObject();
    viewport->setNumber(number);
    ids.append(addTo(space, viewport));
  }
  edit<OdDbLayerTableRecord>(m_drawing->getLayerZeroId())->setIsLocked(true);
  const auto setHeight = [](const OdDbObjectId& id, double height) {
    oddbOpenThroughLock<OdDbViewport>(id)->setViewHeight(height);
  };
  for (const bool byUndo : kByUndo) {
    for (const bool keep : {false, true}) {
      m_drawing->clearUndo();
      {
        const VdmDbDatabaseTransaction guard(m_drawing, keep, byUndo);
        for (const OdDbObjectId& id : ids) setHeight(id, 42);
        addLine(m_modelSpace);
      }
      EXPECT_EQ(open<OdDbViewport>(ids[0])->viewHeight(), 210);
      EXPECT_EQ(open<OdDbViewport>(ids[1])->viewHeight(), keep ? 42 : 210);
      EXPECT_EQ(countEntities(m_modelSpace), 1u);
      EXPECT_FALSE(m_drawing->hasUndo());
      setHeight(ids[1], 210);
    }
  }
}

}  // namespace
