// Walks over the reactors of a feature that open nothing in vain.
#pragma once

#include "vdm_db/features/vdm_db_pers_id_reactor.h"
#include "vdm_db/model/vdm_db_feature_reactor.h"
#include "vdm_db/model/vdm_db_object_dependency.h"

// Calls visit(T*) for each reactor of class T or below, in order, opened for read, until it gives
// true. The class is known without opening. True when the walk was ended by visit.
template <class T, class Visit>
bool vdmVisitReactors(const OdDbObjectIdArray& reactors, const Visit& visit) {
  for (const OdDbObjectId& id : reactors) {
    const OdRxClass* cls = id.objectClass();
    if (cls == nullptr || !cls->isDerivedFrom(T::desc())) continue;
    const OdDbObjectPtr object = id.openObject();
    if (!object.isNull() && visit(static_cast<T*>(object.get()))) return true;
  }
  return false;
}

// First ids of the paths of the dependencies that open: what is drawn again when they change.
inline OdDbObjectIdArray vdmEntitiesOf(const OdDbObjectIdArray& dependencies) {
  OdDbObjectIdArray entities(dependencies.size());
  for (const OdDbObjectId& id : dependencies) {
    const VdmDbObjectDependencyPtr dependency = id.openAs<VdmDbObjectDependency>();
    if (!dependency.isNull()) entities.append(dependency->getInsertId());
  }
  return entities;
}
