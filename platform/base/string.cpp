// The two forms, construction and queries of OdString.
//
// Each text has one form that its characters decide: narrow (one byte a character) when all are
// ASCII, else wide. The form is a function of the text, so that equal texts have equal bytes,
// comparing two of them is one memcmp, and hashing needs no decoding. The other form is made when a
// caller asks for it: the pointer `otherForm` of the buffer changes from null to that form once, by
// compare-and-exchange, and stays until the buffer is changed in place (which needs the only
// reference) or destroyed. Two threads that make it at the same time agree on the form that was
// published first. A request costs one pass over the text the first time and a load afterwards.
#include "platform/base/string.h"

#include <algorithm>
#include <cstdlib>
#include <new>
#include <ostream>

#include "platform/base/case_compare.h"
#include "platform/base/raise.h"
#include "platform/base/string_edit.h"
#include "platform/base/utf8.h"

constinit const OdString OdString::kEmpty;

// ---- Buffers and the other form

namespace {

// The UTF-8 form of a wide text, followed by its bytes and a null character.
struct Utf8Block {
  OdUInt32 size;
  char* bytes() { return reinterpret_cast<char*>(this + 1); }
};

// Publishes a form that was made; when another thread was quicker, its form stays.
void* publish(std::atomic<void*>& slot, void* made) noexcept {
  void* expected = nullptr;
  if (slot.compare_exchange_strong(expected, made, std::memory_order_acq_rel,
                                   std::memory_order_acquire)) {
    return made;
  }
  std::free(made);
  return expected;
}

}  // namespace

void OdString::destroy(Buffer* buffer) noexcept {
  std::free(buffer->otherForm.load(std::memory_order_acquire));
  std::free(buffer);
}

// ---- Construction

OdString::OdString(const wchar_t* text)
    : OdString(text ? OdStringEdit::fromWide(text) : OdString()) {}

OdString::OdString(const wchar_t* text, std::size_t length)
    : OdString(text ? OdStringEdit::fromWide({text, length}) : OdString()) {}

OdString::OdString(const char* utf8) : OdString(utf8 ? OdStringEdit::fromUtf8(utf8) : OdString()) {}

OdString::OdString(const char* utf8, std::size_t byteCount)
    : OdString(utf8 ? OdStringEdit::fromUtf8({utf8, byteCount}) : OdString()) {}

OdString::OdString(wchar_t character, std::size_t count) {
  if (count == 0) return;
  if (character >= 0 && character < 0x80) {
    m_buffer = OdStringEdit::allocateNarrow(count);
    std::fill_n(m_buffer->narrow(), count, static_cast<char>(character));
  } else {
    m_buffer = OdStringEdit::allocateWide(count);
    std::fill_n(m_buffer->wide(), count,
                odIsStringCharacter(character) ? character : kOdReplacementCharacter);
  }
}

OdString::OdString(const OdAnsiString& utf8) : OdString(OdStringEdit::fromUtf8(utf8.view())) {}

// ---- The two forms

const wchar_t* OdString::c_str() const {
  if (!m_buffer) return L"";
  if (!isNarrow()) return m_buffer->wide();
  if (void* made = m_buffer->otherForm.load(std::memory_order_acquire)) {
    return static_cast<const wchar_t*>(made);
  }
  auto* wide = static_cast<wchar_t*>(
      OdStringEdit::allocateBlock((size() + std::size_t{1}) * sizeof(wchar_t)));
  std::copy_n(m_buffer->narrow(), size() + std::size_t{1}, wide);
  return static_cast<const wchar_t*>(publish(m_buffer->otherForm, wide));
}

std::string_view OdString::cachedUtf8() const {
  void* made = m_buffer->otherForm.load(std::memory_order_acquire);
  if (!made) {
    const std::string utf8 = odWideToUtf8(wideView());
    made = OdStringEdit::allocateBlock(sizeof(Utf8Block) + utf8.size() + 1);
    auto* block = ::new (made) Utf8Block{static_cast<OdUInt32>(utf8.size())};
    std::memcpy(block->bytes(), utf8.c_str(), utf8.size() + 1);
    made = publish(m_buffer->otherForm, made);
  }
  auto* block = static_cast<Utf8Block*>(made);
  return {block->bytes(), block->size};
}

std::wstring OdString::toWide() const {
  if (!isNarrow()) return std::wstring(wideView());
  const std::string_view narrow = narrowView();
  return std::wstring(narrow.begin(), narrow.end());
}

wchar_t OdString::characterBeyond(int index) const {
  if (index != getLength()) odRaiseInvalidIndex(index, getLength());
  return L'\0';
}

// ---- Searching

namespace {

constexpr std::size_t kNotFound = std::string_view::npos;

int indexOf(std::size_t position) noexcept {
  return position == kNotFound ? -1 : static_cast<int>(position);
}

bool contains(const OdString& characters, wchar_t ch) noexcept { return characters.find(ch) >= 0; }

}  // namespace

int OdString::find(wchar_t character, int start) const noexcept {
  const auto from = static_cast<std::size_t>(std::max(start, 0));
  if (from >= size()) return -1;
  if (!isNarrow()) return indexOf(wideView().find(character, from));
  if (character < 0 || character >= 0x80) return -1;
  return indexOf(narrowView().find(static_cast<char>(character), from));
}

int OdString::find(const OdString& text, int start) const noexcept {
  const auto from = static_cast<std::size_t>(std::max(start, 0));
  if (from > size()) return -1;
  if (text.isEmpty()) return static_cast<int>(from);
  if (isNarrow()) return text.isNarrow() ? indexOf(narrowView().find(text.narrowView(), from)) : -1;
  if (!text.isNarrow()) return indexOf(wideView().find(text.wideView(), from));
  // An ASCII text within a wide one.
  const std::wstring_view whole = wideView();
  const std::string_view part = text.narrowView();
  const auto match =
      std::search(whole.begin() + static_cast<std::ptrdiff_t>(from), whole.end(), part.begin(),
                  part.end(), [](wchar_t a, char b) { return a == static_cast<wchar_t>(b); });
  return match == whole.end() ? -1 : static_cast<int>(match - whole.begin());
}

int OdString::findOneOf(const OdString& characters) const noexcept {
  for (OdUInt32 i = 0; i < size(); ++i) {
    if (contains(characters, characterAt(i))) return static_cast<int>(i);
  }
  return -1;
}

int OdString::reverseFind(wchar_t character) const noexcept {
  for (OdUInt32 i = size(); i-- > 0;) {
    if (characterAt(i) == character) return static_cast<int>(i);
  }
  return -1;
}

// ---- Parts

OdString OdString::mid(int first, int count) const {
  const int from = std::clamp(first, 0, getLength());
  const int taken = std::clamp(count, 0, getLength() - from);
  if (taken == getLength()) return *this;
  const auto offset = static_cast<std::size_t>(from);
  const auto length = static_cast<std::size_t>(taken);
  return isNarrow() ? OdStringEdit::fromAscii(narrowView().substr(offset, length))
                    : OdStringEdit::fromWide(wideView().substr(offset, length));
}

OdString OdString::mid(int first) const { return mid(first, getLength()); }

OdString OdString::left(int count) const { return mid(0, count); }

OdString OdString::right(int count) const {
  const int taken = std::clamp(count, 0, getLength());
  return mid(getLength() - taken, taken);
}

OdString OdString::spanIncluding(const OdString& characters) const {
  int end = 0;
  while (end < getLength() && contains(characters, getAt(end))) ++end;
  return left(end);
}

OdString OdString::spanExcluding(const OdString& characters) const {
  const int end = findOneOf(characters);
  return end < 0 ? *this : left(end);
}

// ---- Comparing

int OdString::compare(const OdString& other) const noexcept {
  if (m_buffer == other.m_buffer) return 0;
  if (isNarrow() && other.isNarrow()) return narrowView().compare(other.narrowView());
  const OdUInt32 common = std::min(size(), other.size());
  for (OdUInt32 i = 0; i < common; ++i) {
    const wchar_t a = characterAt(i);
    const wchar_t b = other.characterAt(i);
    if (a != b) return a < b ? -1 : 1;
  }
  return size() == other.size() ? 0 : size() < other.size() ? -1 : 1;
}

int OdString::iCompare(const OdString& other) const {
  if (m_buffer == other.m_buffer) return 0;
  if (!isNarrow() || !other.isNarrow()) return odCaseFold(*this).compare(odCaseFold(other));
  const auto lower = [](char ch) { return ch >= 'A' && ch <= 'Z' ? ch + ('a' - 'A') : ch + 0; };
  const std::string_view a = narrowView();
  const std::string_view b = other.narrowView();
  const std::size_t common = std::min(a.size(), b.size());
  for (std::size_t i = 0; i < common; ++i) {
    const int difference = lower(a[i]) - lower(b[i]);
    if (difference != 0) return difference;
  }
  return a.size() == b.size() ? 0 : a.size() < b.size() ? -1 : 1;
}

bool OdString::iEquals(const OdString& other) const { return iCompare(other) == 0; }

OdUInt64 OdString::hash() const noexcept {
  // Equal texts have the same form, so the bytes of the form stand for the text.
  if (isNarrow()) return std::hash<std::string_view>()(narrowView());
  return std::hash<std::wstring_view>()(wideView());
}

std::ostream& operator<<(std::ostream& stream, const OdString& text) {
  return stream << text.utf8();
}
