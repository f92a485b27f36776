// Bringing back what is intact of a damaged drawing file.
#pragma once

#include <memory>
#include <string>

#include "platform/storage/file_replacement.h"

namespace odstorage {

/// Hands every intact class, variable and record of the file to `sink`, in this order, and tells
/// it line by line what is lost. First through SQLite, which also undoes an interrupted save; when
/// that does not give everything, from the pages of the file itself.
OdStatus recoverDrawing(const std::shared_ptr<const StoreEnvironment>& environment,
                        const std::string& path, OdDbRecoverySink& sink);

}  // namespace odstorage
