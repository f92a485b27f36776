// OdDbReactorCalls: tells the reactors of an object what happened to it.
#pragma once

#include <exception>

#include "platform/db/database_impl.h"
#include "platform/db/db_object.h"
#include "platform/db/object_extra.h"

/// Calls every reactor in order of attachment, persistent ones through an open for notify. Reactors
/// that were detached meanwhile are left out; one that throws is reported, and the others are
/// called.
class OdDbReactorCalls {
 public:
  [[nodiscard]] static bool hasReactors(const OdDbObject* object) {
    return object->m_extra && !object->m_extra->reactors.empty();
  }

  template <class... Arguments>
  static void tell(const OdDbObject* object, void (OdDbObject::*persistent)(Arguments...),
                   void (OdDbObjectReactor::*transient)(Arguments...), Arguments... arguments) {
    if (!hasReactors(object)) return;
    const std::vector<OdDbObject::Extra::Reactor> told = object->m_extra->reactors;
    std::size_t place = 0;
    for (const OdDbObject::Extra::Reactor& reactor : told) {
      if (!isAttached(object, reactor, place)) continue;
      try {
        if (reactor.transient != nullptr) {
          (reactor.transient->*transient)(arguments...);
        } else if (OdDbObjectPtr opened =
                       OdDbObjectId(reactor.persistent).openObject(OdDb::kForNotify);
                   !opened.isNull()) {
          (opened.get()->*persistent)(arguments...);
        }
      } catch (const std::exception& error) {
        reportFailure(object, reactor, error);
      }
    }
  }

 private:
  /// `place` is where the reactor is expected; on return it is the place of the next one.
  static bool isAttached(const OdDbObject* object, const OdDbObject::Extra::Reactor& reactor,
                         std::size_t& place);
  static void reportFailure(const OdDbObject* object, const OdDbObject::Extra::Reactor& reactor,
                            const std::exception& error);
};
