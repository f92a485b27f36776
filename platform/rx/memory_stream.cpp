// Streams over memory: one that grows, one over memory that the caller owns.
#include "platform/rx/memory_stream.h"

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

#include "platform/base/error.h"

OD_RX_DEFINE_ABSTRACT(OdMemoryStream, OdStreamBuf, L"OdMemoryStream")
OD_RX_DEFINE_ABSTRACT(OdFlatMemStream, OdStreamBuf, L"OdFlatMemStream")

namespace {

[[noreturn]] void raiseEnd(OdUInt64 position, OdUInt64 count, OdUInt64 length) {
  throw OdError(eEndOfStream,
                OdString(std::to_string(count) + " bytes at " + std::to_string(position) +
                         " of a stream of " + std::to_string(length)));
}

// Position and reading, the same for every stream whose bytes lie in memory. Derived classes give
// the bytes as `begin()` and `length()`.
template <class Stream>
class MemoryReader : public Stream {
 public:
  [[nodiscard]] bool isEof() const override { return m_position >= this->length(); }
  [[nodiscard]] OdUInt64 tell() const override { return m_position; }

  OdUInt64 seek(OdInt64 offset, OdDb::FilerSeekType whence) override {
    OdUInt64 base = 0;
    if (whence == OdDb::kSeekFromCurrent) base = m_position;
    if (whence == OdDb::kSeekFromEnd) base = this->length();
    const OdUInt64 distance =
        offset < 0 ? OdUInt64{0} - static_cast<OdUInt64>(offset) : static_cast<OdUInt64>(offset);
    if (offset < 0 && distance > base) {
      throw OdError(eInvalidInput, OdString("seek to " + std::to_string(distance - base) +
                                            " bytes before the start of a stream"));
    }
    if (offset > 0 && distance > this->length() - base) raiseEnd(base, distance, this->length());
    m_position = offset < 0 ? base - distance : base + distance;
    return m_position;
  }

  OdUInt8 getByte() override {
    if (m_position >= this->length()) [[unlikely]]
      raiseEnd(m_position, 1, this->length());
    return begin()[m_position++];
  }
  void getBytes(void* buffer, OdUInt64 count) override {
    if (count == 0) return;
    if (count > this->length() - m_position) [[unlikely]]
      raiseEnd(m_position, count, this->length());
    std::memcpy(buffer, begin() + m_position, count);
    m_position += count;
  }

 protected:
  [[nodiscard]] virtual const OdUInt8* begin() const = 0;
  OdUInt64 m_position = 0;
};

class GrowingStream final : public OdRxObjectImpl<MemoryReader<OdMemoryStream>> {
 public:
  explicit GrowingStream(OdUInt32 pageSize) : m_pageSize(pageSize) {}

  [[nodiscard]] OdUInt64 length() const override { return m_bytes.size(); }
  [[nodiscard]] const OdUInt8* data() const override {
    return m_bytes.empty() ? nullptr : m_bytes.data();
  }

  void reserve(OdUInt64 size) override {
    try {
      m_bytes.reserve(size);
    } catch (const std::exception&) {
      odRaise(eOutOfMemory);
    }
  }
  void putByte(OdUInt8 value) override { putBytes(&value, 1); }
  void putBytes(const void* buffer, OdUInt64 count) override {
    if (count == 0) return;
    const OdUInt64 end = m_position + count;
    if (end < count) odRaise(eOutOfMemory);
    if (end > m_bytes.capacity()) grow(end);
    if (end > m_bytes.size()) m_bytes.resize(end);
    std::memcpy(m_bytes.data() + m_position, buffer, count);
    m_position = end;
  }
  void truncate() override { m_bytes.resize(m_position); }

 protected:
  [[nodiscard]] const OdUInt8* begin() const override { return m_bytes.data(); }

 private:
  void grow(OdUInt64 needed) {
    const OdUInt64 wanted = std::max<OdUInt64>(needed, m_bytes.capacity() * 2);
    reserve(wanted > wanted + m_pageSize ? wanted
                                         : (wanted + m_pageSize - 1) / m_pageSize * m_pageSize);
  }

  std::vector<OdUInt8> m_bytes;
  OdUInt32 m_pageSize;
};

class FlatStream final : public OdRxObjectImpl<MemoryReader<OdFlatMemStream>> {
 public:
  FlatStream(void* memory, OdUInt64 size) : m_memory(static_cast<OdUInt8*>(memory)), m_size(size) {}

  [[nodiscard]] OdUInt64 length() const override { return m_size; }
  void putByte(OdUInt8 value) override { putBytes(&value, 1); }
  void putBytes(const void* buffer, OdUInt64 count) override {
    if (count == 0) return;
    if (count > m_size - m_position) raiseEnd(m_position, count, m_size);
    std::memcpy(m_memory + m_position, buffer, count);
    m_position += count;
  }
  void truncate() override {
    throw OdError(eNotImplementedForClass, L"truncate of a flat memory stream");
  }

 protected:
  [[nodiscard]] const OdUInt8* begin() const override { return m_memory; }

 private:
  OdUInt8* m_memory;
  OdUInt64 m_size;
};

}  // namespace

OdMemoryStreamPtr OdMemoryStream::createNew(OdUInt32 pageSize) {
  if (pageSize == 0) throw OdError(eInvalidInput, L"memory stream with pages of 0 bytes");
  return OdMemoryStreamPtr(new GrowingStream(pageSize), kOdRxObjAttach);
}

OdFlatMemStreamPtr OdFlatMemStream::createNew(void* memory, OdUInt64 size) {
  if (!memory && size > 0) {
    throw OdError(eInvalidInput,
                  OdString("null memory of " + std::to_string(size) + " bytes for a stream"));
  }
  return OdFlatMemStreamPtr(new FlatStream(memory, size), kOdRxObjAttach);
}
