// Start and end of the run-time classes of associative networks.
#pragma once

/// Registers the classes of this folder, after oddbInitializeCore(). Calls nest.
void oddbInitializeAssoc();
/// The call that matches the first one releases them, before oddbUninitializeCore().
void oddbUninitializeAssoc();
