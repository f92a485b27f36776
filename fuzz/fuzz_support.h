// What the fuzz targets share: the runtime with the module, and drawings to take inputs from.
#pragma once

#include "platform/db/database.h"
#include "platform/db/host_app_services.h"
#include "platform/filer/file_filer.h"

/// Starts the runtime and registers the module's classes, once; they stay until the process ends.
void fuzzStart();

/// Services of one process; drawings live in memory, or in files with a store.
OdDbHostAppServices& fuzzServices();

/// A drawing after a number of random edits.
OdDbDatabasePtr fuzzDrawing(std::uint64_t seed, int edits);

/// Looks up handles in the drawing given as context; null for unknown ones.
OdDbObjectId fuzzResolve(void* context, OdUInt64 handle);
