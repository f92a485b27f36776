// What constraints know about variables.
#pragma once

struct VdmVariableRoles;

/// Adds what the constraint of a variable measures.
void vdmAddConstraintRoles(VdmVariableRoles& roles);
