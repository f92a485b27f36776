// Small verbs for tests that make, read and compare drawings.
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "platform/db/block_table.h"
#include "platform/db/block_table_record.h"
#include "platform/db/database.h"
#include "platform/db/host_app_services.h"
#include "platform/db/layer_table.h"
#include "platform/entities/block_reference.h"
#include "platform/entities/line.h"
#include "tests/support/runtime.h"
#include "tests/support/status_testing.h"

/// A fixture derives from it and speaks in these verbs.
class DrawingVerbs : public virtual Runtime {
 protected:
  template <class T>
  static OdSmartPtr<T> open(OdDbObjectId id, OdDb::OpenMode mode = OdDb::kForRead) {
    return id.safeOpenAs<T>(mode);
  }
  template <class T>
  static OdSmartPtr<T> edit(OdDbObjectId id) {
    return open<T>(id, OdDb::kForWrite);
  }

  static OdDbObjectId addBlock(OdDbDatabase* drawing, const OdString& name);
  static OdDbObjectId addLayer(OdDbDatabase* drawing, const OdString& name, OdUInt16 color = 7);
  static OdDbObjectId addTo(OdDbObjectId block, OdDbEntity* entity);
  static OdDbObjectId addLine(OdDbObjectId block, const OdGePoint3d& from = {},
                              const OdGePoint3d& to = {1, 0, 0});
  /// A reference in `owner` that shows `block`.
  static OdDbObjectId addReference(OdDbObjectId owner, OdDbObjectId block);
  static OdDbObjectId addReference(OdDbObjectId owner, OdDbObjectId block,
                                   const OdGeMatrix3d& transform);

  /// The drawing of a file; null when it cannot be read, which fails the test.
  static OdDbDatabasePtr read(OdDbHostAppServices& host, const OdString& path,
                              const OdDbReadOptions& options = {});
  static void saveAs(const OdDbDatabasePtr& drawing, const OdString& path);

  /// Everything that an object files, erased or not, as bytes and strings.
  static std::string stateOf(OdDbObjectId id);
  /// The same of every object of a drawing that is not erased, by handle.
  static std::map<OdUInt64, std::string> statesOf(const OdDbDatabase& drawing);
  /// Runs an edit as one undo step; undo gives the state before it back, redo the one after it.
  static void expectUndoable(OdDbDatabase& drawing, const std::function<std::string()>& state,
                             const std::function<void()>& edit);
};

/// Reads and writes drawing files; keeps its messages.
class FilingHost : public OdDbHostAppServices {
 public:
  FilingHost();
  void message(const OdString& line) override { lines.emplace_back(line.utf8()); }
  std::vector<std::string> lines;
};
