// A drawing with solids in it.
#pragma once

#include "platform/modeler/db_3d_solid.h"
#include "tests/support/drawing_testing.h"
#include "tests/support/modeler_testing.h"

/// The runtime with the classes of solids.
class SolidRuntime : public virtual Runtime {
 public:
  SolidRuntime();
  ~SolidRuntime();
};

class DrawingTest : public virtual SolidRuntime, public DrawingVerbs, public ModelerTest {
 protected:
  DrawingTest();

  static OdDbBlockTableRecordPtr blockRecord(const OdDbObjectId& id,
                                             OdDb::OpenMode mode = OdDb::kForRead) {
    return open<OdDbBlockTableRecord>(id, mode);
  }
  static OdDb3dSolidPtr newSolid(const OdModelerBodyPtr& body);
  OdDbObjectId addSolid(const OdModelerBodyPtr& body, OdDbObjectId block = {}) const;
  static OdDb3dSolidPtr solid(const OdDbObjectId& id, OdDb::OpenMode mode = OdDb::kForRead) {
    return open<OdDb3dSolid>(id, mode);
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
