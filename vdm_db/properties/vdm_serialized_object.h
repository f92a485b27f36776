// Objects that are kept as bytes beside another object.
#pragma once

#include "platform/base/string.h"
#include "platform/db/db_object.h"
#include "vdm_db/common/vdm_db_export.h"

// The object that VdmWriteSerializedObject left beside the host, as a new object in no database;
// ids are not kept and read as null. Null when class or host is null, nothing is kept, the stored
// class is not registered, is neither the class asked for nor derived from it, or the bytes are
// damaged.
VDM_DB_EXPORT OdDbObjectPtr VdmReadSerializedObject(OdRxClass* rxClass, const OdDbObject* host);
VDM_DB_EXPORT OdDbObjectPtr VdmReadSerializedObject(const OdString& className,
                                                    const OdDbObject* host);

// Keeps the state of `source`, which is open for read, beside the host, which is open for write and
// in a database; a host keeps one object, and a null source removes it. Raises
// OdError, nothing being changed: eWrongObjectType when the source is not of the class,
// eLimitExceeded when it files a text of more than 32767 bytes.
VDM_DB_EXPORT void VdmWriteSerializedObject(OdRxClass* rxClass, const OdDbObject* source,
                                            OdDbObject* host);
