// Drawings with nested and external blocks.
#include "tests/support/reference_testing.h"

#include "platform/cloning/xref_man.h"

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

ReferenceTest::ReferenceTest()
    : m_assertionSink([this](const VdmAssertion& assertion) {
        m_assertions.emplace_back(assertion.expression);
      }),
      m_drawing(m_host.createDatabase()),
      m_modelSpace(m_drawing->getModelSpaceId()) {}

OdDbObjectId ReferenceTest::addCarrier(OdDbObjectId block, const VdmCompoundObjectId& path) {
  const PathCarrierPtr carrier = PathCarrier::createObject();
  carrier->path = path;
  return addTo(block, carrier);
}

OdUInt32 ReferenceTest::countEntities(OdDbObjectId block) {
  OdUInt32 count = 0;
  const OdDbObjectIdArray ids = open<OdDbBlockTableRecord>(block)->entityIds();
  for (const OdDbObjectId& id : ids) count += id.isErased() ? 0U : 1U;
  return count;
}

OdDbHandle ReferenceTest::writePart(const char* name) {
  const OdDbDatabasePtr part = m_host.createDatabase();
  const OdDbObjectId carrier = addCarrier(part->getModelSpaceId());
  saveAs(part, path(name));
  return carrier.getHandle();
}

OdDbObjectId ReferenceTest::attach(OdDbDatabase* drawing, const char* file, const OdString& name) {
  OdDbObjectId block;
  EXPECT_EQ(OdDbXRefMan::attach(drawing, path(file), name, block), eOk);
  return block;
}
