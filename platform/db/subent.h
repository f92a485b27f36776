// Subentities of an entity and the paths that lead to them.
#pragma once

#include "platform/base/array.h"
#include "platform/base/types.h"
#include "platform/db/db_enums.h"
#include "platform/filer/object_id.h"
#include "platform/gi/selection_marker.h"

/// A face, edge or vertex by number. Index 0 with type null is the whole entity.
class OdDbSubentId {
 public:
  OdDbSubentId() = default;
  OdDbSubentId(OdDb::SubentType type, OdGsMarker index) : m_type(type), m_index(index) {}

  [[nodiscard]] OdDb::SubentType type() const { return m_type; }
  void setType(OdDb::SubentType type) { m_type = type; }
  [[nodiscard]] OdGsMarker index() const { return m_index; }
  void setIndex(OdGsMarker index) { m_index = index; }

  friend bool operator==(const OdDbSubentId& a, const OdDbSubentId& b) {
    return a.m_type == b.m_type && a.m_index == b.m_index;
  }
  friend bool operator!=(const OdDbSubentId& a, const OdDbSubentId& b) { return !(a == b); }

 private:
  OdDb::SubentType m_type = OdDb::kNullSubentType;
  OdGsMarker m_index = 0;
};

/// Ids from the outermost block reference down to the entity, and a subentity of that entity.
class OdDbFullSubentPath {
 public:
  OdDbFullSubentPath() = default;
  OdDbFullSubentPath(OdDb::SubentType type, OdGsMarker index) : m_subent(type, index) {}
  OdDbFullSubentPath(const OdDbObjectId& entity, const OdDbSubentId& subent) : m_subent(subent) {
    m_ids.append(entity);
  }
  OdDbFullSubentPath(const OdDbObjectIdArray& ids, const OdDbSubentId& subent)
      : m_ids(ids), m_subent(subent) {}

  [[nodiscard]] OdDbObjectIdArray& objectIds() { return m_ids; }
  [[nodiscard]] const OdDbObjectIdArray& objectIds() const { return m_ids; }
  [[nodiscard]] OdDbSubentId& subentId() { return m_subent; }
  [[nodiscard]] const OdDbSubentId& subentId() const { return m_subent; }

  friend bool operator==(const OdDbFullSubentPath& a, const OdDbFullSubentPath& b) {
    return a.m_subent == b.m_subent && a.m_ids == b.m_ids;
  }
  friend bool operator!=(const OdDbFullSubentPath& a, const OdDbFullSubentPath& b) {
    return !(a == b);
  }

 private:
  OdDbObjectIdArray m_ids;
  OdDbSubentId m_subent;
};

using OdDbFullSubentPathArray = OdArray<OdDbFullSubentPath>;
