// Bytes of the flat form.
#include "vdm_db/properties/vdm_flat_filer.h"

#include <array>
#include <bit>
#include <cmath>
#include <cstring>
#include <string>
#include <string_view>

#include "platform/base/error.h"
#include "platform/rx/memory_stream.h"

static_assert(std::endian::native == std::endian::little,
              "the flat form is little-endian, and numbers are copied as they are");

namespace {

constexpr OdUInt32 kPageSize = 2048;
constexpr std::size_t kMaxReadableString = 0x7FFF;
constexpr std::size_t kMaxWritableString = 0xFFFF;
constexpr int kChunkCode = OdResBuf::kDxfXdBinaryChunk;

double sanitised(double value) { return std::isnormal(value) ? value : 0.0; }

}  // namespace

VdmFlatFiler::VdmFlatFiler() = default;
VdmFlatFiler::~VdmFlatFiler() = default;

// ---- The stream

void VdmFlatFiler::setBinaryData(const char* data, unsigned int size) {
  m_stream.release();
  m_buffer = size == 0 ? std::vector<char>() : std::vector<char>(data, data + size);
  m_stream = OdFlatMemStream::createNew(m_buffer.data(), size);
}

bool VdmFlatFiler::setBinaryChunk(const OdResBuf* rb) {
  std::vector<char> bytes;
  OdResBufPtr record(rb);
  for (; !record.isNull() && record->restype() == kChunkCode; record = record->next()) {
    const OdBinaryData& chunk = record->getBinaryChunk();
    bytes.insert(bytes.end(), chunk.begin(), chunk.end());
  }
  if (bytes.empty()) return false;
  setBinaryData(bytes.data(), static_cast<unsigned int>(bytes.size()));
  return true;
}

OdDbDwgFiler* VdmFlatFiler::clear() {
  m_stream = OdMemoryStream::createNew(kPageSize);
  m_buffer.clear();
  m_hasUnreadableString = false;
  return this;
}

std::vector<char> VdmFlatFiler::getBinaryData() {
  std::vector<char> data(getBinaryDataSize());
  m_stream->rewind();
  m_stream->getBytes(data.data(), data.size());
  return data;
}

unsigned int VdmFlatFiler::getBinaryDataSize() const {
  return static_cast<unsigned int>(m_stream->length());
}

void VdmFlatFiler::appendToResBuf(OdResBuf* rb) {
  if (rb == nullptr || getBinaryDataSize() >= kMaxChunkSize) return;
  OdBinaryData data;
  data.resize(getBinaryDataSize());
  m_stream->rewind();
  m_stream->getBytes(data.asArrayPtr(), data.size());
  const OdResBufPtr chunk = OdResBuf::newRb(kChunkCode);
  chunk->setBinaryChunk(data);
  rb->last()->setNext(chunk.get());
}

void VdmFlatFiler::seek(OdInt64 offset, OdDb::FilerSeekType from) { m_stream->seek(offset, from); }

OdUInt64 VdmFlatFiler::tell() const { return static_cast<OdUInt32>(m_stream->tell()); }

OdUInt64 VdmFlatFiler::bytesLeft() const { return m_stream->length() - m_stream->tell(); }

// ---- Numbers

template <class T>
T VdmFlatFiler::take() {
  T value;
  m_stream->getBytes(&value, sizeof value);
  return value;
}

template <class T>
void VdmFlatFiler::put(const T& value) {
  m_stream->putBytes(&value, sizeof value);
}

bool VdmFlatFiler::rdBool() { return m_stream->getByte() != 0; }
OdInt8 VdmFlatFiler::rdInt8() { return static_cast<OdInt8>(m_stream->getByte()); }
OdUInt8 VdmFlatFiler::rdUInt8() { return m_stream->getByte(); }
OdInt16 VdmFlatFiler::rdInt16() { return take<OdInt16>(); }
OdInt32 VdmFlatFiler::rdInt32() { return take<OdInt32>(); }
OdInt64 VdmFlatFiler::rdInt64() { return take<OdInt64>(); }
double VdmFlatFiler::rdDouble() { return sanitised(take<double>()); }

void VdmFlatFiler::wrBool(bool value) { m_stream->putByte(value ? 1 : 0); }
void VdmFlatFiler::wrInt8(OdInt8 value) { m_stream->putByte(static_cast<OdUInt8>(value)); }
void VdmFlatFiler::wrUInt8(OdUInt8 value) { m_stream->putByte(value); }
void VdmFlatFiler::wrInt16(OdInt16 value) { put(value); }
void VdmFlatFiler::wrInt32(OdInt32 value) { put(value); }
void VdmFlatFiler::wrInt64(OdInt64 value) { put(value); }
void VdmFlatFiler::wrDouble(double value) { put(value); }

// ---- Handles, most significant byte first

OdDbHandle VdmFlatFiler::rdDbHandle() {
  const auto bytes = take<std::array<OdUInt8, 8>>();
  OdUInt64 value = 0;
  for (const OdUInt8 byte : bytes) value = value << 8 | byte;
  return OdDbHandle(value);
}

void VdmFlatFiler::wrDbHandle(const OdDbHandle& value) {
  std::array<OdUInt8, 8> bytes;
  OdUInt64 rest = value;
  for (auto byte = bytes.rbegin(); byte != bytes.rend(); ++byte, rest >>= 8) {
    *byte = static_cast<OdUInt8>(rest);
  }
  put(bytes);
}

// ---- Strings and bytes

OdString VdmFlatFiler::rdString() {
  const OdInt16 length = rdInt16();
  if (length < 0) {
    throw OdError(eCorruptData,
                  OdString("length " + std::to_string(length) + " of a string in flat data"));
  }
  if (length == 0) return OdString();
  const auto size = static_cast<std::size_t>(length);
  std::array<char, 256> local;
  if (size <= local.size()) {
    m_stream->getBytes(local.data(), size);
    return OdString::fromUtf8(local.data(), size);
  }
  std::string text(size, '\0');
  m_stream->getBytes(text.data(), size);
  return OdString::fromUtf8(text);
}

void VdmFlatFiler::wrString(const OdString& value) {
  const std::string_view narrow = value.utf8();
  if (narrow.size() > kMaxWritableString) {
    throw OdError(eLimitExceeded,
                  OdString("a string of " + std::to_string(narrow.size()) + " bytes, at most " +
                           std::to_string(kMaxWritableString) + " fit"));
  }
  if (narrow.size() > kMaxReadableString) m_hasUnreadableString = true;
  const auto length = static_cast<OdInt16>(static_cast<OdUInt16>(narrow.size()));
  wrInt16(length);
  wrBytes(narrow.data(), static_cast<OdUInt32>(narrow.size()));
}

void VdmFlatFiler::rdBytes(void* buffer, OdUInt32 size) { m_stream->getBytes(buffer, size); }
void VdmFlatFiler::wrBytes(const void* buffer, OdUInt32 size) { m_stream->putBytes(buffer, size); }

// ---- Geometry, coordinate by coordinate

template <class T>
T VdmFlatFiler::takeCoordinates() {
  std::array<double, sizeof(T) / sizeof(double)> coordinates;
  for (double& coordinate : coordinates) coordinate = rdDouble();
  return std::bit_cast<T>(coordinates);
}

// ---- The primitives of one shape: geometry, and ids, of which no byte is kept

#define OD_DWG_VALUE(Name, Value, Argument)
#define OD_DWG_GEOMETRY(Name, Value)                                  \
  Value VdmFlatFiler::rd##Name() { return takeCoordinates<Value>(); } \
  void VdmFlatFiler::wr##Name(const Value& value) { put(value); }
#define OD_DWG_ID(Name, type)                                      \
  OdDbObjectId VdmFlatFiler::rd##Name() { return OdDbObjectId(); } \
  void VdmFlatFiler::wr##Name(const OdDbObjectId&) {}
#include "platform/filer/dwg_primitive_rows.inc"
