// The module for the time of a test.
#pragma once

#include "platform/base/non_copyable.h"
#include "tests/support/runtime.h"
#include "vdm_utils/vdmc_assert.h"

/// Starts the runtime and loads the module; its end undoes both.
class VdmModule : public LoadedModule {
 public:
  VdmModule();
};

/// Sends failed assertions to a function while it lives.
class AssertionSink : OdNonCopyable {
 public:
  explicit AssertionSink(VdmAssertSink sink) : m_previous(setVdmAssertSink(std::move(sink))) {}
  ~AssertionSink() { setVdmAssertSink(m_previous); }

 private:
  VdmAssertSink m_previous;
};
