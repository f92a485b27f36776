// Start and end of cloning.
#pragma once

/// Registers the classes of this folder and makes objects and drawings able to clone, after
/// oddbInitializeCore(). Calls nest.
void oddbInitializeCloning();
/// The call that matches the first one takes that back, before oddbUninitializeCore().
void oddbUninitializeCloning();
