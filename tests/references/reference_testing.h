// Drawings with nested and external blocks, and verbs for the tests of references.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "platform/base/error.h"
#include "platform/db/block_table.h"
#include "platform/db/database.h"
#include "platform/db/dictionary.h"
#include "platform/db/host_app_services.h"
#include "platform/entities/block_reference.h"
#include "platform/entities/line.h"
#include "platform/filer/memory_filer.h"
#include "vdm_db/references/vdm_compound_object_id.h"
#include "vdm_db/references/vdm_index_map.h"

/// What an OdError says about a call; eOk when it does not throw.
template <class Call>
OdResult raisedBy(const Call& call) {
  try {
    call();
  } catch (const OdError& error) {
    return error.code();
  }
  return eOk;
}

/// Reads a buffer from its beginning.
class MemoryReader : public OdDbMemoryFiler {
 public:
  explicit MemoryReader(OdDbFilerBuffer& buffer) : OdDbMemoryFiler(kCopyFiler, buffer) {
    startReading(0, 0);
  }
};

/// An entity with faces 1 to 3 that stores a path and an index map.
class PathCarrier : public OdDbEntity {
 public:
  OD_RX_DECLARE_MEMBERS(PathCarrier)

  VdmCompoundObjectId path;
  VdmIndexMap indices;

  [[nodiscard]] OdDbEntityPtr subentPtr(const OdDbFullSubentPath& subent) const override;
  OdResult dwgInFields(OdDbDwgFiler* filer) override;
  void dwgOutFields(OdDbDwgFiler* filer) const override;
};
using PathCarrierPtr = OdSmartPtr<PathCarrier>;

class ReferenceTest : public testing::Test {
 protected:
  class Host : public OdDbHostAppServices {
   public:
    Host();
    void message(const OdString&) override {}
  };

  static void SetUpTestSuite();
  static void TearDownTestSuite();
  ReferenceTest();
  ~ReferenceTest() override;

  template <class T>
  static OdSmartPtr<T> open(OdDbObjectId id, OdDb::OpenMode mode = OdDb::kForRead) {
    return id.safeOpenAs<T>(mode);
  }
  template <class T>
  static OdSmartPtr<T> edit(OdDbObjectId id) {
    return open<T>(id, OdDb::kForWrite);
  }
  static OdDbObjectId addBlock(OdDbDatabase* drawing, const OdString& name);
  static OdDbObjectId addTo(OdDbObjectId block, OdDbEntity* entity);
  static OdDbObjectId addLine(OdDbObjectId block) { return addTo(block, OdDbLine::createObject()); }
  static OdDbObjectId addCarrier(OdDbObjectId block, const VdmCompoundObjectId& path = {});
  /// A reference in `owner` that shows `block`.
  static OdDbObjectId show(OdDbObjectId owner, OdDbObjectId block);
  static OdUInt32 countEntities(OdDbObjectId block);

  [[nodiscard]] OdString path(const char* name) const;
  [[nodiscard]] OdDbDatabasePtr read(const char* name);
  /// Saves a drawing with one carrier in its model space; returns the carrier's handle.
  OdDbHandle writePart(const char* name);
  [[nodiscard]] OdDbObjectId attach(OdDbDatabase* drawing, const char* file, const OdString& name);

  Host m_host;
  std::filesystem::path m_folder;
  std::vector<std::string> m_assertions;  // expressions, in order
  OdDbDatabasePtr m_drawing;
  OdDbObjectId m_modelSpace;
};
