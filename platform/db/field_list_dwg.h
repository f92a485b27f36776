// The visitors of field lists that write and read the binary form; see field_list.h.
#pragma once

#include <memory>

#include "platform/base/array.h"
#include "platform/base/result.h"
#include "platform/db/field_visitor.h"
#include "platform/ge/matrix3d.h"
#include "platform/ge/point2d.h"
#include "platform/ge/point3d.h"
#include "platform/ge/scale3d.h"
#include "platform/ge/vector3d.h"
#include "platform/gi/entity_color.h"

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
