// VdmDbIStandardLineTypeLoader: where missing line types come from.
#pragma once

#include "platform/base/result.h"
#include "platform/base/string.h"
#include "vdm_db/common/vdm_db_export.h"

class OdDbDatabase;

/// What loads line types into drawings. A host sets one at start and null before it ends.
class VDM_DB_EXPORT VdmDbIStandardLineTypeLoader {
 public:
  VdmDbIStandardLineTypeLoader() = default;
  virtual ~VdmDbIStandardLineTypeLoader();
  VdmDbIStandardLineTypeLoader(const VdmDbIStandardLineTypeLoader&) = delete;
  VdmDbIStandardLineTypeLoader& operator=(const VdmDbIStandardLineTypeLoader&) = delete;

  /// Loads the line type of that name. Nothing changes on failure.
  virtual OdResult load(OdDbDatabase* database, const OdString& name) = 0;

  /// Null while there is none.
  [[nodiscard]] static VdmDbIStandardLineTypeLoader* getInstance();
  /// The caller keeps the loader, which takes itself off when it dies.
  static void setInstance(VdmDbIStandardLineTypeLoader* loader);
};

/// Loads line types from one file: the one that is installed with the runtime, or another.
class VDM_DB_EXPORT VdmDbFileLineTypeLoader : public VdmDbIStandardLineTypeLoader {
 public:
  VdmDbFileLineTypeLoader();
  explicit VdmDbFileLineTypeLoader(const OdString& path) : m_path(path) {}

  /// eFileNotFound, eKeyNotFound for a name that the file lacks, eCorruptData.
  OdResult load(OdDbDatabase* database, const OdString& name) override;

 private:
  OdString m_path;
};
