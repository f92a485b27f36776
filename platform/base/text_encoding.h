// Bytes of foreign files as text: decoding by name, and finding the encoding of texts without one.
#pragma once

#include <memory>
#include <span>
#include <string_view>

#include "platform/base/export.h"
#include "platform/base/non_copyable.h"
#include "platform/base/string.h"

/// Turns bytes in one encoding into text, strictly: no byte is replaced or skipped. Not to be used
/// by two threads at a time.
class OD_API OdTextDecoder : OdNonCopyable {
 public:
  /// By any common name, such as "GBK", "Shift_JIS", "windows-1252", "UTF-8".
  explicit OdTextDecoder(const OdString& encoding);
  ~OdTextDecoder();

  /// False when no encoding has that name; such a decoder decodes nothing.
  [[nodiscard]] bool isKnown() const { return m_converter != nullptr; }
  /// False, and `text` as it was, when the bytes are no text in the encoding.
  [[nodiscard]] bool decode(std::string_view bytes, OdString& text) const;

 private:
  struct Converter;
  std::unique_ptr<Converter> m_converter;
};

/// The encoding that most likely wrote all these texts, each a few words or less. UTF-8 when all of
/// them decode as that; otherwise the encoding that decodes most of them into characters that are
/// common in its language. Empty for no text. A guess: short texts in the encodings of East Asia
/// resemble each other.
[[nodiscard]] OD_API OdString odDetectEncoding(std::span<const std::string_view> texts);
