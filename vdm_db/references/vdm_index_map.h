// VdmIndexMap: lists of numbers for the subentities of one entity.
#pragma once

#include <map>
#include <vector>

#include "platform/base/types.h"
#include "platform/db/subent.h"
#include "vdm_db/common/vdm_db_export.h"
#include "vdm_db/references/vdm_path_utils.h"

class OdDbDwgFiler;

/// A plain value. What the numbers mean is the owner's concern. Entries are in the order of their
/// subentities: by type, then by index.
class VDM_DB_EXPORT VdmIndexMap {
 public:
  using Map = std::map<OdDbSubentId, std::vector<int>, vdmu::SubentIdLess>;
  using const_iterator = Map::const_iterator;

  [[nodiscard]] bool isEmpty() const { return m_map.empty(); }
  [[nodiscard]] std::size_t size() const { return m_map.size(); }
  /// First number of the list of the path's subentity; 0 without an entry and for an empty list.
  /// The ids of the path have no influence.
  [[nodiscard]] int getIdx(const OdDbFullSubentPath& path) const;
  /// Null without an entry; valid until the entry is changed.
  [[nodiscard]] const std::vector<int>* find(const OdDbSubentId& subent) const;
  [[nodiscard]] const_iterator begin() const { return m_map.begin(); }
  [[nodiscard]] const_iterator end() const { return m_map.end(); }

  /// Adds or replaces an entry.
  void set(const OdDbSubentId& subent, std::vector<int> numbers);
  /// True when there was an entry.
  bool remove(const OdDbSubentId& subent) { return m_map.erase(subent) != 0; }
  void clear() { m_map.clear(); }

  void dwgOutFields(OdDbDwgFiler* filer) const;
  /// Replaces the map. Raises OdError eCorruptData or eEndOfStream for counts that cannot be; the
  /// map is empty then.
  void dwgInFields(OdDbDwgFiler* filer);

  friend bool operator==(const VdmIndexMap& a, const VdmIndexMap& b) { return a.m_map == b.m_map; }

 private:
  Map m_map;
};
