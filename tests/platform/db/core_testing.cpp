// Verbs of the core tests.
#include "tests/platform/db/core_testing.h"

OD_RX_DEFINE_DB(TestCell, OdDbObject, L"TestCell", 33, 55, 0, L"TESTCELL", L"core tests")

std::vector<std::string> TestCell::heard;
bool TestCell::throwOnErase = false;
bool TestCell::raisesInUndo = false;

void CoreTest::SetUp() {
  TestCell::heard.clear();
  TestCell::throwOnErase = false;
  TestCell::raisesInUndo = false;
  database = services.createDatabase();
}

OdDbObjectId CoreTest::addCell(const wchar_t* text) {
  const TestCellPtr cell = TestCell::createObject();
  const OdDbObjectId id =
      database->addOdDbObject(cell.get(), database->getNamedObjectsDictionaryId());
  cell->setText(text);
  return id;
}
