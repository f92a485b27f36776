// The stored form of a body: the envelope around the bytes of the modeller.
//
// Reading trusts nothing. The head and the checksum come first, so that a damaged body is refused
// before its contents are looked at. The reader then only moves forward and never past the end: a
// read beyond it gives zeros and sets a flag, which is tested once at the end. Each count is at
// most what the bytes left can hold, so the loops end and memory grows with the size of the input
// only.
//
//   offset  size  field
//   0       4     "ODBY"
//   4       2     version of this form, 1
//   6       2     modeller that wrote the geometry
//   8       8     checksum of all bytes after it
//   16            name: text
//                 colour: flag byte (0 or 1), red, green, blue
//                 face colours: count; each face index, then red, green, blue and a zero byte
//                 face names: count; each face index, then a text
//                 geometry: 8 bytes of length, bytes; nothing follows
//
// Numbers are little-endian and have 4 bytes unless the table says otherwise; a text is its length
// in bytes and its UTF-8; face indices rise.
#include "platform/modeler/body_envelope.h"

#include <cstring>
#include <string>

namespace {

constexpr std::string_view kMagic = "ODBY";
constexpr OdUInt16 kVersion = 1;
constexpr std::size_t kChecksumOffset = 8;
constexpr std::size_t kBodyOffset = 16;

OdUInt64 loadNumber(const OdUInt8* bytes, std::size_t size) {
  OdUInt64 value = 0;
  for (std::size_t i = 0; i < size; ++i) value |= static_cast<OdUInt64>(bytes[i]) << (8 * i);
  return value;
}

// Each step is a bijection of the running value for a given word, and of the word for a given
// running value: two inputs of one length that differ in a single word never have the same sum.
OdUInt64 checksum(std::span<const OdUInt8> bytes) {
  constexpr OdUInt64 kOdd = 0x9E3779B97F4A7C15ULL;  // 2^64 over the golden ratio
  OdUInt64 sum = bytes.size() * kOdd;
  const auto mix = [&sum](OdUInt64 word) {
    sum = (sum ^ word) * kOdd;
    sum ^= sum >> 29U;
  };
  for (; bytes.size() >= 8; bytes = bytes.subspan(8)) mix(loadNumber(bytes.data(), 8));
  mix(loadNumber(bytes.data(), bytes.size()));
  return sum;
}

class Writer {
 public:
  void number(OdUInt64 value, std::size_t size) {
    for (std::size_t i = 0; i < size; ++i) m_bytes.push_back(static_cast<char>(value >> (8 * i)));
  }
  void raw(std::string_view text) { m_bytes.append(text); }
  void text(const OdString& value) {
    number(value.utf8().size(), 4);
    raw(value.utf8());
  }
  void color(const OdModelerColor& c) {
    number(c.red, 1);
    number(c.green, 1);
    number(c.blue, 1);
  }
  std::string& bytes() { return m_bytes; }

 private:
  std::string m_bytes;
};

// Reads forward; past the end it gives zeros and remembers that.
class Reader {
 public:
  explicit Reader(std::span<const OdUInt8> bytes) : m_bytes(bytes) {}

  OdUInt64 number(std::size_t size) {
    const std::span<const OdUInt8> part = take(size);
    return loadNumber(part.data(), part.size());
  }
  OdUInt32 number32() { return static_cast<OdUInt32>(number(4)); }
  std::string_view raw(OdUInt64 size) {
    if (size > m_bytes.size()) {
      m_short = true;
      return {};
    }
    const std::span<const OdUInt8> part = take(static_cast<std::size_t>(size));
    return {reinterpret_cast<const char*>(part.data()), part.size()};
  }
  OdString text() { return OdString::fromUtf8(raw(number(4))); }
  OdModelerColor color() {
    OdModelerColor c;
    c.red = static_cast<OdUInt8>(number(1));
    c.green = static_cast<OdUInt8>(number(1));
    c.blue = static_cast<OdUInt8>(number(1));
    return c;
  }
  // A count of rows of at least `rowSize` bytes; 0 when the bytes left cannot hold them.
  OdUInt32 count(std::size_t rowSize) {
    const OdUInt32 rows = number32();
    if (rows <= m_bytes.size() / rowSize) return rows;
    m_short = true;
    return 0;
  }
  [[nodiscard]] bool wasShort() const { return m_short; }
  [[nodiscard]] bool atEnd() const { return m_bytes.empty(); }

 private:
  std::span<const OdUInt8> take(std::size_t size) {
    if (size > m_bytes.size()) {
      m_short = true;
      return {};
    }
    const std::span<const OdUInt8> part = m_bytes.first(size);
    m_bytes = m_bytes.subspan(size);
    return part;
  }

  std::span<const OdUInt8> m_bytes;
  bool m_short = false;
};

void writeAttributes(Writer& writer, const OdModelerBodyAttributes& attributes) {
  writer.text(attributes.name);
  writer.number(attributes.color ? 1 : 0, 1);
  writer.color(attributes.color.value_or(OdModelerColor{}));
  writer.number(attributes.faceColors.size(), 4);
  for (const auto& [face, color] : attributes.faceColors) {
    writer.number(face, 4);
    writer.color(color);
    writer.number(0, 1);
  }
  writer.number(attributes.faceNames.size(), 4);
  for (const auto& [face, name] : attributes.faceNames) {
    writer.number(face, 4);
    writer.text(name);
  }
}

OdModelerBodyAttributes readAttributes(Reader& reader) {
  OdModelerBodyAttributes attributes;
  attributes.name = reader.text();
  const bool colored = reader.number(1) != 0;
  const OdModelerColor color = reader.color();
  if (colored) attributes.color = color;
  for (OdUInt32 i = reader.count(8); i > 0; --i) {
    const OdUInt32 face = reader.number32();
    attributes.faceColors[face] = reader.color();
    reader.number(1);
  }
  for (OdUInt32 i = reader.count(8); i > 0; --i) {
    const OdUInt32 face = reader.number32();
    attributes.faceNames[face] = reader.text();
  }
  return attributes;
}

OdStatus corrupt(const wchar_t* what, OdUInt64 found, OdUInt64 expected) {
  OdString text;
  text.format(L"stored body: %ls is %llx, expected %llx", what,
              static_cast<unsigned long long>(found), static_cast<unsigned long long>(expected));
  return {eCorruptData, text};
}

OdStatus checkHead(std::span<const OdUInt8> bytes) {
  if (bytes.size() < kBodyOffset) return corrupt(L"length", bytes.size(), kBodyOffset);
  if (std::memcmp(bytes.data(), kMagic.data(), kMagic.size()) != 0) {
    const auto* magic = reinterpret_cast<const OdUInt8*>(kMagic.data());
    return corrupt(L"mark", loadNumber(bytes.data(), 4), loadNumber(magic, 4));
  }
  if (const OdUInt64 version = loadNumber(&bytes[4], 2); version != kVersion) {
    OdString text;
    text.format(L"stored body: version %u, this reader takes %u", static_cast<unsigned>(version),
                static_cast<unsigned>(kVersion));
    return {eUnsupportedVersion, text};
  }
  const OdUInt64 stored = loadNumber(&bytes[kChecksumOffset], 8);
  const OdUInt64 actual = checksum(bytes.subspan(kBodyOffset));
  return stored == actual ? OdStatus{} : corrupt(L"checksum", actual, stored);
}

}  // namespace

void odWriteEnvelope(const OdModelerEnvelope& envelope, OdBinaryData& bytes) {
  Writer writer;
  writer.raw(kMagic);
  writer.number(kVersion, 2);
  writer.number(static_cast<OdUInt64>(envelope.engine), 2);
  writer.number(0, 8);
  writeAttributes(writer, envelope.attributes);
  writer.number(envelope.geometry.size(), 8);
  writer.raw(envelope.geometry);
  const std::string& all = writer.bytes();
  const auto* data = reinterpret_cast<const OdUInt8*>(all.data());
  OdBinaryData result;
  result.assign(data, data + all.size());
  const OdUInt64 sum = checksum(std::span(data, all.size()).subspan(kBodyOffset));
  OdUInt8* target = result.asArrayPtr() + kChecksumOffset;
  for (std::size_t i = 0; i < 8; ++i) target[i] = static_cast<OdUInt8>(sum >> (8 * i));
  bytes = std::move(result);
}

OdStatus odReadEnvelope(std::span<const OdUInt8> bytes, OdModelerEnvelope& envelope) {
  if (OdStatus head = checkHead(bytes); !head.ok()) return head;
  Reader reader(bytes.subspan(kBodyOffset));
  OdModelerEnvelope result;
  result.engine = static_cast<OdModelerEngine>(loadNumber(&bytes[6], 2));
  result.attributes = readAttributes(reader);
  result.geometry = reader.raw(reader.number(8));
  if (reader.wasShort() || !reader.atEnd()) {
    return {eCorruptData, OdString(L"stored body: the counts do not agree with the length")};
  }
  envelope = std::move(result);
  return {};
}
