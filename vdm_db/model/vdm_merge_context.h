// VdmMergeContext: what the managers of two blocks share while one takes over from the other.
#pragma once

#include <map>
#include <unordered_set>

#include "platform/filer/object_id.h"

class OdDbIdMapping;
class VdmDbReverseIdMapping;

/// The arguments of mergeManagers, which every manager of a block has. Belongs to the caller of the
/// whole merge; managers read the mappings and add to the two results.
struct VdmMergeContext {
  OdDbIdMapping& mapping;                           ///< from what was cloned to the clones
  VdmDbReverseIdMapping& reverse;                   ///< from the clones back
  bool keepAll = false;                             ///< takes over also what belongs to no clone
  std::unordered_set<OdDbObjectId>& mergedObjects;  ///< out: model objects of entities
  std::map<OdDbObjectId, OdDbObjectId>& replaced;   ///< out: ids that stand for others now
};
