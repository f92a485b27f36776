// The dependencies that lead into an entity.
#include "host/naming/dependencies_into.h"

#include <algorithm>
#include <unordered_set>

#include "platform/db/block_table_record.h"
#include "vdm_db/model/vdm_db_object.h"
#include "vdm_db/model/vdm_db_object_dependency.h"

namespace vdm_host {

namespace {

OdDbObjectId leafOf(const VdmDbObjectDependency& dependency) {
  if (dependency.compoundId().isSimpleObjectId()) return dependency.compoundId().topId();
  const OdDbFullSubentPath path = dependency.getLinkObject(/*openErased=*/false);
  return path.objectIds().isEmpty() ? OdDbObjectId::kNull : path.objectIds().last();
}

// Block references that show the block, directly or through other blocks.
void collectReferences(const OdDbObjectId& block, std::unordered_set<OdDbObjectId>& found) {
  const OdDbBlockTableRecordPtr record = block.openAs<OdDbBlockTableRecord>();
  if (record.isNull() || !record->hasBlockReferences()) return;
  for (const OdDbObjectId& reference : record->getBlockReferenceIds()) {
    if (found.insert(reference).second) collectReferences(reference.ownerId(), found);
  }
}

OdDbObjectIdArray dependenciesOf(const OdDbObjectId& top) {
  const VdmDbObjectPtr object = VdmDbObject::openVdmDbObject(top);
  return object.isNull() ? OdDbObjectIdArray() : object->dependencies();
}

}  // namespace

OdDbObjectIdArray dependenciesInto(const OdDbObjectId& entity) {
  OdDbObjectIdArray ids = dependenciesOf(entity);
  std::unordered_set<OdDbObjectId> references;
  collectReferences(entity.ownerId(), references);
  for (const OdDbObjectId& reference : references) {
    for (const OdDbObjectId& id : dependenciesOf(reference)) {
      const VdmDbObjectDependencyPtr dependency = id.openAs<VdmDbObjectDependency>();
      if (!dependency.isNull() && leafOf(*dependency) == entity) ids.append(id);
    }
  }
  if (!references.empty()) {
    std::sort(ids.begin(), ids.end(), [](const OdDbObjectId& a, const OdDbObjectId& b) {
      return OdUInt64(a.getHandle()) < OdUInt64(b.getHandle());
    });
  }
  return ids;
}

}  // namespace vdm_host
