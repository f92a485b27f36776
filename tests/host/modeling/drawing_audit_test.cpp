// For each code of docs/audit.md: a good drawing made bad, what the check says, what fixing does.
#include "host/modeling/drawing_audit.h"

#include <fstream>
#include <functional>
#include <set>

#include "host/modeling/component_query.h"
#include "host/naming/name_feature.h"
#include "platform/db/dictionary.h"
#include "platform/db/xrecord.h"
#include "tests/host/modeling/modeling_testing.h"
#include "tests/platform/storage/store_testing.h"
#include "tests/support/test_folder.h"
#include "vdm_db/features/vdm_db_feature_manager.h"
#include "vdm_db/model/vdm_db_object.h"
#include "vdm_db/model/vdm_db_object_dependency.h"

using namespace vdm_host;

namespace {

class DrawingAuditTest;

/// How a drawing becomes bad: in memory, or in its file before it is opened.
struct Damage {
  const char* code;
  bool isMendable;
  std::function<void(DrawingAuditTest&)> inMemory;
  std::function<void(DrawingAuditTest&, storetest::Content&)> inRecords = nullptr;
  const char* sql = nullptr;
};

class DrawingAuditTest : public ModelingTest {
 protected:
  DrawingAuditTest() {
    const OdDbObjectId block = hole(L"H", 20.0);
    const EditResult inserted = insert(block, 100.0, 100.0);
    m_insert = inserted.created;
    m_feature = componentOf(m_insert);
    const OdDbFullSubentPath edge(m_plate, OdDbSubentId(OdDb::kEdgeSubentType, 1));
    OdDbObjectId name;
    EXPECT_EQ(nameReference(edge, L"corner", name), eOk);
    m_named =
        VdmNameFeature::cast(VdmFeature::open(name).get())->referenceIds().first().getHandle();
    m_opening = openingId().getHandle();
  }

 public:
  OdDbObjectId named() { return m_database->getNamedObjectsDictionaryId(); }
  OdDbObjectId absent() { return m_database->getOdDbObjectId(0x7777, /*createIfNotFound=*/true); }
  OdDbObjectId addDictionary(const wchar_t* name) {
    const auto root = named().safeOpenAs<OdDbDictionary>(OdDb::kForWrite);
    return root->setAt(name, OdDbDictionary::createObject());
  }
  OdDbObjectId addEntry(const OdDbObjectId& dictionary) {
    const auto opened = dictionary.safeOpenAs<OdDbDictionary>(OdDb::kForWrite);
    return opened->setAt(L"entry", OdDbXrecord::createObject());
  }
  static void setOwner(const OdDbObjectId& id, const OdDbObjectId& owner) {
    id.safeOpenObject(OdDb::kForWrite)->setOwnerId(owner);
  }
  OdDbDatabase& drawing() { return *m_database; }
  OdDbObjectId plate() { return m_plate; }
  OdDbObjectId insertId() { return m_insert; }
  OdDbObjectId otherSolid() { return addSolid(m_base); }
  OdDbObjectId openingId() {
    return component(m_feature)->openingDependencies().begin()->second.first();
  }
  OdUInt64 m_named = 0;    ///< the reference of a named edge
  OdUInt64 m_opening = 0;  ///< a reference to the face of the hole
  void moveAway() { EXPECT_TRUE(done(m_editor->moveObject(m_insert, {0.0, 900.0, 0.0}))); }

 protected:
  /// Saves the drawing, changes its file and opens it again.
  void reopen(const Damage& damage) {
    const std::string path = m_folder.file("a.vdm");
    const OdStatus saved = m_database->saveAs(OdString(path));
    ASSERT_TRUE(succeeded(saved));
    m_editor.reset();
    m_database.release();
    const auto factory = createSqliteStoreFactory();
    if (damage.inRecords) {
      const storetest::Content before = storetest::readFile(*factory, path).value();
      storetest::Content after = before;
      damage.inRecords(*this, after);
      std::unique_ptr<OdDbRecordStore> store;
      ASSERT_TRUE(succeeded(factory->open(OdString(path), OdDbStoreOpenMode::kReadWrite, store)));
      ASSERT_TRUE(succeeded(saveChanges(*store, before, after)));
    }
    if (damage.sql != nullptr) storetest::executeSql(path, damage.sql);
    OdStatus status;
    m_database = m_files.readFile(OdString(path), status);
    ASSERT_TRUE(succeeded(status));
  }
  static std::set<std::string> codesOf(const DrawingAudit& audit) {
    std::set<std::string> codes;
    for (const DrawingFinding& finding : audit.findings) {
      codes.insert(std::string(finding.code.utf8()));
    }
    return codes;
  }
  void expectFound(const Damage& damage) {
    const DrawingAudit audit = auditDrawing(m_database, AuditMode::kLook);
    EXPECT_TRUE(codesOf(audit).contains(damage.code)) << testing::PrintToString(codesOf(audit));
    EXPECT_EQ(audit.mended, 0U);
    std::set<std::pair<std::string, std::string>> texts;
    for (const DrawingFinding& finding : audit.findings) {
      EXPECT_FALSE(finding.text.isEmpty());
      if (std::string(finding.code.utf8()) == damage.code) {
        EXPECT_EQ(!finding.remedy.isEmpty(), damage.isMendable) << finding.text.utf8();
      }
      const bool isNew = texts.emplace(finding.code.utf8(), finding.text.utf8()).second;
      EXPECT_TRUE(isNew) << "twice: " << finding.text.utf8();
    }
  }

  const TestFolder m_folder;
  OdDbObjectId m_insert;
  OdDbObjectId m_feature;
};

storetest::Record& recordAt(storetest::Content& content, std::uint64_t handle) {
  return content.records.at(handle);
}

std::uint64_t handleOfLargest(const storetest::Content& content) {
  std::uint64_t handle = 0;
  std::size_t size = 0;
  for (const auto& [key, record] : content.records) {
    if (record.data.size() > size) std::tie(handle, size) = std::tuple(key, record.data.size());
  }
  return handle;
}

const std::vector<Damage>& damages() {
  using Test = DrawingAuditTest;
  using Content = storetest::Content;
  static const std::vector<Damage> rows = {
      {"no-objects", true, nullptr, [](Test&, Content& file) { file.records.clear(); }},
      {"root-missing", true, nullptr,
       [](Test&, Content& file) { file.records.erase(OdDbRootHandles::kModelSpace); }},
      {"root-missing", true, nullptr,
       [](Test&, Content& file) { file.records.erase(OdDbRootHandles::kTextStyleStandard); }},
      {"root-wrong", false, nullptr,
       [](Test&, Content& file) {
         recordAt(file, OdDbRootHandles::kPaperSpace) = recordAt(file, OdDbRootHandles::kLayerZero);
       }},
      {"handle-seed", true, nullptr,
       [](Test&, Content& file) {
         file.variables["HANDSEED"] = std::string("\x30\0\0\0\0\0\0\0", 8);
       }},
      {"handle-seed", true, nullptr,
       [](Test&, Content& file) { file.variables["HANDSEED"] = std::string(8, '\x7f'); }},
      {"record-unreadable", false, nullptr, nullptr, "UPDATE objects SET sum=sum+1 WHERE handle=8"},
      {"file-damaged", false, nullptr, nullptr,
       "DELETE FROM objects WHERE handle=(SELECT max(handle) FROM objects)"},
      {"body-unsound", false, nullptr,
       [](Test&, Content& file) {
         std::string& data = recordAt(file, handleOfLargest(file)).data;
         data[data.size() / 2] ^= 1;
       }},
      {"dangling-reference", true,
       [](Test& test) {
         const auto entry =
             test.addEntry(test.addDictionary(L"d")).safeOpenAs<OdDbXrecord>(OdDb::kForWrite);
         const OdResBufPtr chain = OdResBuf::newRb(340);
         chain->setObjectId(test.absent());
         entry->setFromRbChain(chain);
       }},
      {"dangling-reactor", true,
       [](Test& test) {
         test.plate().safeOpenObject(OdDb::kForWrite)->addPersistentReactor(test.absent());
       }},
      {"owner-cycle", true,
       [](Test& test) {
         const OdDbObjectId first = test.addDictionary(L"first");
         const OdDbObjectId second = test.addDictionary(L"second");
         Test::setOwner(first, second);
         Test::setOwner(second, first);
       }},
      {"owner-missing", true,
       [](Test& test) {
         test.drawing().addOdDbObject(OdDbXrecord::createObject(), test.absent());
       }},
      {"owner-wrong", true,
       [](Test& test) {
         Test::setOwner(test.addEntry(test.addDictionary(L"a")), test.addDictionary(L"b"));
       }},
      {"owner-lists-not", true,
       [](Test& test) { test.drawing().addOdDbObject(OdDbXrecord::createObject(), test.named()); }},
      {"owner-lists-not", true,
       [](Test& test) {
         test.drawing().addOdDbObject(OdDbXrecord::createObject(),
                                      test.drawing().getBlockTableId());
       }},
      {"owner-twice", true,
       [](Test& test) {
         const OdDbObjectId home = test.addDictionary(L"a");
         const OdDbObjectId entry = test.addEntry(home);
         test.addDictionary(L"b")
             .safeOpenAs<OdDbDictionary>(OdDb::kForWrite)
             ->setAt(L"also", entry.safeOpenObject(OdDb::kForWrite));
         Test::setOwner(entry, home);
       }},
      {"block-reference-unlisted", true,
       [](Test& test) {
         const auto insert = test.insertId().safeOpenAs<OdDbBlockReference>();
         insert->blockTableRecord()
             .safeOpenAs<OdDbBlockTableRecord>(OdDb::kForWrite)
             ->noteBlockReference(test.insertId(), /*shows=*/false);
       }},
      {"block-reference-stranger", true,
       [](Test& test) {
         const auto insert = test.insertId().safeOpenAs<OdDbBlockReference>();
         insert->blockTableRecord()
             .safeOpenAs<OdDbBlockTableRecord>(OdDb::kForWrite)
             ->noteBlockReference(test.plate(), /*shows=*/true);
       }},
      {"reactor-of-another", true,
       [](Test& test) {
         const VdmDbObjectPtr object = VdmDbObject::openVdmDbObject(test.plate());
         test.otherSolid()
             .safeOpenObject(OdDb::kForWrite)
             ->addPersistentReactor(object->objectId());
       }},
      {"feature-incomplete", true, nullptr,
       [](Test& test, Content& file) { file.records.erase(test.m_named); }},
      {"feature-references", true, nullptr,
       [](Test& test, Content& file) { file.records.erase(test.m_opening); }},
      {"reference-unneeded", true,
       [](Test& test) {
         const OdDbObjectPtr reference = test.openingId().safeOpenObject(OdDb::kForWrite);
         const OdDbObjectIdArray watchers = reference->getPersistentReactors();
         for (const OdDbObjectId& id : watchers) {
           reference->removePersistentReactor(id);
           id.safeOpenObject(OdDb::kForWrite)->erase();
         }
       }},
      {"reference-unresolved", false, [](Test& test) { test.moveAway(); }},
      {"component-incomplete", false,
       [](Test& test) { test.plate().safeOpenObject(OdDb::kForWrite)->erase(); }},
  };
  return rows;
}

TEST_F(DrawingAuditTest, AGoodDrawingHasNoFindings) {
  const auto before = snapshot();
  for (const AuditMode mode : {AuditMode::kLook, AuditMode::kFix}) {
    const DrawingAudit audit = auditDrawing(m_database, mode);
    EXPECT_TRUE(audit.findings.empty()) << testing::PrintToString(codesOf(audit));
    EXPECT_TRUE(snapshot() == before);
  }
}

/// Objects that the file does not hold yet are no fault of the file.
TEST_F(DrawingAuditTest, ADrawingFromBeforeTheStylesIsSound) {
  constexpr OdUInt64 kStyles[] = {OdDbRootHandles::kTextStyleTable, OdDbRootHandles::kDimStyleTable,
                                  OdDbRootHandles::kTextStyleStandard,
                                  OdDbRootHandles::kDimStyleStandard};
  reopen({"", true, nullptr, [&kStyles](DrawingAuditTest&, storetest::Content& file) {
            for (const OdUInt64 handle : kStyles) file.records.erase(handle);
          }});
  EXPECT_TRUE(auditDrawing(m_database, AuditMode::kLook).findings.empty());
  EXPECT_TRUE(auditDrawing(m_database, AuditMode::kFix).findings.empty());
  EXPECT_FALSE(m_database->getTextStyleTableId().isNull());
}

TEST_F(DrawingAuditTest, AChangedDrawingHasNoFindings) {
  const OdStatus saved = m_database->saveAs(m_folder.odFile("a.vdm"));
  ASSERT_TRUE(succeeded(saved));
  addEntry(addDictionary(L"new"));
  const DrawingAudit audit = auditDrawing(m_database, AuditMode::kLook);
  EXPECT_TRUE(audit.findings.empty()) << testing::PrintToString(codesOf(audit));
}

class BadDrawing : public DrawingAuditTest, public testing::WithParamInterface<std::size_t> {};

TEST_P(BadDrawing, IsSeenAndMended) {
  const Damage& damage = damages()[GetParam()];
  SCOPED_TRACE(damage.code);
  if (damage.inMemory) {
    damage.inMemory(*this);
    const auto before = snapshot();
    expectFound(damage);
    EXPECT_TRUE(snapshot() == before) << "looking changed the drawing";
  } else {
    ASSERT_NO_FATAL_FAILURE(reopen(damage));
    expectFound(damage);
  }
  const DrawingAudit fixed = auditDrawing(m_database, AuditMode::kFix);
  const DrawingAudit after = auditDrawing(m_database, AuditMode::kLook);
  EXPECT_EQ(fixed.remaining, after.errors);
  EXPECT_EQ(codesOf(after).contains(damage.code), !damage.isMendable)
      << testing::PrintToString(codesOf(after));
  for (const DrawingFinding& finding : fixed.findings) {
    if (std::string(finding.code.utf8()) == damage.code) {
      EXPECT_EQ(finding.mended, damage.isMendable);
    }
  }
}
INSTANTIATE_TEST_SUITE_P(Codes, BadDrawing, testing::Range(std::size_t{0}, damages().size()),
                         [](const auto& row) {
                           std::string name = damages()[row.param].code;
                           std::replace(name.begin(), name.end(), '-', '_');
                           return name + "_" + std::to_string(row.param);
                         });

/// The page and the damages above name the same codes.
TEST(AuditPage, ListsEachCodeThatIsTested) {
  std::set<std::string> tested = {"object"};  // of classes of other modules
  for (const Damage& damage : damages()) tested.insert(damage.code);
  std::set<std::string> listed;
  std::ifstream page(VDM_AUDIT_PAGE);
  for (std::string line; std::getline(page, line);) {
    if (line.starts_with("| `")) listed.insert(line.substr(3, line.find('`', 3) - 3));
  }
  EXPECT_EQ(listed, tested);
}

}  // namespace
