// Persistent reactors of objects, and chains of result buffers.
#pragma once

#include <initializer_list>

#include "platform/filer/object_id.h"
#include "platform/filer/res_buf.h"
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
/// Takes the reactor from the persistent reactors of the objects that have it. With a mapping that
/// has a clone of the reactor, clones of the objects lose both the reactor and its clone. Objects
/// that cannot be opened are skipped.
VDM_DB_EXPORT void detachReactor(const OdArray<OdDbObjectId>& objects, OdDbObjectId reactor,
                                 OdDbIdMapping* mapping);
/// Releases the chain from its front, so that its length does not matter; the pointer is null then.
VDM_DB_EXPORT void clearRbSequence(OdSmartPtr<OdResBuf>& chain);

}  // namespace vdmu
