// VdmDbFeatureManagerImpl: the state of a feature manager. For its own sources.
#pragma once

#include <memory>

#include "vdm_db/features/vdm_feature_index.h"
#include "vdm_db/features/vdm_resident_classes.h"
#include "vdm_db/model/vdm_bag_with_ids.h"
#include "vdm_db/properties/vdm_db_properties_base.h"
#include "vdm_db/references/vdm_indexed_ids.h"

/// A bag of version 1 that drops erased ids on save. "Features", "SheetMetalContext" and
/// "ColorPolicy" are mapped, all by hard ownership; "needEvaluate" is a boolean that is present
/// only while a feature waits.
class VdmDbFeatureManagerImpl : public VdmBagWithIds<VdmDbPropertiesBase> {
 public:
  VdmDbFeatureManagerImpl();

  VdmIndexedIds features;
  OdDbObjectId sheetMetalContext;
  OdDbObjectId colorPolicy;
  /// In memory only; made by the first pass over all features.
  std::unique_ptr<VdmFeatureIndex> index;
  VdmResidentClasses residentClasses;

 private:
  void idsWereRead() override { features.replaced(); }
};
