// Tests of blocks that stand for external drawings.
#include "vdm_db/drawing_utils/vdm_xref_utils.h"

#include "tests/support/reference_testing.h"

namespace {

class VdmXrefUtilsTest : public ReferenceTest {
 protected:
  VdmXrefUtilsTest() {
    writePart("part.vdm");
    m_xref = attach(m_drawing, "part.vdm", L"PART");
  }
  OdDbObjectId m_xref;
};

TEST_F(VdmXrefUtilsTest, UnloadingKeepsTheNotificationSettingAndLeavesNoUndoStep) {
  const OdResBufPtr setting = m_drawing->getSysVar(L"XREFNOTIFY");
  m_drawing->clearUndo();
  EXPECT_NE(vdmu::getXrefBlock(m_xref), m_xref);
  vdmu::unloadXrefBlock(open<OdDbBlockTableRecord>(m_xref));
  EXPECT_EQ(open<OdDbBlockTableRecord>(m_xref)->xrefStatus(), OdDb::kXrfUnloaded);
  EXPECT_EQ(vdmu::getXrefBlock(m_xref), m_xref);
  EXPECT_TRUE(m_drawing->getSysVar(L"XREFNOTIFY")->valueEquals(*setting));
  EXPECT_EQ(m_drawing->numUndoSteps(), 0u);
  EXPECT_TRUE(m_drawing->undoRecording());
}

TEST_F(VdmXrefUtilsTest, ErasesOnlyWhatNothingShows) {
  const OdDbObjectId reference = addReference(m_modelSpace, m_xref);
  vdmu::eraseXrefBlock(m_xref);
  EXPECT_FALSE(m_xref.isErased());
  edit<OdDbEntity>(reference)->erase();
  vdmu::eraseXrefBlock(m_xref);
  EXPECT_TRUE(m_xref.isErased());
}

}  // namespace
