// Registration of the room's classes and extensions.
#pragma once

namespace vdm_host {

/// Registers the classes of components and attaches the extensions of features: helper of passes,
/// names, colours, update interface, model objects. The module that holds the classes of features
/// is loaded. Calls nest.
void registerModeling();
/// In reverse. Drawings with components are closed.
void unregisterModeling();

}  // namespace vdm_host
