// The steps that commands have in common.
#include "host/cli/opened_drawing.h"

#include "host/cli/paths.h"

namespace cli {

namespace {

/// The settings as they are, once everything that needs no runtime has been checked.
const SessionSettings& checked(const SessionSettings& settings, const std::string& path,
                               Modules modules) {
  if (modules == Modules::kRequired) requireModules(settings);
  checkInput(path);
  return settings;
}

}  // namespace

OpenedDrawing::OpenedDrawing(const SessionSettings& settings, const std::string& path,
                             DrawingSession::Access access, Modules modules)
    : m_session(checked(settings, path, modules)), m_drawing(m_session.open(path, access)) {}

void requireModules(const SessionSettings& settings) {
  if (!settings.noModules) return;
  throw CliError("the command needs the modules, --no-modules cannot be given", kWrongUsage);
}

}  // namespace cli
