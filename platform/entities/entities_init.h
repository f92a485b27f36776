// Start and end of the run-time classes of the drawn entities.
#pragma once

/// Registers the classes of this folder, after oddbInitializeCore(). Calls nest.
void oddbInitializeEntities();
/// The call that matches the first one releases them, before oddbUninitializeCore().
void oddbUninitializeEntities();
