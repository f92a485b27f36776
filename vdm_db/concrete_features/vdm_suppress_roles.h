// What suppress features know about variables.
#pragma once

struct VdmVariableRoles;

/// Adds whether a variable switches a suppress feature.
void vdmAddSuppressRoles(VdmVariableRoles& roles);
