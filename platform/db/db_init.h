// Start and end of the run-time classes of the database core.
#pragma once

/// Registers the classes of this folder and of those below it. Calls nest. Programs call
/// oddbInitialize() (platform/runtime), which starts the libraries above this one, too.
void oddbInitializeCore();
/// The call that matches the first one releases them. Drawings must be gone, and classes derived
/// from these released.
void oddbUninitializeCore();
