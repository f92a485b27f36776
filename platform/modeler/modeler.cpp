// The interface of a solid modeller, and the modeller of the process.
#include "platform/modeler/modeler.h"

#include <utility>

#include "platform/base/error.h"

namespace {

std::shared_ptr<OdModeler>& installed() {
  static std::shared_ptr<OdModeler> modeler;
  return modeler;
}

}  // namespace

void odSetModeler(std::shared_ptr<OdModeler> modeler) { installed() = std::move(modeler); }

OdModeler& odModeler() {
  if (!installed()) throw OdError(eNoModeler);
  return *installed();
}

OdStatus OdModeler::removeFaces(const OdModelerBodyPtr& /*body*/,
                                std::span<const OdUInt32> /*faces*/, OdModelerBodyPtr& /*result*/,
                                OdModelerHistory* /*history*/) {
  return {eNotApplicable, name() + L" cannot remove faces"};
}

bool odHasModeler() { return installed() != nullptr; }
