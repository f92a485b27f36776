// VdmDependencyPaths: the dependencies of a model object by their paths.
#pragma once

#include <unordered_map>

#include "platform/db/subent.h"
#include "platform/filer/object_id.h"
#include "vdm_db/references/vdm_path_hash.h"

/// The dependencies of one list of a model object by the paths that they refer to; of several on
/// one path it keeps the first. It holds ids only, is owned by the state of the model object and is
/// never filed. It is filled when it is first asked. find() fills it again when a dependency of any
/// drawing has moved since, when an external drawing was loaded or closed, when the id that it
/// found was erased, and when it found nothing and undo has brought back a dependency that was
/// erased at the last filling.
class VdmDependencyPaths {
 public:
  /// The first of `ids` that refers to the path; null without one.
  OdDbObjectId find(const OdDbFullSubentPath& path, const OdDbObjectIdArray& ids);
  /// The ids were appended to the list. Nothing happens before the first find().
  void added(const OdDbObjectIdArray& ids);
  void invalidate() { m_isBuilt = false; }

 private:
  void build(const OdDbObjectIdArray& ids);
  void enter(const OdDbObjectId& id);
  OdDbObjectId lookUp(const OdDbFullSubentPath& path) const;
  [[nodiscard]] bool isCurrent() const;
  [[nodiscard]] bool hasOneComeBack() const;

  std::unordered_map<OdDbFullSubentPath, OdDbObjectId, VdmPathHash> m_ids;
  OdDbObjectIdArray m_erased;  // when the paths were read; undo may bring them back
  OdUInt64 m_linkGeneration = 0;
  OdUInt64 m_xrefGeneration = 0;
  bool m_isBuilt = false;
};
