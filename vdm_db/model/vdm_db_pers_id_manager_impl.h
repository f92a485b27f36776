// VdmDbPersIdManagerImpl: the state of a persistent id manager. For its own sources.
#pragma once

#include "vdm_db/model/vdm_bag_with_ids.h"
#include "vdm_db/properties/vdm_db_properties_base.h"
#include "vdm_db/references/vdm_indexed_ids.h"

/// A bag of version 1 that drops erased ids on save, with "deps" mapped to the list.
class VdmDbPersIdManagerImpl : public VdmBagWithIds<VdmDbPropertiesBase> {
 public:
  VdmDbPersIdManagerImpl();

  VdmIndexedIds dependencies;

 private:
  void idsWereRead() override { dependencies.replaced(); }
};
