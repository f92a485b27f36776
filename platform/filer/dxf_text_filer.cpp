// OdDbTextDxfFiler: groups to lines and back.
//
// The reader holds the whole text and two places in it: the start of the present group and the line
// after it. nextItem() reads the two lines of a group and keeps the value as a view into the text;
// the rd members parse that view when they are called, so that a group may be read again and
// pushBackItem() only puts the first place back. What a value must look like follows from the kind
// of its code alone, which OdResBuf's table of codes gives; each rd member first compares that kind
// with its own. Reading and writing take one pass over the text. The only value that spans groups
// is a binary chunk: a group with fewer than kBinaryGroupBytes ends it.
#include "platform/filer/dxf_text_filer.h"

#include <charconv>
#include <limits>
#include <utility>

#include "platform/base/error.h"

namespace {

using Kind = OdResBuf::Kind;

constexpr char kDigits[] = "0123456789ABCDEF";

bool isEscaped(char character) {
  return static_cast<unsigned char>(character) < 0x20 || character == '^';
}

// Control characters as '^' and the character 64 above; '^' itself as "^ ".
void appendEscaped(std::string& text, std::string_view value) {
  for (const char character : value) {
    if (!isEscaped(character)) {
      text += character;
      continue;
    }
    text += '^';
    text += character == '^' ? ' ' : static_cast<char>(character + '@');
  }
}

bool unescape(std::string_view line, std::string& value) {
  for (std::size_t i = 0; i < line.size(); ++i) {
    if (line[i] != '^') {
      value += line[i];
      continue;
    }
    if (++i == line.size()) return false;
    if (line[i] == ' ') {
      value += '^';
    } else if (line[i] >= '@' && line[i] < '@' + 0x20) {
      value += static_cast<char>(line[i] - '@');
    } else {
      return false;
    }
  }
  return true;
}

int digitValue(char digit) {
  if (digit >= '0' && digit <= '9') return digit - '0';
  if (digit >= 'A' && digit <= 'F') return digit - 'A' + 10;
  if (digit >= 'a' && digit <= 'f') return digit - 'a' + 10;
  return -1;
}

template <class T>
bool parseNumber(std::string_view text, T& value) {
  while (!text.empty() && text.front() == ' ') text.remove_prefix(1);
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  return error == std::errc() && end == text.data() + text.size();
}

// Coordinates are single numbers here: a point is three groups.
Kind lineKind(int code) {
  const Kind kind = OdResBuf::kindOf(code);
  return kind == Kind::kPoint ? Kind::kDouble : kind;
}

}  // namespace

OdDbTextDxfFiler::OdDbTextDxfFiler(std::string text, OdDbDatabase* database,
                                   HandleResolver resolver, void* context)
    : m_database(database), m_resolver(resolver), m_context(context), m_text(std::move(text)) {}

OdDbTextDxfFiler::OdDbTextDxfFiler(OdStreamBuf* stream, OdDbDatabase* database,
                                   HandleResolver resolver, void* context)
    : m_database(database), m_resolver(resolver), m_context(context) {
  if (stream == nullptr) throw OdError(eNullPointer, OdString("stream of a text filer"));
  m_text.resize(stream->length() - stream->tell());
  stream->getBytes(m_text.data(), m_text.size());
}

void OdDbTextDxfFiler::rewind() {
  m_next = Place();
  m_item = Place();
  m_code = -1;
  m_value = {};
}

void OdDbTextDxfFiler::raiseCorrupt(const std::string& what) const {
  throw OdError(eCorruptData, OdString("line " + std::to_string(m_next.line - 1) + ": " + what));
}

// ---- Groups

bool OdDbTextDxfFiler::atEOF() { return m_next.offset >= m_text.size(); }

std::string_view OdDbTextDxfFiler::nextLine() {
  if (atEOF()) {
    throw OdError(eEndOfStream, OdString("line " + std::to_string(m_next.line) + " is missing"));
  }
  std::size_t end = m_text.find('\n', m_next.offset);
  if (end == std::string::npos) end = m_text.size();
  std::string_view line(m_text.data() + m_next.offset, end - m_next.offset);
  m_next = {end + 1, m_next.line + 1};
  if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
  return line;
}

int OdDbTextDxfFiler::nextItem() {
  m_item = m_next;
  const std::string_view codeLine = nextLine();
  int code = 0;
  if (!parseNumber(codeLine, code)) {
    raiseCorrupt("'" + std::string(codeLine) + "' is no group code");
  }
  m_value = nextLine();
  m_code = code;
  return code;
}

void OdDbTextDxfFiler::pushBackItem() {
  if (m_code < 0) throw OdError(eInvalidInput, OdString("there is no group to step back over"));
  m_next = m_item;
  m_code = -1;
}

// ---- Reading

std::string_view OdDbTextDxfFiler::valueOf(Kind kind, const char* asked) const {
  if (m_code < 0) throw OdError(eInvalidInput, OdString("no group has been read"));
  if (lineKind(m_code) != kind) {
    raiseCorrupt("code " + std::to_string(m_code) + " does not hold " + asked);
  }
  return m_value;
}

OdInt64 OdDbTextDxfFiler::integer(OdInt64 min, OdInt64 max, const char* asked) const {
  const Kind kind = lineKind(m_code);
  const bool whole = kind >= Kind::kBool && kind <= Kind::kInt64;
  const std::string_view text = valueOf(whole ? kind : Kind::kInt64, asked);
  OdInt64 value = 0;
  if (!parseNumber(text, value)) {
    raiseCorrupt("'" + std::string(text) + "' is not " + asked);
  }
  if (value < min || value > max) {
    raiseCorrupt(std::to_string(value) + " does not fit " + asked + ", " + std::to_string(min) +
                 " to " + std::to_string(max));
  }
  return value;
}

OdString OdDbTextDxfFiler::rdString() {
  const std::string_view line = valueOf(Kind::kString, "a string");
  std::string value;
  if (!unescape(line, value)) raiseCorrupt("'" + std::string(line) + "' has a bad escape");
  return OdString(value);
}

bool OdDbTextDxfFiler::rdBool() { return integer(0, 1, "a bool") != 0; }
OdInt8 OdDbTextDxfFiler::rdInt8() {
  return static_cast<OdInt8>(
      integer(std::numeric_limits<OdInt8>::min(), std::numeric_limits<OdInt8>::max(), "an int8"));
}
OdUInt8 OdDbTextDxfFiler::rdUInt8() {
  return static_cast<OdUInt8>(integer(0, std::numeric_limits<OdUInt8>::max(), "a uint8"));
}
OdInt16 OdDbTextDxfFiler::rdInt16() {
  return static_cast<OdInt16>(integer(std::numeric_limits<OdInt16>::min(),
                                      std::numeric_limits<OdInt16>::max(), "an int16"));
}
OdInt32 OdDbTextDxfFiler::rdInt32() {
  return static_cast<OdInt32>(integer(std::numeric_limits<OdInt32>::min(),
                                      std::numeric_limits<OdInt32>::max(), "an int32"));
}
OdInt64 OdDbTextDxfFiler::rdInt64() {
  return integer(std::numeric_limits<OdInt64>::min(), std::numeric_limits<OdInt64>::max(),
                 "an int64");
}

double OdDbTextDxfFiler::rdDouble() {
  const std::string_view text = valueOf(Kind::kDouble, "a real number");
  double value = 0.0;
  if (!parseNumber(text, value)) raiseCorrupt("'" + std::string(text) + "' is no real number");
  return value;
}

OdDbHandle OdDbTextDxfFiler::rdHandle() {
  const bool isId = lineKind(m_code) == Kind::kObjectId;
  const std::string text(valueOf(isId ? Kind::kObjectId : Kind::kHandle, "a handle"));
  OdDbHandle handle;
  if (!OdDbHandle::parse(text.c_str(), handle)) raiseCorrupt("'" + text + "' is no handle");
  return handle;
}

OdDbObjectId OdDbTextDxfFiler::rdObjectId() {
  const OdDbHandle handle = rdHandle();
  if (handle.isNull() || m_resolver == nullptr) return OdDbObjectId::kNull;
  return m_resolver(m_context, handle);
}

bool OdDbTextDxfFiler::appendBinary(OdBinaryData& value) const {
  const std::string_view text = valueOf(Kind::kBinary, "binary data");
  if (text.size() % 2 != 0 || text.size() > 2 * std::size_t{kBinaryGroupBytes}) {
    raiseCorrupt(std::to_string(text.size()) + " digits of binary data");
  }
  for (std::size_t i = 0; i < text.size(); i += 2) {
    const int high = digitValue(text[i]);
    const int low = digitValue(text[i + 1]);
    if (high < 0 || low < 0) {
      raiseCorrupt("'" + std::string(text.substr(i, 2)) + "' is no byte");
    }
    value.append(static_cast<OdUInt8>(high * 16 + low));
  }
  return text.size() == 2 * std::size_t{kBinaryGroupBytes};
}

void OdDbTextDxfFiler::rdBinaryChunk(OdBinaryData& value) {
  OdBinaryData bytes;
  const int code = m_code;
  while (appendBinary(bytes)) {
    if (nextItem() != code) {
      raiseCorrupt("code " + std::to_string(m_code) + " within binary data of code " +
                   std::to_string(code));
    }
  }
  value = bytes;
}

// ---- Writing

void OdDbTextDxfFiler::write(int code, Kind kind, std::string_view value) {
  if (lineKind(code) != kind) {
    throw OdError(eInvalidInput, OdString("code " + std::to_string(code) +
                                          " cannot hold the value '" + std::string(value) + "'"));
  }
  m_value = {};
  m_code = -1;
  m_text += std::to_string(code);
  m_text += '\n';
  if (kind == Kind::kString) {
    appendEscaped(m_text, value);
  } else {
    m_text += value;
  }
  m_text += '\n';
}

void OdDbTextDxfFiler::writeInteger(int code, OdInt64 value) {
  const Kind kind = lineKind(code);
  const bool whole = kind >= Kind::kBool && kind <= Kind::kInt64;
  write(code, whole ? kind : Kind::kInt64, std::to_string(value));
}

void OdDbTextDxfFiler::wrString(int code, const OdString& value) {
  write(code, Kind::kString, value.utf8());
}
void OdDbTextDxfFiler::wrBool(int code, bool value) { writeInteger(code, value ? 1 : 0); }
void OdDbTextDxfFiler::wrInt8(int code, OdInt8 value) { writeInteger(code, value); }
void OdDbTextDxfFiler::wrUInt8(int code, OdUInt8 value) { writeInteger(code, value); }
void OdDbTextDxfFiler::wrInt16(int code, OdInt16 value) { writeInteger(code, value); }
void OdDbTextDxfFiler::wrInt32(int code, OdInt32 value) { writeInteger(code, value); }
void OdDbTextDxfFiler::wrInt64(int code, OdInt64 value) { writeInteger(code, value); }

void OdDbTextDxfFiler::wrDouble(int code, double value, int precision) {
  char text[400];
  const auto [end, error] =
      precision == kDfltPrec
          ? std::to_chars(text, text + sizeof text, value)
          : std::to_chars(text, text + sizeof text, value, std::chars_format::fixed, precision);
  if (error != std::errc()) {
    throw OdError(eInvalidInput, OdString("precision " + std::to_string(precision)));
  }
  write(code, Kind::kDouble, {text, static_cast<std::size_t>(end - text)});
}

void OdDbTextDxfFiler::wrBinaryChunk(int code, const OdUInt8* data, OdUInt32 size) {
  std::string digits;
  OdUInt32 done = 0;
  do {
    const OdUInt32 count = std::min(size - done, kBinaryGroupBytes);
    digits.clear();
    for (OdUInt32 i = done; i < done + count; ++i) {
      digits += kDigits[data[i] >> 4];
      digits += kDigits[data[i] & 15];
    }
    write(code, Kind::kBinary, digits);
    done += count;
  } while (done < size || digits.size() == 2 * std::size_t{kBinaryGroupBytes});
}

void OdDbTextDxfFiler::wrHandle(int code, const OdDbHandle& value) {
  const bool isId = lineKind(code) == Kind::kObjectId;
  write(code, isId ? Kind::kObjectId : Kind::kHandle, value.ascii().utf8());
}

void OdDbTextDxfFiler::wrObjectId(int code, const OdDbObjectId& value) {
  wrHandle(code, value.getHandle());
}
