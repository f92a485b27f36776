// VdmDbObjectImpl: the state of a model object. For its own sources.
#pragma once

#include <unordered_map>

#include "platform/base/string.h"
#include "platform/db/subent.h"
#include "platform/ge/matrix3d.h"
#include "vdm_db/properties/vdm_db_properties_base.h"
#include "vdm_db/references/vdm_index_map.h"
#include "vdm_db/references/vdm_indexed_ids.h"
#include "vdm_db/references/vdm_path_hash.h"

/// Dependencies by the paths that they stand at, the first of equal ones. A look-up that finds
/// nothing reads all paths again when a dependency of some drawing was moved meanwhile; one that
/// finds something checks it.
class VdmDependencyPaths {
 public:
  /// The first of `ids` that stands at the path; null without one.
  OdDbObjectId find(const OdDbFullSubentPath& path, const OdDbObjectIdArray& ids);
  /// Were appended to the ids; kept in step as long as the paths are.
  void added(const OdDbObjectIdArray& ids);
  void invalidate() { m_isBuilt = false; }

 private:
  void build(const OdDbObjectIdArray& ids);
  void enter(const OdDbObjectId& id);
  OdDbObjectId lookUp(const OdDbFullSubentPath& path) const;
  [[nodiscard]] bool hasOneComeBack() const;

  std::unordered_map<OdDbFullSubentPath, OdDbObjectId, VdmPathHash> m_ids;
  OdDbObjectIdArray m_erased;  // when the paths were read; undo may bring them back
  OdUInt64 m_generation = 0;
  bool m_isBuilt = false;
};

class VdmDbObjectImpl : public VdmDbPropertiesBase {
 public:
  VdmDbObjectImpl();

  // Filed, in this order.
  VdmIndexedIds constraintDependencies;
  OdDbObjectId attachedEntity;
  VdmIndexMap attributes;
  // Filed with the properties.
  OdString name;
  VdmIndexedIds persIdDependencies;
  // Filed for undo and paging.
  OdGeMatrix3d transform;
  bool isTransformOpen = true;
  // Not filed.
  bool notifies = true;
  VdmDependencyPaths constraintPaths;
  VdmDependencyPaths persIdPaths;
  OdDbObjectId lastDependency;  // found by path last

  OdResult dwgInFields(OdDbDwgFiler* filer) override;
  void dwgOutFields(OdDbDwgFiler* filer) const override;

  void writeTransform(OdDbDwgFiler* filer, bool isOpen) const;
  void readTransform(OdDbDwgFiler* filer);

 private:
  void mapMembers();
  OdResult readProperties(OdDbDwgFiler* filer, OdUInt8 version);
  void listsReplaced();
};
