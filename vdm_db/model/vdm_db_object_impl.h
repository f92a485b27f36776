// VdmDbObjectImpl: the state of a model object. For its own sources.
#pragma once

#include "platform/base/string.h"
#include "platform/ge/matrix3d.h"
#include "vdm_db/model/vdm_dependency_paths.h"
#include "vdm_db/properties/vdm_db_properties_base.h"
#include "vdm_db/references/vdm_index_map.h"
#include "vdm_db/references/vdm_indexed_ids.h"

/// Owned by the VdmDbObject, whose members check access and record undo before they change it.
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
