// A drawing with solids in it.
#include "tests/support/solid_drawing_testing.h"

SolidRuntime::SolidRuntime() { odModelerInitialize(); }

SolidRuntime::~SolidRuntime() { odModelerUninitialize(); }

DrawingTest::DrawingTest() : m_database(m_services.createDatabase()) {}

OdDb3dSolidPtr DrawingTest::newSolid(const OdModelerBodyPtr& body) {
  OdDb3dSolidPtr made = OdDb3dSolid::createObject();
  made->setBody(body);
  return made;
}

OdDbObjectId DrawingTest::addSolid(const OdModelerBodyPtr& body, OdDbObjectId block) const {
  if (block.isNull()) block = m_database->getModelSpaceId();
  return addTo(block, newSolid(body));
}
