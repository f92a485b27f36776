// The solid modeller of the command, loaded when it is needed.
#include "host/cli/modeler_loading.h"

#include "platform/base/library_entry.h"
#include "platform/modeler_occt/occt_modeler.h"

namespace cli {

std::shared_ptr<OdModeler> loadModeler() {
  void* entry = odLibraryEntry(VDM_MODELER_LIBRARY, "odMakeOcctModeler", eNoModeler);
  std::shared_ptr<OdModeler> modeler;
  reinterpret_cast<decltype(&odMakeOcctModeler)>(entry)(modeler);
  return modeler;
}

}  // namespace cli
