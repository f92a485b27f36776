// Tests of what the host lends: finding of files, the mode of copying parameters, units of blocks.
#include <filesystem>

#include "platform/base/non_copyable.h"
#include "platform/cloning/id_mapping.h"
#include "tests/platform/db/db_testing.h"
#include "tests/support/test_folder.h"

namespace {

namespace fs = std::filesystem;

/// Makes a folder the current one while it lives.
class CurrentFolder : OdNonCopyable {
 public:
  explicit CurrentFolder(const fs::path& folder) : m_previous(fs::current_path()) {
    fs::current_path(folder);
  }
  ~CurrentFolder() { fs::current_path(m_previous); }

 private:
  fs::path m_previous;
};

class OdDbHostAppServicesTest : public DrawingVerbs, public testing::Test {
 protected:
  OdString put(const char* name) {
    fs::create_directories(fs::path(m_folder.file(name)).parent_path());
    writeBytes(m_folder.file(name), name);
    return m_folder.odFile(name);
  }

  TestFolder m_folder;
  FilingHost m_host;
};

TEST_F(OdDbHostAppServicesTest, FindsFilesBesideTheDrawingThenInItsFoldersAndNowhereElse) {
  const OdString inFirst = put("first/lines.txt");
  const OdString inSecond = put("second/lines.txt");
  const OdString onlySecond = put("second/sub/other.txt");
  const OdString beside = put("drawings/lines.txt");
  put("current/here.txt");
  put("secret.txt");
  const CurrentFolder current(m_folder.file("current"));
  m_host.addSearchFolder(m_folder.odFile("first"));
  m_host.addSearchFolder(m_folder.odFile("second/"));
  m_host.addSearchFolder(m_folder.odFile("second/sub/.."));  // the same folder
  EXPECT_EQ(m_host.searchFolders().size(), 2u);
  const OdDbDatabasePtr drawing = m_host.createDatabase();

  EXPECT_EQ(m_host.findFile(L"lines.txt", nullptr), inFirst);
  EXPECT_EQ(m_host.findFile(L"lines.txt", drawing), inFirst);  // the drawing has no file yet
  EXPECT_EQ(m_host.findFile(L"sub/other.txt", nullptr), onlySecond);
  EXPECT_EQ(m_host.findFile(inSecond, nullptr), inSecond);
  for (const wchar_t* name : {L"", L"here.txt", L"./here.txt", L"sub", L"../secret.txt",
                              L"sub/../../secret.txt", L"none.txt"}) {
    EXPECT_TRUE(m_host.findFile(name, drawing).isEmpty()) << OdString(name).utf8();
  }
  saveAs(drawing, m_folder.odFile("drawings/a.vdm"));
  EXPECT_EQ(m_host.findFile(L"lines.txt", drawing), beside);
  EXPECT_TRUE(m_host.removeSearchFolder(m_folder.odFile("first/")));
  EXPECT_FALSE(m_host.removeSearchFolder(m_folder.odFile("first")));
  EXPECT_EQ(m_host.findFile(L"lines.txt", nullptr), inSecond);
}

TEST_F(OdDbHostAppServicesTest, RefusesFoldersAndModesThatAreNone) {
  put("file");
  EXPECT_EQ(raisedBy([&] { m_host.addSearchFolder(L"relative"); }), eInvalidInput);
  EXPECT_EQ(raisedBy([&] { m_host.addSearchFolder(L""); }), eInvalidInput);
  EXPECT_EQ(raisedBy([&] { m_host.addSearchFolder(m_folder.odFile("file")); }), eFileNotFound);
  EXPECT_TRUE(m_host.searchFolders().isEmpty());
  EXPECT_EQ(m_host.parameterCopyMode(), 1);
  m_host.setParameterCopyMode(4);
  EXPECT_EQ(raisedBy([&] { m_host.setParameterCopyMode(5); }), eInvalidInput);
  EXPECT_EQ(raisedBy([&] { m_host.setParameterCopyMode(-1); }), eInvalidInput);
  EXPECT_EQ(m_host.parameterCopyMode(), 4);
}

// Units of drawings and blocks are undone, saved and cloned.
class InsertUnitsTest : public DbTest {
 protected:
  static OdDb::UnitsValue unitsOf(OdDbObjectId block) {
    return open<OdDbBlockTableRecord>(block)->blockInsertUnits();
  }
};

TEST_F(InsertUnitsTest, AreUndoneSavedAndCloned) {
  const TestFolder folder;
  FilingHost host;
  OdDbDatabasePtr drawing = host.createDatabase();
  const OdDbObjectId block = DrawingVerbs::addBlock(drawing, L"PLATE");
  drawing->startUndoRecord();
  edit<OdDbBlockTableRecord>(block)->setBlockInsertUnits(OdDb::kUnitsInches);
  drawing->setINSUNITS(OdDb::kUnitsMeters);
  EXPECT_EQ(drawing->undo(), eOk);
  EXPECT_EQ(unitsOf(block), OdDb::kUnitsUndefined);
  EXPECT_NE(drawing->getINSUNITS(), OdDb::kUnitsMeters);
  EXPECT_EQ(drawing->redo(), eOk);
  const OdDbHandle handle = block.getHandle();
  saveAs(drawing, folder.odFile("a.vdm"));
  drawing = nullptr;
  drawing = read(host, folder.odFile("a.vdm"));
  const OdDbObjectId saved = drawing->getOdDbObjectId(handle);
  EXPECT_EQ(unitsOf(saved), OdDb::kUnitsInches);
  EXPECT_EQ(drawing->getINSUNITS(), OdDb::kUnitsMeters);

  const OdDbIdMappingPtr mapping = OdDbIdMapping::createObject(OdDb::kDcWblkObjects);
  ASSERT_EQ(drawing->wblockCloneObjects({saved}, m_database->getBlockTableId(), *mapping,
                                        OdDb::kDrcIgnore),
            eOk);
  OdDbIdPair pair(saved);
  ASSERT_TRUE(mapping->compute(pair));
  EXPECT_EQ(unitsOf(pair.value()), OdDb::kUnitsInches);
  EXPECT_EQ(drawing->wblock(saved)->getINSUNITS(), OdDb::kUnitsInches);
}

}  // namespace
