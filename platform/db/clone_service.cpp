// The installed clone service.
#include "platform/db/clone_service.h"

#include "platform/base/error.h"

namespace {

const OdDbCloneService* g_service = nullptr;

}  // namespace

void OdDbCloneService::install(const OdDbCloneService* service) { g_service = service; }

const OdDbCloneService& OdDbCloneService::installed() {
  if (g_service == nullptr) {
    throw OdError(eClassNotRegistered, L"no clone service; oddbInitializeCloning was not called");
  }
  return *g_service;
}
