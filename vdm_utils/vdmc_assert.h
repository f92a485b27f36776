// Assertions that report and go on.
#pragma once

#include <functional>

#include "platform/base/export.h"
#include "platform/base/string.h"

/// One failed assertion as its receiver sees it. `source` has the form "vdm_db/<file>".
struct VdmAssertion {
  const char* expression;
  const OdString& message;
  const char* source;
  int line;
};

using VdmAssertSink = std::function<void(const VdmAssertion&)>;

/// Reports a failed assertion to the sink and returns: the code after an assertion handles the
/// failure itself. Usable in any thread.
OD_API void vdmcCallAssert(const char* expression, const OdString& message, const char* source,
                           int line);

/// Replaces the receiver of all threads and returns the one before; an empty one means the
/// default, which writes a line to standard error. A receiver must not throw.
OD_API VdmAssertSink setVdmAssertSink(VdmAssertSink sink);

/// Reports when `holds` is false; gives `holds`, so that it can be used in a condition.
inline bool vdmAssert(bool holds, const char* expression, const OdString& message,
                      const char* source, int line) {
  if (!holds) [[unlikely]]
    vdmcCallAssert(expression, message, source, line);
  return holds;
}

// With fixed source texts and line numbers, so that reports do not change with the layout.
#define VDM_ASSERT_AT(expression, source, line) \
  vdmAssert(static_cast<bool>(expression), #expression, OdString::kEmpty, source, line)
#define VDM_ASSERT_MSG(expression, message, source, line) \
  vdmAssert(static_cast<bool>(expression), #expression, message, source, line)
