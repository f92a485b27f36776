// Object ids: one pointer to the small record that a database keeps for each of its objects.
#pragma once

#include <cstdint>
#include <functional>

#include "platform/base/array.h"
#include "platform/base/handle.h"
#include "platform/base/types.h"

class OdDbDatabase;
class OdDbObject;
class OdRxClass;
template <class T>
class OdSmartPtr;

namespace OdDb {

enum OpenMode { kNotOpen = -1, kForRead = 0, kForWrite = 1, kForNotify = 2 };

/// How a filed id refers to its object. The numbers are stored.
enum ReferenceType {
  kSoftPointerRef = 0,
  kHardPointerRef = 1,
  kSoftOwnershipRef = 2,
  kHardOwnershipRef = 3,
};

}  // namespace OdDb

/// The record behind an id. Owned by the database's id table, stable for the database's life, and
/// read and written only by the runtime itself.
struct OdDbIdRecord {
  enum Flags : OdUInt32 {
    kErased = 1u << 0,       ///< erased, or its creation was undone
    kUnappended = 1u << 1,   ///< its creation was undone; only redo brings it back
    kHeaderKnown = 1u << 2,  ///< owner and class are valid
    kInFile = 1u << 3,       ///< the drawing file holds a record of it
    kDirty = 1u << 4,        ///< differs from the file; is in the database's dirty list
    kAbsent = 1u << 5,       ///< asked for, and found neither in memory nor in the file
    kRedirected = 1u << 6,   ///< `owner` is the id that replaces this one
    kLoading = 1u << 7,      ///< its record is being read
    kInFlux = 1u << 8,       ///< its ids are being translated by a clone
    kUnloadable = 1u << 9,   ///< its record is damaged; reported once
  };

  OdUInt64 handle = 0;
  OdDbDatabase* database = nullptr;
  OdDbIdRecord* owner = nullptr;
  OdRxClass* objectClass = nullptr;
  OdDbObject* object = nullptr;
  OdUInt32 flags = 0;
  OdUInt32 undoStep = 0;  ///< the recording span in which its state was last saved for undo

  [[nodiscard]] bool has(OdUInt32 mask) const { return (flags & mask) != 0; }
  void set(OdUInt32 mask) { flags |= mask; }
  void clear(OdUInt32 mask) { flags &= ~mask; }
};
static_assert(sizeof(OdDbIdRecord) == 48, "six words an object");

/// Pointer-sized id of an object in a database. Valid as long as the database lives. Asking for
/// class, owner, handle or the erased flag never loads the object. The order is that of the
/// records in memory: good for containers, not for anything stored.
class OdDbObjectId {
 public:
  static const OdDbObjectId kNull;

  constexpr OdDbObjectId() = default;
  constexpr explicit OdDbObjectId(OdDbIdRecord* idRecord) : m_idRecord(idRecord) {}
  constexpr OdDbObjectId(std::nullptr_t) {}  // NOLINT: null ids are written as nullptr

  [[nodiscard]] bool isNull() const { return m_idRecord == nullptr; }
  explicit operator bool() const { return m_idRecord != nullptr; }
  void setNull() { m_idRecord = nullptr; }
  /// Not null and naming an object that exists, erased or not.
  [[nodiscard]] bool isValid() const;
  /// True for null ids, for erased objects and for ids of objects that do not exist.
  [[nodiscard]] bool isErased() const;
  /// The object itself or one of its owners is erased.
  [[nodiscard]] bool isEffectivelyErased() const;
  [[nodiscard]] bool isResident() const {
    return m_idRecord != nullptr && m_idRecord->object != nullptr;
  }

  [[nodiscard]] OdDbHandle getHandle() const {
    return m_idRecord == nullptr ? OdDbHandle() : OdDbHandle(m_idRecord->handle);
  }
  /// Database of the object that the id refers to, redirection followed; null for a null id.
  [[nodiscard]] OdDbDatabase* database() const;
  /// Database in which the id was given out.
  [[nodiscard]] OdDbDatabase* originalDatabase() const {
    return m_idRecord == nullptr ? nullptr : m_idRecord->database;
  }
  /// Class of the object, `OdDbProxyObject`'s where it is not registered; null when absent.
  [[nodiscard]] OdRxClass* objectClass() const;
  [[nodiscard]] OdDbObjectId ownerId() const;
  /// Replaces the id by the one that it is redirected to. True when there was one.
  bool convertToRedirectedId();

  /// Opens the object; the pointer closes it with its last reference. Null when the id is null,
  /// absent, erased (unless `openErased`), damaged, or when the mode conflicts with an open one.
  [[nodiscard]] OdSmartPtr<OdDbObject> openObject(OdDb::OpenMode mode = OdDb::kForRead,
                                                  bool openErased = false) const;
  /// The same, and raises OdError (eNullObjectId, eWasErased, eUnknownHandle, ...) instead.
  [[nodiscard]] OdSmartPtr<OdDbObject> safeOpenObject(OdDb::OpenMode mode = OdDb::kForRead,
                                                      bool openErased = false) const;

  /// Opens the object as a T; null also when it is of another class.
  template <class T>
  [[nodiscard]] OdSmartPtr<T> openAs(OdDb::OpenMode mode = OdDb::kForRead,
                                     bool openErased = false) const;
  /// The same, and raises OdError instead: eNotThatKindOfClass for another class.
  template <class T>
  [[nodiscard]] OdSmartPtr<T> safeOpenAs(OdDb::OpenMode mode = OdDb::kForRead,
                                         bool openErased = false) const;

  friend bool operator==(OdDbObjectId a, OdDbObjectId b) { return a.m_idRecord == b.m_idRecord; }
  friend bool operator!=(OdDbObjectId a, OdDbObjectId b) { return a.m_idRecord != b.m_idRecord; }
  friend bool operator<(OdDbObjectId a, OdDbObjectId b) {
    return std::less<const OdDbIdRecord*>()(a.m_idRecord, b.m_idRecord);
  }
  friend bool operator>(OdDbObjectId a, OdDbObjectId b) { return b < a; }
  friend bool operator<=(OdDbObjectId a, OdDbObjectId b) { return !(b < a); }
  friend bool operator>=(OdDbObjectId a, OdDbObjectId b) { return !(a < b); }

  /// The record itself, for the runtime.
  [[nodiscard]] OdDbIdRecord* idRecord() const { return m_idRecord; }

 private:
  OdDbIdRecord* m_idRecord = nullptr;
};

inline constexpr OdDbObjectId OdDbObjectId::kNull{};

using OdDbObjectIdArray = OdArray<OdDbObjectId>;

template <>
struct std::hash<OdDbObjectId> {
  std::size_t operator()(OdDbObjectId id) const noexcept {
    return std::hash<const void*>()(id.idRecord());
  }
};
