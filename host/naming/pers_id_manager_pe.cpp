// The extension through which the module finds and makes dependencies.
#include "host/naming/pers_id_manager_pe.h"

#include <unordered_map>
#include <unordered_set>

#include "host/naming/birth_matcher.h"
#include "host/naming/body_signature.h"
#include "host/naming/dependencies_into.h"
#include "host/naming/name_feature.h"
#include "host/naming/reference_update.h"
#include "host/naming/solid_stamp.h"
#include "platform/base/error.h"
#include "platform/db/database.h"
#include "platform/modeler/db_3d_solid.h"
#include "vdm_db/model/vdm_db_object.h"
#include "vdm_db/model/vdm_db_object_dependency.h"
#include "vdm_db/model/vdm_db_pers_id_manager.h"
#include "vdm_db/references/vdm_path_utils.h"

namespace vdm_host {

namespace {

OdModelerSubent subentOf(const OdDbFullSubentPath& path) {
  const OdDbSubentId& id = path.subentId();
  if (id.index() < 1 || id.index() > OdInt64{0xFFFFFFFF}) return {};
  return {static_cast<OdModelerSubentType>(id.type()), static_cast<OdUInt32>(id.index())};
}

/// What new references need to know of the solids that they lead into; each is opened once.
class SolidsOfPaths {
 public:
  struct Row {
    OdModelerBodyPtr body;
    OdGeMatrix3d toFrame;  ///< from where the solid is to where signatures are taken
    FaceBirths births;
  };

  const Row& of(const OdDbObjectId& solid) {
    const auto [place, isNew] = m_rows.try_emplace(solid);
    if (isNew) fill(place->first, place->second);
    return place->second;
  }

 private:
  static void fill(const OdDbObjectId& id, Row& row) {
    const OdDb3dSolidPtr solid = id.openAs<OdDb3dSolid>();
    if (solid.isNull() || !solid->getBody(row.body).ok() || !row.body) return;
    SolidStamp stamp = SolidStamp::read(id);
    if (stamp.fingerprint == 0) {
      stamp.fingerprint = row.body->fingerprint();
      stamp.write(id);
    }
    if (!stamp.frame.isSingular()) row.toFrame = stamp.frame.inverse();
    row.births = presentBirths(id, *row.body).faces;
  }

  std::unordered_map<OdDbObjectId, Row> m_rows;
};

VdmDbObjectDependencyPtr makeDependency(const OdDbFullSubentPath& path, SolidsOfPaths& solids) {
  VdmDbObjectDependencyPtr dependency = VdmDbObjectDependency::createObject();
  dependency->setLinkObject(path);
  const OdDbObjectId leaf = vdmu::getLeafId(path);
  if (leaf.isNull() || !vdmu::isSubentPath(path)) return dependency;
  const SolidsOfPaths::Row& row = solids.of(leaf);
  const OdModelerSubent subent = subentOf(path);
  if (!row.body || !row.body->hasSubent(subent)) return dependency;
  ReferenceRecord record;
  record.signature = signatureOf(*row.body, subent).movedBy(row.toFrame);
  record.lastIndex = subent.index;
  record.births = birthsAt(*row.body, row.births, subent);
  record.addStep({LineageCause::kCreated, ReferenceGrade::kExact, 0, subent.index, 1, {}});
  record.writeTo(*dependency);
  return dependency;
}

// Whether a reference that is there already means what a new one on its path would.
bool isBornAsNew(const OdDbObjectId& id, const OdDbFullSubentPath& path, SolidsOfPaths& solids) {
  if (!vdmu::isSubentPath(path)) return true;
  const VdmDbObjectDependencyPtr dependency = id.openAs<VdmDbObjectDependency>();
  ReferenceRecord record;
  if (dependency.isNull() || !record.readFrom(*dependency) || record.births.empty()) return true;
  const SolidsOfPaths::Row& row = solids.of(vdmu::getLeafId(path));
  return !row.body || record.births == birthsAt(*row.body, row.births, subentOf(path));
}

// Openings that have merged may have several references on one path, of which each has births of
// its own.
OdDbObjectId findBornAsNew(const OdDbObjectId& first, const OdDbFullSubentPath& path,
                           SolidsOfPaths& solids) {
  if (first.isNull() || isBornAsNew(first, path, solids)) return first;
  for (const OdDbObjectId& id : dependenciesInto(vdmu::getInsertId(path))) {
    if (id.ownerId() != first.ownerId()) continue;
    const VdmDbObjectDependencyPtr other = id.openAs<VdmDbObjectDependency>();
    if (other.isNull() || other->subentId() != path.subentId()) continue;
    OdDbFullSubentPath present;
    if (other->getLinkObject(present, /*openErased=*/false) != vdmu::ePathOk) continue;
    if (present == path && isBornAsNew(id, path, solids)) return id;
  }
  return {};
}

int& registrations() {
  static int count = 0;
  return count;
}

OdSmartPtr<PersIdManagerExtension>& extension() {
  static OdSmartPtr<PersIdManagerExtension> instance;
  return instance;
}

}  // namespace

void PersIdManagerExtension::prepareAppend(VdmDbPersIdManager*,
                                           const OdDbFullSubentPathArray& paths, OdDbDatabase*) {
  // Numbers of a path are those of the present body: what is there already must be, too.
  std::unordered_set<OdDbObjectId> solids;
  VdmDependenciesReplacementMap map;
  ReferenceUpdate update(map);
  for (const OdDbFullSubentPath& path : paths) {
    const OdDbObjectId leaf = vdmu::getLeafId(path);
    if (!leaf.isNull() && solids.insert(leaf).second) update.settleByStamp(leaf);
  }
}

void PersIdManagerExtension::findExisting(VdmDbPersIdManager* manager,
                                          const OdDbFullSubentPathArray& paths,
                                          OdDbObjectIdArray& ids) {
  ids.clear();
  SolidsOfPaths solids;
  for (const OdDbFullSubentPath& path : paths) {
    const VdmDbObjectPtr object = VdmDbObject::openVdmDbObject(vdmu::getInsertId(path));
    OdDbObjectId found;
    if (!object.isNull()) found = object->getPersIdDependency(path);
    // One that a later manager of another block made is not ours to give away.
    if (found.ownerId() != manager->objectId()) found = OdDbObjectId::kNull;
    ids.append(findBornAsNew(found, path, solids));
  }
}

void PersIdManagerExtension::updateDependency(VdmDbPersIdManager*, const OdDbObjectId& dependency,
                                              const OdDbFullSubentPath& path) {
  const VdmDbObjectDependencyPtr opened = dependency.openAs<VdmDbObjectDependency>(OdDb::kForWrite);
  if (!opened.isNull()) opened->setLinkObject(path);
}

void PersIdManagerExtension::createDependencies(OdDbObjectIdArray& newIds,
                                                VdmDbPersIdManager* manager,
                                                const OdDbFullSubentPathArray& paths, OdDbUserIO*,
                                                OdDbObjectIdArray& existing) {
  struct PathHash {
    std::size_t operator()(const OdDbFullSubentPath& path) const {
      std::size_t hash = static_cast<std::size_t>(path.subentId().index()) * 4U +
                         static_cast<std::size_t>(path.subentId().type());
      for (const OdDbObjectId& id : path.objectIds()) {
        hash = hash * 0x9E3779B97F4A7C15ULL + std::hash<OdDbObjectId>()(id);
      }
      return hash ^ (hash >> 31U);
    }
  };
  std::unordered_map<OdDbFullSubentPath, OdDbObjectId, PathHash> made;
  SolidsOfPaths solids;
  existing.resize(paths.size());
  for (OdUInt32 i = 0; i < paths.size(); ++i) {
    if (!existing[i].isNull()) continue;
    OdDbObjectId& id = made[paths[i]];
    if (id.isNull()) {
      id =
          manager->database()->addOdDbObject(makeDependency(paths[i], solids), manager->objectId());
      newIds.append(id);
    }
    existing[i] = id;
  }
}

void registerNaming() {
  if (registrations()++ > 0) return;
  VdmNameFeature::rxInit();
  extension() = OdRxObjectImpl<PersIdManagerExtension>::createObject();
  VdmDbPersIdManager::desc()->addX(VdmDbPersIdManagerPE::desc(), extension());
}

void unregisterNaming() {
  if (registrations() == 0 || --registrations() > 0) return;
  VdmDbPersIdManager::desc()->delX(VdmDbPersIdManagerPE::desc());
  extension().release();
  VdmNameFeature::rxUninit();
}

}  // namespace vdm_host
