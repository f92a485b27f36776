// Buffers of OdString, and the edits that make or change them.
//
// A buffer holds its length but no capacity: the capacity is the size class of the length
// (blockSize), which both sides can compute. An edit in place is allowed when the buffer has one
// reference and the new length falls into the same class; else the text gets a new buffer. Up to
// 256 bytes the classes are what an allocator hands out anyway (16 n + 8 bytes). Above that each
// class is a sixteenth to an eighth larger than the one below, so that the copies made while a text
// grows one character at a time form a geometric series: at most some 17 copies for each
// character of the result.
#include "platform/base/string_edit.h"

#include <algorithm>
#include <bit>
#include <cstdlib>
#include <cstring>
#include <new>
#include <string>

#include "platform/base/case_compare.h"
#include "platform/base/raise.h"
#include "platform/base/utf8.h"

// ---- Buffers

namespace {

bool isAscii(std::string_view text) noexcept {
  return std::all_of(text.begin(), text.end(), [](char ch) { return (ch & 0x80) == 0; });
}

bool isAscii(std::wstring_view text) noexcept {
  return std::all_of(text.begin(), text.end(), [](wchar_t ch) { return ch >= 0 && ch < 0x80; });
}

}  // namespace

void* OdStringEdit::allocateBlock(std::size_t bytes) {
  void* block = std::malloc(bytes);
  if (!block) odRaise(eOutOfMemory);
  return block;
}

// The size class of a length, in bytes.
std::size_t OdStringEdit::blockSize(std::size_t length, std::size_t characterSize) noexcept {
  const std::size_t bytes = sizeof(Buffer) + (length + 1) * characterSize;
  if (bytes <= 256) return (bytes + 7) / 16 * 16 + 8;
  const std::size_t step = std::bit_floor(bytes) / 8;
  return (bytes + step - 1) / step * step;
}

OdStringEdit::Buffer* OdStringEdit::allocate(std::size_t length, std::size_t characterSize,
                                             OdUInt32 widthBit) {
  if (length > kMaxLength) odRaise(eOutOfMemory, "a string of more than 2^30 - 1 characters");
  void* block = allocateBlock(blockSize(length, characterSize));
  auto* buffer = ::new (block) Buffer{1, static_cast<OdUInt32>(length) | widthBit, nullptr};
  if (widthBit) {
    buffer->wide()[length] = L'\0';
  } else {
    buffer->narrow()[length] = '\0';
  }
  return buffer;
}

void OdStringEdit::dropOtherForm(Buffer* buffer) noexcept {
  std::free(buffer->otherForm.exchange(nullptr, std::memory_order_acquire));
}

OdString OdStringEdit::fromAscii(std::string_view text) {
  if (text.empty()) return OdString();
  Buffer* buffer = allocateNarrow(text.size());
  std::memcpy(buffer->narrow(), text.data(), text.size());
  return OdString(buffer);
}

OdString OdStringEdit::fromWide(std::wstring_view text) {
  if (text.empty()) return OdString();
  if (isAscii(text)) {
    Buffer* buffer = allocateNarrow(text.size());
    std::transform(text.begin(), text.end(), buffer->narrow(),
                   [](wchar_t ch) { return static_cast<char>(ch); });
    return OdString(buffer);
  }
  Buffer* buffer = allocateWide(text.size());
  std::transform(text.begin(), text.end(), buffer->wide(),
                 [](wchar_t ch) { return odIsStringCharacter(ch) ? ch : kOdReplacementCharacter; });
  return OdString(buffer);
}

OdString OdStringEdit::fromUtf8(std::string_view text) {
  return isAscii(text) ? fromAscii(text) : fromWide(odUtf8ToWide(text));
}

// ---- Edits

namespace {

OdString fromEdited(const std::string& text) { return OdStringEdit::fromAscii(text); }
OdString fromEdited(const std::wstring& text) { return OdStringEdit::fromWide(text); }

bool isSpace(wchar_t ch) noexcept {
  // The characters with Unicode's property White_Space.
  return (ch >= 0x09 && ch <= 0x0D) || ch == 0x20 || ch == 0x85 || ch == 0xA0 || ch == 0x1680 ||
         (ch >= 0x2000 && ch <= 0x200A) || ch == 0x2028 || ch == 0x2029 || ch == 0x202F ||
         ch == 0x205F || ch == 0x3000;
}

template <class Predicate>
OdString trimmedLeft(const OdString& text, Predicate isTrimmed) {
  int first = 0;
  while (first < text.getLength() && isTrimmed(text.getAt(first))) ++first;
  return text.mid(first);
}

template <class Predicate>
OdString trimmedRight(const OdString& text, Predicate isTrimmed) {
  int end = text.getLength();
  while (end > 0 && isTrimmed(text.getAt(end - 1))) --end;
  return text.left(end);
}

template <class Text>
int replaceAll(Text& text, const Text& oldText, const Text& newText) {
  Text result;
  int count = 0;
  std::size_t from = 0;
  for (std::size_t at = text.find(oldText); at != Text::npos; at = text.find(oldText, from)) {
    result.append(text, from, at - from);
    result += newText;
    from = at + oldText.size();
    ++count;
  }
  result.append(text, from);
  text = std::move(result);
  return count;
}

}  // namespace

// ---- Appending

template <class Character>
bool OdStringEdit::appendInPlace(OdString& text, const Character* tail,
                                 std::size_t length) noexcept {
  Buffer* buffer = text.m_buffer;
  if (buffer->references.load(std::memory_order_acquire) != 1) return false;
  const std::size_t oldLength = text.size();
  const std::size_t newLength = oldLength + length;
  if (newLength > kMaxLength ||
      blockSize(oldLength, sizeof(Character)) != blockSize(newLength, sizeof(Character))) {
    return false;
  }
  dropOtherForm(buffer);
  Character* end = reinterpret_cast<Character*>(buffer->narrow()) + oldLength;
  std::copy_n(tail, length, end);
  end[length] = Character{};
  buffer->lengthAndWidth += static_cast<OdUInt32>(length);
  return true;
}

OdString OdStringEdit::joined(const OdString& head, const OdString& tail) {
  const std::size_t length = std::size_t{head.size()} + tail.size();
  if (head.isNarrow() && tail.isNarrow()) {
    Buffer* buffer = allocateNarrow(length);
    std::memcpy(buffer->narrow(), head.m_buffer->narrow(), head.size());
    std::memcpy(buffer->narrow() + head.size(), tail.m_buffer->narrow(), tail.size());
    return OdString(buffer);
  }
  Buffer* buffer = allocateWide(length);
  wchar_t* to = buffer->wide();
  for (const OdString* part : {&head, &tail}) {
    if (part->isNarrow()) {
      to = std::copy_n(part->m_buffer->narrow(), part->size(), to);
    } else {
      to = std::copy_n(part->m_buffer->wide(), part->size(), to);
    }
  }
  return OdString(buffer);
}

OdString& OdString::operator+=(const OdString& text) {
  if (text.isEmpty()) return *this;
  if (isEmpty()) return *this = text;
  // A shared buffer is never changed in place, which covers a text appended to itself.
  const OdString tail(text);
  if (isNarrow() == tail.isNarrow()) {
    const bool done = isNarrow()
                          ? OdStringEdit::appendInPlace(*this, tail.m_buffer->narrow(), tail.size())
                          : OdStringEdit::appendInPlace(*this, tail.m_buffer->wide(), tail.size());
    if (done) return *this;
  }
  return *this = OdStringEdit::joined(*this, tail);
}

OdString& OdString::operator+=(wchar_t character) {
  const bool isAscii = character >= 0 && character < 0x80;
  const char narrow = static_cast<char>(character);
  if (!isEmpty() && isNarrow() && isAscii && OdStringEdit::appendInPlace(*this, &narrow, 1)) {
    return *this;
  }
  return *this += OdString(character, 1);
}

// ---- Changing characters

char* OdStringEdit::writableNarrow(OdString& text) {
  if (text.m_buffer->references.load(std::memory_order_acquire) != 1) {
    text = fromAscii(text.narrowView());
  } else {
    dropOtherForm(text.m_buffer);
  }
  return text.m_buffer->narrow();
}

OdString& OdString::setAt(int index, wchar_t character) {
  if (index < 0 || index >= getLength()) odRaiseInvalidIndex(index, getLength());
  if (getAt(index) == character) return *this;
  if (isNarrow() && character >= 0 && character < 0x80) {
    OdStringEdit::writableNarrow(*this)[index] = static_cast<char>(character);
    return *this;
  }
  std::wstring wide = toWide();
  wide[static_cast<std::size_t>(index)] = character;
  return *this = OdStringEdit::fromWide(wide);
}

int OdString::insert(int index, const OdString& text) {
  const int at = std::clamp(index, 0, getLength());
  *this = left(at) + text + mid(at);
  return getLength();
}

int OdString::deleteChars(int index, int count) {
  const int from = std::clamp(index, 0, getLength());
  const int gone = std::clamp(count, 0, getLength() - from);
  if (gone > 0) *this = left(from) + mid(from + gone);
  return getLength();
}

int OdString::replace(const OdString& oldText, const OdString& newText) {
  if (find(oldText) < 0 || oldText.isEmpty()) return 0;
  const auto edit = [&](auto text, const auto& from, const auto& to) {
    const int count = replaceAll(text, from, to);
    *this = fromEdited(text);
    return count;
  };
  if (isNarrow() && oldText.isNarrow() && newText.isNarrow()) {
    return edit(std::string(utf8()), std::string(oldText.utf8()), std::string(newText.utf8()));
  }
  return edit(toWide(), oldText.toWide(), newText.toWide());
}

int OdString::replace(wchar_t oldCharacter, wchar_t newCharacter) {
  return replace(OdString(oldCharacter, 1), OdString(newCharacter, 1));
}

int OdString::remove(wchar_t character) { return replace(OdString(character, 1), OdString()); }

OdString& OdString::trimLeft() { return *this = trimmedLeft(*this, isSpace); }

OdString& OdString::trimLeft(const OdString& characters) {
  return *this = trimmedLeft(*this, [&](wchar_t ch) { return characters.find(ch) >= 0; });
}

OdString& OdString::trimRight() { return *this = trimmedRight(*this, isSpace); }

OdString& OdString::trimRight(const OdString& characters) {
  return *this = trimmedRight(*this, [&](wchar_t ch) { return characters.find(ch) >= 0; });
}

OdString& OdString::makeUpper() { return *this = odToUpper(*this); }

OdString& OdString::makeLower() { return *this = odToLower(*this); }
