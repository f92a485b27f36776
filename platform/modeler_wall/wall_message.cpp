#include "platform/modeler_wall/wall_message.h"

#include "platform/base/error.h"
#include "platform/modeler/modeler.h"

namespace od_wall {

void MessageWriter::raw(const void* data, std::size_t size) {
  const char* begin = static_cast<const char*>(data);
  m_bytes.insert(m_bytes.end(), begin, begin + size);
}

void MessageWriter::put(const OdModelerBodyPtr& body) {
  OdBinaryData bytes;
  const OdStatus status = body->serialise(bytes);
  if (!status.ok()) throw OdError(status.code, status.text);
  put(bytes);
}

const char* MessageReader::raw(std::size_t size) {
  if (size > m_left.size()) throw OdError(eCorruptData, L"a message ends too early");
  const char* begin = m_left.data();
  m_left = m_left.subspan(size);
  return begin;
}

std::size_t MessageReader::takeCount(std::size_t size) {
  const auto count = get<OdUInt64>();
  if (count > m_left.size() / size) throw OdError(eCorruptData, L"a message ends too early");
  return count;
}

void MessageReader::take(OdString& text) {
  const std::size_t size = takeCount(1);
  text = OdString::fromUtf8(std::string_view(raw(size), size));
}

void MessageReader::take(OdStringArray& lines) {
  const std::size_t count = takeCount(1);
  lines.clear();
  for (std::size_t i = 0; i < count; ++i) lines.append(get<OdString>());
}

void MessageReader::take(OdBinaryData& bytes) {
  const std::size_t size = takeCount(1);
  bytes.resize(static_cast<OdUInt32>(size));
  if (size > 0) std::memcpy(bytes.asArrayPtr(), raw(size), size);
}

void MessageReader::take(OdModelerBodyPtr& body) {
  const auto bytes = get<OdBinaryData>();
  const OdStatus status = m_modeler.deserialise(bytes, body);
  if (!status.ok()) throw OdError(status.code, status.text);
}

}  // namespace od_wall
