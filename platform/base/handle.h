// The 64-bit handle that names an object within its database and its file.
#pragma once

#include <functional>

#include "platform/base/export.h"
#include "platform/base/types.h"

class OdString;

/// A plain value, compared as its number. 0 is the null handle, which no object has.
class OD_API OdDbHandle {
 public:
  constexpr OdDbHandle() noexcept = default;
  constexpr OdDbHandle(OdUInt64 value) noexcept : m_value(value) {}
  /// From hexadecimal text in either case; raises OdError(eInvalidInput) naming a text that is not
  /// 1 to 16 hexadecimal digits.
  explicit OdDbHandle(const wchar_t* text);
  explicit OdDbHandle(const char* text);

  /// False, with the handle left alone, when the text is not 1 to 16 hexadecimal digits.
  [[nodiscard]] static bool parse(const wchar_t* text, OdDbHandle& handle) noexcept;
  [[nodiscard]] static bool parse(const char* text, OdDbHandle& handle) noexcept;
  [[nodiscard]] static bool parse(const OdString& text, OdDbHandle& handle) noexcept;

  constexpr operator OdUInt64() const noexcept { return m_value; }
  [[nodiscard]] constexpr bool isNull() const noexcept { return m_value == 0; }

  /// Upper-case hexadecimal text without leading zeros; "0" for the null handle.
  [[nodiscard]] OdString ascii() const;

  constexpr OdDbHandle& operator++() noexcept {
    ++m_value;
    return *this;
  }
  constexpr OdDbHandle operator++(int) noexcept { return OdDbHandle(m_value++); }

 private:
  OdUInt64 m_value = 0;
};

template <>
struct std::hash<OdDbHandle> {
  std::size_t operator()(OdDbHandle handle) const noexcept {
    return std::hash<OdUInt64>()(static_cast<OdUInt64>(handle));
  }
};
