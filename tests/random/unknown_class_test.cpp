// Objects of the module's classes pass through programs that do not know the module.
#include <gtest/gtest.h>

#include <map>

#include "platform/cloning/id_mapping.h"
#include "platform/db/database.h"
#include "platform/db/dictionary.h"
#include "platform/db/proxy_object.h"
#include "tests/random/edit_script.h"
#include "tests/support/drawing_testing.h"
#include "tests/support/dump_drawing.h"
#include "tests/support/module_testing.h"
#include "tests/support/test_folder.h"
#include "vdm_db/properties/vdm_db_extension_data.h"

namespace {

using Records = std::map<OdUInt64, std::vector<OdUInt8>>;

class UnknownClasses : public virtual VdmModule, public DrawingVerbs, public testing::Test {
 protected:
  OdDbDatabasePtr openFile(const char* name) { return read(m_services, m_folder.odFile(name)); }
  // A drawing that has been edited at random; every dictionary in it is whole.
  void make(std::uint64_t seed) {
    const OdDbDatabasePtr database = m_services.createDatabase();
    EditScript script(seed);
    for (int edits = 0; edits < 40; ++edits) script.edit(database.get());
    saveAs(database, m_folder.odFile("made.vdm"));
  }
  // Every element of the root dictionary, with all that it owns.
  static OdResult cloneEverything(OdDbDatabase* database) {
    const OdDbObjectId root = database->getNamedObjectsDictionaryId();
    OdDbObjectIdArray ids;
    {
      const OdDbDictionaryPtr dictionary = root.safeOpenAs<OdDbDictionary>();
      const OdDbDictionaryIteratorPtr entry = dictionary->newIterator();
      for (; !entry->done(); entry->next()) ids.append(entry->objectId());
    }
    return ids.isEmpty() ? eOk
                         : database->deepCloneObjects(ids, root, *OdDbIdMapping::createObject());
  }
  void cloneAndSave(const OdDbDatabasePtr& database, const char* name) {
    ASSERT_EQ(cloneEverything(database.get()), eOk);
    saveAs(database, m_folder.odFile(name));
  }
  // The stored bytes of all objects of a class.
  Records recordsOf(const char* name, std::string_view className) {
    std::unique_ptr<OdDbRecordStore> store;
    EXPECT_TRUE(succeeded(m_services.recordStoreFactory()->open(
        m_folder.file(name), OdDbStoreOpenMode::kReadOnly, store)));
    OdUInt32 wanted = 0;
    for (const OdDbStoredClass& item : store->classes()) {
      if (item.value.find(className) != std::string::npos) wanted = item.id;
    }
    Records records;
    const OdStatus readStatus = store->readAll([&records, wanted](const OdDbRecordView& record) {
      if (record.classId == wanted) {
        records[record.handle].assign(record.data, record.data + record.size);
      }
      return true;
    });
    EXPECT_TRUE(readStatus.ok()) << readStatus.text.utf8();
    return records;
  }
  static std::size_t countProxies(OdDbDatabase* database) {
    std::size_t count = 0;
    database->forEachId([&count](OdDbObjectId id) {
      if (id.objectClass() == OdDbProxyObject::desc()) ++count;
      return true;
    });
    return count;
  }

  const TestFolder m_folder;
  FilingHost m_services;
};

TEST_F(UnknownClasses, KeepEveryByteThroughLoadCloneAndSave) {
  std::size_t proxies = 0;
  for (std::uint64_t seed = 500; seed < 530; ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    make(seed);
    cloneAndSave(openFile("made.vdm"), "known.vdm");

    unload();
    {
      const OdDbDatabasePtr database = openFile("made.vdm");
      proxies += countProxies(database.get());
      cloneAndSave(database, "unknown.vdm");
    }
    load();

    const Records before = recordsOf("made.vdm", "VdmDbExtensionData");
    const Records after = recordsOf("unknown.vdm", "VdmDbExtensionData");
    for (const auto& [handle, bytes] : before) {
      const auto kept = after.find(handle);
      ASSERT_TRUE(kept != after.end()) << handle;
      EXPECT_EQ(kept->second, bytes) << handle;
    }
    // Cloned without the module as with it: same handles, same values, same references.
    const std::string known = dumpDrawing(openFile("known.vdm").get(), DumpScope::kInFile);
    const std::string unknown = dumpDrawing(openFile("unknown.vdm").get(), DumpScope::kInFile);
    ASSERT_EQ(firstDifference(known, unknown), "");
  }
  EXPECT_GT(proxies, 30u);
}

}  // namespace
