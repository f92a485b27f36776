// Objects by the handle that the command line names.
#pragma once

#include <string>

#include "platform/db/database.h"
#include "platform/db/db_object.h"

namespace cli {

/// The object of a handle. CliError: kWrongUsage for a text that is no handle, kCouldNot for a
/// handle that names nothing in the drawing, or an object that cannot be read.
OdDbObjectPtr openByHandle(const OdDbDatabase& drawing, const std::string& handle,
                           OdDb::OpenMode mode);

/// Name of an object's class; for a proxy, of the class that it replaces.
[[nodiscard]] std::string classNameOf(const OdDbObject& object);

}  // namespace cli
