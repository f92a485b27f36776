// The runtime as the command uses it.
#include "host/cli/drawing_session.h"

#include <filesystem>
#include <vector>

#include "host/cli/cli_error.h"
#include "host/cli/failed_inputs.h"
#include "host/cli/modeler_loading.h"
#include "host/cli/text_output.h"
#include "platform/base/error.h"
#include "platform/db/read_faults.h"
#include "platform/modeler/db_3d_solid.h"
#include "platform/modeler/modeler.h"
#include "platform/modeler_wall/walled_modeler.h"
#include "platform/runtime/runtime_init.h"
#include "platform/rx/dynamic_linker.h"
#include "platform/storage/sqlite_record_store.h"
#include "vdm_db/properties/vdm_db_extension_data.h"

namespace cli {

namespace {

namespace fs = std::filesystem;

constexpr const char* kModuleFile = "vdm_db.tx";
/// In the folder of the module: naming and components.
constexpr const char* kHostModuleFile = "vdm_host.tx";

fs::path programFolder() {
  std::error_code failure;
  const fs::path program = fs::read_symlink("/proc/self/exe", failure);
  return program.parent_path();
}

/// Where the module is looked for by default: beside the program's folder as built, and as
/// installed.
std::vector<fs::path> usualModulePaths() {
  const fs::path folder = programFolder();
  return {(folder / "../lib" / kModuleFile).lexically_normal(),
          (folder / VDM_BIN_TO_LIB / kModuleFile).lexically_normal()};
}

fs::path findModule(const std::string& given) {
  std::error_code failure;
  if (!given.empty()) {
    fs::path path = fs::absolute(given, failure);
    if (fs::is_directory(path, failure)) path /= kModuleFile;
    if (!fs::is_regular_file(path, failure)) {
      throw CliError("module " + quote(path.string()) + " was not found");
    }
    return path;
  }
  const std::vector<fs::path> candidates = usualModulePaths();
  for (const fs::path& path : candidates) {
    if (fs::is_regular_file(path, failure)) return path;
  }
  throw CliError("module " + quote(candidates.front().string()) +
                 " was not found, name it with --module or use --no-modules");
}

void require(const OdStatus& status, const std::string& path) {
  if (status.ok()) return;
  throw CliError(status.text.isEmpty() ? quote(path) + ": " + odResultText(status.code)
                                       : str(status.text));
}

}  // namespace

DrawingSession::DrawingSession(const SessionSettings& settings) : m_settings(settings) {
  oddbInitialize();
  odModelerInitialize();
  try {
    installModeler();
    OdSqliteStoreOptions files;
    files.readersHoldOneState = true;
    files.commitTimeoutMs = static_cast<int>(m_settings.waitSeconds * 1000.0);
    m_services = std::make_unique<OdDbHostAppServices>(createSqliteStoreFactory(files));
    if (!m_settings.noModules) loadModules();
  } catch (...) {
    stop();
    throw;
  }
}

DrawingSession::~DrawingSession() {
  try {
    stop();
  } catch (const std::exception& error) {
    printError(std::string("the runtime did not stop: ") + error.what());
  }
}

void DrawingSession::stop() {
  collectReadFaults();
  m_drawings.clear();
  m_services.reset();
  while (!m_modules.empty()) {
    odrxDynamicLinker()->unloadModule(m_modules.back());
    m_modules.pop_back();
  }
  odSetModeler(nullptr);
  odModelerUninitialize();
  oddbUninitialize();
}

// Inputs are kept by the process that handed them to a worker: that one outlives the failure.
void DrawingSession::installModeler() {
  if (m_settings.keepFailed.empty()) {
    odSetModelerSource(&loadModeler);
    return;
  }
  m_failedInputs = std::make_unique<FailedInputs>(m_settings.keepFailed);
  OdWallSettings settings;
  settings.onFailure = [this](const OdWallFailure& failure) {
    m_failedInputs->keep(failure, *m_services);
  };
  odSetModeler(odCreateWalledModeler(loadModeler(), std::move(settings)));
}

void DrawingSession::collectReadFaults() {
  if (!m_reportsReadFaults || m_settings.readFaults == nullptr) return;
  for (const OdDbDatabasePtr& drawing : m_drawings) {
    const OdStringArray lines = oddbReadFaults(drawing.get());
    for (const OdString& line : lines) {
      m_settings.readFaults->push_back(str(line));
    }
  }
}

void DrawingSession::loadModules() {
  const fs::path module = findModule(m_settings.modulePath);
  loadModule(module.string());
  // The program is linked with the module's classes: another copy would register its own ones.
  if (VdmDbExtensionData::desc() == nullptr) {
    throw CliError("module " + quote(module.string()) + " does not belong to this program");
  }
  const fs::path hostModule = module.parent_path() / kHostModuleFile;
  std::error_code failure;
  if (!fs::is_regular_file(hostModule, failure)) {
    throw CliError("module " + quote(hostModule.string()) + " was not found beside " +
                   quote(module.filename().string()));
  }
  loadModule(hostModule.string());
}

void DrawingSession::loadModule(const std::string& path) {
  odrxDynamicLinker()->loadModule(OdString(path));
  m_modules.push_back(OdString(path));
}

OdDbDatabasePtr DrawingSession::keep(const OdDbDatabasePtr& drawing) {
  m_drawings.push_back(drawing);
  return drawing;
}

OdDbDatabasePtr DrawingSession::create() { return m_services->createDatabase(); }

OdDbDatabasePtr DrawingSession::open(const std::string& path, Access access) {
  OdDbReadOptions options;
  options.mode =
      access == Access::kRead ? OdDbStoreOpenMode::kReadOnly : OdDbStoreOpenMode::kReadWrite;
  options.withUndo = false;
  OdStatus status;
  OdDbDatabasePtr drawing = m_services->readFile(OdString(path), status, options);
  require(status, path);
  return keep(drawing);
}

OdDbDatabasePtr DrawingSession::recover(const std::string& path, OdStringArray& report) {
  OdStatus status;
  OdDbDatabasePtr drawing = m_services->recoverFile(OdString(path), report, status);
  require(status, path);
  return drawing;
}

void saveDrawing(OdDbDatabase& drawing) { require(drawing.save(), str(drawing.getFilename())); }

void compactDrawing(OdDbDatabase& drawing) {
  require(drawing.compact(), str(drawing.getFilename()));
}

void saveDrawingAs(OdDbDatabase& drawing, const std::string& path) {
  require(drawing.saveAs(OdString(path)), path);
}

}  // namespace cli
