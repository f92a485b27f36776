// Records of the drawing file.
#include "platform/filer/file_filer.h"

#include <bit>
#include <cstring>
#include <limits>
#include <string>
#include <type_traits>
#include <unordered_map>

#include "platform/base/error.h"

static_assert(std::endian::native == std::endian::little,
              "doubles and points are stored as the machine holds them");

namespace {

constexpr int kTypeBits = 2;
constexpr OdUInt64 kGreatestHandle = (OdUInt64{1} << (64 - kTypeBits)) - 1;
constexpr std::size_t kMaxInternedKeys = 16384;  // a bound for hostile files; parts use hundreds

void putVarint(std::vector<OdUInt8>& bytes, OdUInt64 value) {
  while (value >= 0x80) {
    bytes.push_back(static_cast<OdUInt8>(value | 0x80));
    value >>= 7;
  }
  bytes.push_back(static_cast<OdUInt8>(value));
}

OdUInt64 zigzag(OdInt64 value) {
  return (static_cast<OdUInt64>(value) << 1) ^ static_cast<OdUInt64>(value >> 63);
}

OdInt64 unzigzag(OdUInt64 value) {
  return static_cast<OdInt64>(value >> 1) ^ -static_cast<OdInt64>(value & 1);
}

template <class T>
constexpr bool kIsOneByte = std::is_integral_v<T> && sizeof(T) == 1;

// No check is left of it where T has 64 bits.
template <class T>
T narrowed(OdInt64 value) {
  if (value < std::numeric_limits<T>::min() || value > std::numeric_limits<T>::max()) {
    throw OdError(eCorruptData, OdString("number " + std::to_string(value) + " in a field of " +
                                         std::to_string(8 * sizeof(T)) + " bits"));
  }
  return static_cast<T>(value);
}

// Keys by their bytes, one table a thread, so that no lock is on the path. A key's own narrow form
// is the storage of the view.
OdString internKey(std::string_view bytes) {
  static thread_local std::unordered_map<std::string_view, OdString> table;
  if (const auto found = table.find(bytes); found != table.end()) return found->second;
  const OdString key = OdString::fromUtf8(bytes);
  if (key.isEmpty() || key.utf8() != bytes || table.size() >= kMaxInternedKeys) return key;
  return table.emplace(key.utf8(), key).first->second;
}

}  // namespace

// ---- Writing

void OdDbFileWriter::clear() {
  m_references.clear();
  m_fields.clear();
}

void OdDbFileWriter::assemble(std::vector<OdUInt8>& record) const {
  assemble(m_references, m_fields.data(), m_fields.size(), record);
}

void OdDbFileWriter::assemble(const std::vector<OdDbFileReference>& references,
                              const OdUInt8* fields, std::size_t fieldSize,
                              std::vector<OdUInt8>& record) {
  putVarint(record, references.size());
  for (const OdDbFileReference& reference : references) {
    if (reference.handle > kGreatestHandle) {
      throw OdError(eLimitExceeded, OdString("handle " + std::to_string(reference.handle) +
                                             " above " + std::to_string(kGreatestHandle)));
    }
    putVarint(record, reference.handle << kTypeBits | static_cast<OdUInt64>(reference.type));
  }
  record.insert(record.end(), fields, fields + fieldSize);
}

void OdDbFileWriter::wrBytes(const void* buffer, OdUInt32 size) {
  const auto* first = static_cast<const OdUInt8*>(buffer);
  m_fields.insert(m_fields.end(), first, first + size);
}

// A value in the form of its type.
template <class T>
void OdDbFileWriter::put(const T& value) {
  if constexpr (std::is_same_v<T, OdString>) {
    putString(value);
  } else if constexpr (std::is_same_v<T, OdDbHandle>) {
    putVarint(m_fields, static_cast<OdUInt64>(value));
  } else if constexpr (kIsOneByte<T>) {
    m_fields.push_back(static_cast<OdUInt8>(value));
  } else if constexpr (std::is_integral_v<T>) {
    putVarint(m_fields, zigzag(value));
  } else {
    OdDbFileWriter::wrBytes(&value, sizeof value);
  }
}

#define OD_DWG_VALUE(Name, Value, Argument) \
  void OdDbFileWriter::wr##Name(Argument value) { put(value); }
#define OD_DWG_ID(Name, type) \
  void OdDbFileWriter::wr##Name(const OdDbObjectId& value) { putId(value, type); }
#include "platform/filer/dwg_primitive_rows.inc"

void OdDbFileWriter::putString(const OdString& value) {
  const std::string_view text = value.utf8();
  putVarint(m_fields, text.size());
  m_fields.insert(m_fields.end(), text.begin(), text.end());
}

void OdDbFileWriter::putId(const OdDbObjectId& id, OdDb::ReferenceType type) {
  if (id.isNull()) {
    m_fields.push_back(0);
    return;
  }
  m_references.push_back({type, static_cast<OdUInt64>(id.getHandle())});
  putVarint(m_fields, m_references.size());
}

// ---- Reading

OdDbFileReader::OdDbFileReader(const OdUInt8* data, std::size_t size, OdDbDatabase* database,
                               HandleResolver resolver, void* context)
    : m_data(data),
      m_end(data + size),
      m_fieldsBegin(data),
      m_database(database),
      m_resolver(resolver),
      m_context(context) {
  const OdUInt64 count = takeVarint();
  if (count > fieldSize()) {
    throw OdError(eCorruptData, OdString("record with " + std::to_string(count) +
                                         " references in " + std::to_string(size) + " bytes"));
  }
  m_references.reserve(static_cast<std::size_t>(count));
  for (OdUInt64 i = 0; i < count; ++i) {
    const OdUInt64 packed = takeVarint();
    m_references.push_back(
        {static_cast<OdDb::ReferenceType>(packed & ((1u << kTypeBits) - 1)), packed >> kTypeBits});
  }
  m_fieldsBegin = m_data;
}

void OdDbFileReader::raiseEnd(std::size_t wanted) const {
  throw OdError(eEndOfStream, OdString("wanted " + std::to_string(wanted) + " bytes, " +
                                       std::to_string(fieldSize()) + " are left in the record"));
}

void OdDbFileReader::seek(OdInt64 offset, OdDb::FilerSeekType from) {
  const OdInt64 length = m_end - m_fieldsBegin;
  OdInt64 target = offset;
  if (from == OdDb::kSeekFromCurrent) target += m_data - m_fieldsBegin;
  if (from == OdDb::kSeekFromEnd) target += length;
  if (target < 0 || target > length) {
    throw OdError(eEndOfStream, OdString("seek to " + std::to_string(target) + " in " +
                                         std::to_string(length) + " bytes"));
  }
  m_data = m_fieldsBegin + target;
}

OdUInt8 OdDbFileReader::takeByte() {
  if (m_data == m_end) [[unlikely]]
    raiseEnd(1);
  return *m_data++;
}

OdUInt64 OdDbFileReader::takeVarint() {
  if (m_data != m_end && *m_data < 0x80) [[likely]]
    return *m_data++;
  return takeLongVarint();
}

OdUInt64 OdDbFileReader::takeLongVarint() {
  OdUInt64 value = 0;
  for (unsigned shift = 0; shift < 64; shift += 7) {
    const OdUInt64 byte = takeByte();
    value |= (byte & 0x7f) << shift;
    if (byte < 0x80) {
      // The tenth byte has room for one bit.
      if (shift == 63 && byte > 1) break;
      return value;
    }
  }
  throw OdError(eCorruptData, OdString("number of more than 64 bits"));
}

// A value from the form of its type.
template <class T>
T OdDbFileReader::take() {
  if constexpr (std::is_same_v<T, OdString>) {
    return OdString::fromUtf8(rdStringView());
  } else if constexpr (std::is_same_v<T, OdDbHandle>) {
    return OdDbHandle(takeVarint());
  } else if constexpr (std::is_same_v<T, bool>) {
    return takeByte() != 0;
  } else if constexpr (kIsOneByte<T>) {
    return static_cast<T>(takeByte());
  } else if constexpr (std::is_integral_v<T>) {
    return narrowed<T>(unzigzag(takeVarint()));
  } else {
    T value;
    OdDbFileReader::rdBytes(&value, sizeof value);
    return value;
  }
}

#define OD_DWG_VALUE(Name, Value, Argument) \
  Value OdDbFileReader::rd##Name() { return take<Value>(); }
#define OD_DWG_ID(Name, type) \
  OdDbObjectId OdDbFileReader::rd##Name() { return takeId(type); }
#include "platform/filer/dwg_primitive_rows.inc"

std::string_view OdDbFileReader::rdStringView() {
  const OdUInt64 size = takeVarint();
  if (size > fieldSize()) raiseEnd(static_cast<std::size_t>(size));
  const std::string_view text(reinterpret_cast<const char*>(m_data),
                              static_cast<std::size_t>(size));
  m_data += size;
  return text;
}

OdString OdDbFileReader::rdKey() { return internKey(rdStringView()); }

OdString OdDbFileReader::rdKeyLike(const OdString& expected) {
  const std::string_view bytes = rdStringView();
  return bytes == expected.utf8() ? expected : internKey(bytes);
}

void OdDbFileReader::rdBytes(void* buffer, OdUInt32 size) {
  if (fieldSize() < size) raiseEnd(size);
  if (size == 0) return;
  std::memcpy(buffer, m_data, size);
  m_data += size;
}

namespace {

/// Whether a reference may be read by the primitive of a type: pointers by both primitives of
/// pointers, since their readers may care less than their writers; owners by their own alone.
bool isReadableAs(OdDb::ReferenceType stored, OdDb::ReferenceType asked) {
  const auto isPointer = [](OdDb::ReferenceType type) {
    return type == OdDb::kSoftPointerRef || type == OdDb::kHardPointerRef;
  };
  return stored == asked || (isPointer(stored) && isPointer(asked));
}

}  // namespace

OdDbObjectId OdDbFileReader::takeId(OdDb::ReferenceType type) {
  const OdUInt64 number = takeVarint();
  if (number == 0) return OdDbObjectId::kNull;
  if (number > m_references.size()) {
    throw OdError(eCorruptData, OdString("reference " + std::to_string(number) + " of " +
                                         std::to_string(m_references.size())));
  }
  const OdDbFileReference& reference = m_references[static_cast<std::size_t>(number - 1)];
  if (!isReadableAs(reference.type, type)) {
    throw OdError(eCorruptData, OdString("reference of type " + std::to_string(reference.type) +
                                         " read as type " + std::to_string(type)));
  }
  if (number > m_greatestRead) m_greatestRead = static_cast<OdUInt32>(number);
  return m_resolver(m_context, reference.handle);
}
