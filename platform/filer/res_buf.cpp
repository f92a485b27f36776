// OdResBuf: coded values and their chains.
//
// The group code decides what a buffer holds: kCodes maps ranges of codes to kinds, in rising
// order, so that looking a code up is one binary search over some forty rows. Every access goes
// through that table: the invariant is that the value is unset or of the type of its code's kind.
// An unset value reads as the empty value of the kind.
//
// A chain owns its elements from the first to the last, so the destructor could recurse once for
// each of them. It takes the chain apart in a loop instead, and stops at an element that
// has other references. setNext walks the new chain to refuse a cycle, which a reference count
// would never free: building a chain by appending at its last element costs one step each time.
#include "platform/filer/res_buf.h"

#include <algorithm>
#include <iterator>
#include <limits>
#include <string>
#include <utility>

#include "platform/base/error.h"
#include "platform/filer/dwg_filer.h"

OD_RX_DEFINE(OdResBuf, OdRxObject, L"OdResBuf")

namespace {

using Kind = OdResBuf::Kind;

struct CodeRange {
  int first;
  int last;
  Kind kind;
};

// Group codes and what they hold, in rising order; codes between the rows hold nothing.
constexpr CodeRange kCodes[] = {
    {-2, -1, Kind::kObjectId},   {0, 4, Kind::kString},       {5, 5, Kind::kHandle},
    {6, 9, Kind::kString},       {10, 18, Kind::kPoint},      {19, 59, Kind::kDouble},
    {60, 79, Kind::kInt16},      {90, 99, Kind::kInt32},      {100, 102, Kind::kString},
    {105, 105, Kind::kHandle},   {110, 112, Kind::kPoint},    {113, 149, Kind::kDouble},
    {160, 169, Kind::kInt64},    {170, 179, Kind::kInt16},    {210, 210, Kind::kPoint},
    {211, 239, Kind::kDouble},   {270, 279, Kind::kInt16},    {280, 289, Kind::kInt8},
    {290, 299, Kind::kBool},     {300, 309, Kind::kString},   {310, 319, Kind::kBinary},
    {320, 329, Kind::kHandle},   {330, 369, Kind::kObjectId}, {370, 389, Kind::kInt16},
    {390, 399, Kind::kObjectId}, {400, 409, Kind::kInt16},    {410, 419, Kind::kString},
    {420, 429, Kind::kInt32},    {430, 439, Kind::kString},   {440, 459, Kind::kInt32},
    {460, 469, Kind::kDouble},   {470, 479, Kind::kString},   {480, 489, Kind::kObjectId},
    {999, 1003, Kind::kString},  {1004, 1004, Kind::kBinary}, {1005, 1005, Kind::kHandle},
    {1006, 1009, Kind::kString}, {1010, 1013, Kind::kPoint},  {1040, 1042, Kind::kDouble},
    {1070, 1070, Kind::kInt16},  {1071, 1071, Kind::kInt32},
};

constexpr const char* kKindNames[] = {
    "nothing",
#define OD_RES_BUF_VALUE(Held, Name, Type, Result, Argument, text) text,
#include "platform/filer/res_buf_rows.inc"
};

const char* nameOf(Kind kind) { return kKindNames[static_cast<std::size_t>(kind)]; }

[[noreturn]] void raiseKind(int code, const char* asked) {
  throw OdError(eInvalidInput, OdString("code " + std::to_string(code) + " holds " +
                                        nameOf(OdResBuf::kindOf(code)) + ", asked for " + asked));
}

void checkKind(int code, Kind kind) {
  if (OdResBuf::kindOf(code) != kind) raiseKind(code, nameOf(kind));
}

template <class T>
T narrowed(int code, OdInt32 value) {
  if (value < std::numeric_limits<T>::min() || value > std::numeric_limits<T>::max()) {
    throw OdError(eInvalidInput,
                  OdString("code " + std::to_string(code) + " holds " +
                           nameOf(OdResBuf::kindOf(code)) + ", given " + std::to_string(value)));
  }
  return static_cast<T>(value);
}

}  // namespace

OdResBuf::OdResBuf() = default;

OdResBuf::~OdResBuf() {
  OdResBufPtr rest = std::move(m_next);
  while (!rest.isNull() && rest->numRefs() == 1) {
    OdResBufPtr following = std::move(rest->m_next);
    rest = std::move(following);
  }
}

OdResBuf::Kind OdResBuf::kindOf(int code) {
  const auto* row = std::upper_bound(std::begin(kCodes), std::end(kCodes), code,
                                     [](int c, const CodeRange& r) { return c < r.first; });
  if (row == std::begin(kCodes)) return Kind::kNone;
  --row;
  return code <= row->last ? row->kind : Kind::kNone;
}

OdDb::ReferenceType OdResBuf::referenceOf(int code) {
  switch (code / 10) {
    case 34:
    case 39:
    case 48:
      return OdDb::kHardPointerRef;
    case 35:
      return OdDb::kSoftOwnershipRef;
    case 36:
      return OdDb::kHardOwnershipRef;
    default:
      return OdDb::kSoftPointerRef;
  }
}

// ---- Making

OdResBufPtr OdResBuf::newRb(int code) {
  OdResBufPtr buffer = OdResBuf::createObject();
  buffer->m_code = code;
  return buffer;
}

template <class T>
OdResBufPtr OdResBuf::made(int code, Kind kind, const T& value) {
  OdResBufPtr buffer = newRb(code);
  buffer->put(kind, value);
  return buffer;
}

OdResBufPtr OdResBuf::newRb(int code, const OdString& value) {
  return made(code, Kind::kString, value);
}

// A whole number is stored in every numeric kind that can hold it.
OdResBufPtr OdResBuf::newRb(int code, OdInt32 value) {
  OdResBufPtr buffer = newRb(code);
  switch (kindOf(code)) {
    case Kind::kBool:
      buffer->m_value = value != 0;
      break;
    case Kind::kInt8:
      buffer->m_value = narrowed<OdInt8>(code, value);
      break;
    case Kind::kInt16:
      buffer->m_value = narrowed<OdInt16>(code, value);
      break;
    case Kind::kInt64:
      buffer->m_value = OdInt64{value};
      break;
    case Kind::kDouble:
      buffer->m_value = double{static_cast<double>(value)};
      break;
    default:
      buffer->setInt32(value);
  }
  return buffer;
}

OdResBufPtr OdResBuf::newRb(int code, double value) { return made(code, Kind::kDouble, value); }

OdResBufPtr OdResBuf::newRb(int code, const OdGePoint3d& value) {
  return made(code, Kind::kPoint, value);
}

OdResBufPtr OdResBuf::newRb(int code, const OdDbHandle& value) {
  return made(code, Kind::kHandle, value);
}

OdResBufPtr OdResBuf::newRb(int code, const OdDbObjectId& value) {
  return made(code, Kind::kObjectId, value);
}

void OdResBuf::setRestype(int code) {
  if (kindOf(code) != kindOf(m_code)) m_value = std::monostate();
  m_code = code;
}

// ---- Chains

OdResBufPtr OdResBuf::next() const { return m_next; }

OdResBufPtr OdResBuf::last() const {
  const OdResBuf* element = this;
  while (!element->m_next.isNull()) element = element->m_next.get();
  return element;
}

OdResBuf* OdResBuf::setNext(const OdResBuf* next) {
  for (const OdResBuf* element = next; element != nullptr; element = element->m_next.get()) {
    if (element == this) {
      throw OdError(eCircularReference,
                    OdString("the chain after code " + std::to_string(next->m_code) +
                             " holds the buffer with code " + std::to_string(m_code)));
    }
  }
  OdResBufPtr(next).swap(m_next);
  return m_next.get();
}

OdResBuf* OdResBuf::insert(OdResBuf* element) {
  if (element == nullptr) throw OdError(eNullPointer, OdString("buffer to insert"));
  const OdResBufPtr rest = m_next;
  setNext(element);
  if (!rest.isNull()) element->last()->setNext(rest);
  return element;
}

OdResBufPtr OdResBuf::copyElement() const {
  OdResBufPtr copy = newRb(m_code);
  copy->m_value = m_value;
  return copy;
}

OdResBufPtr OdResBuf::copyChain() const {
  OdResBufPtr head = copyElement();
  OdResBuf* tail = head;
  for (const OdResBuf* element = m_next; element != nullptr; element = element->m_next) {
    tail->m_next = element->copyElement();
    tail = tail->m_next;
  }
  return head;
}

bool OdResBuf::valueEquals(const OdResBuf& other) const {
  if (m_code != other.m_code) return false;
  if (m_value.index() == other.m_value.index()) return m_value == other.m_value;
  // A value that was never set is the empty value of its kind.
  OdResBufPtr left = copyElement();
  OdResBufPtr right = other.copyElement();
  left->fillEmpty();
  right->fillEmpty();
  return left->m_value == right->m_value;
}

// ---- Values

void OdResBuf::fillEmpty() {
  if (!std::holds_alternative<std::monostate>(m_value)) return;
  switch (kindOf(m_code)) {
    case Kind::kNone:
      break;
#define OD_RES_BUF_VALUE(Held, Name, Type, Result, Argument, text) \
  case Kind::k##Held:                                              \
    m_value = Type();                                              \
    break;
#include "platform/filer/res_buf_rows.inc"
  }
}

template <class T>
const T& OdResBuf::get(Kind kind) const {
  static const T kUnset{};
  checkKind(m_code, kind);
  const T* value = std::get_if<T>(&m_value);
  return value == nullptr ? kUnset : *value;
}

template <class T>
void OdResBuf::put(Kind kind, const T& value) {
  checkKind(m_code, kind);
  m_value = value;
}

#define OD_RES_BUF_VALUE(Held, Name, Type, Result, Argument, text)        \
  Result OdResBuf::get##Name() const { return get<Type>(Kind::k##Held); } \
  void OdResBuf::set##Name(Argument value) { put<Type>(Kind::k##Held, value); }
#include "platform/filer/res_buf_rows.inc"

// ---- Filing
//
//   chain      := int32 count, element*
//   element    := int16 code, value
//   value      by kind of the code: string, bool, int8, int16, int32, int64, double, point, handle,
//              id by referenceOf(code); binary as int32 byte count and bytes

void OdResBuf::dwgOutValue(OdDbDwgFiler* filer) const {
  switch (kindOf(m_code)) {
    case Kind::kNone:
      raiseKind(m_code, "a value to file");
#define OD_RES_BUF_PRIMITIVE(Name, Type, Argument, text) \
  case Kind::k##Name:                                    \
    return filer->wr##Name(get##Name());
#include "platform/filer/res_buf_rows.inc"
    case Kind::kPoint:
      return filer->wrPoint3d(getPoint3d());
    case Kind::kHandle:
      return filer->wrDbHandle(getHandle());
    case Kind::kObjectId:
      return filer->wrId(referenceOf(m_code), getObjectId());
    case Kind::kBinary: {
      const OdBinaryData& bytes = getBinaryChunk();
      filer->wrInt32(static_cast<OdInt32>(bytes.size()));
      filer->wrBytes(bytes.asArrayPtr(), bytes.size());
      return;
    }
  }
}

void OdResBuf::dwgInValue(OdDbDwgFiler* filer) {
  switch (kindOf(m_code)) {
    case Kind::kNone:
      throw OdError(eCorruptData, OdString("code " + std::to_string(m_code) + " of a chain"));
#define OD_RES_BUF_PRIMITIVE(Name, Type, Argument, text) \
  case Kind::k##Name:                                    \
    return set##Name(filer->rd##Name());
#include "platform/filer/res_buf_rows.inc"
    case Kind::kPoint:
      return setPoint3d(filer->rdPoint3d());
    case Kind::kHandle:
      return setHandle(filer->rdDbHandle());
    case Kind::kObjectId:
      return setObjectId(filer->rdId(referenceOf(m_code)));
    case Kind::kBinary: {
      OdBinaryData bytes;
      bytes.resize(filer->rdCount());
      filer->rdBytes(bytes.asArrayPtr(), bytes.size());
      return setBinaryChunk(bytes);
    }
  }
}

void OdResBuf::dwgOutChain(OdDbDwgFiler* filer, const OdResBuf* first) {
  OdInt32 count = 0;
  for (const OdResBuf* element = first; element != nullptr; element = element->m_next) ++count;
  filer->wrInt32(count);
  for (const OdResBuf* element = first; element != nullptr; element = element->m_next) {
    filer->wrInt16(static_cast<OdInt16>(element->m_code));
    element->dwgOutValue(filer);
  }
}

OdResBufPtr OdResBuf::dwgInChain(OdDbDwgFiler* filer) {
  constexpr OdUInt32 kMinElementBytes = 2;
  OdResBufPtr head;
  OdResBuf* tail = nullptr;
  for (OdUInt32 count = filer->rdCount(kMinElementBytes); count > 0; --count) {
    OdResBufPtr element = newRb(filer->rdInt16());
    element->dwgInValue(filer);
    OdResBuf* added = element;
    (tail == nullptr ? head : tail->m_next) = std::move(element);
    tail = added;
  }
  return head;
}
