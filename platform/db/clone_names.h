// Names of cloned records: what is in the way in the destination, and how it is given way to.
#pragma once

#include "platform/base/string.h"
#include "platform/filer/object_id.h"

class OdDbIdMapping;
class OdDbObject;
struct OdDbCloneState;

/// The name under which `source` stands in its own table or dictionary; empty when it has none.
OdString oddbRecordName(const OdDbObject* source);

/// Tables and dictionaries list what they own by name.
bool oddbListsByName(const OdDbObject* owner);

/// What `owner`, a table or a dictionary, has under a name; null when there is nothing.
OdDbObjectId oddbEntryAt(const OdDbObject* owner, const OdString& name);

/// What an anonymous block record is named before its table gives it a number ("*U"); empty when
/// the name is not anonymous. A layout that is cloned becomes a "*U" block.
OdString oddbAnonymousBlockName(const OdString& name);

/// A name that `owner` does not have yet: "$<n>$<name>", led by `prefix`, with the first free n.
OdString oddbMangledName(OdDbCloneState& state, const OdDbObject* owner, const OdString& prefix,
                         const OdString& name);

/// The name without what mangling put in front of it.
OdString oddbUnmangledName(const OdString& name);

/// Lists a clone, which is in the database already, with its owner: entity in a block, record in a
/// table, entry in a dictionary. Other owners know what they own by themselves.
void oddbListWithOwner(OdDbObject* clone, OdDbObject* owner, const OdString& name);
