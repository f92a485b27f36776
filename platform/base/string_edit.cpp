// Edits of OdString.
#include "platform/base/string_edit.h"

#include <algorithm>
#include <cstring>
#include <string>

#include "platform/base/case_compare.h"
#include "platform/base/raise.h"

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
OdString trimmedLeft(const OdString& text, Predicate goes) {
  int first = 0;
  while (first < text.getLength() && goes(text.getAt(first))) ++first;
  return text.mid(first);
}

template <class Predicate>
OdString trimmedRight(const OdString& text, Predicate goes) {
  int end = text.getLength();
  while (end > 0 && goes(text.getAt(end - 1))) --end;
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
      blockSize(oldLength, sizeof(Character)) != blockSize(newLength, sizeof(Character)))
    return false;
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
    if (part->isNarrow())
      to = std::copy_n(part->m_buffer->narrow(), part->size(), to);
    else
      to = std::copy_n(part->m_buffer->wide(), part->size(), to);
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
  if (!isEmpty() && isNarrow() && isAscii && OdStringEdit::appendInPlace(*this, &narrow, 1))
    return *this;
  return *this += OdString(character, 1);
}

// ---- Changing characters

char* OdStringEdit::writableNarrow(OdString& text) {
  if (text.m_buffer->references.load(std::memory_order_acquire) != 1)
    text = fromAscii(text.narrowView());
  else
    dropOtherForm(text.m_buffer);
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
  if (isNarrow() && oldText.isNarrow() && newText.isNarrow())
    return edit(std::string(utf8()), std::string(oldText.utf8()), std::string(newText.utf8()));
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
