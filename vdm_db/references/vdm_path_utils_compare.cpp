// Comparing and formatting of ids and subentity paths.
//
// There are two orders of ids. The plain one follows the ids themselves, which differ from run to
// run. The stable one follows handles, and databases only where handles are equal; results that are
// shown or filed use it. Arrays compare first by their length, then by the first place that
// differs: the order is total and costs at most one walk; arrays that share a buffer are equal at
// once.
//
// Arrays of paths are compared as sets. Each is sorted by the stable order as pointers to its
// paths, with repeated ones dropped, after which equality is one walk and a look-up one binary
// search: n log n in all instead of the square that comparing all pairs would take.
#include <algorithm>
#include <vector>

#include "vdm_db/references/vdm_path_utils.h"
#include "vdm_db/references/vdm_subent_letters.h"

namespace {

template <class T>
VdmCmpRes compareValues(const T& a, const T& b) {
  return a < b ? kVdmLess : b < a ? kVdmGreater : kVdmEqual;
}

template <class Compare>
VdmCmpRes compareArrays(const OdDbObjectIdArray& a, const OdDbObjectIdArray& b, Compare compare) {
  if (a.size() != b.size()) return compareValues(a.size(), b.size());
  if (a.asArrayPtr() == b.asArrayPtr()) return kVdmEqual;  // one buffer
  for (OdUInt32 i = 0; i < a.size(); ++i) {
    if (const VdmCmpRes order = compare(a[i], b[i]); order != kVdmEqual) return order;
  }
  return kVdmEqual;
}

/// The paths of an array in their order, each once.
class SortedPaths {
 public:
  explicit SortedPaths(const OdDbFullSubentPathArray& paths) {
    m_paths.reserve(paths.size());
    for (const OdDbFullSubentPath& path : paths) m_paths.push_back(&path);
    std::sort(m_paths.begin(), m_paths.end(), less);
    m_paths.erase(std::unique(m_paths.begin(), m_paths.end(), equal), m_paths.end());
  }
  [[nodiscard]] bool has(const OdDbFullSubentPath& path) const {
    return std::binary_search(m_paths.begin(), m_paths.end(), &path, less);
  }
  [[nodiscard]] bool sameAs(const SortedPaths& other) const {
    return std::equal(m_paths.begin(), m_paths.end(), other.m_paths.begin(), other.m_paths.end(),
                      equal);
  }

 private:
  static bool less(const OdDbFullSubentPath* a, const OdDbFullSubentPath* b) {
    return vdmu::compareFullSubentPathStable(*a, *b) == kVdmLess;
  }
  static bool equal(const OdDbFullSubentPath* a, const OdDbFullSubentPath* b) {
    return vdmu::isEqualFullSubentPath(*a, *b);
  }

  std::vector<const OdDbFullSubentPath*> m_paths;
};

}  // namespace

namespace vdmu {

VdmCmpRes compareObjectIdStable(const OdDbObjectId& a, const OdDbObjectId& b) {
  const VdmCmpRes order = compareValues<OdUInt64>(a.getHandle(), b.getHandle());
  if (order != kVdmEqual || a.database() == b.database()) return order;
  return compareValues(a, b);
}

VdmCmpRes compareObjectIdArray(const OdDbObjectIdArray& a, const OdDbObjectIdArray& b) {
  return compareArrays(a, b, compareValues<OdDbObjectId>);
}

VdmCmpRes compareObjectIdArrayStable(const OdDbObjectIdArray& a, const OdDbObjectIdArray& b) {
  return compareArrays(a, b, compareObjectIdStable);
}

VdmCmpRes compareSubentId(const OdDbSubentId& a, const OdDbSubentId& b) {
  const VdmCmpRes order =
      compareValues(static_cast<OdInt32>(a.type()), static_cast<OdInt32>(b.type()));
  return order != kVdmEqual ? order : compareValues<OdInt64>(a.index(), b.index());
}

VdmCmpRes compareFullSubentPathStable(const OdDbFullSubentPath& a, const OdDbFullSubentPath& b) {
  const VdmCmpRes order = compareObjectIdArrayStable(a.objectIds(), b.objectIds());
  return order != kVdmEqual ? order : compareSubentId(a.subentId(), b.subentId());
}

VdmCmpRes compareExtendedPath(const VdmExtendedPath& a, const VdmExtendedPath& b) {
  if (a.isDefaultGeometry) {
    return b.isDefaultGeometry ? compareValues(a.defaultGeometry, b.defaultGeometry) : kVdmLess;
  }
  return b.isDefaultGeometry ? kVdmGreater : compareFullSubentPathStable(a.path, b.path);
}

bool isEqualObjectIdArray(const OdDbObjectIdArray& a, const OdDbObjectIdArray& b) {
  return compareObjectIdArray(a, b) == kVdmEqual;
}

bool isEqualFullSubentPath(const OdDbFullSubentPath& a, const OdDbFullSubentPath& b) {
  return compareFullSubentPathStable(a, b) == kVdmEqual;
}

bool isEqualFullSubentPathArray(const OdDbFullSubentPathArray& a,
                                const OdDbFullSubentPathArray& b) {
  if (a.size() != b.size()) return false;
  if (a.size() == 1) return isEqualFullSubentPath(a[0], b[0]);
  return SortedPaths(a).sameAs(SortedPaths(b));
}

bool findCommonFullSubentPath(const OdDbFullSubentPathArray& a, const OdDbFullSubentPathArray& b,
                              OdDbFullSubentPath& result) {
  const OdDbFullSubentPathArray& shorter = b.size() < a.size() ? b : a;
  if (shorter.isEmpty()) return false;
  const SortedPaths longer(&shorter == &a ? b : a);
  for (const OdDbFullSubentPath& path : shorter) {
    if (!longer.has(path)) continue;
    result = OdDbFullSubentPath(path);
    return true;
  }
  return false;
}

OdString strSubentId(const OdDbSubentId& subent) {
  OdString text;
  text.format(L"%c_%lld", vdmSubentLetterOr(subent.type(), '0'),
              static_cast<long long>(subent.index()));
  return text;
}

OdString strObjectIdArray(const OdDbObjectIdArray& ids, bool markErased) {
  OdString text;
  for (const OdDbObjectId& id : ids) {
    if (!text.isEmpty()) text += L',';
    text += id.getHandle().ascii();
    if (markErased && id.isErased()) text += L"(erased)";
  }
  return text;
}

OdString formatFullSubentPath(const OdDbFullSubentPath& path, bool markErased) {
  OdString text = L"0x" + strObjectIdArray(path.objectIds(), markErased);
  if (isSubentPath(path)) text += L":" + strSubentId(path.subentId());
  return text;
}

OdString strFullSubentPathArray(const OdDbFullSubentPathArray& paths) {
  if (paths.isEmpty()) return OdString(L"empty");
  OdString text;
  for (const OdDbFullSubentPath& path : paths) {
    text += formatFullSubentPath(path, /*markErased=*/false);
    text += L' ';
  }
  return text;
}

}  // namespace vdmu
