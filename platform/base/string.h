// Wide and narrow strings of the runtime.
#pragma once

#include <atomic>
#include <concepts>
#include <cstdarg>
#include <cstddef>
#include <cstring>
#include <functional>
#include <iosfwd>
#include <string>
#include <string_view>
#include <utility>

#include "platform/base/export.h"
#include "platform/base/types.h"

class OdAnsiString;

/// A text of Unicode characters: one pointer to a buffer that copies share until one is changed.
///
/// 1. Indices and lengths count characters (wchar_t, UTF-32). The length limit is 2^30 - 1;
///    beyond it OdError(eOutOfMemory) is raised, as when memory runs out.
/// 2. A text of only ASCII characters is stored narrow, every other one wide. Equal texts thus
///    have equal bytes, whatever way they were made.
/// 3. The other form (wide for c_str, UTF-8 for the narrow operator) is made at the first request
///    and kept with the buffer. Returned pointers are valid until the string is changed or
///    destroyed.
/// 4. The narrow form is UTF-8. A byte that does not decode becomes the character U+DC00 + byte
///    (U+DC80 to U+DCFF), which encodes as that byte again, so file names and foreign data survive.
///    Other values that are no Unicode characters become U+FFFD when they enter a string.
///
/// Different strings may be used in different threads, also when they share a buffer. One string
/// may be read by several threads at a time.
class OD_API OdString {
 public:
  static const OdString kEmpty;

  constexpr OdString() noexcept = default;
  OdString(const OdString& other) noexcept : m_buffer(other.m_buffer) { addReference(); }
  OdString(OdString&& other) noexcept : m_buffer(std::exchange(other.m_buffer, nullptr)) {}
  /// A null pointer gives the empty string.
  OdString(const wchar_t* text);
  OdString(const wchar_t* text, std::size_t length);
  OdString(const char* utf8);
  OdString(const char* utf8, std::size_t byteCount);
  /// The character, `count` times.
  OdString(wchar_t character, std::size_t count);
  OdString(const std::wstring& text) : OdString(text.data(), text.size()) {}
  OdString(const std::string& utf8) : OdString(utf8.data(), utf8.size()) {}
  OdString(const OdAnsiString& utf8);
  static OdString fromUtf8(const char* utf8, std::size_t byteCount) {
    return OdString(utf8, byteCount);
  }
  static OdString fromUtf8(std::string_view utf8) { return OdString(utf8.data(), utf8.size()); }
  ~OdString() { dropReference(); }

  OdString& operator=(const OdString& other) noexcept {
    OdString(other).swap(*this);
    return *this;
  }
  OdString& operator=(OdString&& other) noexcept {
    OdString(std::move(other)).swap(*this);
    return *this;
  }
  void swap(OdString& other) noexcept { std::swap(m_buffer, other.m_buffer); }

  // ---- Queries

  [[nodiscard]] int getLength() const noexcept { return static_cast<int>(size()); }
  [[nodiscard]] int length() const noexcept { return static_cast<int>(size()); }
  [[nodiscard]] bool isEmpty() const noexcept { return !m_buffer; }

  /// Never null, ends with a null character.
  [[nodiscard]] const wchar_t* c_str() const;
  operator const wchar_t*() const { return c_str(); }
  operator const char*() const { return utf8().data(); }
  /// The narrow form, null-terminated behind its end. Needs no memory for an ASCII text.
  [[nodiscard]] std::string_view utf8() const { return isNarrow() ? narrowView() : cachedUtf8(); }
  [[nodiscard]] std::wstring toWide() const;

  /// The character at an index; the null character at the length. Beyond that OdError_InvalidIndex
  /// is raised.
  [[nodiscard]] wchar_t getAt(int index) const {
    if (index < 0 || static_cast<OdUInt32>(index) >= size()) [[unlikely]]
      return characterBeyond(index);
    return characterAt(static_cast<OdUInt32>(index));
  }
  template <std::integral Index>
  wchar_t operator[](Index index) const {
    return getAt(static_cast<int>(index));
  }

  /// Index of the first match at or behind `start`, of the last match; -1 when there is none.
  [[nodiscard]] int find(wchar_t character, int start = 0) const noexcept;
  [[nodiscard]] int find(const OdString& text, int start = 0) const noexcept;
  [[nodiscard]] int findOneOf(const OdString& characters) const noexcept;
  [[nodiscard]] int reverseFind(wchar_t character) const noexcept;

  /// Parts of the text; indices and counts beyond the ends are cut to them.
  [[nodiscard]] OdString left(int count) const;
  [[nodiscard]] OdString right(int count) const;
  [[nodiscard]] OdString mid(int first) const;
  [[nodiscard]] OdString mid(int first, int count) const;
  /// The longest beginning that has only, or none, of the characters.
  [[nodiscard]] OdString spanIncluding(const OdString& characters) const;
  [[nodiscard]] OdString spanExcluding(const OdString& characters) const;

  /// By code points: negative, zero or positive.
  [[nodiscard]] int compare(const OdString& other) const noexcept;
  /// By the code points of the case-folded texts; zero exactly when odStrIEqual holds.
  [[nodiscard]] int iCompare(const OdString& other) const;
  [[nodiscard]] bool iEquals(const OdString& other) const;
  /// A hash of the content, the same for equal texts of this process; it is not for files.
  [[nodiscard]] OdUInt64 hash() const noexcept;
  /// True when both share one buffer, or both are empty: a test of identity, not of content.
  [[nodiscard]] bool sharesBuffer(const OdString& other) const noexcept {
    return m_buffer == other.m_buffer;
  }
  /// True when the text is only ASCII and so stored with one byte for a character.
  [[nodiscard]] bool isNarrow() const noexcept {
    return !m_buffer || !(m_buffer->lengthAndWidth & kWideBit);
  }

  // ---- Edits

  void empty() noexcept { OdString().swap(*this); }
  /// Raises OdError_InvalidIndex unless 0 <= index < length.
  OdString& setAt(int index, wchar_t character);
  OdString& operator+=(const OdString& text);
  OdString& operator+=(const wchar_t* text) { return *this += OdString(text); }
  OdString& operator+=(const char* text) { return *this += OdString(text); }
  OdString& operator+=(wchar_t character);
  OdString& operator+=(char character) { return *this += static_cast<wchar_t>(character); }
  /// The index is cut to the ends; the result is the new length.
  int insert(int index, const OdString& text);
  int insert(int index, wchar_t character) { return insert(index, OdString(character, 1)); }
  int deleteChars(int index, int count = 1);
  /// The result is the number of places that were changed.
  int replace(const OdString& oldText, const OdString& newText);
  int replace(wchar_t oldCharacter, wchar_t newCharacter);
  int remove(wchar_t character);
  /// Removes the given characters; without an argument white space.
  OdString& trimLeft();
  OdString& trimLeft(const OdString& characters);
  OdString& trimRight();
  OdString& trimRight(const OdString& characters);
  /// Unicode's default mapping, in no language in particular; the length may change.
  OdString& makeUpper();
  OdString& makeLower();

  /// As wide printf, but free of the locale: %ls and %lc take wide, %s and %hs UTF-8, %c and %lc
  /// one character; d i u x X o e f g a p with their flags, widths, precisions and length
  /// modifiers. Raises OdError(eInvalidInput) for a conversion that is not one of these, and for
  /// %n.
  OdString& format(const wchar_t* formatText, ...);
  OdString& formatV(const wchar_t* formatText, std::va_list arguments);

  friend bool operator==(const OdString& a, const OdString& b) noexcept {
    return a.m_buffer == b.m_buffer || a.equalsOther(b);
  }
  friend bool operator<(const OdString& a, const OdString& b) noexcept { return a.compare(b) < 0; }
  friend bool operator>(const OdString& a, const OdString& b) noexcept { return b < a; }
  friend bool operator<=(const OdString& a, const OdString& b) noexcept { return !(b < a); }
  friend bool operator>=(const OdString& a, const OdString& b) noexcept { return !(a < b); }
  friend bool operator==(const OdString& a, const wchar_t* b) { return a == OdString(b); }
  friend bool operator==(const OdString& a, const char* b) { return a == OdString(b); }
  friend bool operator<(const OdString& a, const wchar_t* b) { return a < OdString(b); }
  friend bool operator<(const wchar_t* a, const OdString& b) { return OdString(a) < b; }

  friend OdString operator+(OdString a, const OdString& b) { return std::move(a += b); }
  friend OdString operator+(OdString a, const wchar_t* b) { return std::move(a += b); }
  friend OdString operator+(OdString a, const char* b) { return std::move(a += b); }
  friend OdString operator+(OdString a, wchar_t b) { return std::move(a += b); }
  friend OdString operator+(OdString a, char b) { return std::move(a += b); }
  friend OdString operator+(const wchar_t* a, const OdString& b) { return OdString(a) += b; }
  friend OdString operator+(const char* a, const OdString& b) { return OdString(a) += b; }

 private:
  /// 16 bytes, followed by the characters and a null character. The capacity is not stored: it is
  /// the length's size class, so that appending needs a new buffer only from class to class.
  struct Buffer {
    std::atomic<OdInt32> references;
    OdUInt32 lengthAndWidth;
    /// A wide buffer for a narrow text, a block with the UTF-8 form for a wide text, or null.
    std::atomic<void*> otherForm;

    [[nodiscard]] const char* narrow() const { return reinterpret_cast<const char*>(this + 1); }
    [[nodiscard]] const wchar_t* wide() const { return reinterpret_cast<const wchar_t*>(this + 1); }
    char* narrow() { return reinterpret_cast<char*>(this + 1); }
    wchar_t* wide() { return reinterpret_cast<wchar_t*>(this + 1); }
  };
  static constexpr OdUInt32 kWideBit = 0x80000000U;

  friend struct OdStringEdit;

  explicit OdString(Buffer* buffer) noexcept : m_buffer(buffer) {}

  [[nodiscard]] OdUInt32 size() const noexcept {
    return m_buffer ? m_buffer->lengthAndWidth & ~kWideBit : 0;
  }
  [[nodiscard]] std::string_view narrowView() const noexcept {
    return m_buffer ? std::string_view(m_buffer->narrow(), m_buffer->lengthAndWidth)
                    : std::string_view("");
  }
  [[nodiscard]] std::wstring_view wideView() const noexcept { return {m_buffer->wide(), size()}; }
  [[nodiscard]] wchar_t characterAt(OdUInt32 index) const noexcept {
    return isNarrow() ? static_cast<wchar_t>(m_buffer->narrow()[index]) : m_buffer->wide()[index];
  }
  [[nodiscard]] wchar_t characterBeyond(int index) const;
  [[nodiscard]] bool equalsOther(const OdString& other) const noexcept {
    if (!m_buffer || !other.m_buffer ||
        m_buffer->lengthAndWidth != other.m_buffer->lengthAndWidth) {
      return false;
    }
    const std::size_t bytes = isNarrow() ? size() : size() * sizeof(wchar_t);
    return std::memcmp(m_buffer->narrow(), other.m_buffer->narrow(), bytes) == 0;
  }
  [[nodiscard]] std::string_view cachedUtf8() const;
  void addReference() const noexcept {
    if (m_buffer) m_buffer->references.fetch_add(1, std::memory_order_relaxed);
  }
  void dropReference() noexcept {
    if (m_buffer && m_buffer->references.fetch_sub(1, std::memory_order_acq_rel) == 1) {
      destroy(m_buffer);
    }
  }
  static void destroy(Buffer* buffer) noexcept;

  Buffer* m_buffer = nullptr;
};

/// A text in its narrow form, UTF-8, as an independent value.
class OD_API OdAnsiString {
 public:
  OdAnsiString() noexcept = default;
  OdAnsiString(const char* utf8) : m_text(utf8 ? utf8 : "") {}
  OdAnsiString(const char* utf8, std::size_t byteCount) : m_text(utf8, byteCount) {}
  OdAnsiString(const std::string& utf8) : m_text(utf8) {}
  OdAnsiString(const OdString& text) : m_text(text.utf8()) {}
  OdAnsiString(const wchar_t* text) : m_text(OdString(text).utf8()) {}

  [[nodiscard]] const char* c_str() const noexcept { return m_text.c_str(); }
  operator const char*() const noexcept { return m_text.c_str(); }
  [[nodiscard]] std::string_view view() const noexcept { return m_text; }
  /// In bytes.
  [[nodiscard]] int getLength() const noexcept { return static_cast<int>(m_text.size()); }
  [[nodiscard]] bool isEmpty() const noexcept { return m_text.empty(); }
  void empty() noexcept { m_text.clear(); }
  OdAnsiString& operator+=(const OdAnsiString& text) {
    m_text += text.m_text;
    return *this;
  }
  friend bool operator==(const OdAnsiString& a, const OdAnsiString& b) noexcept {
    return a.m_text == b.m_text;
  }
  friend bool operator==(const OdAnsiString& a, const char* b) noexcept { return a.m_text == b; }
  friend bool operator<(const OdAnsiString& a, const OdAnsiString& b) noexcept {
    return a.m_text < b.m_text;
  }

 private:
  std::string m_text;
};

/// Writes the narrow form.
OD_API std::ostream& operator<<(std::ostream& stream, const OdString& text);

template <>
struct std::hash<OdString> {
  std::size_t operator()(const OdString& text) const noexcept { return text.hash(); }
};
