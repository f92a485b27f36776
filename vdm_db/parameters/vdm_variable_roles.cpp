// What the rooms above know about a variable.
#include "vdm_db/parameters/vdm_variable_roles.h"

namespace {
VdmVariableRoles g_roles;
}

const VdmVariableRoles& VdmVariableRoles::installed() { return g_roles; }
void VdmVariableRoles::install(const VdmVariableRoles& roles) { g_roles = roles; }
