// Diagnostic output, one line at a time. While it is off it builds nothing.
#pragma once

#include <concepts>
#include <functional>
#include <type_traits>

#include "platform/base/array.h"
#include "platform/base/export.h"
#include "platform/base/handle.h"
#include "platform/base/non_copyable.h"
#include "platform/base/result.h"
#include "platform/base/string.h"
#include "platform/rx/rx_object.h"

/// Puts one line together and hands it to the sink when it is destroyed:
///   VdmuTracer() << L"update " << featureId << L" gives " << result;
/// Off, as at first, it builds nothing. What can be put in: texts, numbers, handles, results,
/// object ids (as handles), run-time objects (as class names), points and vectors, and arrays of
/// these.
class OD_API VdmuTracer : OdNonCopyable {
 public:
  using Sink = std::function<void(const OdString& line)>;

  VdmuTracer();
  ~VdmuTracer();

  static bool isEnabled() noexcept;
  /// Lines of all threads go to the sink, one at a time; an empty sink switches tracing off. A sink
  /// must neither throw nor trace.
  static void setSink(Sink sink);

  template <class T>
  VdmuTracer& operator<<(const T& value) {
    if (m_active) [[unlikely]]
      put(value);
    return *this;
  }
  template <class T, class A>
  VdmuTracer& operator<<(const OdArray<T, A>& values) {
    if (m_active) [[unlikely]]
      putArray(values);
    return *this;
  }

 private:
  void append(const OdString& text) { m_line += text; }
  void putClassName(const OdRxObject* object);
  void putReal(double value);
  void putInteger(OdInt64 value);

  template <class T>
  void put(const T& value) {
    if constexpr (std::same_as<T, bool>) {
      append(value ? L"true" : L"false");
    } else if constexpr (std::same_as<T, OdResult>) {
      append(odResultName(value));
    } else if constexpr (std::same_as<T, OdDbHandle>) {
      append(value.ascii());
    } else if constexpr (std::same_as<T, wchar_t> || std::same_as<T, char>) {
      append(OdString(static_cast<wchar_t>(value), 1));
    } else if constexpr (std::integral<T> || std::is_enum_v<T>) {
      putInteger(static_cast<OdInt64>(value));
    } else if constexpr (std::floating_point<T>) {
      putReal(static_cast<double>(value));
    } else if constexpr (std::convertible_to<const T&, const OdRxObject*>) {
      putClassName(value);
    } else if constexpr (requires { value.getHandle().ascii(); }) {
      append(value.isNull() ? OdString(L"null") : value.getHandle().ascii());
    } else if constexpr (requires { value.x + value.y; }) {
      putPoint(value);
    } else {
      append(OdString(value));
    }
  }
  template <class T>
  void putPoint(const T& value) {
    *this << L"(" << value.x << L", " << value.y;
    if constexpr (requires { value.z; }) *this << L", " << value.z;
    append(L")");
  }
  template <class Array>
  void putArray(const Array& values) {
    append(L"[");
    for (OdUInt32 i = 0; i < values.size(); ++i) {
      if (i > 0) append(L", ");
      *this << values[i];
    }
    append(L"]");
  }

  OdString m_line;
  bool m_active;
};

/// Indents the lines of this thread by two more characters while it lives.
class OD_API VdmuTraceIndenter : OdNonCopyable {
 public:
  VdmuTraceIndenter() noexcept;
  /// Traces `title` first, as the heading of the indented lines.
  explicit VdmuTraceIndenter(const OdString& title);
  ~VdmuTraceIndenter();
};
