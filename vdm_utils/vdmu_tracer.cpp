// Diagnostic output, one line at a time.
#include "vdm_utils/vdmu_tracer.h"

#include <atomic>
#include <mutex>
#include <utility>

#include "platform/rx/rx_class.h"

namespace {

constexpr std::size_t kIndentWidth = 2;

std::atomic<bool> g_enabled{false};
// Calls of one thread nest; the indentation of one thread says nothing about another.
thread_local std::size_t t_depth = 0;

struct Output {
  std::mutex mutex;
  VdmuTracer::Sink sink;
};

Output& output() {
  static Output* instance = new Output;  // lines may come while the program ends
  return *instance;
}

}  // namespace

VdmuTracer::VdmuTracer() : m_active(isEnabled()) {
  if (m_active) m_line = OdString(L' ', t_depth * kIndentWidth);
}

VdmuTracer::~VdmuTracer() {
  if (!m_active) return;
  const std::scoped_lock lock(output().mutex);
  if (output().sink) output().sink(m_line);
}

bool VdmuTracer::isEnabled() noexcept { return g_enabled.load(std::memory_order_relaxed); }

void VdmuTracer::setSink(Sink sink) {
  const std::scoped_lock lock(output().mutex);
  output().sink = std::move(sink);
  g_enabled = static_cast<bool>(output().sink);
}

void VdmuTracer::putClassName(const OdRxObject* object) {
  const OdRxClass* rxClass = object ? object->isA() : nullptr;
  append(!object ? OdString(L"null") : rxClass ? rxClass->name() : OdString(L"unregistered"));
}

void VdmuTracer::putReal(double value) { append(OdString().format(L"%.17g", value)); }

void VdmuTracer::putInteger(OdInt64 value) {
  append(OdString().format(L"%lld", static_cast<long long>(value)));
}

VdmuTraceIndenter::VdmuTraceIndenter() noexcept { ++t_depth; }

VdmuTraceIndenter::VdmuTraceIndenter(const OdString& title) {
  VdmuTracer() << title;
  ++t_depth;
}

VdmuTraceIndenter::~VdmuTraceIndenter() { --t_depth; }
