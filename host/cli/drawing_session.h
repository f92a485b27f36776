// The runtime as the command uses it: started, with modeller and module, and with drawings.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "platform/base/non_copyable.h"
#include "platform/db/database.h"
#include "platform/db/host_app_services.h"

namespace cli {

class FailedInputs;

/// What all commands share.
struct SessionSettings {
  bool json = false;          ///< output for machines
  bool noModules = false;     ///< do not load the modules: their objects are proxies then
  std::string modulePath;     ///< file or folder of the module; empty: beside the program
  std::string keepFailed;     ///< folder for inputs of failed operations; empty: none are kept
  double waitSeconds = 30.0;  ///< for other programs that save or read the same drawing
  /// Receives what a session could not read of its drawings, one line each; not owned, may be null.
  std::vector<std::string>* readFaults = nullptr;
};

/// Starts the runtime and stops it again. One at a time in a process; it outlives its drawings.
/// Failures raise CliError with one line. Drawings stay open until its end, and a drawing that is
/// open for reading is seen as of one save; the end reports what could not be read of them all.
class DrawingSession : OdNonCopyable {
 public:
  enum class Access { kRead, kWrite };

  explicit DrawingSession(const SessionSettings& settings);
  ~DrawingSession();

  /// A new drawing in memory.
  OdDbDatabasePtr create();
  OdDbDatabasePtr open(const std::string& path, Access access);
  /// What is intact in a damaged file, as a drawing in memory; `report` gets a line for each thing
  /// that is lost.
  OdDbDatabasePtr recover(const std::string& path, OdStringArray& report);
  /// The command shows itself what could not be read.
  void reportNoReadFaults() { m_reportsReadFaults = false; }

 private:
  void installModeler();
  void loadModules();
  void loadModule(const std::string& path);
  OdDbDatabasePtr keep(const OdDbDatabasePtr& drawing);
  void collectReadFaults();
  void stop();

  const SessionSettings& m_settings;
  std::unique_ptr<FailedInputs> m_failedInputs;  ///< null unless they are kept
  std::unique_ptr<OdDbHostAppServices> m_services;
  std::vector<OdString> m_modules;  ///< in the order of loading
  std::vector<OdDbDatabasePtr> m_drawings;
  bool m_reportsReadFaults = true;
};

/// Writes the drawing to its own file.
void saveDrawing(OdDbDatabase& drawing);
/// Rewrites the drawing's file without its free space.
void compactDrawing(OdDbDatabase& drawing);
/// Writes the drawing to another file, whole or not at all.
void saveDrawingAs(OdDbDatabase& drawing, const std::string& path);

}  // namespace cli
