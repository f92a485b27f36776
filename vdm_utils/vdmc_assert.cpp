// Assertions that report and go on.
#include "vdm_utils/vdmc_assert.h"

#include <cstdio>
#include <memory>
#include <mutex>
#include <utility>

namespace {

std::mutex& sinkMutex() {
  static std::mutex mutex;
  return mutex;
}

// Shared, so that a sink that is replaced while it runs stays alive.
std::shared_ptr<VdmAssertSink>& sinkSlot() {
  static std::shared_ptr<VdmAssertSink> sink;
  return sink;
}

void writeToStandardError(const VdmAssertion& assertion) {
  const char* separator = assertion.message.isEmpty() ? "" : ": ";
  std::fprintf(stderr, "assertion failed: %s%s%s (%s:%d)\n", assertion.expression, separator,
               static_cast<const char*>(assertion.message), assertion.source, assertion.line);
}

}  // namespace

void vdmcCallAssert(const char* expression, const OdString& message, const char* source, int line) {
  const VdmAssertion assertion{expression ? expression : "", message, source ? source : "", line};
  std::shared_ptr<VdmAssertSink> sink;
  {
    const std::scoped_lock lock(sinkMutex());
    sink = sinkSlot();
  }
  if (sink) {
    (*sink)(assertion);
  } else {
    writeToStandardError(assertion);
  }
}

VdmAssertSink setVdmAssertSink(VdmAssertSink sink) {
  auto fresh = sink ? std::make_shared<VdmAssertSink>(std::move(sink)) : nullptr;
  const std::scoped_lock lock(sinkMutex());
  sinkSlot().swap(fresh);
  return fresh ? *fresh : VdmAssertSink();
}
