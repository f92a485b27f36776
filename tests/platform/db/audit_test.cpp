// Tests of the check of a whole drawing: what it finds, and what mending leaves behind.
#include "platform/db/audit_info.h"
#include "tests/platform/db/clone_testing.h"

namespace {

class OdDbAuditTest : public CloneTest {
 protected:
  /// Checks, mends, checks again: the second check must find nothing. Returns the findings.
  std::vector<std::string> mend() {
    OdDbAuditInfo first;
    m_drawing->audit(&first);
    EXPECT_EQ(first.numFixes(), 0u);
    OdDbAuditInfo fixing(/*fixErrors=*/true);
    m_drawing->audit(&fixing);
    EXPECT_GE(fixing.numErrors(), first.numErrors());
    EXPECT_EQ(fixing.numFixes(), fixing.numErrors());
    OdDbAuditInfo last;
    m_drawing->audit(&last);
    EXPECT_EQ(last.numErrors(), 0u);
    std::vector<std::string> lines;
    for (const OdString& line : first.lines()) lines.push_back(std::string(line.utf8()));
    return lines;
  }
  OdDbObjectId absent() { return m_drawing->getOdDbObjectId(0x7777, /*createIfNotFound=*/true); }

  OdDbDatabasePtr m_drawing = m_host.createDatabase();
};

TEST_F(OdDbAuditTest, ReferencesToNothingBecomeNull) {
  const OdDbObjectId root = addRoot(m_drawing, L"root");
  refer(root, OdDb::kHardPointerRef, absent());
  refer(root, OdDb::kSoftPointerRef, absent());
  open<CloneNode>(root, OdDb::kForWrite)->addPersistentReactor(absent());
  const std::vector<std::string> lines = mend();
  ASSERT_EQ(lines.size(), 2u);
  EXPECT_NE(lines[0].find(std::string(root.getHandle().ascii().utf8())), std::string::npos);
  EXPECT_NE(lines[0].find("7777"), std::string::npos);
  EXPECT_TRUE(reference(root, OdDb::kHardPointerRef).isNull());
  EXPECT_EQ(reference(root, OdDb::kSoftPointerRef), absent());
  EXPECT_TRUE(node(root)->getPersistentReactors().isEmpty());
}

TEST_F(OdDbAuditTest, ObjectsWithoutAnOwnerGetOneThatCanBeReached) {
  const OdDbObjectId node = m_drawing->addOdDbObject(CloneNode::createObject(), absent());
  const OdDbObjectId child = addChild(node, L"child");
  const OdDbObjectId line = m_drawing->addOdDbObject(OdDbLine::createObject(), absent());
  EXPECT_EQ(mend().size(), 2u);
  const OdDbDictionaryPtr root = open<OdDbDictionary>(m_drawing->getNamedObjectsDictionaryId());
  const OdDbObjectId lost = root->getAt(L"audit_lost");
  EXPECT_EQ(open<OdDbDictionary>(lost)->getAt(node.getHandle().ascii()), node);
  EXPECT_EQ(node.ownerId(), lost);
  EXPECT_FALSE(child.isErased());
  const OdDbBlockTablePtr blocks = open<OdDbBlockTable>(m_drawing->getBlockTableId());
  EXPECT_EQ(open<OdDbBlockTableRecord>(blocks->getAt(L"audit_7777"))->entityIds(),
            (OdDbObjectIdArray{line}));
}

TEST_F(OdDbAuditTest, OwnersListWhatTheyOwn) {
  const OdDbObjectId named = m_drawing->getNamedObjectsDictionaryId();
  const OdDbObjectId entry = m_drawing->addOdDbObject(CloneNode::createObject(), named);
  const OdDbObjectId space = m_drawing->getModelSpaceId();
  const OdDbObjectId line = m_drawing->addOdDbObject(OdDbLine::createObject(), space);
  const OdDbObjectId root = addRoot(m_drawing, L"root");
  const OdDbObjectId child = addChild(root, L"child");
  child.safeOpenObject(OdDb::kForWrite)->setOwnerId(named);
  const OdDbObjectId second = addRoot(m_drawing, L"second");
  refer(second, OdDb::kHardOwnershipRef, line);
  EXPECT_EQ(mend().size(), 3u);
  EXPECT_TRUE(open<OdDbDictionary>(named)->has(L"audit_" + entry.getHandle().ascii()));
  EXPECT_EQ(child.ownerId(), root);
  EXPECT_EQ(line.ownerId(), second);
}

// A table takes a record under another name; a block that would contain itself takes nothing.
TEST_F(OdDbAuditTest, OwnersThatCannotListAreLeft) {
  const OdDbObjectId layers = m_drawing->getLayerTableId();
  const OdDbObjectId nameless =
      m_drawing->addOdDbObject(OdDbLayerTableRecord::createObject(), layers);
  const OdDbObjectId block = addBlock(m_drawing, L"LOOP");
  const OdDbBlockReferencePtr loop = OdDbBlockReference::createObject();
  loop->setBlockTableRecord(block);
  const OdDbObjectId inside = m_drawing->addOdDbObject(loop, block);
  OdDbAuditInfo fixing(/*fixErrors=*/true);
  m_drawing->audit(&fixing);
  OdDbAuditInfo last;
  m_drawing->audit(&last);
  EXPECT_EQ(last.numErrors(), 0u);
  EXPECT_TRUE(open<OdDbLayerTable>(layers)->has(L"audit_" + nameless.getHandle().ascii()));
  EXPECT_NE(inside.ownerId(), block);
  EXPECT_TRUE(open<OdDbBlockTableRecord>(inside.ownerId())->entityIds().contains(inside));
}

TEST_F(OdDbAuditTest, BlocksListExactlyTheReferencesThatShowThem) {
  const OdDbObjectId block = addBlock(m_drawing, L"PART");
  const OdDbObjectId line = addLine(m_drawing->getModelSpaceId(), 1);
  const OdDbObjectId reference = addReference(m_drawing->getModelSpaceId(), block);
  {
    const OdDbBlockTableRecordPtr record = open<OdDbBlockTableRecord>(block, OdDb::kForWrite);
    record->noteBlockReference(reference, false);
    record->noteBlockReference(line, true);
  }
  EXPECT_EQ(mend().size(), 2u);
  EXPECT_EQ(open<OdDbBlockTableRecord>(block)->getBlockReferenceIds(),
            (OdDbObjectIdArray{reference}));
}

}  // namespace
