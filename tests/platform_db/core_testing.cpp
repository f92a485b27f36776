// Verbs of the core tests.
#include "tests/platform_db/core_testing.h"

OD_RX_DEFINE_DB(TestCell, OdDbObject, L"TestCell", 33, 55, 0, L"TESTCELL", L"core tests")

std::vector<std::string> TestCell::heard;
bool TestCell::throwOnErase = false;

std::string dumpDrawing(OdDbDatabase* database) {
  std::string dump;
  database->forEachId([&dump, database](OdDbObjectId id) {
    const OdDbObjectPtr object = id.openObject();
    dump += id.getHandle().ascii().utf8();
    dump += ' ';
    dump += object.isNull() ? std::string_view("unreadable") : object->isA()->name().utf8();
    dump += ' ';
    dump += id.ownerId().getHandle().ascii().utf8();
    dump += ' ';
    if (!object.isNull()) {
      OdDbFileWriter writer(database);
      object->dwgOutFields(&writer);
      std::vector<OdUInt8> record;
      writer.assemble(record);
      static constexpr char kDigits[] = "0123456789abcdef";
      for (const OdUInt8 byte : record) {
        dump += kDigits[byte >> 4];
        dump += kDigits[byte & 15];
      }
    }
    dump += '\n';
    return true;
  });
  return dump;
}

void CoreTest::SetUpTestSuite() {
  odrxInitialize();
  oddbInitialize();
  TestCell::rxInit();
}

void CoreTest::TearDownTestSuite() {
  TestCell::rxUninit();
  oddbUninitialize();
  odrxUninitialize();
}

void CoreTest::SetUp() {
  TestCell::heard.clear();
  TestCell::throwOnErase = false;
  database = services.createDatabase();
}

OdDbObjectId CoreTest::addCell(const wchar_t* text) {
  const TestCellPtr cell = TestCell::createObject();
  const OdDbObjectId id =
      database->addOdDbObject(cell.get(), database->getNamedObjectsDictionaryId());
  cell->setText(text);
  return id;
}
