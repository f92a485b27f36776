// Keeps exceptions of the modeller inside: they become the status of the operation.
#pragma once

#include <Standard_Failure.hxx>
#include <exception>
#include <new>
#include <utility>

#include "platform/base/error.h"
#include "platform/base/status.h"
#include "platform/base/work_note.h"

namespace od_occt {

/// A status whose text is `operation` followed by `reason`.
OdStatus failure(OdResult code, const char* operation, const char* reason);
/// The same for a foreign exception, with its class and message.
OdStatus foreignFailure(const char* operation, const Standard_Failure& error);

/// Runs `work`, which returns a status. What it throws becomes a status: allocation failure is
/// eOutOfMemory, the runtime's errors keep their code, anything else is eModelerError. Faults that
/// the processor reports as signals are not caught: a library has no right to the host's handlers.
/// Meanwhile the operation is noted for the process's supervisor.
template <class Work>
OdStatus guarded(const char* operation, Work&& work) {
  const OdWorkNote note(operation);
  try {
    return std::forward<Work>(work)();
  } catch (const OdError& error) {
    return failure(error.code(), operation, error.what());
  } catch (const Standard_Failure& error) {
    return foreignFailure(operation, error);
  } catch (const std::bad_alloc&) {
    return failure(eOutOfMemory, operation, "out of memory");
  } catch (const std::exception& error) {
    return failure(eModelerError, operation, error.what());
  } catch (...) {
    return failure(eModelerError, operation, "unknown failure");
  }
}

}  // namespace od_occt
