// Variables of a block: names, look-up, creation, uses.
#pragma once

#include <set>

#include "platform/base/string.h"
#include "platform/filer/object_id.h"
#include "vdm_db/common/vdm_db_export.h"

class OdDbObject;

/// Variables belong to the associative network of a block. Their names are unique in it, whatever
/// the case.
namespace vdmu {

/// Empty, or beginning with "*".
[[nodiscard]] VDM_DB_EXPORT bool isAnonymous(const OdString& name);
/// Adds the names of all variables of the block, in upper case.
VDM_DB_EXPORT void getVariableNames(OdDbObjectId block, std::set<OdString>& names);
/// `base` when no variable of the block has that name, otherwise "<base>_<number>" with the first
/// number from 1 on that is free.
[[nodiscard]] VDM_DB_EXPORT OdString generateVariableName(OdDbObjectId block, const OdString& base);
/// With a number in any case.
[[nodiscard]] VDM_DB_EXPORT OdString generateVariableNameStartingWith(OdDbObjectId block,
                                                                      const OdString& base);

/// The variable of the name in the block, or in the block that it shows of an external drawing.
/// With `create` a missing one is made and returned, whether or not it takes the name and the
/// expression: one that refuses the name remains anonymous, one that refuses the expression has
/// none. Null when there is none, and for an object that has no network.
VDM_DB_EXPORT OdDbObjectId getAssocVariable(OdDbObjectId block, const OdString& name, bool create,
                                            const OdString& expression);
/// Makes a variable without a name in the network of the block, which is made when it is missing.
/// Null for an object that has no network.
[[nodiscard]] VDM_DB_EXPORT OdDbObjectId addVariable(OdDbObjectId block);
/// Takes the variable out of its network and erases it. Nothing happens when it does not open.
VDM_DB_EXPORT void removeVariable(OdDbObjectId variable);

/// Whether a persistent reactor of a variable counts as a use of it: dependencies of actions, and
/// other objects whose owners lead to a block, none of them erased. Null and dictionaries do not
/// count.
[[nodiscard]] VDM_DB_EXPORT bool assocVariableReactorIsValid(const OdDbObject* reactor);

}  // namespace vdmu
