// Notification of object reactors.
#include "platform/db/reactor_calls.h"

#include <algorithm>

bool OdDbReactorCalls::isAttached(const OdDbObject* object,
                                  const OdDbObject::Extra::Reactor& reactor, std::size_t& place) {
  if (!object->m_extra) return false;
  const auto& present = object->m_extra->reactors;
  const auto isSame = [&reactor](const auto& entry) {
    return entry.persistent == reactor.persistent && entry.transient == reactor.transient;
  };
  if (place >= present.size() || !isSame(present[place])) {
    const auto found = std::find_if(present.begin(), present.end(), isSame);
    if (found == present.end()) return false;
    place = static_cast<std::size_t>(found - present.begin());
  }
  ++place;
  return true;
}

void OdDbReactorCalls::reportFailure(const OdDbObject* object,
                                     const OdDbObject::Extra::Reactor& reactor,
                                     const std::exception& error) {
  OdDbDatabase* database = object->database();
  if (database == nullptr) return;
  OdString who = reactor.persistent == nullptr
                     ? OdString("transient reactor")
                     : OdString("reactor ") + OdDbObjectId(reactor.persistent).getHandle().ascii();
  database->impl().report(who + " of object " + object->getDbHandle().ascii() +
                          " failed: " + OdString(error.what()));
}
