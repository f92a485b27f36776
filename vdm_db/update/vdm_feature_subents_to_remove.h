// VdmFeatureSubentsToRemove: subentities that features want off one entity.
#pragma once

#include <vector>

#include "platform/db/entity.h"
#include "platform/db/subent.h"

/// The work list of removing subentities of one entity. An interface that removes one from the
/// geometry takes it off the list; the pass stops asking when the list is empty.
struct VdmFeatureSubentsToRemove {
  explicit VdmFeatureSubentsToRemove(const OdDbObjectId& id) : entityId(id) {}

  OdDbObjectId entityId;
  OdSmartPtr<OdDbEntity> entity;  ///< to change: the entity itself, or a copy in no database
  std::vector<OdDbSubentId> subents;
};
