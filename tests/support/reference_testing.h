// Drawings with nested and external blocks, and verbs for the tests of references.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "platform/db/dictionary.h"
#include "platform/filer/memory_filer.h"
#include "tests/support/drawing_testing.h"
#include "tests/support/module_testing.h"
#include "tests/support/status_testing.h"
#include "tests/support/test_folder.h"
#include "vdm_db/references/vdm_compound_object_id.h"
#include "vdm_db/references/vdm_index_map.h"

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

class ReferenceTest : public RegisteredClass<PathCarrier>,
                      public DrawingVerbs,
                      public testing::Test {
 protected:
  ReferenceTest();

  static OdDbObjectId addCarrier(OdDbObjectId block, const VdmCompoundObjectId& path = {});
  static OdUInt32 countEntities(OdDbObjectId block);

  [[nodiscard]] OdString path(const char* name) const { return m_folder.odFile(name); }
  [[nodiscard]] OdDbDatabasePtr read(const char* name) {
    return DrawingVerbs::read(m_host, path(name));
  }
  /// Saves a drawing with one carrier in its model space; returns the carrier's handle.
  OdDbHandle writePart(const char* name);
  [[nodiscard]] OdDbObjectId attach(OdDbDatabase* drawing, const char* file, const OdString& name);

  std::vector<std::string> m_assertions;  ///< expressions, in order
  AssertionSink m_assertionSink;
  TestFolder m_folder;
  FilingHost m_host;
  OdDbDatabasePtr m_drawing;
  OdDbObjectId m_modelSpace;
};
