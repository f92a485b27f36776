// What the reactors of features do with variables.
#pragma once

#include <initializer_list>

#include "platform/filer/object_id.h"

/// A change of a number counts when it is larger than 1e-10.
[[nodiscard]] bool vdmIsOtherNumber(double a, double b);
/// Takes the persistent reactors off a variable. Nothing happens when it does not open.
void vdmDetachFromVariable(const OdDbObjectId& variable,
                           std::initializer_list<OdDbObjectId> reactors);
/// Removes a variable from its network and erases it with its dependencies, also where expressions
/// use it still. Only one that a configuration gives a text remains.
void vdmRemoveVariable(const OdDbObjectId& variable);
