// A drawing with solids in it.
#pragma once

#include "platform/db/block_table.h"
#include "platform/db/block_table_record.h"
#include "platform/db/host_app_services.h"
#include "platform/entities/block_reference.h"
#include "platform/modeler/db_3d_solid.h"
#include "platform/runtime/runtime_init.h"
#include "platform/rx/rx_init.h"
#include "tests/modeler/modeler_fixture.h"

/// Run-time classes registered for the time of a test. A base of its own, so that it is there
/// before the drawing and after it.
class RuntimeClasses {
 protected:
  RuntimeClasses() {
    odrxInitialize();
    oddbInitialize();
    odModelerInitialize();
  }
  ~RuntimeClasses() {
    odModelerUninitialize();
    oddbUninitialize();
    odrxUninitialize();
  }
};

class DrawingTest : public RuntimeClasses, public ModelerTest {
 protected:
  DrawingTest() : m_database(m_services.createDatabase()) {}

  static OdDbBlockTableRecordPtr blockRecord(const OdDbObjectId& id,
                                             OdDb::OpenMode mode = OdDb::kForRead) {
    return id.safeOpenAs<OdDbBlockTableRecord>(mode);
  }
  OdDbObjectId addSolid(const OdModelerBodyPtr& body) const {
    OdDb3dSolidPtr solid = OdDb3dSolid::createObject();
    solid->setBody(body);
    return blockRecord(m_database->getModelSpaceId(), OdDb::kForWrite)->appendOdDbEntity(solid);
  }
  static OdDb3dSolidPtr solid(const OdDbObjectId& id, OdDb::OpenMode mode = OdDb::kForRead) {
    return id.safeOpenAs<OdDb3dSolid>(mode);
  }
  /// All entities of a class in a block.
  template <class T>
  static std::vector<OdSmartPtr<T>> entities(const OdDbObjectId& block) {
    std::vector<OdSmartPtr<T>> result;
    for (OdDbObjectIteratorPtr it = blockRecord(block)->newIterator(); !it->done(); it->step()) {
      if (OdSmartPtr<T> entity = T::cast(it->entity()); !entity.isNull()) result.push_back(entity);
    }
    return result;
  }

  OdDbHostAppServices m_services;
  OdDbDatabasePtr m_database;
};
