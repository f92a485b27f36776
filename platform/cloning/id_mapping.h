// Id mapping: which clone came from which object, while objects are cloned.
#pragma once

#include <memory>

#include "platform/db/db_enums.h"
#include "platform/filer/object_id.h"
#include "platform/rx/rx_macros.h"
#include "platform/rx/rx_object.h"
#include "platform/rx/smart_ptr.h"

class OdDbCloner;
class OdDbDatabase;
class OdDbIdMapping;
struct OdDbCloneState;
using OdDbIdMappingPtr = OdSmartPtr<OdDbIdMapping>;

/// One row of a mapping. A plain value.
class OdDbIdPair {
 public:
  OdDbIdPair() = default;
  explicit OdDbIdPair(const OdDbObjectId& key) : m_key(key) {}
  OdDbIdPair(const OdDbObjectId& key, const OdDbObjectId& value, bool cloned = false,
             bool primary = false, bool ownerXlated = true)
      : m_key(key),
        m_value(value),
        m_cloned(cloned),
        m_primary(primary),
        m_ownerXlated(ownerXlated) {}

  /// The source.
  [[nodiscard]] OdDbObjectId key() const { return m_key; }
  /// What stands for the source in the destination.
  [[nodiscard]] OdDbObjectId value() const { return m_value; }
  /// The value was made by cloning the key; otherwise it was there before and is only used.
  [[nodiscard]] bool isCloned() const { return m_cloned; }
  /// Cloned because it was asked for, or followed to; otherwise because its owner was cloned.
  [[nodiscard]] bool isPrimary() const { return m_primary; }
  /// The clone has its final owner.
  [[nodiscard]] bool isOwnerXlated() const { return m_ownerXlated; }

  void setKey(const OdDbObjectId& key) { m_key = key; }
  void setValue(const OdDbObjectId& value) { m_value = value; }
  void setCloned(bool cloned) { m_cloned = cloned; }
  void setPrimary(bool primary) { m_primary = primary; }
  void setOwnerXlated(bool ownerXlated) { m_ownerXlated = ownerXlated; }

 private:
  OdDbObjectId m_key;
  OdDbObjectId m_value;
  bool m_cloned = false;
  bool m_primary = false;
  bool m_ownerXlated = true;
};

/// Walks the pairs of a mapping in the order in which their keys were first assigned. Pairs that
/// are assigned during the walk are met, too; the mapping must outlive the iterator.
class OdDbIdMappingIter : public OdRxObject {
 public:
  OD_RX_DECLARE_MEMBERS(OdDbIdMappingIter)

  virtual void start() = 0;
  [[nodiscard]] virtual bool done() const = 0;
  virtual void next() = 0;
  /// The present pair. False, with `pair` unchanged, when the walk is done.
  virtual bool getMap(OdDbIdPair& pair) const = 0;
};
using OdDbIdMappingIterPtr = OdSmartPtr<OdDbIdMappingIter>;

/// Pairs of ids, and what clone hooks need to know about the operation. One mapping serves one
/// operation, or several that belong together: an object that has a pair is not cloned again, and
/// ids are translated through all pairs. Other mappings may be derived; a derived one supplies the
/// pairs, this class keeps the rest.
class OdDbIdMapping : public OdRxObject {
 public:
  OD_RX_DECLARE_MEMBERS(OdDbIdMapping)

  OdDbIdMapping();
  ~OdDbIdMapping() override;
  OdDbIdMapping(const OdDbIdMapping&) = delete;
  OdDbIdMapping& operator=(const OdDbIdMapping&) = delete;

  /// An empty mapping on a hash table. createObject() without a context gives kDcCopy.
  static OdDbIdMappingPtr createObject(OdDb::DeepCloneType context);

  /// Enters the pair; a pair with the same key is overwritten and keeps its place in the order.
  virtual void assign(const OdDbIdPair& pair) = 0;
  /// Fills `pair` by its key. False, with all but the key unchanged, when the key has no pair.
  virtual bool compute(OdDbIdPair& pair) const = 0;
  /// Overwrites the pair with this key. False, and nothing changes, when there is none.
  virtual bool change(const OdDbIdPair& pair) = 0;
  /// True when there was a pair with this key.
  virtual bool del(const OdDbObjectId& key) = 0;
  [[nodiscard]] virtual OdDbIdMappingIterPtr newIterator() = 0;

  /// Database that clones go to, and the one they come from; null before the operation begins.
  [[nodiscard]] virtual OdDbDatabase* destDb() const { return m_destDb; }
  virtual void setDestDb(OdDbDatabase* database) { m_destDb = database; }
  [[nodiscard]] virtual OdDbDatabase* origDb() const { return m_origDb; }
  virtual void setOrigDb(OdDbDatabase* database) { m_origDb = database; }
  [[nodiscard]] virtual OdDb::DeepCloneType deepCloneContext() const { return m_context; }
  [[nodiscard]] virtual OdDb::DuplicateRecordCloning duplicateRecordCloning() const {
    return m_drc;
  }
  virtual void setDuplicateRecordCloning(OdDb::DuplicateRecordCloning drc) { m_drc = drc; }
  /// Block of an external reference that is being bound or inserted; null otherwise.
  [[nodiscard]] virtual OdDbObjectId insertingXrefBlockId() const { return m_xrefBlock; }
  virtual void setInsertingXrefBlockId(const OdDbObjectId& block) { m_xrefBlock = block; }

 protected:
  void setDeepCloneContext(OdDb::DeepCloneType context) { m_context = context; }

 private:
  friend class OdDbCloner;

  OdDbDatabase* m_destDb = nullptr;
  OdDbDatabase* m_origDb = nullptr;
  OdDb::DeepCloneType m_context = OdDb::kDcCopy;
  OdDb::DuplicateRecordCloning m_drc = OdDb::kDrcNotApplicable;
  OdDbObjectId m_xrefBlock;
  std::unique_ptr<OdDbCloneState> m_cloneState;  // of the operation that runs, or waits for ids
};
