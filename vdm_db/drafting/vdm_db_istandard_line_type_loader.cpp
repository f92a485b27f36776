// Where missing line types come from.
#include "vdm_db/drafting/vdm_db_istandard_line_type_loader.h"

#include "platform/db/linetype_file.h"

namespace {

VdmDbIStandardLineTypeLoader* g_loader = nullptr;

}  // namespace

VdmDbIStandardLineTypeLoader::~VdmDbIStandardLineTypeLoader() {
  if (g_loader == this) g_loader = nullptr;
}

VdmDbIStandardLineTypeLoader* VdmDbIStandardLineTypeLoader::getInstance() { return g_loader; }

void VdmDbIStandardLineTypeLoader::setInstance(VdmDbIStandardLineTypeLoader* loader) {
  g_loader = loader;
}

VdmDbFileLineTypeLoader::VdmDbFileLineTypeLoader() : m_path(oddbStandardLinetypeFile()) {}

OdResult VdmDbFileLineTypeLoader::load(OdDbDatabase* database, const OdString& name) {
  if (database == nullptr) return eNoDatabase;
  // "*" means the whole file there.
  if (name == L"*") return eKeyNotFound;
  return oddbLoadLinetypes(*database, name, m_path, OdDb::kDltNotApplicable).code;
}
