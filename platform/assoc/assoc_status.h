// OdDbAssocStatus: whether an action or a dependency is up to date.
#pragma once

#include "platform/base/types.h"

/// The numbers are stored and compared.
enum OdDbAssocStatus : OdUInt8 {
  kAssocUpToDate = 0,
  kAssocChangedDirectly = 1,      ///< it was edited itself
  kAssocChangedTransitively = 2,  ///< something that it depends on was changed
  kAssocChangedNoDifference = 3,  ///< it was edited, and its value is what it was
  kAssocFailedToEvaluate = 4,     ///< it has no value for these arguments; it keeps the last one
  kAssocErased = 5,               ///< what it depends on is erased, or it is erased itself
  kAssocUnresolved = 6,           ///< its expression uses a name that is not there
};

/// It waits for evaluation.
[[nodiscard]] constexpr bool oddbIsOutOfDate(OdDbAssocStatus status) {
  return status >= kAssocChangedDirectly && status <= kAssocChangedNoDifference;
}
