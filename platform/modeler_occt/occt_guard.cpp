// Keeps exceptions of the modeller inside: they become the status of the operation.
#include "platform/modeler_occt/occt_guard.h"

#include <Standard_OutOfMemory.hxx>
#include <Standard_Type.hxx>
#include <string>

namespace od_occt {

OdStatus failure(OdResult code, const char* operation, const char* reason) {
  const std::string text = std::string(operation) + ": " + reason;
  return {code, OdString::fromUtf8(text.data(), text.size())};
}

OdStatus foreignFailure(const char* operation, const Standard_Failure& error) {
  if (error.IsKind(STANDARD_TYPE(Standard_OutOfMemory))) {
    return failure(eOutOfMemory, operation, "out of memory");
  }
  std::string reason = "the modeller gave up (";
  reason += error.DynamicType()->Name();
  const char* message = error.GetMessageString();
  if (message != nullptr && *message != '\0') reason.append(": ").append(message);
  return failure(eModelerError, operation, (reason + ")").c_str());
}

}  // namespace od_occt
