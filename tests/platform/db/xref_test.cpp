// Tests of external references: the status table, cycles, binding, detaching.
#include "platform/cloning/xref_man.h"

#include <filesystem>
#include <fstream>

#include "tests/platform/db/clone_testing.h"
#include "tests/support/test_folder.h"

namespace {

namespace fs = std::filesystem;

class OdDbXRefManTest : public CloneTest {
 protected:
  OdString path(const char* name) const { return m_folder.odFile(name); }
  OdDbDatabasePtr reopen(const char* name) { return read(m_host, path(name)); }
  /// A drawing with a line of this length on layer WALLS.
  void writePart(const char* name, double length) {
    const OdDbDatabasePtr drawing = m_host.createDatabase();
    addLine(drawing->getModelSpaceId(), length, addLayer(drawing, L"WALLS"));
    saveAs(drawing, path(name));
  }
  static OdDbObjectId show(OdDbDatabase* drawing, OdDbObjectId block) {
    return addReference(drawing->getModelSpaceId(), block);
  }
  /// The length of the first line in the external drawing's model space.
  static double lineLength(const OdDbDatabase* drawing) {
    return length(open<OdDbBlockTableRecord>(drawing->getModelSpaceId())->entityIds().getAt(0));
  }
  static OdDbBlockTableRecordPtr blockForWrite(OdDbObjectId id) {
    return open<OdDbBlockTableRecord>(id, OdDb::kForWrite);
  }

  TestFolder m_folder;
  FilingHost m_host;
};

TEST_F(OdDbXRefManTest, StatusFollowsTheTable) {
  writePart("part.vdm", 4);
  const OdDbDatabasePtr host = m_host.createDatabase();
  ASSERT_TRUE(host->saveAs(path("host.vdm")).ok());
  OdDbObjectId id;
  ASSERT_EQ(OdDbXRefMan::attach(host, L"part.vdm", L"PART", id), eOk);
  const OdDbObjectId reference = show(host, id);
  const OdDbBlockTableRecordPtr block = blockForWrite(id);
  EXPECT_EQ(block->xrefStatus(), OdDb::kXrfResolved);
  ASSERT_NE(block->xrefDatabase(), nullptr);
  EXPECT_EQ(lineLength(block->xrefDatabase()), 4.0);
  EXPECT_TRUE(block->xrefDatabase()->isReadOnly());
  EXPECT_EQ(block->xrefDatabase()->xrefBlockId(), id);
  const auto shown = open<OdDbBlockReference>(reference);
  OdGeExtents3d box;
  EXPECT_EQ(shown->getGeomExtents(box), eOk);
  EXPECT_DOUBLE_EQ(box.diagonal().length(), 4.0) << "has the extents of what it draws";
  OdRxObjectPtrArray parts;
  EXPECT_EQ(shown->explode(parts), eNotApplicable);
  EXPECT_EQ(OdDbXRefMan::unload(block), eOk);
  EXPECT_EQ(shown->getGeomExtents(box), eNotApplicable);
  EXPECT_EQ(block->xrefStatus(), OdDb::kXrfUnloaded);
  EXPECT_EQ(block->xrefDatabase(), nullptr);
  EXPECT_EQ(OdDbXRefMan::resolve(block), eXrefUnresolved);
  EXPECT_EQ(block->xrefStatus(), OdDb::kXrfUnloaded);
  fs::rename(m_folder.path() / "part.vdm", m_folder.path() / "away.vdm");
  EXPECT_EQ(OdDbXRefMan::load(block), eFileNotFound);
  EXPECT_EQ(block->xrefStatus(), OdDb::kXrfFileNotFound);
  std::ofstream(m_folder.path() / "part.vdm") << "this is no drawing";
  OdString reason;
  EXPECT_EQ(OdDbXRefMan::resolve(block, &reason), eNotADrawing);
  EXPECT_EQ(block->xrefStatus(), OdDb::kXrfUnresolved);
  EXPECT_NE(std::string(reason.utf8()).find("part.vdm"), std::string::npos);
  EXPECT_EQ(m_host.lines.size(), 2u);
  fs::rename(m_folder.path() / "away.vdm", m_folder.path() / "part.vdm");
  EXPECT_EQ(OdDbXRefMan::resolve(block), eOk);
  EXPECT_EQ(block->xrefStatus(), OdDb::kXrfResolved);
  EXPECT_EQ(open<OdDbBlockTableRecord>(host->getModelSpaceId())->xrefStatus(), OdDb::kXrfNotAnXref);
}

TEST_F(OdDbXRefManTest, CyclesAreRefusedByName) {
  writePart("a.vdm", 1);
  writePart("b.vdm", 2);
  OdDbObjectId id;
  OdString reason;
  {
    const OdDbDatabasePtr b = reopen("b.vdm");
    EXPECT_EQ(OdDbXRefMan::attach(b, L"b.vdm", L"SELF", id), eCircularReference);
    ASSERT_EQ(OdDbXRefMan::attach(b, L"a.vdm", L"A", id), eOk);
    show(b, id);
    ASSERT_TRUE(b->save().ok());
  }
  const OdDbDatabasePtr a = reopen("a.vdm");
  const OdUInt64 count = a->approxNumObjects();
  EXPECT_EQ(OdDbXRefMan::attach(a, L"b.vdm", L"B", id, false, &reason), eCircularReference);
  const std::string text(reason.utf8());
  EXPECT_LT(text.find("a.vdm"), text.find("b.vdm"));
  EXPECT_NE(text.rfind("a.vdm"), text.find("a.vdm"));
  EXPECT_EQ(a->approxNumObjects(), count);
}

TEST_F(OdDbXRefManTest, BindingMakesAnOrdinaryBlock) {
  for (const bool insert : {false, true}) {
    writePart("part.vdm", 4);
    const OdDbDatabasePtr host = m_host.createDatabase();
    addLayer(host, L"WALLS");
    OdDbObjectId id;
    ASSERT_EQ(OdDbXRefMan::attach(host, path("part.vdm"), L"PART", id), eOk);
    show(host, id);
    host->startUndoRecord();
    ASSERT_EQ(OdDbXRefMan::bind(blockForWrite(id), insert), eOk);
    const OdDbBlockTableRecordPtr block = open<OdDbBlockTableRecord>(id);
    EXPECT_EQ(block->xrefStatus(), OdDb::kXrfNotAnXref);
    EXPECT_EQ(block->xrefDatabase(), nullptr);
    ASSERT_EQ(block->entityIds().size(), 1u);
    const OdDbLinePtr line = open<OdDbLine>(block->entityIds().getAt(0));
    EXPECT_EQ(line->endPoint().x, 4.0);
    EXPECT_EQ(line->layer(), OdString(insert ? L"WALLS" : L"PART$0$WALLS"));
    ASSERT_EQ(host->undo(), eOk);
    EXPECT_EQ(block->xrefStatus(), OdDb::kXrfUnresolved);
    EXPECT_TRUE(block->entityIds().isEmpty());
    EXPECT_EQ(OdDbXRefMan::resolve(blockForWrite(id)), eOk);
  }
}

TEST_F(OdDbXRefManTest, DetachingErasesTheReferencesToo) {
  writePart("part.vdm", 4);
  const OdDbDatabasePtr host = m_host.createDatabase();
  OdDbObjectId id;
  ASSERT_EQ(OdDbXRefMan::attach(host, path("part.vdm"), L"PART", id), eOk);
  EXPECT_EQ(OdDbXRefMan::attach(host, path("part.vdm"), L"part", id), eDuplicateRecordName);
  const OdDbObjectId reference = show(host, id);
  host->startUndoRecord();
  EXPECT_EQ(OdDbXRefMan::detach(blockForWrite(id)), eOk);
  EXPECT_TRUE(reference.isErased() && id.isErased());
  ASSERT_EQ(host->undo(), eOk);
  EXPECT_FALSE(reference.isErased());
  EXPECT_EQ(open<OdDbBlockTableRecord>(id)->xrefStatus(), OdDb::kXrfUnresolved);
  EXPECT_EQ(OdDbXRefMan::detach(blockForWrite(host->getModelSpaceId())), eNotApplicable);
}

}  // namespace
