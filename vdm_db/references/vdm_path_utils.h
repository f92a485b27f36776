// Comparing, testing, resolving and formatting of ids and subentity paths.
#pragma once

#include "platform/base/array.h"
#include "platform/base/handle.h"
#include "platform/base/string.h"
#include "platform/db/subent.h"
#include "platform/filer/object_id.h"
#include "vdm_db/common/vdm_db_export.h"
#include "vdm_db/references/vdm_extended_path.h"

namespace vdmu {

// ---- Comparing. Total orders; null ids compare like others. "Stable" ones do not depend on where
// objects lie in memory, except for ids of equal handle in different drawings.

/// By handle. Equal handles of one drawing are equal; of two drawings they go by the ids' own
/// order.
[[nodiscard]] VDM_DB_EXPORT VdmCmpRes compareObjectIdStable(const OdDbObjectId& a,
                                                            const OdDbObjectId& b);
/// Shorter arrays come first, then the first difference decides by the ids' own order.
[[nodiscard]] VDM_DB_EXPORT VdmCmpRes compareObjectIdArray(const OdDbObjectIdArray& a,
                                                           const OdDbObjectIdArray& b);
/// The same by compareObjectIdStable.
[[nodiscard]] VDM_DB_EXPORT VdmCmpRes compareObjectIdArrayStable(const OdDbObjectIdArray& a,
                                                                 const OdDbObjectIdArray& b);
/// By type, then by index.
[[nodiscard]] VDM_DB_EXPORT VdmCmpRes compareSubentId(const OdDbSubentId& a, const OdDbSubentId& b);
/// The ids by compareObjectIdArrayStable, then the subentity.
[[nodiscard]] VDM_DB_EXPORT VdmCmpRes compareFullSubentPathStable(const OdDbFullSubentPath& a,
                                                                  const OdDbFullSubentPath& b);
/// Default geometry comes first, by its number alone; paths go by compareFullSubentPathStable.
[[nodiscard]] VDM_DB_EXPORT VdmCmpRes compareExtendedPath(const VdmExtendedPath& a,
                                                          const VdmExtendedPath& b);

/// Orders for containers.
struct ObjectIdLess {
  bool operator()(const OdDbObjectId& a, const OdDbObjectId& b) const {
    return compareObjectIdStable(a, b) == kVdmLess;
  }
};
struct SubentIdLess {
  bool operator()(const OdDbSubentId& a, const OdDbSubentId& b) const {
    return compareSubentId(a, b) == kVdmLess;
  }
};
struct FullSubentPathLess {
  bool operator()(const OdDbFullSubentPath& a, const OdDbFullSubentPath& b) const {
    return compareFullSubentPathStable(a, b) == kVdmLess;
  }
};

/// compareObjectIdArray gives 0.
[[nodiscard]] VDM_DB_EXPORT bool isEqualObjectIdArray(const OdDbObjectIdArray& a,
                                                      const OdDbObjectIdArray& b);
/// compareFullSubentPathStable gives 0.
[[nodiscard]] VDM_DB_EXPORT bool isEqualFullSubentPath(const OdDbFullSubentPath& a,
                                                       const OdDbFullSubentPath& b);
/// Of one size, and every path of each is in the other, in whatever order. How often a path is
/// repeated has no influence.
[[nodiscard]] VDM_DB_EXPORT bool isEqualFullSubentPathArray(const OdDbFullSubentPathArray& a,
                                                            const OdDbFullSubentPathArray& b);
/// The first path of the shorter array (of `a` when they are of one size) that the other one has,
/// too. False, with `result` unchanged, when there is none.
VDM_DB_EXPORT bool findCommonFullSubentPath(const OdDbFullSubentPathArray& a,
                                            const OdDbFullSubentPathArray& b,
                                            OdDbFullSubentPath& result);

// ---- Testing.

/// First id of the path, null when there is none.
[[nodiscard]] VDM_DB_EXPORT OdDbObjectId getInsertId(const OdDbFullSubentPath& path);
/// Last id of the path, null when there is none.
[[nodiscard]] VDM_DB_EXPORT OdDbObjectId getLeafId(const OdDbFullSubentPath& path);
/// Exactly one id.
[[nodiscard]] VDM_DB_EXPORT bool isSimplePath(const OdDbFullSubentPath& path);
/// More than one id.
[[nodiscard]] VDM_DB_EXPORT bool isLongPath(const OdDbFullSubentPath& path);
/// The path leads to a subentity.
[[nodiscard]] VDM_DB_EXPORT bool isSubentPath(const OdDbFullSubentPath& path);
[[nodiscard]] VDM_DB_EXPORT bool isSubentId(const OdDbSubentId& subent);
/// No ids, or a null first one.
[[nodiscard]] VDM_DB_EXPORT bool isNullObjectLink(const OdDbFullSubentPath& path);

/// Whether the ids lead from one block to the next down to an entity: each but the last is a block
/// reference, and the next one lies in the block that it shows; for an external reference that is
/// the model space of the external drawing. Erased elements count only with `allowErased`. External
/// references are not opened for it.
[[nodiscard]] VDM_DB_EXPORT bool isValidObjectIdPath(const OdArray<OdDbObjectId>& ids,
                                                     bool allowErased);
/// A valid path whose entity has the subentity; one without a subentity leads to the whole entity.
[[nodiscard]] VDM_DB_EXPORT bool doesPathExist(const OdDbFullSubentPath& path,
                                               bool allowErased = false);

// ---- Resolving.

/// Appends the ids of `handles` to `ids`, which holds the beginning of the path: each handle is
/// looked up in the drawing that the block reference before it shows, its own or an external one.
/// An external reference that is not open yet is opened. On failure `ids` keeps what was resolved.
///
///   ePathOk                every handle was found
///   ePathXrefUnreferenced  a step goes through an external reference in that state
///   ePathInvalid           `ids` was empty, or a handle leads to nothing; a step through anything
///                          else than an open block or drawing is reported as an assertion, too
VDM_DB_EXPORT EVdmPathRes makeIdArray(const OdArray<OdDbHandle>& handles,
                                      OdArray<OdDbObjectId>& ids, bool openErased);

// ---- Formatting, for dumps and messages. Numbers are upper-case hexadecimal.

/// "f_12": f for a face, e for an edge, v for a vertex, 0 for anything else; then the index.
[[nodiscard]] VDM_DB_EXPORT OdString strSubentId(const OdDbSubentId& subent);
/// The handles, separated by commas. With `markErased` those of erased and null ids are followed by
/// "(erased)".
[[nodiscard]] VDM_DB_EXPORT OdString strObjectIdArray(const OdDbObjectIdArray& ids,
                                                      bool markErased);
/// "0x2A,2F:f_12": "0x" and the ids as above, then ":" and the subentity unless it is null.
[[nodiscard]] VDM_DB_EXPORT OdString formatFullSubentPath(const OdDbFullSubentPath& path,
                                                          bool markErased);
/// Each path in that form, without marks, followed by " "; "empty" when there are none.
[[nodiscard]] VDM_DB_EXPORT OdString strFullSubentPathArray(const OdDbFullSubentPathArray& paths);

}  // namespace vdmu
