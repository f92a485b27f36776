// Guards of the runtime's own access to objects and their id records.
#pragma once

#include "platform/base/non_copyable.h"
#include "platform/db/db_object.h"
#include "platform/filer/object_id.h"

/// While it lives the runtime itself fills the object: writes are accepted without an open, nothing
/// is recorded and no reactor is called. Puts the flags of the object back as they were, so that
/// what the object marks meanwhile has no effect either.
class OdDbInternalWrite : OdNonCopyable {
 public:
  explicit OdDbInternalWrite(OdDbObject* object) : m_object(object), m_bits(object->m_bits) {
    object->m_bits |= OdDbObject::kBitInternalWrite;
  }
  ~OdDbInternalWrite() { m_object->m_bits = m_bits; }

 private:
  OdDbObject* m_object;
  OdUInt16 m_bits;
};

/// While it lives the object is readable and stays in memory. Unlike the last smart pointer of an
/// object, its end neither closes nor deletes.
class OdDbInternalRead : OdNonCopyable {
 public:
  explicit OdDbInternalRead(OdDbObject* object) : m_object(object) { ++object->m_refs; }
  ~OdDbInternalRead() { --m_object->m_refs; }

 private:
  OdDbObject* m_object;
};

/// Sets a flag that was clear, and clears it at the end of the scope.
class OdDbBusyMark : OdNonCopyable {
 public:
  explicit OdDbBusyMark(bool& flag) : m_flag(flag) { m_flag = true; }
  ~OdDbBusyMark() { m_flag = false; }

 private:
  bool& m_flag;
};

/// The record of an id is being read.
class OdDbLoadingMark : OdNonCopyable {
 public:
  explicit OdDbLoadingMark(OdDbIdRecord* idRecord) : m_idRecord(idRecord) {
    idRecord->set(OdDbIdRecord::kLoading);
  }
  ~OdDbLoadingMark() { m_idRecord->clear(OdDbIdRecord::kLoading); }

 private:
  OdDbIdRecord* m_idRecord;
};
