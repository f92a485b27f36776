// The table of the module's run-time classes.
#pragma once

/// Registers all classes in the order of the table. When one fails, those before it are released
/// and its error passes through.
void vdmRegisterClasses();
/// Releases them in the reverse order.
void vdmReleaseClasses();
