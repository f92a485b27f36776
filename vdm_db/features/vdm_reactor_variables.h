// What the reactors of features do with variables.
#pragma once

#include <initializer_list>

#include "platform/filer/object_id.h"

/// A change of a number counts when it is larger than 1e-10.
[[nodiscard]] bool vdmIsOtherNumber(double a, double b);
/// Takes the persistent reactors off a variable. Nothing happens when it does not open.
void vdmDetachFromVariable(const OdDbObjectId& variable,
                           std::initializer_list<OdDbObjectId> reactors);
/// Removes a variable from its network and erases it, unless something uses it still or a
/// configuration binds a text to it.
void vdmRemoveUnusedVariable(const OdDbObjectId& variable);
