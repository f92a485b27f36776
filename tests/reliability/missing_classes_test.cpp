// Drawings with components in programs that do not know their classes, and back again.
#include <filesystem>

#include "host/naming/name_feature.h"
#include "platform/cloning/id_mapping.h"
#include "platform/db/dictionary.h"
#include "platform/db/proxy_object.h"
#include "platform/entities/block_reference.h"
#include "tests/host/modeling/modeling_testing.h"
#include "tests/support/dump_drawing.h"

using namespace vdm_host;

namespace {

/// What is missing: the classes of the host, or those of features and references as well.
enum class Missing { kHost, kAll };

class MissingClasses : public ModelingTest, public testing::WithParamInterface<Missing> {
 protected:
  MissingClasses() {
    const EditResult made = insert(hole(L"H", 20.0), 100.0, 100.0);
    put(boss(L"B", 40.0, 20.0), 200.0, 100.0);
    m_insert = made.created.getHandle();
    m_plateHandle = m_plate.getHandle();
    const OdDbFullSubentPath wall(
        m_plate, OdDbSubentId(OdDb::kFaceSubentType, openingFace(made.feature, 1)));
    OdDbObjectId name;
    EXPECT_EQ(nameReference(wall, OdString(L"wall"), name), eOk);
    save(kMade);
    m_made = reopen(kMade);
  }
  ~MissingClasses() override {
    close();
    loadAgain();
    for (const char* file : {kMade, kSaved}) std::filesystem::remove(file);
  }

  void close() {
    m_editor.reset();
    m_database.release();
  }
  /// Gives the state of the file.
  std::string reopen(const char* path) {
    close();
    m_database = read(m_files, OdString(path));
    if (m_database.isNull()) throw std::runtime_error("no drawing");
    m_plate = m_database->getOdDbObjectId(m_plateHandle);
    m_editor = std::make_unique<ModelEditor>(m_database.get());
    return dump();
  }
  [[nodiscard]] std::string dump() const { return dumpDrawing(m_database.get()); }
  std::string reopenWithout(const char* path) {
    close();
    VdmHostModule::unload();
    if (GetParam() == Missing::kAll) VdmModule::unload();
    return reopen(path);
  }
  void loadAgain() {
    VdmModule::load();
    VdmHostModule::load();
  }
  std::string reopenWith(const char* path) {
    close();
    loadAgain();
    return reopen(path);
  }
  [[nodiscard]] std::size_t countProxies() const {
    std::size_t count = 0;
    m_database->forEachId([&count](OdDbObjectId id) {
      if (id.objectClass() == OdDbProxyObject::desc()) ++count;
      return true;
    });
    return count;
  }
  [[nodiscard]] OdDbObjectId insertId() const { return m_database->getOdDbObjectId(m_insert); }
  void moveByHand() const {
    insertId()
        .safeOpenAs<OdDbBlockReference>(OdDb::kForWrite)
        ->transformBy(OdGeMatrix3d::translation({30.0, 20.0, 0.0}));
  }
  void save(const char* path) const { saveAs(m_database, OdString(path)); }

  static constexpr const char* kMade = "missing_made.vdm";
  static constexpr const char* kSaved = "missing_saved.vdm";
  OdDbHandle m_insert;
  OdDbHandle m_plateHandle;
  std::string m_made;
};

TEST_P(MissingClasses, AreKeptByLoadingUndoAndSavingAndWorkAgain) {
  const std::string before = reopenWithout(kMade);
  EXPECT_GE(countProxies(), 2U);
  const std::function<void()> edits[] = {
      [&] { moveByHand(); },
      [&] { insertId().safeOpenObject(OdDb::kForWrite)->erase(); },
      [&] {
        m_plate.safeOpenObject(OdDb::kForWrite)->erase();
        blockRecord(m_database->getModelSpaceId(), OdDb::kForWrite)->setOrigin({1.0, 2.0, 3.0});
      },
  };
  for (const auto& edit : edits) {
    m_database->startUndoRecord();
    edit();
    const std::string after = dump();
    ASSERT_EQ(m_database->undo(), eOk);
    ASSERT_EQ(firstDifference(before, dump()), "");
    ASSERT_EQ(m_database->redo(), eOk);
    ASSERT_EQ(firstDifference(after, dump()), "");
    ASSERT_EQ(m_database->undo(), eOk);
  }
  save(kSaved);
  ASSERT_EQ(firstDifference(m_made, reopenWith(kSaved)), "");
  EXPECT_EQ(countProxies(), 0U);
  ASSERT_TRUE(done(m_editor->moveObject(insertId(), {40.0, 10.0, 0.0})));
  EXPECT_TRUE(isAsFresh(m_base));
}

TEST_P(MissingClasses, AnInsertMovedMeanwhileIsFollowedOnceTheyAreThere) {
  reopenWithout(kMade);
  moveByHand();
  save(kSaved);
  reopenWith(kSaved);
  ASSERT_TRUE(done(m_editor->update()));
  EXPECT_TRUE(isAsFresh(m_base));
  ASSERT_TRUE(done(m_editor->moveObject(insertId(), {40.0, 10.0, 0.0})));
  EXPECT_TRUE(isAsFresh(m_base));
}

TEST_P(MissingClasses, AreClonedWithAllThatTheyReferTo) {
  const std::string before = reopenWithout(kMade);
  const auto cloneAll = [&] {
    const OdDbObjectId space = m_database->getModelSpaceId();
    const OdDbObjectId root = m_database->getNamedObjectsDictionaryId();
    OdDbObjectIdArray ids;
    ids.append(blockRecord(space)->extensionDictionary());
    return m_database->deepCloneObjects(ids, root, *OdDbIdMapping::createObject());
  };
  const std::size_t proxies = countProxies();
  m_database->startUndoRecord();
  ASSERT_EQ(cloneAll(), eOk);
  // The drawing's own constraint manager is no part; a manager of features chooses what to clone.
  if (GetParam() == Missing::kAll) {
    EXPECT_EQ(countProxies(), 2 * proxies - 1);
  }
  ASSERT_EQ(m_database->undo(), eOk);
  EXPECT_EQ(firstDifference(before, dump()), "");
}

TEST_P(MissingClasses, GoIntoAnotherDrawingWithTheirBlock) {
  reopenWithout(kMade);
  OdDbDatabasePtr copy = m_database->wblock(m_database->getModelSpaceId());
  ASSERT_FALSE(copy.isNull());
  saveAs(copy, OdString(kSaved));
  copy.release();
  reopenWith(kSaved);
  m_plate = entities<OdDb3dSolid>(m_database->getModelSpaceId()).at(0)->objectId();
  const auto inserts = entities<OdDbBlockReference>(m_database->getModelSpaceId());
  ASSERT_EQ(inserts.size(), 2U);
  for (const OdDbBlockReferencePtr& insert : inserts) {
    ASSERT_TRUE(done(m_editor->moveObject(insert->objectId(), {40.0, 10.0, 0.0})));
    EXPECT_TRUE(isAsFresh(m_base));
  }
}

INSTANTIATE_TEST_SUITE_P(What, MissingClasses, testing::Values(Missing::kHost, Missing::kAll),
                         [](const auto& row) {
                           return row.param == Missing::kHost ? "HostOnly" : "ModuleToo";
                         });

}  // namespace
