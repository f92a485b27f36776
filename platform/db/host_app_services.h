// OdDbHostAppServices: what the host lends to its drawings, and where drawings come from.
#pragma once

#include <memory>

#include "platform/base/string.h"
#include "platform/db/database.h"
#include "platform/db/record_store.h"
#include "platform/rx/rx_object.h"

/// How a drawing file is opened.
struct OdDbReadOptions {
  OdDbStoreOpenMode mode = OdDbStoreOpenMode::kReadWrite;
  bool withUndo = true;  ///< record undo from the start
};

/// One instance serves all drawings of a host and outlives them. A host derives from it to find
/// files its own way and to show messages.
class OdDbHostAppServices {
 public:
  /// `storeFactory` may be null: drawings then live in memory only.
  explicit OdDbHostAppServices(std::shared_ptr<OdDbRecordStoreFactory> storeFactory = nullptr);
  virtual ~OdDbHostAppServices();
  OdDbHostAppServices(const OdDbHostAppServices&) = delete;
  OdDbHostAppServices& operator=(const OdDbHostAppServices&) = delete;

  /// A new drawing with its tables, dictionaries, model and paper space; undo is on and empty.
  OdDbDatabasePtr createDatabase();
  /// Opens a drawing file without reading objects. On failure the result is null and `status` says
  /// why.
  OdDbDatabasePtr readFile(const OdString& path, OdStatus& status,
                           const OdDbReadOptions& options = OdDbReadOptions());
  /// Builds a drawing in memory from everything that is intact in a damaged file; `report` gets a
  /// line for each thing lost. Null when nothing is intact.
  OdDbDatabasePtr recoverFile(const OdString& path, OdStringArray& report, OdStatus& status);

  /// Full path of a file that a drawing or the host names; empty when there is none. In order:
  ///
  /// 1. An absolute path is taken as it is.
  /// 2. Otherwise beside `database`'s own file, when it has one.
  /// 3. Otherwise in the search folders, first to last. A name that leads out of a folder (with
  ///    "..") is not looked for there.
  ///
  /// The current folder of the process is never searched.
  virtual OdString findFile(const OdString& name, const OdDbDatabase* database);
  /// Adds a folder to the end of the search folders; one that is there already stays where it is.
  /// Raises eInvalidInput for a path that is not absolute and eFileNotFound when it is no folder.
  void addSearchFolder(const OdString& folder);
  /// False when it was not there.
  bool removeSearchFolder(const OdString& folder);
  [[nodiscard]] const OdStringArray& searchFolders() const { return m_searchFolders; }
  /// One line for the user or the log; standard error by default.
  virtual void message(const OdString& line);

  /// Whether a drawing is in a state in which overrules may alter its picture; a host says false
  /// while it loads or converts one. True by default.
  [[nodiscard]] virtual bool isReadyForDisplay(const OdDbDatabase* database);

  /// How parameters are copied when blocks are cloned: 0 to 4, 1 at start. The host gives the
  /// numbers their meaning; the module sets 3 while it clones a block.
  [[nodiscard]] OdInt16 parameterCopyMode() const { return m_parameterCopyMode; }
  /// Raises eInvalidInput for another number; the mode stays then.
  void setParameterCopyMode(OdInt16 mode);

  [[nodiscard]] OdDbRecordStoreFactory* recordStoreFactory() const { return m_factory.get(); }

 private:
  OdDbDatabasePtr makeEmpty();

  std::shared_ptr<OdDbRecordStoreFactory> m_factory;
  OdStringArray m_searchFolders;  // absolute, each once
  OdInt16 m_parameterCopyMode = 1;
};
