// Start and end of the drawing runtime.
#pragma once

/// Starts the database core, the drawn entities, networks and cloning. Calls nest; the first one
/// registers the run-time classes.
void oddbInitialize();
/// The call that matches the first one releases them in reverse. Drawings must be gone, and classes
/// derived from these released. A call without a start does nothing.
void oddbUninitialize();
