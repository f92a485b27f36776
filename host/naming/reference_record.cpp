// What a persistent reference remembers of itself: its stored lineage.
//
// The order of fields is that of the table in the header, once in encode() and once in decode().
// Reading is safe for any bytes: a count is never believed further than the bytes reach, a number
// that does not fit makes the reader bad, and a record counts only when its last field ends exactly
// where the bytes do. A damaged record is never half read, since the record is replaced as a whole
// at the end. What is bad in one record costs that record alone: its reference keeps its number and
// is found without a signature.
//
// The size is bounded, however often a reference is decided about: of all steps the first is kept,
// which says where the reference comes from, and the last seven. Adding a step costs the same in
// the first and in the thousandth edit.
#include "host/naming/reference_record.h"

#include <algorithm>
#include <array>
#include <utility>

#include "host/naming/record_bytes.h"
#include "vdm_db/model/vdm_db_object_dependency.h"

namespace vdm_host {

namespace {

constexpr std::size_t kUsualSize = 256;  // bytes of a record, most of them

// Bits of the record's and of the signature's flags.
constexpr OdUInt8 kHasBirth = 1;
constexpr OdUInt8 kHasSignature = 2;
constexpr OdUInt8 kHasBirths = 4;
constexpr OdUInt8 kInward = 1;
constexpr OdUInt8 kClosed = 2;

const OdString& lineageKey() {
  static const OdString key(L"lineage");
  return key;
}

void writeBirths(ByteWriter& out, const std::vector<BirthSet>& births) {
  out.varint(births.size());
  for (const BirthSet& set : births) {
    out.varint(set.size());
    for (const FaceBirth& birth : set) {
      out.varint(birth.maker);
      out.varint(birth.key);
    }
  }
}

std::vector<BirthSet> readBirths(ByteReader& in) {
  std::vector<BirthSet> births;
  const OdUInt32 sets = in.number();
  for (OdUInt32 i = 0; i < sets && in.good(); ++i) {
    BirthSet& set = births.emplace_back();
    const OdUInt32 count = in.number();
    for (OdUInt32 k = 0; k < count && in.good(); ++k) {
      const OdUInt32 maker = in.number();
      set.push_back({maker, in.number()});
    }
  }
  return births;
}

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
  // The first step says where the reference comes from and is never dropped.
  if (steps.size() == kKeptSteps) steps.erase(steps.begin() + 1);
  steps.push_back(step);
}

std::vector<char> ReferenceRecord::encode() const {
  ByteWriter out(kUsualSize);
  const bool hasSignature = signature.type != OdModelerSubentType::kNull;
  out.byte(births.empty() ? kFirstRules : kRules);
  out.byte(static_cast<OdUInt8>(grade));
  out.byte(static_cast<unsigned>(birth.isOfTool() ? kHasBirth : 0) |
           static_cast<unsigned>(hasSignature ? kHasSignature : 0) |
           static_cast<unsigned>(births.empty() ? 0 : kHasBirths));
  out.varint(lastIndex);
  if (birth.isOfTool()) {
    out.varint(birth.feature);
    out.varint(birth.toolFace);
  }
  if (!births.empty()) writeBirths(out, births);
  if (hasSignature) writeSignature(out, signature);
  out.varint(stepCount);
  out.byte(steps.size());
  for (const LineageStep& step : steps) writeStep(out, step);
  return out.take();
}

bool ReferenceRecord::decode(const std::vector<char>& bytes, OdModelerSubentType type) {
  ByteReader in(bytes.data(), bytes.size());
  const OdUInt8 rules = in.byte();
  if (rules < kFirstRules || rules > kRules) return false;
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
  if ((flags & kHasBirths) != 0) read.births = readBirths(in);
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

OdInt64 unresolvedIndexOf(const OdDbObjectId& dependency) {
  const OdUInt64 handle = dependency.getHandle();
  return OdInt64{kFirstUnresolvedIndex} +
         static_cast<OdInt64>(handle & (kFirstUnresolvedIndex - 1));
}

}  // namespace vdm_host
