// Walks over the reactors of a feature, which open only reactors of the wanted class.
#pragma once

#include "vdm_db/drawing_utils/vdm_object_id_class.h"
#include "vdm_db/features/vdm_db_expression_reactor.h"
#include "vdm_db/features/vdm_db_pers_id_reactor.h"
#include "vdm_db/features/vdm_db_property_reactor.h"
#include "vdm_db/model/vdm_db_feature_reactor.h"
#include "vdm_db/model/vdm_db_object_dependency.h"

// openAs for read, for objects that mostly are of class T itself: those are not queried for.
template <class T>
OdSmartPtr<T> vdmOpenMostly(const OdDbObjectId& id) {
  OdDbObjectPtr object = id.openObject();
  if (object.isNull() || object->isA() != T::desc()) return T::cast(object.get());
  return OdSmartPtr<T>(static_cast<T*>(object.detach()), kOdRxObjAttach);
}

// Opens each reactor of class T or below for read, in order, and calls visit(T*) until that gives
// true. The result is true when visit ended the walk. Ids know the classes of their objects, so
// other reactors are not opened: a feature may have thousands of them, and every pass walks them.
template <class T, class Visit>
bool vdmVisitReactors(const OdDbObjectIdArray& reactors, const Visit& visit) {
  for (const OdDbObjectId& id : reactors) {
    if (!vdmu::isIdOf<T>(id)) continue;
    const OdDbObjectPtr object = id.openObject();  // its id has said that it is a T
    if (!object.isNull() && visit(static_cast<T*>(object.get()))) return true;
  }
  return false;
}

// Most reactors are of the classes that answer neither question of hasChanges(): they are not
// asked. A class below one of them may answer.
inline bool vdmAnswersChanges(const OdRxClass* reactorClass) {
  return reactorClass != VdmDbPersIdReactor::desc() &&
         reactorClass != VdmDbFeatureReactor::desc() &&
         reactorClass != VdmDbPropertyReactor::desc() &&
         reactorClass != VdmDbExpressionReactor::desc();
}

// The entities, or outermost inserts, of the dependencies that open: the first ids of their paths.
inline OdDbObjectIdArray vdmEntitiesOf(const OdDbObjectIdArray& dependencies) {
  OdDbObjectIdArray entities(dependencies.size());
  for (const OdDbObjectId& id : dependencies) {
    const VdmDbObjectDependencyPtr dependency = id.openAs<VdmDbObjectDependency>();
    if (!dependency.isNull()) entities.append(dependency->getInsertId());
  }
  return entities;
}
