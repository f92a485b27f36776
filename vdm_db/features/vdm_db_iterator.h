// VdmDbIterator: walks the objects of a list of ids that open as a class.
#pragma once

#include <memory>
#include <utility>

#include "platform/db/db_object.h"
#include "platform/rx/smart_ptr.h"
#include "vdm_db/common/vdm_db_export.h"

/// Index and list of an iterator. The list is looked at as it is at each step: what is appended
/// during the walk is met, and what is taken out shifts the rest.
class VDM_DB_EXPORT VdmDbIteratorBase {
 public:
  /// What is walked. Keeps its owner alive.
  class VDM_DB_EXPORT DataSource {
   public:
    virtual ~DataSource();
    [[nodiscard]] virtual OdUInt32 size() const = 0;
    /// Raises OdError_InvalidIndex past the end.
    [[nodiscard]] virtual OdDbObjectId at(OdUInt32 index) const = 0;
    [[nodiscard]] virtual std::unique_ptr<DataSource> clone() const = 0;
  };

  VdmDbIteratorBase(const VdmDbIteratorBase& other);
  VdmDbIteratorBase(VdmDbIteratorBase&& other) noexcept;
  VdmDbIteratorBase& operator=(const VdmDbIteratorBase& other);
  VdmDbIteratorBase& operator=(VdmDbIteratorBase&& other) noexcept;
  virtual ~VdmDbIteratorBase();

  [[nodiscard]] bool done() const;
  /// Nothing happens when the walk is done.
  void next();
  /// Back to the first object.
  void start();
  /// Raises OdError_InvalidIndex when the walk is done.
  [[nodiscard]] OdDbObjectId objectId() const;

 protected:
  explicit VdmDbIteratorBase(std::unique_ptr<DataSource> source);

  [[nodiscard]] virtual bool opens(const OdDbObjectId& id) const = 0;
  void skipForeign();

 private:
  OdUInt32 m_index = 0;
  std::unique_ptr<DataSource> m_source;
};

/// Objects that do not open as a T, erased ones among them, are skipped.
template <class T>
class VdmDbIterator final : public VdmDbIteratorBase {
 public:
  explicit VdmDbIterator(std::unique_ptr<DataSource> source)
      : VdmDbIteratorBase(std::move(source)) {
    skipForeign();
  }

  /// Null when the walk is done or the object does not open in that mode.
  [[nodiscard]] OdSmartPtr<T> object(OdDb::OpenMode mode = OdDb::kForRead) const {
    if (done()) return OdSmartPtr<T>();
    return objectId().template openAs<T>(mode);
  }

 protected:
  [[nodiscard]] bool opens(const OdDbObjectId& id) const override {
    return !id.openAs<T>().isNull();
  }
};
