// OdDbAssocAction: dependencies, status, clones, filing.
#include "platform/assoc/assoc_action.h"

#include <vector>

#include "platform/assoc/assoc_dependency.h"
#include "platform/assoc/assoc_network.h"
#include "platform/assoc/assoc_variable.h"
#include "platform/assoc/id_list.h"
#include "platform/assoc/network_graph.h"
#include "platform/assoc/value_record.h"
#include "platform/base/error.h"
#include "platform/db/audit_info.h"
#include "platform/db/database.h"
#include "platform/db/database_impl.h"
#include "platform/db/field_list.h"
#include "platform/db/open_upgrade.h"

OD_RX_DEFINE_DB(OdDbAssocAction, OdDbObject, L"OdDbAssocAction", 0, 0, 0, L"ASSOCACTION",
                OdString())

OdDbAssocAction::~OdDbAssocAction() {
  if (m_graph != nullptr) m_graph->forget(m_node);
}

// Status and evaluation.

OdDbAssocStatus OdDbAssocAction::status() const {
  assertReadEnabled();
  OdDbAssocGraph* graphOfNetwork = graph();
  if (graphOfNetwork == nullptr) return m_status;
  graphOfNetwork->settleMarks();
  return graphOfNetwork->statusOf(m_node);
}

OdResult OdDbAssocAction::setStatus(OdDbAssocStatus status) {
  if (status == m_status) return eOk;
  assertWriteEnabled();
  m_status = status;
  if (m_graph != nullptr) m_graph->noteStatusChanged(m_node);
  return eOk;
}

OdResult OdDbAssocAction::evaluate(OdDbAssocEvaluationCallback* callback) {
  OdDbAssocGraph* graphOfNetwork = graph();
  if (graphOfNetwork != nullptr) return graphOfNetwork->evaluateNode(m_node, callback);
  if (oddbIsOutOfDate(m_status)) runAlone(callback);
  return eOk;
}

OdResult OdDbAssocAction::subEvaluate(OdDbAssocEvaluationCallback*) { return eOk; }

void OdDbAssocAction::runAlone(OdDbAssocEvaluationCallback* callback) {
  OdResult result = eOk;
  try {
    result = subEvaluate(callback);
  } catch (const OdError& error) {
    result = error.code();
    if (database() != nullptr) {
      database()->impl().report(L"action " + getDbHandle().ascii() + L" failed: " +
                                error.description());
    }
  }
  setStatus(result == eOk ? kAssocUpToDate : kAssocFailedToEvaluate);
  if (callback != nullptr) callback->actionEvaluated(objectId(), m_status);
}

// Network.

OdDbObjectId OdDbAssocAction::owningNetwork() const {
  const OdDbObjectId owner = ownerId();
  const OdRxClass* ownerClass = owner.objectClass();
  const bool isNetwork =
      ownerClass != nullptr && ownerClass->isDerivedFrom(OdDbAssocNetwork::desc());
  return isNetwork ? owner : OdDbObjectId::kNull;
}

OdDbObjectId OdDbAssocAction::objectThatOwnsNetworkInstance() const {
  const OdDbObjectId network =
      isA()->isDerivedFrom(OdDbAssocNetwork::desc()) ? objectId() : owningNetwork();
  return network.ownerId().ownerId();
}

OdDbAssocGraph* OdDbAssocAction::graph() const {
  if (m_graph == nullptr) {
    const OdDbAssocNetworkPtr network = owningNetwork().openAs<OdDbAssocNetwork>();
    if (network.isNull()) return nullptr;
    static_cast<void>(network->actionGraph());
  } else {
    m_graph->settle();
  }
  return m_graph;
}

void OdDbAssocAction::noteChanged() {
  if (m_graph != nullptr) m_graph->noteChanged(m_node);
}

void OdDbAssocAction::subExistenceChanged() {
  OdDbObject::subExistenceChanged();
  if (m_graph != nullptr) return m_graph->noteChanged(m_node);
  const OdDbObjectId network = owningNetwork();
  if (!network.isResident()) return;
  auto* owner = static_cast<OdDbAssocNetwork*>(network.idRecord()->object);
  owner->noteListChanged();
}

// Dependencies on the action name what has its id now.
void OdDbAssocAction::subIdSwapped() {
  OdDbObject::subIdSwapped();
  if (m_graph != nullptr) m_graph->noteSwapped();
}

// Dependencies.

OdResult OdDbAssocAction::getDependencies(bool readDependencies, bool writeDependencies,
                                          OdDbObjectIdArray& ids) const {
  assertReadEnabled();
  const OdDbObjectIdArray& listed = m_dependencies;
  for (const OdDbObjectId& id : listed) {
    const OdDbAssocDependencyPtr dependency = id.openAs<OdDbAssocDependency>();
    if (dependency.isNull()) continue;
    if ((readDependencies && dependency->isReadDependency()) ||
        (writeDependencies && dependency->isWriteDependency())) {
      ids.append(id);
    }
  }
  return eOk;
}

OdResult OdDbAssocAction::addDependency(const OdDbObjectId& dependency, bool setThisActionAsOwner) {
  if (dependency.isNull()) return eNullObjectId;
  if (m_dependencies.contains(dependency)) return eDuplicateKey;
  const OdDbAssocDependencyPtr added = dependency.openAs<OdDbAssocDependency>();
  if (added.isNull()) return eWrongObjectType;
  assertWriteEnabled();
  if (setThisActionAsOwner) {
    const OdDbOpenUpgrade upgrade(added);
    added->setOwnerId(objectId());
  }
  m_dependencies.append(dependency);
  noteChanged();
  return eOk;
}

OdResult OdDbAssocAction::removeDependency(const OdDbObjectId& dependency, bool alsoErase) {
  if (!m_dependencies.contains(dependency)) return eKeyNotFound;
  assertWriteEnabled();
  m_dependencies.remove(dependency);
  noteChanged();
  if (!alsoErase || dependency.isErased()) return eOk;
  const OdDbObjectPtr removed = dependency.openObject();
  if (removed.isNull()) return eOk;
  const OdDbOpenUpgrade upgrade(removed);
  return removed->erase();
}

OdResult OdDbAssocAction::removeAllDependencies(bool alsoErase) {
  const OdDbObjectIdArray listed = m_dependencies;
  for (const OdDbObjectId& id : listed) {
    const OdResult result = removeDependency(id, alsoErase);
    if (result != eOk) return result;
  }
  return eOk;
}

// Cloning.

namespace {

/// Variables that are to come along with a clone, instead of a recursion along their expressions.
struct WaitingDefinitions {
  const OdDbIdMapping* mapping;
  std::vector<OdDbObjectId> ids;
};
thread_local WaitingDefinitions* t_waiting = nullptr;

}  // namespace

OdDbObjectPtr OdDbAssocAction::subDeepClone(OdDbIdMapping& mapping, OdDbObject* owner,
                                            bool isPrimary) const {
  OdDbObjectPtr clone = OdDbObject::subDeepClone(mapping, owner, isPrimary);
  if (!clone.isNull() && isPrimary) cloneDefinitions(mapping, owner, /*toOtherDatabase=*/false);
  return clone;
}

OdDbObjectPtr OdDbAssocAction::subWblockClone(OdDbIdMapping& mapping, OdDbObject* owner,
                                              bool isPrimary) const {
  OdDbObjectPtr clone = OdDbObject::subWblockClone(mapping, owner, isPrimary);
  if (!clone.isNull() && isPrimary) cloneDefinitions(mapping, owner, /*toOtherDatabase=*/true);
  return clone;
}

// An expression finds its names in its own network only: a clone in another one takes along the
// variables that define it. What has a clone already is not cloned again.
void OdDbAssocAction::cloneDefinitions(OdDbIdMapping& mapping, OdDbObject* owner,
                                       bool toOtherDatabase) const {
  if (owner == nullptr) return;
  const OdDbObjectId target = owner->isKindOf(OdDbAssocNetwork::desc())
                                  ? owner->objectId()
                                  : OdDbAssocNetwork::getInstanceFromObject(
                                        owner->objectId(), /*createIfDoesNotExist=*/false);
  if (target == owningNetwork()) return;
  WaitingDefinitions own{&mapping, {}};
  const bool isOutermost = t_waiting == nullptr || t_waiting->mapping != &mapping;
  WaitingDefinitions* const outer = t_waiting;
  WaitingDefinitions& waiting = isOutermost ? own : *outer;
  const OdDbObjectIdArray& listed = m_dependencies;
  for (const OdDbObjectId& id : listed) {
    const OdDbAssocValueDependencyPtr dependency = id.openAs<OdDbAssocValueDependency>();
    if (!dependency.isNull()) waiting.ids.push_back(dependency->dependentOnObject());
  }
  if (!isOutermost) return;
  struct Restore {
    WaitingDefinitions* outer;
    ~Restore() { t_waiting = outer; }
  } const restore{outer};
  t_waiting = &own;
  while (!own.ids.empty()) {
    const OdDbObjectPtr definition = own.ids.back().openObject();
    own.ids.pop_back();
    if (definition.isNull()) continue;
    if (toOtherDatabase) {
      definition->wblockClone(mapping, owner);
    } else {
      definition->deepClone(mapping, owner);
    }
  }
}

// A clone that was made for a block joins the network of that block.
void OdDbAssocAction::appendToOwner(OdDbIdPair& pair, OdDbObject* owner, OdDbIdMapping& mapping) {
  if (isA()->isDerivedFrom(OdDbAssocNetwork::desc())) {
    return OdDbObject::appendToOwner(pair, owner, mapping);
  }
  OdDbObjectId networkId = owner->objectId();
  if (!owner->isKindOf(OdDbAssocNetwork::desc())) {
    networkId = OdDbAssocNetwork::getInstanceFromObject(networkId, /*createIfDoesNotExist=*/true);
  }
  const OdDbAssocNetworkPtr network = networkId.safeOpenAs<OdDbAssocNetwork>();
  if (auto* variable = OdDbAssocVariable::cast(this).get(); variable != nullptr) {
    variable->takeFreeName(*network);
  }
  const OdDbOpenUpgrade upgrade(network);
  const OdResult result = network->addAction(objectId(), /*setThisNetworkAsOwner=*/true);
  if (result != eOk) throw OdError(result, L"clone of an action " + getDbHandle().ascii());
}

// Fields:
//
//   field          binary                 groups
//   version        uint8
//   status         uint8                  280    OdDbAssocStatus
//   dependencies   count, hard owner ids  360    in order; erased ones by the rule of lists

template <class Fields, class Self>
void OdDbAssocAction::fields(Fields& fields, Self& self) {
  fields.version(1);
  fields.template number<OdUInt8>(280, self.m_status,
                                  [](OdUInt8 status) { return status <= kAssocUnresolved; });
  fields.template ids<OdDb::kHardOwnershipRef>(360, OdDbAssocIdList{self.m_dependencies});
}

OD_DB_DEFINE_FILING_NOTED(OdDbAssocAction, OdDbObject, noteChanged())

// One value of a pass.
void OdDbAssocAction::applyPartialUndo(OdDbDwgFiler* filer, OdRxClass* cls) {
  if (cls != OdDbAssocAction::desc()) return OdDbObject::applyPartialUndo(filer, cls);
  const OdDbValueRecord old = OdDbValueRecord::dwgIn(filer);
  auto* variable = OdDbAssocVariable::cast(this).get();
  if (OdDbDwgFiler* inverse = beginPartialUndo(cls)) {
    const double number = variable == nullptr ? 0.0 : variable->numericValue();
    OdDbValueRecord{objectId(), number, m_status}.dwgOut(inverse);
  }
  m_status = old.status;
  if (variable != nullptr) variable->number() = old.number;
  if (m_graph != nullptr) m_graph->noteStatusChanged(m_node);
}

void OdDbAssocAction::audit(OdDbAuditInfo* info) {
  const OdDbObjectIdArray listed = m_dependencies;
  for (const OdDbObjectId& id : listed) {
    const OdRxClass* itsClass = id.objectClass();
    const bool isSound =
        id.isErased() || itsClass == nullptr ||
        (itsClass->isDerivedFrom(OdDbAssocDependency::desc()) && id.ownerId() == objectId());
    if (isSound) continue;
    info->printError(this, L"dependency " + id.getHandle().ascii(), L"a dependency of the action",
                     L"no entry");
    if (!info->fixErrors()) continue;
    removeDependency(id, /*alsoErase=*/false);
    info->errorsFixed();
  }
}
