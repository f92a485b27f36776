// Field lists: one list of a class's fields, from which its binary and its DXF form both come.
#pragma once

#include <concepts>
#include <memory>

#include "platform/base/array.h"
#include "platform/base/result.h"
#include "platform/filer/dwg_filer.h"
#include "platform/filer/dxf_filer.h"
#include "platform/ge/matrix3d.h"
#include "platform/ge/point2d.h"
#include "platform/ge/point3d.h"
#include "platform/ge/scale3d.h"
#include "platform/ge/vector3d.h"
#include "platform/gi/entity_color.h"

/// A class lists its fields in stored order, in a member template that its four filing functions
/// call:
///
///   template <class Fields, class Self>
///   void OdDbLine::fields(Fields& fields, Self& line) {
///     fields.version(1);                        // binary form only
///     fields.value(10, line.m_start, isSound);  // group code, member, check
///     fields.value(11, line.m_end, isSound);
///   }
///
/// Each visitor below takes the same calls:
///
///   version(number)               uint8; another number ends reading with eUnsupportedVersion
///   version(number, newest, isNeeded)  writes `newest` when `isNeeded`, else `number`; reads all
///                                 from `number` to `newest`
///   from(newest, object, reset)   the fields that follow came with that version; an older record
///                                 calls reset(object), which gives them their first values
///   rule(holds)                   a predicate over the fields so far; false is eCorruptData
///   value(code, member, check)    filed by the member's type, see the table
///   number<T>(code, member, ...)  an enumeration, filed as the integer T
///   pointer<type>(code, id)       an id with its reference type
///   list(code, array, limit, check)    doubles, int32, strings or points, at most `limit`, each
///                                      checked
///   pointers<type>(code, array)   ids of one reference type, nulls included
///   placement(code, matrix, check)     an affine matrix behind a unique_ptr, null for none
///   ids<type>(code, list)              ids of one reference type, see OdDbFiledIdList
///
///   member        binary          groups
///   OdString      string          code
///   bool          bool            code
///   OdUInt8       uint8           code
///   OdInt16       int16           code
///   OdInt32       int32           code
///   double        double          code
///   OdGePoint2d   2 doubles       code, code + 10
///   OdGePoint3d   3 doubles       code, code + 10, code + 20; so OdGeVector3d
///   OdGeScale3d   3 doubles       code, code + 1, code + 2
///   OdCmColor     4 x uint8       code, an int32 of the four bytes, method first
///   list          int32 count, elements          code, for each in order
///   placement     bool, then 3 rows of 4 doubles    code to code + 11; none without a matrix
///   pointers      int32 count, ids               code, for each in order
///   ids           int32 count, ids               code, for each in order
///
/// A check decides whether a value may be kept; one that fails ends reading with eCorruptData.
/// Reading stores into the members as it goes: after a failure the caller drops the object or
/// rolls it back. The group form begins with a subclass marker (100 and the class name), may
/// have its groups in any order, and ends before the next marker; groups that no field has are
/// passed. Fields of a newer version that are not needed have no groups.

/// The check of a field that may have any value.
struct OdDbAnyValue {
  template <class T>
  constexpr bool operator()(const T&) const {
    return true;
  }
};

constexpr unsigned kOdDbPlacementSize = 12;  // three rows; the fourth is 0 0 0 1

/// What ids() takes: how an owner gives and receives a list of ids.
///
///   forEach(visit)            visit(id) for each, in stored order
///   isFiled(filer, id)        whether a record that the filer writes has the id
///   isFiledAtAll(filer)       whether it has the list
///   clear(), reserve(count), add(id)    reading replaces the list; null ids are not added
///
/// The group form has the ids of objects that are not erased.
template <class List>
concept OdDbFiledIdList = requires(List list, const OdDbDwgFiler* filer, const OdDbObjectId& id) {
  list.forEach([](const OdDbObjectId&) {});
  { list.isFiled(filer, id) } -> std::same_as<bool>;
  { list.isFiledAtAll(filer) } -> std::same_as<bool>;
  list.clear();
  list.reserve(OdUInt32{});
  list.add(id);
};

/// Writes the binary form.
class OdDbDwgFieldWriter {
 public:
  explicit OdDbDwgFieldWriter(OdDbDwgFiler* filer) : m_filer(filer) {}

  void version(OdUInt8 number) { m_filer->wrUInt8(number); }
  void version(OdUInt8 number, OdUInt8 newest, bool isNeeded) {
    m_version = isNeeded ? newest : number;
    m_filer->wrUInt8(m_version);
  }
  template <class T, class Reset>
  void from(OdUInt8 newest, const T&, const Reset&) {
    m_skips = m_version < newest;
  }
  template <class Rule>
  void rule(const Rule&) {}
  template <class T, class Check = OdDbAnyValue>
  void value(int, const T& member, const Check& = {}) {
    if (!m_skips) write(member);
  }
  template <class Stored, class T, class Check = OdDbAnyValue>
  void number(int, const T& member, const Check& = {}) {
    if (!m_skips) write(static_cast<Stored>(member));
  }
  template <OdDb::ReferenceType kType>
  void pointer(int, const OdDbObjectId& id) {
    if (!m_skips) m_filer->wrId(kType, id);
  }
  template <OdDb::ReferenceType kType>
  void pointers(int, const OdDbObjectIdArray& ids) {
    if (m_skips) return;
    m_filer->wrInt32(static_cast<OdInt32>(ids.size()));
    for (const OdDbObjectId& id : ids) m_filer->wrId(kType, id);
  }
  template <class Array, class Check = OdDbAnyValue>
  void list(int, const Array& values, OdUInt32, const Check& = {}) {
    if (m_skips) return;
    m_filer->wrInt32(static_cast<OdInt32>(values.size()));
    for (const auto& value : values) write(value);
  }
  template <class Check = OdDbAnyValue>
  void placement(int, const std::unique_ptr<OdGeMatrix3d>& matrix, const Check& = {}) {
    m_filer->wrBool(matrix != nullptr);
    if (!matrix) return;
    for (unsigned i = 0; i < kOdDbPlacementSize; ++i) m_filer->wrDouble(matrix->getElements()[i]);
  }
  template <OdDb::ReferenceType kType>
  void ids(int, OdDbFiledIdList auto list) {
    if (!list.isFiledAtAll(m_filer)) return;
    OdInt32 count = 0;
    list.forEach([&](const OdDbObjectId& id) { count += list.isFiled(m_filer, id) ? 1 : 0; });
    m_filer->wrInt32(count);
    list.forEach([&](const OdDbObjectId& id) {
      if (list.isFiled(m_filer, id)) m_filer->wrId(kType, id);
    });
  }

 private:
  void write(const OdString& value) { m_filer->wrString(value); }
  void write(bool value) { m_filer->wrBool(value); }
  void write(OdUInt8 value) { m_filer->wrUInt8(value); }
  void write(OdInt16 value) { m_filer->wrInt16(value); }
  void write(OdInt32 value) { m_filer->wrInt32(value); }
  void write(double value) { m_filer->wrDouble(value); }
  void write(const OdGePoint2d& value) { m_filer->wrPoint2d(value); }
  void write(const OdGePoint3d& value) { m_filer->wrPoint3d(value); }
  void write(const OdGeVector3d& value) { m_filer->wrVector3d(value); }
  void write(const OdGeScale3d& value) { m_filer->wrScale3d(value); }
  void write(const OdCmEntityColor& value) { value.dwgOut(m_filer); }

  OdDbDwgFiler* m_filer;
  OdUInt8 m_version = 1;
  bool m_skips = false;  // the record has an older version than these fields
};

/// Fewest bytes of an element of a list, against which its count is checked.
template <class Element>
struct OdDbStoredSize {
  static constexpr OdUInt32 kLeast = sizeof(Element);
};
template <>
struct OdDbStoredSize<OdInt32> {
  static constexpr OdUInt32 kLeast = 1;
};
template <>
struct OdDbStoredSize<OdString> {
  static constexpr OdUInt32 kLeast = 1;
};

/// Reads the binary form; fields after a failure are left alone.
class OdDbDwgFieldReader {
 public:
  explicit OdDbDwgFieldReader(OdDbDwgFiler* filer) : m_filer(filer) {}

  [[nodiscard]] OdResult result() const { return m_result; }

  void version(OdUInt8 number) { version(number, number, false); }
  void version(OdUInt8 number, OdUInt8 newest, bool) {
    m_version = m_filer->rdUInt8();
    if (m_version < number || m_version > newest) m_result = eUnsupportedVersion;
  }
  template <class T, class Reset>
  void from(OdUInt8 newest, T& object, const Reset& reset) {
    m_skips = m_version < newest;
    if (m_result == eOk && m_skips) reset(object);
  }
  template <class Rule>
  void rule(const Rule& holds) {
    if (reads() && !holds()) m_result = eCorruptData;
  }
  template <class T, class Check = OdDbAnyValue>
  void value(int, T& member, const Check& isSound = {}) {
    if (!reads()) return;
    read(member);
    if (m_result == eOk && !isSound(member)) m_result = eCorruptData;
  }
  template <class Stored, class T, class Check = OdDbAnyValue>
  void number(int, T& member, const Check& isSound = {}) {
    if (!reads()) return;
    Stored stored{};
    read(stored);
    if (!isSound(stored)) {
      m_result = eCorruptData;
      return;
    }
    member = static_cast<T>(stored);
  }
  template <OdDb::ReferenceType kType>
  void pointer(int, OdDbObjectId& id) {
    if (reads()) id = m_filer->rdId(kType);
  }
  template <OdDb::ReferenceType kType>
  void pointers(int, OdDbObjectIdArray& ids) {
    if (!reads()) return;
    ids.clear();
    for (OdUInt32 count = m_filer->rdCount(); count > 0; --count) ids.append(m_filer->rdId(kType));
  }
  template <class Array, class Check = OdDbAnyValue>
  void list(int, Array& values, OdUInt32 limit, const Check& isSound = {}) {
    if (!reads()) return;
    using Element = typename Array::value_type;
    const OdUInt32 count = m_filer->rdCount(OdDbStoredSize<Element>::kLeast);
    if (count > limit) m_result = eCorruptData;
    Array elements;
    for (OdUInt32 i = 0; i < count && m_result == eOk; ++i) {
      Element element{};
      read(element);
      if (!isSound(element)) m_result = eCorruptData;
      elements.append(element);
    }
    if (m_result == eOk) values = elements;
  }
  template <class Check = OdDbAnyValue>
  void placement(int, std::unique_ptr<OdGeMatrix3d>& matrix, const Check& isSound = {}) {
    if (m_result != eOk) return;
    matrix.reset();
    if (!m_filer->rdBool()) return;
    matrix = std::make_unique<OdGeMatrix3d>();
    for (unsigned i = 0; i < kOdDbPlacementSize; ++i)
      matrix->getElements()[i] = m_filer->rdDouble();
    if (!isSound(*matrix)) m_result = eCorruptData;
  }
  template <OdDb::ReferenceType kType>
  void ids(int, OdDbFiledIdList auto list) {
    if (m_result != eOk || !list.isFiledAtAll(m_filer)) return;
    list.clear();
    OdUInt32 count = m_filer->rdCount();
    list.reserve(count);
    for (; count > 0; --count) {
      const OdDbObjectId id = m_filer->rdId(kType);
      if (!id.isNull()) list.add(id);
    }
  }

 private:
  void read(OdString& value) { value = m_filer->rdString(); }
  void read(bool& value) { value = m_filer->rdBool(); }
  void read(OdUInt8& value) { value = m_filer->rdUInt8(); }
  void read(OdInt16& value) { value = m_filer->rdInt16(); }
  void read(OdInt32& value) { value = m_filer->rdInt32(); }
  void read(double& value) { value = m_filer->rdDouble(); }
  void read(OdGePoint2d& value) { value = m_filer->rdPoint2d(); }
  void read(OdGePoint3d& value) { value = m_filer->rdPoint3d(); }
  void read(OdGeVector3d& value) { value = m_filer->rdVector3d(); }
  void read(OdGeScale3d& value) { value = m_filer->rdScale3d(); }
  void read(OdCmEntityColor& value) { m_result = value.dwgIn(m_filer); }
  [[nodiscard]] bool reads() const { return m_result == eOk && !m_skips; }

  OdDbDwgFiler* m_filer;
  OdResult m_result = eOk;
  OdUInt8 m_version = 1;
  bool m_skips = false;  // the record has an older version than these fields
};

/// What most visitors have nothing to do for.
class OdDbIdleFields {
 public:
  void version(OdUInt8) {}
  void version(OdUInt8, OdUInt8, bool) {}
  template <class T, class Reset>
  void from(OdUInt8, T&, const Reset&) {}
  template <class Rule>
  void rule(const Rule&) {}
};

/// Writes the groups of one class, after its marker.
class OdDbDxfFieldWriter : public OdDbIdleFields {
 public:
  explicit OdDbDxfFieldWriter(OdDbDxfFiler* filer) : m_filer(filer) {}

  void version(OdUInt8) {}
  void version(OdUInt8, OdUInt8, bool isNeeded) { m_needsNewest = isNeeded; }
  template <class T, class Reset>
  void from(OdUInt8, const T&, const Reset&) {
    m_skips = !m_needsNewest;
  }
  template <class T, class Check = OdDbAnyValue>
  void value(int code, const T& member, const Check& = {}) {
    if (!m_skips) write(code, member);
  }
  template <class Stored, class T, class Check = OdDbAnyValue>
  void number(int code, const T& member, const Check& = {}) {
    if (!m_skips) write(code, static_cast<Stored>(member));
  }
  template <OdDb::ReferenceType kType>
  void pointer(int code, const OdDbObjectId& id) {
    if (!m_skips) m_filer->wrObjectId(code, id);
  }
  template <OdDb::ReferenceType kType>
  void pointers(int code, const OdDbObjectIdArray& ids) {
    for (const OdDbObjectId& id : ids) m_filer->wrObjectId(code, id);
  }
  template <class Array, class Check = OdDbAnyValue>
  void list(int code, const Array& values, OdUInt32, const Check& = {}) {
    if (m_skips) return;
    for (const auto& value : values) write(code, value);
  }
  template <class Check = OdDbAnyValue>
  void placement(int code, const std::unique_ptr<OdGeMatrix3d>& matrix, const Check& = {}) {
    for (unsigned i = 0; matrix && i < kOdDbPlacementSize; ++i) {
      m_filer->wrDouble(code + static_cast<int>(i), matrix->getElements()[i]);
    }
  }
  template <OdDb::ReferenceType>
  void ids(int code, OdDbFiledIdList auto list) {
    list.forEach([&](const OdDbObjectId& id) {
      if (!id.isErased()) m_filer->wrObjectId(code, id);
    });
  }

 private:
  void write(int code, const OdString& value) { m_filer->wrString(code, value); }
  void write(int code, bool value) { m_filer->wrBool(code, value); }
  void write(int code, OdUInt8 value) { m_filer->wrUInt8(code, value); }
  void write(int code, OdInt16 value) { m_filer->wrInt16(code, value); }
  void write(int code, OdInt32 value) { m_filer->wrInt32(code, value); }
  void write(int code, double value) { m_filer->wrDouble(code, value); }
  void write(int code, const OdCmEntityColor& value) { m_filer->wrInt32(code, value.packed()); }
  void write(int code, const OdGeScale3d& value) {
    m_filer->wrDouble(code, value.sx);
    m_filer->wrDouble(code + 1, value.sy);
    m_filer->wrDouble(code + 2, value.sz);
  }
  void write(int code, const OdGePoint2d& value) {
    m_filer->wrDouble(code, value.x);
    m_filer->wrDouble(code + 10, value.y);
  }
  template <class Triple>
  void write(int code, const Triple& value) requires requires {
    value.z;
  }
  {
    m_filer->wrDouble(code, value.x);
    m_filer->wrDouble(code + 10, value.y);
    m_filer->wrDouble(code + 20, value.z);
  }

  OdDbDxfFiler* m_filer;
  bool m_needsNewest = false;
  bool m_skips = false;  // the fields have their first values
};

/// Takes the present group of a filer into the field that has its code.
class OdDbDxfFieldReader : public OdDbIdleFields {
 public:
  OdDbDxfFieldReader(OdDbDxfFiler* filer, int code) : m_filer(filer), m_code(code) {}

  [[nodiscard]] OdResult result() const { return m_result; }

  template <class T, class Check = OdDbAnyValue>
  void value(int code, T& member, const Check& = {}) {
    read(code, member);
  }
  template <class Stored, class T, class Check = OdDbAnyValue>
  void number(int code, T& member, const Check& = {}) {
    auto stored = static_cast<Stored>(member);
    read(code, stored);
    member = static_cast<T>(stored);
  }
  template <OdDb::ReferenceType kType>
  void pointer(int code, OdDbObjectId& id) {
    if (code == m_code) id = m_filer->rdObjectId();
  }
  template <OdDb::ReferenceType kType>
  void pointers(int code, OdDbObjectIdArray& ids) {
    if (code == m_code) ids.append(m_filer->rdObjectId());
  }
  template <class Array, class Check = OdDbAnyValue>
  void list(int code, Array& values, OdUInt32 limit, const Check& = {}) {
    using Element = typename Array::value_type;
    if (code == m_code) {
      if (values.size() >= limit) m_result = eCorruptData;
      if (m_result == eOk) values.append(Element{});
    }
    // A further coordinate belongs to the point that its first one began.
    if (m_result == eOk && !values.isEmpty()) read(code, values.last());
  }
  template <class Check = OdDbAnyValue>
  void placement(int code, std::unique_ptr<OdGeMatrix3d>& matrix, const Check& = {}) {
    const int element = m_code - code;
    if (element < 0 || element >= static_cast<int>(kOdDbPlacementSize)) return;
    if (!matrix) matrix = std::make_unique<OdGeMatrix3d>();
    matrix->getElements()[element] = m_filer->rdDouble();
  }
  template <OdDb::ReferenceType>
  void ids(int code, OdDbFiledIdList auto list) {
    if (code != m_code) return;
    const OdDbObjectId id = m_filer->rdObjectId();
    if (!id.isNull()) list.add(id);
  }

 private:
  void read(int code, OdString& value) {
    if (code == m_code) value = m_filer->rdString();
  }
  void read(int code, bool& value) {
    if (code == m_code) value = m_filer->rdBool();
  }
  void read(int code, OdUInt8& value) {
    if (code == m_code) value = m_filer->rdUInt8();
  }
  void read(int code, OdInt16& value) {
    if (code == m_code) value = m_filer->rdInt16();
  }
  void read(int code, OdInt32& value) {
    if (code == m_code) value = m_filer->rdInt32();
  }
  void read(int code, double& value) {
    if (code == m_code) value = m_filer->rdDouble();
  }
  void read(int code, OdCmEntityColor& value) {
    if (code == m_code) m_result = value.setPacked(m_filer->rdInt32());
  }
  void read(int code, OdGeScale3d& value) {
    read(code, value.sx);
    read(code + 1, value.sy);
    read(code + 2, value.sz);
  }
  void read(int code, OdGePoint2d& value) {
    read(code, value.x);
    read(code + 10, value.y);
  }
  template <class Triple>
  void read(int code, Triple& value) requires requires {
    value.z;
  }
  {
    read(code, value.x);
    read(code + 10, value.y);
    read(code + 20, value.z);
  }

  OdDbDxfFiler* m_filer;
  int m_code;
  OdResult m_result = eOk;
};

/// Empties what groups add to: they come one by one.
class OdDbFieldEmptier : public OdDbIdleFields {
 public:
  template <class T, class Reset>
  void from(OdUInt8, T& object, const Reset& reset) {
    reset(object);
  }
  template <class T, class Check = OdDbAnyValue>
  void value(int, T&, const Check& = {}) {}
  template <class Stored, class T, class Check = OdDbAnyValue>
  void number(int, T&, const Check& = {}) {}
  template <OdDb::ReferenceType>
  void pointer(int, OdDbObjectId&) {}
  template <OdDb::ReferenceType>
  void pointers(int, OdDbObjectIdArray& ids) {
    ids.clear();
  }
  template <class Array, class Check = OdDbAnyValue>
  void list(int, Array& values, OdUInt32, const Check& = {}) {
    values.clear();
  }
  template <class Check = OdDbAnyValue>
  void placement(int, std::unique_ptr<OdGeMatrix3d>& matrix, const Check& = {}) {
    matrix.reset();
  }
  template <OdDb::ReferenceType>
  void ids(int, OdDbFiledIdList auto list) {
    list.clear();
  }
};

/// Checks the members as they are.
class OdDbFieldChecker : public OdDbIdleFields {
 public:
  [[nodiscard]] bool isSound() const { return m_sound; }

  template <class Rule>
  void rule(const Rule& holds) {
    m_sound = m_sound && holds();
  }
  template <class T, class Check = OdDbAnyValue>
  void value(int, const T& member, const Check& check = {}) {
    m_sound = m_sound && check(member);
  }
  template <class Stored, class T, class Check = OdDbAnyValue>
  void number(int, const T& member, const Check& check = {}) {
    m_sound = m_sound && check(static_cast<Stored>(member));
  }
  template <OdDb::ReferenceType>
  void pointer(int, const OdDbObjectId&) {}
  template <OdDb::ReferenceType>
  void pointers(int, const OdDbObjectIdArray&) {}
  template <class Array, class Check = OdDbAnyValue>
  void list(int, const Array& values, OdUInt32, const Check& check = {}) {
    for (const auto& value : values) m_sound = m_sound && check(value);
  }
  template <class Check = OdDbAnyValue>
  void placement(int, const std::unique_ptr<OdGeMatrix3d>& matrix, const Check& check = {}) {
    m_sound = m_sound && (!matrix || check(*matrix));
  }
  template <OdDb::ReferenceType>
  void ids(int, const OdDbFiledIdList auto&) {}

 private:
  bool m_sound = true;
};

/// Files the fields of a class T, after those of its base. T is a friend, as its list and its
/// members are private.
struct OdDbFieldFiling {
  static constexpr int kSubclassMarker = 100;

  template <class T>
  static void dwgOut(OdDbDwgFiler* filer, const T& object) {
    OdDbDwgFieldWriter fields(filer);
    T::fields(fields, object);
  }

  template <class T>
  [[nodiscard]] static OdResult dwgIn(OdDbDwgFiler* filer, T& object) {
    OdDbDwgFieldReader fields(filer);
    T::fields(fields, object);
    return fields.result();
  }

  template <class T>
  static void dxfOut(OdDbDxfFiler* filer, const T& object) {
    filer->wrString(kSubclassMarker, T::desc()->name());
    OdDbDxfFieldWriter fields(filer);
    T::fields(fields, object);
  }

  /// eCorruptData when the groups do not begin with the marker of T, or a value fails its check.
  template <class T>
  [[nodiscard]] static OdResult dxfIn(OdDbDxfFiler* filer, T& object) {
    if (filer->atEOF() || filer->nextItem() != kSubclassMarker ||
        filer->rdString() != T::desc()->name()) {
      return eCorruptData;
    }
    OdDbFieldEmptier emptier;
    T::fields(emptier, object);
    while (!filer->atEOF()) {
      const int code = filer->nextItem();
      if (code == kSubclassMarker) {
        filer->pushBackItem();
        break;
      }
      OdDbDxfFieldReader fields(filer, code);
      T::fields(fields, object);
      if (fields.result() != eOk) return fields.result();
    }
    OdDbFieldChecker checker;
    T::fields(checker, static_cast<const T&>(object));
    return checker.isSound() ? eOk : eCorruptData;
  }
};
