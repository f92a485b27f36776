// Objects by the handle that the command line names.
#include "host/cli/find_object.h"

#include "host/cli/cli_error.h"
#include "host/cli/text_output.h"
#include "platform/base/error.h"
#include "platform/db/proxy_object.h"

namespace cli {

OdDbObjectPtr openByHandle(const OdDbDatabase& drawing, const std::string& handle,
                           OdDb::OpenMode mode) {
  OdDbHandle value;
  if (!OdDbHandle::parse(handle.c_str(), value)) {
    throw CliError("handle " + quote(handle) + " is not 1 to 16 hexadecimal digits", kWrongUsage);
  }
  const std::string where = quote(drawing.getFilename().utf8());
  const OdDbObjectId id = drawing.getOdDbObjectId(value);
  if (!id.isValid() || id.isErased()) {
    throw CliError("handle " + str(value) + " names no object of " + where);
  }
  try {
    return id.safeOpenObject(mode);
  } catch (const OdError& error) {
    throw CliError("object " + str(value) + " of " + where +
                   " cannot be opened: " + str(error.description()));
  }
}

std::string classNameOf(const OdDbObject& object) {
  if (object.isKindOf(OdDbProxyObject::desc())) {
    return str(static_cast<const OdDbProxyObject&>(object).originalClassName());
  }
  return str(object.isA()->name());
}

}  // namespace cli
