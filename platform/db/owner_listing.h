// How owners list what they own: dictionaries and tables by name, blocks in order.
#pragma once

#include "platform/base/string.h"
#include "platform/filer/object_id.h"

class OdDbObject;

/// The name under which `object` is in its own table or dictionary; empty when it has none.
OdString oddbRecordName(const OdDbObject* object);

/// Tables and dictionaries list what they own by name.
bool oddbListsByName(const OdDbObject* owner);

/// What `owner`, a table or a dictionary, has under a name; null when there is nothing.
OdDbObjectId oddbEntryAt(const OdDbObject* owner, const OdString& name);

/// Lists an object, which is in the database already, with its owner: entity in a block, record in
/// a table, entry in a dictionary. Other owners know by themselves what they own. Raises
/// eWrongObjectType for an object that is no record of the table.
void oddbListWithOwner(OdDbObject* object, OdDbObject* owner, const OdString& name);
