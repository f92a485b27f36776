// Drawings with nested and external blocks.
#include "tests/references/reference_testing.h"

#include "platform/cloning/xref_man.h"
#include "platform/runtime/runtime_init.h"
#include "platform/storage/sqlite_record_store.h"
#include "vdm_utils/vdmc_assert.h"

namespace fs = std::filesystem;

OD_RX_DEFINE_DB(PathCarrier, OdDbEntity, L"PathCarrier", 33, 55, 0, L"PATHCARRIER", L"tests")

OdDbEntityPtr PathCarrier::subentPtr(const OdDbFullSubentPath& subent) const {
  const bool exists = subent.subentId().type() == OdDb::kFaceSubentType &&
                      subent.subentId().index() >= 1 && subent.subentId().index() <= 3;
  return exists ? OdDbEntityPtr(OdDbLine::createObject()) : OdDbEntityPtr();
}

OdResult PathCarrier::dwgInFields(OdDbDwgFiler* filer) {
  OdResult result = OdDbEntity::dwgInFields(filer);
  if (result == eOk) result = path.dwgInFields(filer, 0);
  if (result == eOk) indices.dwgInFields(filer);
  return result;
}

void PathCarrier::dwgOutFields(OdDbDwgFiler* filer) const {
  OdDbEntity::dwgOutFields(filer);
  path.dwgOutFields(filer, database());
  indices.dwgOutFields(filer);
}

ReferenceTest::Host::Host() : OdDbHostAppServices(createSqliteStoreFactory()) {}

void ReferenceTest::SetUpTestSuite() {
  oddbInitialize();
  PathCarrier::rxInit();
}

void ReferenceTest::TearDownTestSuite() {
  PathCarrier::rxUninit();
  oddbUninitialize();
}

ReferenceTest::ReferenceTest() {
  m_folder = fs::path("references") / testing::UnitTest::GetInstance()->current_test_info()->name();
  fs::remove_all(m_folder);
  fs::create_directories(m_folder);
  setVdmAssertSink(
      [this](const VdmAssertion& assertion) { m_assertions.emplace_back(assertion.expression); });
  m_drawing = m_host.createDatabase();
  m_modelSpace = m_drawing->getModelSpaceId();
}

ReferenceTest::~ReferenceTest() { setVdmAssertSink({}); }

OdDbObjectId ReferenceTest::addBlock(OdDbDatabase* drawing, const OdString& name) {
  const OdDbBlockTableRecordPtr block = OdDbBlockTableRecord::createObject();
  block->setName(name);
  return edit<OdDbBlockTable>(drawing->getBlockTableId())->add(block);
}

OdDbObjectId ReferenceTest::addTo(OdDbObjectId block, OdDbEntity* entity) {
  return edit<OdDbBlockTableRecord>(block)->appendOdDbEntity(entity);
}

OdDbObjectId ReferenceTest::addCarrier(OdDbObjectId block, const VdmCompoundObjectId& path) {
  const PathCarrierPtr carrier = PathCarrier::createObject();
  carrier->path = path;
  return addTo(block, carrier);
}

OdDbObjectId ReferenceTest::show(OdDbObjectId owner, OdDbObjectId block) {
  const OdDbBlockReferencePtr reference = OdDbBlockReference::createObject();
  reference->setBlockTableRecord(block);
  return addTo(owner, reference);
}

OdUInt32 ReferenceTest::countEntities(OdDbObjectId block) {
  OdUInt32 count = 0;
  const OdDbObjectIdArray ids = open<OdDbBlockTableRecord>(block)->entityIds();
  for (const OdDbObjectId& id : ids) count += id.isErased() ? 0U : 1U;
  return count;
}

OdString ReferenceTest::path(const char* name) const {
  return OdString(fs::absolute(m_folder / name).string());
}

OdDbDatabasePtr ReferenceTest::read(const char* name) {
  OdStatus status;
  OdDbDatabasePtr drawing = m_host.readFile(path(name), status);
  EXPECT_TRUE(status.ok()) << status.text.utf8();
  return drawing;
}

OdDbHandle ReferenceTest::writePart(const char* name) {
  const OdDbDatabasePtr part = m_host.createDatabase();
  const OdDbObjectId carrier = addCarrier(part->getModelSpaceId());
  EXPECT_TRUE(part->saveAs(path(name)).ok());
  return carrier.getHandle();
}

OdDbObjectId ReferenceTest::attach(OdDbDatabase* drawing, const char* file, const OdString& name) {
  OdDbObjectId block;
  EXPECT_EQ(OdDbXRefMan::attach(drawing, path(file), name, block), eOk);
  return block;
}
