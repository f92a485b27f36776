// What calls report, for tests of refusals and of success.
#pragma once

#include <gtest/gtest.h>

#include <string>

#include "platform/base/error.h"
#include "platform/base/status.h"

/// The code of the OdError that a call raises, with its message in `text`; eOk when it raises none.
template <class Call>
OdResult raisedBy(const Call& call, std::string* text = nullptr) {
  try {
    call();
  } catch (const OdError& error) {
    if (text != nullptr) *text = error.what();
    return error.code();
  }
  return eOk;
}

/// The name of the status code, then its text.
inline std::string textOf(const OdStatus& status) {
  return std::string(odResultName(status.code)) + " " + std::string(status.text.utf8());
}

/// A status for use in assertions; a failure says what it says.
inline testing::AssertionResult succeeded(const OdStatus& status) {
  if (status.ok()) return testing::AssertionSuccess();
  return testing::AssertionFailure() << textOf(status);
}
