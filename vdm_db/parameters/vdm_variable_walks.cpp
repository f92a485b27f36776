// Walks along the dependencies of variables.
//
// A walk is a queue that is at the same time the answer: neighbours of its entries are appended
// until the end is reached, and a hash set keeps each id from being appended twice. So it is
// breadth-first, ends after each id was looked at once, and costs one look-up for each dependency.
#include "vdm_db/parameters/vdm_variable_walks.h"

#include <unordered_set>

#include "platform/assoc/assoc_dependency.h"
#include "platform/assoc/assoc_variable.h"
#include "vdm_db/common/vdm_object_id_hash.h"
#include "vdm_db/drawing_utils/vdm_object_id_class.h"

namespace vdmu {

namespace {

/// Calls back for what the value dependencies of an action lead to, until `call` gives false.
template <class Call>
void forEachUsed(const OdDbAssocAction* action, const Call& call) {
  OdDbObjectIdArray dependencies;
  if (action->getDependencies(/*readDependencies=*/true, /*writeDependencies=*/true,
                              dependencies) != eOk) {
    return;
  }
  for (const OdDbObjectId& id : dependencies) {
    const auto dependency = id.openAs<OdDbAssocValueDependency>();
    if (dependency.isNull() || dependency->dependentOnObject().isNull()) continue;
    if (!call(dependency->dependentOnObject())) return;
  }
}

/// Calls back for the variables whose expressions mention this one, until `call` gives false.
template <class Call>
void forEachUser(const OdDbAssocVariable* variable, const Call& call) {
  for (const OdDbObjectId& reactor : variable->getPersistentReactors()) {
    if (!isIdOf<OdDbAssocValueDependency>(reactor) || reactor.isErased()) continue;
    if (!isIdOf<OdDbAssocVariable>(reactor.ownerId())) continue;
    if (!call(reactor.ownerId())) return;
  }
}

/// `visit(action, append)` appends the neighbours of an action of the class T.
template <class T, class Visit>
OdDbObjectIdArray closure(OdDbObjectIdArray ids, const Visit& visit) {
  const auto keyOf = [](OdDbObjectId id) {
    id.convertToRedirectedId();
    return id;
  };
  std::unordered_set<OdDbObjectId, OdDbObjectIdHash> seen;
  for (const OdDbObjectId& id : std::as_const(ids)) seen.insert(keyOf(id));
  for (OdUInt32 i = 0; i < ids.size(); ++i) {
    const auto action = std::as_const(ids)[i].openAs<T>();
    if (action.isNull()) continue;
    visit(action.get(), [&](const OdDbObjectId& neighbour) {
      if (seen.insert(keyOf(neighbour)).second) ids.append(neighbour);
      return true;
    });
  }
  return ids;
}

/// Null ids in place of those actions of the class T for which `isDropped` holds.
template <class T, class IsDropped>
OdDbObjectIdArray without(OdDbObjectIdArray ids, const IsDropped& isDropped) {
  for (OdUInt32 i = 0; i < ids.size(); ++i) {
    const auto action = std::as_const(ids)[i].openAs<T>();
    if (!action.isNull() && isDropped(action.get())) ids.setAt(i, OdDbObjectId::kNull);
  }
  return ids;
}

}  // namespace

// ---- What can be reached

OdDbObjectIdArray getUsedVariables(const OdDbObjectIdArray& ids, int depth) {
  if (depth <= 1) return ids;
  return closure<OdDbAssocAction>(
      ids, [](const OdDbAssocAction* action, const auto& append) { forEachUsed(action, append); });
}

OdDbObjectIdArray getDependentVariables(const OdDbObjectIdArray& ids) {
  return closure<OdDbAssocVariable>(ids, [](const OdDbAssocVariable* variable, const auto& append) {
    forEachUser(variable, append);
  });
}

OdDbObjectIdArray getDefiningVariables(const OdDbObjectIdArray& ids) {
  return closure<OdDbAssocVariable>(ids, [](const OdDbAssocVariable* variable, const auto& append) {
    forEachUsed(variable, [&append](const OdDbObjectId& used) {
      return !isIdOf<OdDbAssocVariable>(used) || append(used);
    });
  });
}

// ---- Filters

OdDbObjectIdArray filterUnusedVariables(const OdDbObjectIdArray& ids) {
  return without<OdDbAssocVariable>(ids, [](const OdDbAssocVariable* variable) {
    bool isUsed = false;
    forEachUser(variable, [&isUsed](const OdDbObjectId&) { return !(isUsed = true); });
    return isUsed;
  });
}

OdDbObjectIdArray filterIndependentVariables(const OdDbObjectIdArray& ids) {
  return without<OdDbAssocAction>(ids, [](const OdDbAssocAction* action) {
    bool depends = false;
    forEachUsed(action, [&depends](const OdDbObjectId& used) {
      depends = isIdOf<OdDbAssocVariable>(used);
      return !depends;
    });
    return depends;
  });
}

}  // namespace vdmu
