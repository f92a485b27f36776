// What configurations know about variables.
#pragma once

struct VdmVariableRoles;

/// Enters the answers of configuration features: texts of variables, and columns that set them.
void vdmAddConfigurationRoles(VdmVariableRoles& roles);
