// What a persistent reference remembers of itself: its stored lineage.
#include "host/naming/reference_record.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <utility>

#include "platform/db/database.h"
#include "platform/db/dictionary.h"
#include "platform/db/xrecord.h"
#include "vdm_db/model/vdm_db_object_dependency.h"

namespace vdm_host {

namespace {

constexpr std::size_t kUsualSize = 256;  // bytes of a record, most of them
constexpr const wchar_t* kStampKey = L"VDM_NAMING";
constexpr int kStampCode = 310;  // a binary chunk

// Bits of the record's and of the signature's flags.
constexpr OdUInt8 kHasBirth = 1;
constexpr OdUInt8 kHasSignature = 2;
constexpr OdUInt8 kInward = 1;
constexpr OdUInt8 kClosed = 2;

const OdString& lineageKey() {
  static const OdString key(L"lineage");
  return key;
}

class ByteWriter {
 public:
  void byte(OdUInt64 value) { m_bytes.push_back(static_cast<char>(value & 0xFFU)); }
  void fixed(OdUInt64 value, std::size_t count) {
    char bytes[sizeof(value)];
    for (std::size_t i = 0; i < count; ++i, value >>= 8U) {
      bytes[i] = static_cast<char>(value & 0xFFU);
    }
    m_bytes.insert(m_bytes.end(), bytes, bytes + count);
  }
  void varint(OdUInt64 value) {
    for (; value >= 0x80U; value >>= 7U) byte(value | 0x80U);
    byte(value);
  }
  void real(double value) { fixed(std::bit_cast<OdUInt64>(value), 8); }
  template <class Xyz>
  void xyz(const Xyz& v) {
    for (const double value : {v.x, v.y, v.z}) real(value);
  }
  /// Keeps room for that many bytes.
  explicit ByteWriter(std::size_t size = 0) { m_bytes.reserve(size); }
  std::vector<char> take() { return std::move(m_bytes); }

 private:
  std::vector<char> m_bytes;
};

// Reads zeros where the bytes do not suffice and remembers that it did.
class ByteReader {
 public:
  ByteReader(const char* bytes, std::size_t count) : m_bytes(bytes), m_count(count) {}

  [[nodiscard]] bool good() const { return m_good; }
  [[nodiscard]] bool atEnd() const { return m_good && m_next == m_count; }
  OdUInt8 byte() {
    if (m_next < m_count) return static_cast<OdUInt8>(m_bytes[m_next++]);
    m_good = false;
    return 0;
  }
  OdUInt64 fixed(std::size_t count) {
    if (m_count - m_next < count) {
      m_next = m_count;
      m_good = false;
      return 0;
    }
    OdUInt64 value = 0;
    for (std::size_t i = 0; i < count; ++i) {
      value |= OdUInt64{static_cast<OdUInt8>(m_bytes[m_next + i])} << (8U * i);
    }
    m_next += count;
    return value;
  }
  OdUInt64 varint() {
    OdUInt64 value = 0;
    for (unsigned shift = 0; shift < 64; shift += 7) {
      const OdUInt64 part = byte();
      value |= (part & 0x7FU) << shift;
      if ((part & 0x80U) == 0) return value;
    }
    m_good = false;
    return 0;
  }
  OdUInt32 number() {
    const OdUInt64 value = varint();
    m_good &= value <= 0xFFFFFFFFU;
    return static_cast<OdUInt32>(value);
  }
  double real() { return std::bit_cast<double>(fixed(8)); }
  template <class Xyz>
  void xyz(Xyz& v) {
    v.x = real();
    v.y = real();
    v.z = real();
  }

 private:
  const char* m_bytes;
  std::size_t m_count;
  std::size_t m_next = 0;
  bool m_good = true;
};

void writeSignature(ByteWriter& out, const SubentSignature& s) {
  out.byte(s.kind);
  out.byte(static_cast<unsigned>(s.inward ? kInward : 0) |
           static_cast<unsigned>(s.closed ? kClosed : 0));
  out.varint(s.bounds);
  out.fixed(s.neighbours, 4);
  for (const double value : {s.size, s.radius, s.minorRadius, s.halfAngle}) out.real(value);
  out.xyz(s.place);
  out.xyz(s.anchor);
  out.xyz(s.direction);
}

SubentSignature readSignature(ByteReader& in, OdModelerSubentType type) {
  SubentSignature s;
  s.type = type;
  s.kind = in.byte();
  const OdUInt8 flags = in.byte();
  s.inward = (flags & kInward) != 0;
  s.closed = (flags & kClosed) != 0;
  s.bounds = static_cast<OdUInt16>(in.varint());
  s.neighbours = static_cast<OdUInt32>(in.fixed(4));
  for (double* value : {&s.size, &s.radius, &s.minorRadius, &s.halfAngle}) *value = in.real();
  in.xyz(s.place);
  in.xyz(s.anchor);
  in.xyz(s.direction);
  return s;
}

LineageStep readStep(ByteReader& in) {
  LineageStep step;
  step.cause = static_cast<LineageCause>(in.byte());
  step.grade = static_cast<ReferenceGrade>(in.byte());
  step.from = in.number();
  step.to = in.number();
  step.images = in.number();
  step.feature = in.varint();
  return step;
}

void writeStep(ByteWriter& out, const LineageStep& step) {
  out.byte(static_cast<OdUInt8>(step.cause));
  out.byte(static_cast<OdUInt8>(step.grade));
  out.varint(step.from);
  out.varint(step.to);
  out.varint(step.images);
  out.varint(step.feature);
}

}  // namespace

OdString causeName(LineageCause cause) {
  static constexpr std::array<const wchar_t*, 9> kNames{
      L"created",        L"boolean", L"blend",  L"body replaced", L"opening cut again",
      L"opening closed", L"split",   L"merged", L"found again"};
  const auto index = static_cast<std::size_t>(cause);
  return index < kNames.size() ? kNames[index] : L"unknown";
}

void ReferenceRecord::addStep(const LineageStep& step) {
  grade = step.grade;
  ++stepCount;
  // The first step tells where the reference comes from: it is never dropped.
  if (steps.size() == kKeptSteps) steps.erase(steps.begin() + 1);
  steps.push_back(step);
}

std::vector<char> ReferenceRecord::encode() const {
  ByteWriter out(kUsualSize);
  const bool hasSignature = signature.type != OdModelerSubentType::kNull;
  out.byte(kRules);
  out.byte(static_cast<OdUInt8>(grade));
  out.byte(static_cast<unsigned>(birth.isOfTool() ? kHasBirth : 0) |
           static_cast<unsigned>(hasSignature ? kHasSignature : 0));
  out.varint(lastIndex);
  if (birth.isOfTool()) {
    out.varint(birth.feature);
    out.varint(birth.toolFace);
  }
  if (hasSignature) writeSignature(out, signature);
  out.varint(stepCount);
  out.byte(steps.size());
  for (const LineageStep& step : steps) writeStep(out, step);
  return out.take();
}

bool ReferenceRecord::decode(const std::vector<char>& bytes, OdModelerSubentType type) {
  ByteReader in(bytes.data(), bytes.size());
  if (in.byte() != kRules) return false;
  ReferenceRecord read;
  const OdUInt8 storedGrade = in.byte();
  if (storedGrade >= kReferenceGradeCount) return false;
  read.grade = static_cast<ReferenceGrade>(storedGrade);
  const OdUInt8 flags = in.byte();
  read.lastIndex = in.number();
  if ((flags & kHasBirth) != 0) {
    read.birth.feature = in.varint();
    read.birth.toolFace = in.number();
  }
  if ((flags & kHasSignature) != 0) read.signature = readSignature(in, type);
  read.stepCount = in.number();
  const OdUInt8 kept = in.byte();
  read.steps.reserve(std::min<std::size_t>(kept, kKeptSteps));
  for (OdUInt8 i = 0; i < kept && in.good(); ++i) read.steps.push_back(readStep(in));
  if (!in.atEnd()) return false;
  *this = std::move(read);
  return true;
}

void ReferenceRecord::readBytes(const VdmDbObjectDependency& dependency, std::vector<char>& bytes) {
  if (!dependency.properties().getProperty(lineageKey(), bytes)) bytes.clear();
}

bool ReferenceRecord::readFrom(const VdmDbObjectDependency& dependency) {
  VdmBlob bytes;
  readBytes(dependency, bytes);
  return decode(bytes, static_cast<OdModelerSubentType>(dependency.subentId().type()));
}

void ReferenceRecord::writeTo(VdmDbObjectDependency& dependency) const {
  const VdmBlob bytes = encode();
  VdmBlob present;
  if (dependency.properties().getProperty(lineageKey(), present)) {
    const bool isLater = !present.empty() && static_cast<OdUInt8>(present.front()) > kRules;
    if (isLater || present == bytes) return;
  }
  VdmProperties& bag = dependency.propertiesForWrite();
  if (!bag.setProperty(lineageKey(), bytes)) {
    bag.removeProperty(lineageKey());
    bag.setProperty(lineageKey(), bytes);
  }
  if (signature.type != OdModelerSubentType::kNull) {
    dependency.setBodyHash(static_cast<OdLong>(signature.shapeHash()));
  }
}

// ---- SolidStamp

namespace {

constexpr int kFrameRows = 3;
constexpr std::size_t kShortStamp = 12;
constexpr std::size_t kLongStamp = kShortStamp + 12 * sizeof(double);

OdBinaryData stampBytes(const SolidStamp& stamp) {
  ByteWriter out;
  out.fixed(stamp.fingerprint, 8);
  out.fixed(stamp.operations, 4);
  if (stamp.frame != OdGeMatrix3d::kIdentity) {
    for (unsigned r = 0; r < kFrameRows; ++r) {
      for (unsigned c = 0; c < 4; ++c) out.real(stamp.frame(r, c));
    }
  }
  const std::vector<char> bytes = out.take();
  OdBinaryData data;
  data.resize(static_cast<OdUInt32>(bytes.size()));
  std::memcpy(data.asArrayPtr(), bytes.data(), bytes.size());
  return data;
}

OdDbXrecordPtr stampRecord(const OdDbObjectId& solid, OdDb::OpenMode mode) {
  const OdDbObjectPtr object = solid.openObject();
  if (object.isNull()) return {};
  const OdDbDictionaryPtr dictionary = object->extensionDictionary().openAs<OdDbDictionary>();
  if (dictionary.isNull()) return {};
  return dictionary->getAt(kStampKey).openAs<OdDbXrecord>(mode);
}

OdDbXrecordPtr makeStampRecord(const OdDbObjectId& solid) {
  // Solids of external drawings are not written to: there the numbers count as they are.
  const OdDbObjectPtr object = solid.openObject();
  if (object.isNull() || object->database()->isReadOnly()) return {};
  object->upgradeOpen();
  const OdDbDictionaryPtr dictionary =
      object->createExtensionDictionary().openAs<OdDbDictionary>(OdDb::kForWrite);
  if (dictionary.isNull()) return {};
  OdDbXrecordPtr record = OdDbXrecord::createObject();
  dictionary->setAt(kStampKey, record);
  return record;
}

}  // namespace

SolidStamp SolidStamp::read(const OdDbObjectId& solid) {
  SolidStamp stamp;
  const OdDbXrecordPtr record = stampRecord(solid, OdDb::kForRead);
  if (record.isNull()) return stamp;
  const OdResBufPtr chain = record->rbChain();
  if (chain.isNull() || chain->restype() != kStampCode) return stamp;
  const OdBinaryData& data = chain->getBinaryChunk();
  if (data.size() != kShortStamp && data.size() != kLongStamp) return stamp;
  ByteReader in(reinterpret_cast<const char*>(data.asArrayPtr()), data.size());
  stamp.fingerprint = in.fixed(8);
  stamp.operations = static_cast<OdUInt32>(in.fixed(4));
  if (data.size() == kShortStamp) return stamp;
  for (unsigned r = 0; r < kFrameRows; ++r) {
    for (unsigned c = 0; c < 4; ++c) stamp.frame(r, c) = in.real();
  }
  return stamp;
}

bool SolidStamp::write(const OdDbObjectId& solid) const {
  const OdBinaryData data = stampBytes(*this);
  OdDbXrecordPtr record = stampRecord(solid, OdDb::kForRead);
  if (record.isNull()) {
    record = makeStampRecord(solid);
  } else {
    const OdResBufPtr present = record->rbChain();
    if (!present.isNull() && present->restype() == kStampCode &&
        present->getBinaryChunk() == data) {
      return true;
    }
    record->upgradeOpen();
  }
  if (record.isNull()) return false;
  const OdResBufPtr chain = OdResBuf::newRb(kStampCode);
  chain->setBinaryChunk(data);
  return record->setFromRbChain(chain) == eOk;
}

OdInt64 unresolvedIndexOf(const OdDbObjectId& dependency) {
  const OdUInt64 handle = dependency.getHandle();
  return OdInt64{kFirstUnresolvedIndex} +
         static_cast<OdInt64>(handle & (kFirstUnresolvedIndex - 1));
}

}  // namespace vdm_host
