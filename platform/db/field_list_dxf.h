// The visitors of field lists that write and read groups; see field_list.h.
#pragma once

#include <memory>

#include "platform/base/array.h"
#include "platform/base/result.h"
#include "platform/db/field_visitor.h"
#include "platform/filer/dxf_filer.h"
#include "platform/ge/matrix3d.h"
#include "platform/ge/point2d.h"
#include "platform/ge/point3d.h"
#include "platform/ge/scale3d.h"
#include "platform/ge/vector3d.h"
#include "platform/gi/entity_color.h"

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
