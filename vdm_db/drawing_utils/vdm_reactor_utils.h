// Persistent reactors of objects.
#pragma once

#include <initializer_list>

#include "platform/filer/object_id.h"
#include "vdm_db/common/vdm_db_export.h"

class OdDbIdMapping;
class OdDbObject;
class OdRxClass;

namespace vdmu {

/// Whether a persistent reactor of the object can be opened and is of the class or derived from it.
/// False for null.
[[nodiscard]] VDM_DB_EXPORT bool hasReactorOfKind(const OdDbObject* object, const OdRxClass* cls);
/// The same for any class of the list; false when the object cannot be opened.
[[nodiscard]] VDM_DB_EXPORT bool hasReactor(OdDbObjectId id,
                                            std::initializer_list<OdRxClass*> classes);
/// Takes the reactor from the persistent reactors of an open object, which is upgraded for that.
VDM_DB_EXPORT void detachReactor(const OdDbObject& object, OdDbObjectId reactor);
/// Takes the reactor from the persistent reactors of the objects that have it. With a mapping that
/// has a clone of the reactor, clones of the objects lose both the reactor and its clone. Objects
/// that cannot be opened are skipped.
VDM_DB_EXPORT void detachReactor(const OdArray<OdDbObjectId>& objects, OdDbObjectId reactor,
                                 OdDbIdMapping* mapping);

}  // namespace vdmu
