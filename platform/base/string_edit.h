// Making and changing the buffers of OdString; private to platform/base.
#pragma once

#include <cstddef>
#include <string_view>

#include "platform/base/string.h"

/// The one place that knows the layout of string buffers beyond reading them.
struct OdStringEdit {
  using Buffer = OdString::Buffer;
  static constexpr std::size_t kMaxLength = (std::size_t{1} << 30) - 1;

  /// A buffer for one reference, with the length set and the characters still to be written;
  /// the null character after them is there. The length is not 0.
  static Buffer* allocateNarrow(std::size_t length) { return allocate(length, sizeof(char), 0); }
  static Buffer* allocateWide(std::size_t length) {
    return allocate(length, sizeof(wchar_t), OdString::kWideBit);
  }

  /// Memory from std::malloc; raises OdError(eOutOfMemory).
  static void* allocateBlock(std::size_t bytes);

  /// From characters that are known to be ASCII.
  static OdString fromAscii(std::string_view text);
  /// From any characters: picks the form, and replaces what is no string character.
  static OdString fromWide(std::wstring_view text);
  static OdString fromUtf8(std::string_view text);

  static std::string_view narrowView(const OdString& text) noexcept { return text.narrowView(); }
  static std::wstring_view wideView(const OdString& text) noexcept { return text.wideView(); }

  /// Appends characters of the text's own form in its buffer, when that is unshared and large
  /// enough; false without a change when it is not. `text` is not empty; `tail` is no part of it.
  template <class Character>
  static bool appendInPlace(OdString& text, const Character* tail, std::size_t length) noexcept;
  /// Both texts in a new buffer. Neither is empty.
  static OdString joined(const OdString& head, const OdString& tail);
  /// The narrow buffer for writing, unshared. The text is narrow and not empty.
  static char* writableNarrow(OdString& text);

 private:
  static Buffer* allocate(std::size_t length, std::size_t characterSize, OdUInt32 widthBit);
  static std::size_t blockSize(std::size_t length, std::size_t characterSize) noexcept;
  static void dropOtherForm(Buffer* buffer) noexcept;
  friend class OdString;
};
