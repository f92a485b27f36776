// Start and end of the drawing database's run-time classes.
#pragma once

/// Registers the classes of this folder and of those below it. Calls nest; the first one registers.
void oddbInitialize();
/// The call that matches the first one releases them in reverse. Drawings must be gone, and classes
/// derived from these released.
void oddbUninitialize();
