// Tests of blocks that stand for external drawings.
#include "vdm_db/cloning/vdm_xref_utils.h"

#include "tests/references/reference_testing.h"

namespace {

class VdmXrefUtilsTest : public ReferenceTest {
 protected:
  VdmXrefUtilsTest() {
    writePart("part.vdm");
    m_xref = attach(m_drawing, "part.vdm", L"PART");
  }
  OdDbObjectId m_xref;
};

TEST_F(VdmXrefUtilsTest, TheModelSpaceStandsForALoadedDrawing) {
  const OdDbDatabase* part = open<OdDbBlockTableRecord>(m_xref)->xrefDatabase();
  EXPECT_EQ(vdmu::getXrefBlock(m_xref), part->getModelSpaceId());
  EXPECT_EQ(vdmu::getXrefBlock(m_modelSpace), m_modelSpace);
  EXPECT_EQ(vdmu::openXrefBlock(m_xref, false)->objectId(), part->getModelSpaceId());
  EXPECT_TRUE(vdmu::openXrefBlock(m_xref, true).isNull());
  EXPECT_TRUE(vdmu::openXrefBlock(m_modelSpace, true)->isWriteEnabled());
}

TEST_F(VdmXrefUtilsTest, UnloadingKeepsTheNotificationSettingAndLeavesNoUndoStep) {
  const OdResBufPtr setting = m_drawing->getSysVar(L"XREFNOTIFY");
  m_drawing->clearUndo();
  vdmu::unloadXrefBlock(open<OdDbBlockTableRecord>(m_xref));
  EXPECT_EQ(open<OdDbBlockTableRecord>(m_xref)->xrefStatus(), OdDb::kXrfUnloaded);
  EXPECT_EQ(vdmu::getXrefBlock(m_xref), m_xref);
  EXPECT_TRUE(m_drawing->getSysVar(L"XREFNOTIFY")->valueEquals(*setting));
  EXPECT_EQ(m_drawing->numUndoSteps(), 0u);
  EXPECT_TRUE(m_drawing->undoRecording());
}

TEST_F(VdmXrefUtilsTest, ErasesOnlyWhatNothingShows) {
  const OdDbObjectId reference = show(m_modelSpace, m_xref);
  vdmu::eraseXrefBlock(m_xref);
  EXPECT_FALSE(m_xref.isErased());
  edit<OdDbEntity>(reference)->erase();
  vdmu::eraseXrefBlock(m_xref);
  EXPECT_TRUE(m_xref.isErased());
  const OdDbObjectId block = addBlock(m_drawing, L"PLAIN");
  vdmu::eraseXrefBlock(block);
  EXPECT_FALSE(block.isErased());
}

}  // namespace
