// Names of cloned records: what replaces a name that the destination has already.
#pragma once

#include "platform/base/string.h"

class OdDbObject;
struct OdDbCloneState;

/// What an anonymous block record is named before its table gives it a number ("*U"); empty when
/// the name is not anonymous. A layout that is cloned becomes a "*U" block.
OdString oddbAnonymousBlockName(const OdString& name);

/// A name that `owner` does not have yet: "$<n>$<name>", led by `prefix`, with the first free n.
OdString oddbMangledName(OdDbCloneState& state, const OdDbObject* owner, const OdString& prefix,
                         const OdString& name);

/// The name without what mangling put in front of it.
OdString oddbUnmangledName(const OdString& name);
