// Installs this library as the clone service of the core.
#pragma once

/// From here on objects and drawings clone through OdDbCloner.
void oddbInstallCloneService();
/// Takes the installation back.
void oddbRemoveCloneService();
