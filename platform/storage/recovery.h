// Recovery of the intact contents of a damaged drawing file.
#pragma once

#include <memory>
#include <string>

#include "platform/storage/file_replacement.h"

namespace odstorage {

/// Passes every intact variable, class and record of the file to `sink`, in this order, and reports
/// line by line what is lost. First it reads through SQLite, which also undoes an interrupted save;
/// when that does not give everything, it reads the pages of the file itself.
OdStatus recoverDrawing(const std::shared_ptr<const StoreEnvironment>& environment,
                        const std::string& path, OdDbRecoverySink& sink);

}  // namespace odstorage
