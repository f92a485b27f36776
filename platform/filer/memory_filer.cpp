// Filing of live objects in memory.
#include "platform/filer/memory_filer.h"

#include <cstring>
#include <string>
#include <type_traits>
#include <utility>

#include "platform/base/error.h"

void OdDbMemoryFiler::startReading(std::size_t byteBegin, std::size_t stringBegin) {
  startReading(byteBegin, stringBegin, m_buffer->bytes.size());
}

void OdDbMemoryFiler::startReading(std::size_t byteBegin, std::size_t stringBegin,
                                   std::size_t byteEnd) {
  m_reading = true;
  m_begin = byteBegin;
  m_read = byteBegin;
  m_end = byteEnd;
  m_stringBegin = stringBegin;
}

void OdDbMemoryFiler::seek(OdInt64 offset, OdDb::FilerSeekType from) {
  const OdInt64 length = static_cast<OdInt64>(m_end - m_begin);
  OdInt64 target = offset;
  if (from == OdDb::kSeekFromCurrent) target += static_cast<OdInt64>(m_read - m_begin);
  if (from == OdDb::kSeekFromEnd) target += length;
  if (target < 0 || target > length) {
    throw OdError(eEndOfStream, OdString("seek to " + std::to_string(target) + " in " +
                                         std::to_string(length) + " bytes"));
  }
  m_read = m_begin + static_cast<std::size_t>(target);
}

void OdDbMemoryFiler::raiseEnd(std::size_t wanted) const {
  throw OdError(eEndOfStream, OdString("wanted " + std::to_string(wanted) + " bytes, " +
                                       std::to_string(m_end - m_read) + " are left"));
}

// ---- Values: a string as its number in the buffer's list, counted from where the record began; a
// bool as one byte; all others as the bytes that they are in memory

template <class T>
T OdDbMemoryFiler::take() {
  if constexpr (std::is_same_v<T, OdString>) {
    return takeString();
  } else if constexpr (std::is_same_v<T, bool>) {
    return take<OdUInt8>() != 0;
  } else {
    if (m_end - m_read < sizeof(T)) [[unlikely]]
      raiseEnd(sizeof(T));
    T value;
    std::memcpy(&value, m_buffer->bytes.data() + m_read, sizeof(T));
    m_read += sizeof(T);
    return value;
  }
}

template <class T>
void OdDbMemoryFiler::put(const T& value) {
  if constexpr (std::is_same_v<T, OdString>) {
    putString(value);
  } else if constexpr (std::is_same_v<T, bool>) {
    m_buffer->bytes.push_back(value ? 1 : 0);
  } else {
    std::vector<OdUInt8>& bytes = m_buffer->bytes;
    const std::size_t at = bytes.size();
    bytes.resize(at + sizeof(T));
    std::memcpy(bytes.data() + at, &value, sizeof(T));
  }
}

#define OD_DWG_VALUE(Name, Value, Argument)                   \
  Value OdDbMemoryFiler::rd##Name() { return take<Value>(); } \
  void OdDbMemoryFiler::wr##Name(Argument value) { put(value); }
#define OD_DWG_ID(Name, type)                                       \
  OdDbObjectId OdDbMemoryFiler::rd##Name() { return takeId(type); } \
  void OdDbMemoryFiler::wr##Name(const OdDbObjectId& value) { putId(value, type); }
#include "platform/filer/dwg_primitive_rows.inc"

void OdDbMemoryFiler::putString(const OdString& value) {
  put(static_cast<OdUInt32>(m_buffer->strings.size() - m_stringBegin));
  m_buffer->strings.push_back(value);
}

OdString OdDbMemoryFiler::takeString() {
  const std::size_t index = m_stringBegin + take<OdUInt32>();
  if (index >= m_buffer->strings.size()) {
    throw OdError(eCorruptData, OdString("string " + std::to_string(index) + " of " +
                                         std::to_string(m_buffer->strings.size())));
  }
  return m_buffer->strings[index];
}

void OdDbMemoryFiler::wrShared(std::shared_ptr<const void> value) {
  put(static_cast<OdUInt32>(m_buffer->shared.size()));
  m_buffer->shared.push_back(std::move(value));
}

std::shared_ptr<const void> OdDbMemoryFiler::rdShared() {
  const std::size_t index = take<OdUInt32>();
  if (index >= m_buffer->shared.size()) {
    throw OdError(eCorruptData, OdString("shared value " + std::to_string(index) + " of " +
                                         std::to_string(m_buffer->shared.size())));
  }
  return m_buffer->shared[index];
}

void OdDbMemoryFiler::wrBytes(const void* buffer, OdUInt32 size) {
  const auto* first = static_cast<const OdUInt8*>(buffer);
  m_buffer->bytes.insert(m_buffer->bytes.end(), first, first + size);
}

void OdDbMemoryFiler::rdBytes(void* buffer, OdUInt32 size) {
  if (m_end - m_read < size) raiseEnd(size);
  if (size == 0) return;
  std::memcpy(buffer, m_buffer->bytes.data() + m_read, size);
  m_read += size;
}

OdDbObjectId OdDbMemoryFiler::takeId(OdDb::ReferenceType type) {
  const OdDbObjectId id = take<OdDbObjectId>();
  return m_translator == nullptr ? id : m_translator(m_context, id, type);
}

void OdDbMemoryFiler::putId(const OdDbObjectId& id, OdDb::ReferenceType type) {
  put(id);
  if (m_collected != nullptr && !id.isNull()) m_collected->push_back({id, type});
}
