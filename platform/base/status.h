// Outcome of an operation that can fail on data.
#pragma once

#include "platform/base/result.h"
#include "platform/base/string.h"

/// A code and, when the operation failed, one clear line that names the thing and the values
/// concerned. A failed operation leaves its outputs as they were.
struct [[nodiscard]] OdStatus {
  OdResult code = eOk;
  OdString text;

  [[nodiscard]] bool ok() const { return code == eOk; }
};
