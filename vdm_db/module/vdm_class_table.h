// The table of the module's run-time classes.
#pragma once

/// Registers all classes in the order of the table. When one fails, those before it are released
/// and its error passes through.
void vdmRegisterClasses();
/// Raises OdError eModuleInUse, naming both, when a class of another module derives from one of
/// them.
void vdmRequireReleasable();
/// Releases them in the reverse order.
void vdmReleaseClasses();
