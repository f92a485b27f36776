// Bodies that operations of the modeller must give.
#pragma once

#include <stdexcept>
#include <string>

#include "platform/modeler/modeler.h"

namespace naming_bench {

/// The body that `call` writes to its argument. Raises std::runtime_error with the modeller's text.
template <class Call>
OdModelerBodyPtr made(Call call) {
  OdModelerBodyPtr result;
  const OdStatus status = call(result);
  if (!status.ok()) throw std::runtime_error(std::string(status.text.utf8()));
  return result;
}

}  // namespace naming_bench
