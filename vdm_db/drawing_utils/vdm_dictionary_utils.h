// Finding, making and deleting of objects in dictionaries.
#pragma once

#include "platform/base/string.h"
#include "platform/filer/object_id.h"
#include "vdm_db/common/vdm_db_export.h"

class OdDbDatabase;
class OdDbDictionary;
class OdRxClass;

// Null ids and databases give null results. Making raises what opening for write raises. A
// dictionary that is not one raises OdError_NotThatKindOfClass.
namespace vdmu {

/// The object under `key` in a sub-dictionary of the extension dictionary of `id`: `*name`, or
/// "VDM_DATABASE" without a name. With a class what is missing is made, the object of that class,
/// and a class that makes no database objects raises; nothing is made then.
[[nodiscard]] VDM_DB_EXPORT OdDbObjectId getObjInExtDict(const OdDbObjectId& id,
                                                         const OdString& key, const OdRxClass* cls,
                                                         const OdString* name = nullptr);
/// The same in the sub-dictionary "VDM_DATABASE" of the named objects dictionary.
[[nodiscard]] VDM_DB_EXPORT OdDbObjectId getRootObjectByName(OdDbDatabase* database,
                                                             const OdString& key,
                                                             const OdRxClass* cls);

/// The entry `name` of the owner's extension dictionary, of the named objects dictionary for a null
/// owner. A missing one is made as an empty dictionary.
VDM_DB_EXPORT OdDbObjectId createDict(OdDbDatabase* database, const OdString& name,
                                      OdDbObjectId owner);
/// deleteDict, then createDict.
VDM_DB_EXPORT OdDbObjectId createNewDict(OdDbDatabase* database, const OdString& name,
                                         OdDbObjectId owner);
/// The same entry without making it; null when it is absent.
[[nodiscard]] VDM_DB_EXPORT OdDbObjectId getDict(OdDbDatabase* database, const OdString& name,
                                                 OdDbObjectId owner);
/// Erases the entries of the dictionary and itself, takes it out of its parent, and releases an
/// extension dictionary that is empty then. Nothing happens when there is no such dictionary.
VDM_DB_EXPORT void deleteDict(OdDbDatabase* database, const OdString& name, OdDbObjectId owner);

/// Swaps the entries of two names through a third one that is not in use; when it is, nothing
/// changes and an assertion is reported. The dictionary is open for write.
VDM_DB_EXPORT void swapDictionaries(OdDbDictionary* owner, const OdString& a, const OdString& b,
                                    const OdString& tmp);

}  // namespace vdmu
