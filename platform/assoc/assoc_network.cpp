// OdDbAssocNetwork: the list of actions, evaluation, filing.
#include "platform/assoc/assoc_network.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "platform/assoc/assoc_variable.h"
#include "platform/assoc/id_list.h"
#include "platform/assoc/network_graph.h"
#include "platform/assoc/value_record.h"
#include "platform/base/error.h"
#include "platform/db/audit_info.h"
#include "platform/db/database_impl.h"
#include "platform/db/dictionary.h"
#include "platform/db/field_list.h"
#include "platform/db/open_upgrade.h"
#include "platform/db/reactor_calls.h"
#include "platform/db/units.h"

OD_RX_DEFINE_DB(OdDbAssocNetwork, OdDbAssocAction, L"OdDbAssocNetwork", 0, 0, 0, L"ASSOCNETWORK",
                OdString())

namespace {

constexpr const wchar_t* kDefaultKey = L"ASSOC_NETWORK";

}  // namespace

OdDbAssocNetwork::OdDbAssocNetwork() = default;
OdDbAssocNetwork::~OdDbAssocNetwork() = default;

OdDbObjectId OdDbAssocNetwork::getInstanceFromObject(const OdDbObjectId& owningObject,
                                                     bool createIfDoesNotExist,
                                                     bool addToTopLevelNetwork,
                                                     const OdString& dictionaryKey) {
  const OdString key = dictionaryKey.isEmpty() ? OdString(kDefaultKey) : dictionaryKey;
  const OdDbObjectPtr object = owningObject.openObject();
  if (object.isNull()) return OdDbObjectId::kNull;
  OdDbObjectId dictionaryId = object->extensionDictionary();
  if (dictionaryId.isNull() && !createIfDoesNotExist) return OdDbObjectId::kNull;
  if (dictionaryId.isNull()) {
    const OdDbOpenUpgrade upgrade(object);
    dictionaryId = object->createExtensionDictionary();
  }
  const OdDbDictionaryPtr dictionary = dictionaryId.openAs<OdDbDictionary>();
  if (dictionary.isNull()) return OdDbObjectId::kNull;
  const OdDbObjectId present = dictionary->getAt(key);
  const OdRxClass* presentClass = present.objectClass();
  if (presentClass != nullptr && presentClass->isDerivedFrom(OdDbAssocNetwork::desc())) {
    return present;
  }
  if (!createIfDoesNotExist) return OdDbObjectId::kNull;
  const OdDbAssocNetworkPtr network = OdDbAssocNetwork::createObject();
  network->m_isTopLevel = addToTopLevelNetwork;
  const OdDbOpenUpgrade upgrade(dictionary);
  const OdDbObjectId made = dictionary->setAt(key, network.get());
  network->m_lengthUnit = network->actionGraph().presentUnit();
  return made;
}

OdDbAssocGraph& OdDbAssocNetwork::actionGraph() const {
  if (!m_actionGraph) {
    m_actionGraph = std::make_unique<OdDbAssocGraph>(const_cast<OdDbAssocNetwork*>(this));
  }
  m_actionGraph->settle();
  return *m_actionGraph;
}

// Evaluation.

bool OdDbAssocNetwork::isTopLevel() const {
  assertReadEnabled();
  return m_isTopLevel;
}

OdResult OdDbAssocNetwork::evaluateTopLevel(const OdDbDatabase* database,
                                            OdDbAssocEvaluationCallback* callback) {
  if (database == nullptr) return eInvalidInput;
  std::vector<OdDbObjectId> networks;  // an evaluation may make others
  database->forEachId([&networks](OdDbObjectId id) {
    if (id.objectClass()->isDerivedFrom(OdDbAssocNetwork::desc()) && !id.isEffectivelyErased()) {
      networks.push_back(id);
    }
    return true;
  });
  OdResult first = eOk;
  for (const OdDbObjectId& id : networks) {
    const OdDbAssocNetworkPtr network = id.openAs<OdDbAssocNetwork>();
    if (network.isNull() || !network->m_isTopLevel) continue;
    const OdDbOpenUpgrade upgrade(network);
    const OdResult result = network->evaluate(callback);
    if (first == eOk) first = result;
  }
  return first;
}

OdDbAssocStatus OdDbAssocNetwork::status() const {
  assertReadEnabled();
  OdDbAssocGraph& graph = actionGraph();
  graph.settleMarks();
  return graph.isAnyOutOfDate() ? kAssocChangedDirectly : kAssocUpToDate;
}

OdResult OdDbAssocNetwork::evaluate(OdDbAssocEvaluationCallback* callback) {
  assertReadEnabled();
  return actionGraph().evaluateAll(callback, OdDbAssocScope::kAll);
}

OdResult OdDbAssocNetwork::evaluateValues(OdDbAssocEvaluationCallback* callback) {
  assertReadEnabled();
  return actionGraph().evaluateAll(callback, OdDbAssocScope::kValues);
}

OdResult OdDbAssocNetwork::evaluateFrom(const OdDbObjectId& action,
                                        OdDbAssocEvaluationCallback* callback) {
  return evaluateFrom(action, callback, OdDbAssocScope::kAll);
}

OdResult OdDbAssocNetwork::evaluateVariablesFrom(const OdDbObjectId& variable,
                                                 OdDbAssocEvaluationCallback* callback) {
  return evaluateFrom(variable, callback, OdDbAssocScope::kVariables);
}

OdResult OdDbAssocNetwork::evaluateFrom(const OdDbObjectId& action,
                                        OdDbAssocEvaluationCallback* callback,
                                        OdDbAssocScope scope) {
  assertReadEnabled();
  OdDbAssocGraph& graph = actionGraph();
  const OdDbAssocActionPtr start = action.openAs<OdDbAssocAction>();
  if (start.isNull() || start->m_graph != &graph) return eKeyNotFound;
  return graph.evaluateFrom(start->m_node, callback, scope);
}

// The list.

OdDbObjectIdArray OdDbAssocNetwork::getActions() const {
  assertReadEnabled();
  OdDbObjectIdArray alive;
  alive.reserve(m_actions.size());
  const OdDbObjectIdArray& listed = m_actions;
  for (const OdDbObjectId& id : listed) {
    if (!id.isErased()) alive.append(id);
  }
  return alive;
}

OdDbObjectId OdDbAssocNetwork::variableNamed(const OdString& name) const {
  assertReadEnabled();
  const OdDbAssocGraph& graph = actionGraph();
  const OdDbAssocGraph::Index node = graph.nodeNamed(name);
  return node == OdDbAssocGraph::kNone ? OdDbObjectId::kNull : graph.idOf(node);
}

OdResult OdDbAssocNetwork::addAction(const OdDbObjectId& actionId, bool setThisNetworkAsOwner) {
  if (actionId.isNull()) return eNullObjectId;
  if (actionId.originalDatabase() != database()) return eWrongDatabase;
  const OdDbAssocActionPtr action = actionId.openAs<OdDbAssocAction>();
  if (action.isNull()) return eWrongObjectType;
  OdDbAssocGraph& graph = actionGraph();
  if (action->m_graph == &graph) return eDuplicateKey;
  const OdDbAssocVariablePtr variable = OdDbAssocVariable::cast(action);
  if (!variable.isNull() && !variable->isAnonymous() &&
      graph.nodeNamed(variable->name()) != OdDbAssocGraph::kNone) {
    return eDuplicateKey;
  }
  assertWriteEnabled(/*autoUndo=*/false);
  if (setThisNetworkAsOwner && action->ownerId() != objectId()) {
    const OdDbOpenUpgrade upgrade(action);
    action->setOwnerId(objectId());
  }
  changeListed(actionId, m_actions.size(), /*listed=*/true);
  return eOk;
}

// The entry of an erased action stays, as that of one that was erased by other means: so removing
// many costs no search each.
OdResult OdDbAssocNetwork::removeAction(const OdDbObjectId& actionId, bool alsoErase) {
  OdUInt32 place = 0;
  if (actionId.isNull()) return eNullObjectId;
  const bool isOwned = actionId.ownerId() == objectId();
  if (!(alsoErase && isOwned) && !m_actions.find(actionId, place)) return eKeyNotFound;
  assertWriteEnabled(/*autoUndo=*/false);
  if (!(alsoErase && isOwned)) changeListed(actionId, place, /*listed=*/false);
  if (!alsoErase || actionId.isErased()) return eOk;
  const OdDbObjectPtr action = actionId.openObject();
  if (action.isNull()) return eOk;
  const OdDbOpenUpgrade upgrade(action);
  return action->erase();
}

// Enters or removes one id and files the opposite, for undo.
void OdDbAssocNetwork::changeListed(const OdDbObjectId& action, OdUInt32 place, bool listed) {
  if (OdDbDwgFiler* filer = beginPartialUndo(OdDbAssocNetwork::desc())) {
    filer->wrUInt8(static_cast<OdUInt8>(OdDbNetworkStep::kListed));
    filer->wrSoftPointerId(action);
    filer->wrInt32(static_cast<OdInt32>(place));
    filer->wrBool(!listed);
  }
  if (listed) {
    m_actions.insertAt(std::min(place, m_actions.size()), action);
  } else {
    m_actions.removeAt(place);
  }
  if (m_actionGraph) m_actionGraph->noteListed(action, listed);
}

void OdDbAssocNetwork::applyPartialUndo(OdDbDwgFiler* filer, OdRxClass* cls) {
  if (cls != OdDbAssocNetwork::desc()) return OdDbAssocAction::applyPartialUndo(filer, cls);
  if (static_cast<OdDbNetworkStep>(filer->rdUInt8()) == OdDbNetworkStep::kValues) {
    return exchangeValues(filer);
  }
  const OdDbObjectId action = filer->rdSoftPointerId();
  auto place = static_cast<OdUInt32>(filer->rdInt32());
  const bool listed = filer->rdBool();
  if (!listed) {
    const bool isThere = place < m_actions.size() && m_actions.getAt(place) == action;
    if (!isThere && !m_actions.find(action, place)) return;
  }
  changeListed(action, place, listed);
}

// The values of a pass: the present ones are filed before the old ones take their place.
void OdDbAssocNetwork::exchangeValues(OdDbDwgFiler* filer) {
  std::vector<OdDbValueRecord> records(filer->rdCount());
  for (OdDbValueRecord& record : records) record = OdDbValueRecord::dwgIn(filer);
  OdDbDwgFiler* inverse = beginPartialUndo(OdDbAssocNetwork::desc());
  if (inverse != nullptr) {
    OdDbValueRecord::beginList(inverse, static_cast<OdInt32>(records.size()));
  }
  OdDbDatabaseImpl& impl = database()->impl();
  for (const OdDbValueRecord& old : records) {
    OdDbObject* object = impl.resident(old.action.idRecord());
    if (object == nullptr) throw OdError(eUnknownHandle, old.action.getHandle().ascii());
    auto* action = static_cast<OdDbAssocAction*>(object);
    OdDbValueRecord present{old.action, 0.0, action->m_status};
    action->m_status = old.status;
    if (auto* variable = OdDbAssocVariable::cast(object).get(); variable != nullptr) {
      present.number = std::exchange(variable->number(), old.number);
    }
    if (inverse != nullptr) present.dwgOut(inverse);
    if (action->m_graph != nullptr) action->m_graph->noteStatusChanged(action->m_node);
    impl.markDirty(old.action.idRecord());
  }
  for (const OdDbValueRecord& old : records) {
    const OdDbObject* object = old.action.idRecord()->object;
    OdDbReactorCalls::tell<const OdDbObject*>(object, &OdDbObject::modifyUndone,
                                              &OdDbObjectReactor::modifyUndone, object);
  }
}

// Filing.
//
//   field          binary                 groups
//   version        uint8
//   length unit    int16                  70     in which the values were computed
//   is top-level   bool                   290
//   actions        count, hard owner ids  360    in order; erased ones by the rule of lists

template <class Fields, class Self>
void OdDbAssocNetwork::fields(Fields& fields, Self& self) {
  fields.version(1);
  fields.template number<OdInt16>(70, self.m_lengthUnit, oddbIsUnit);
  fields.value(290, self.m_isTopLevel);
  fields.template ids<OdDb::kHardOwnershipRef>(360, OdDbAssocIdList{self.m_actions});
}

void OdDbAssocNetwork::noteListChanged() {
  if (m_actionGraph) m_actionGraph->noteListChanged();
}

OD_DB_DEFINE_FILING_NOTED(OdDbAssocNetwork, OdDbAssocAction, noteListChanged())

bool OdDbAssocNetwork::hasStateOutsideFile() const {
  return m_actionGraph != nullptr || OdDbAssocAction::hasStateOutsideFile();
}

std::size_t OdDbAssocNetwork::approximateSize() const {
  const std::size_t inGraph = m_actionGraph ? m_actionGraph->memoryBytes() : 0;
  return OdDbAssocAction::approximateSize() + m_actions.size() * sizeof(OdDbObjectId) + inGraph;
}

// Audit: the list holds actions of this network, and names are different.
void OdDbAssocNetwork::audit(OdDbAuditInfo* info) {
  OdDbAssocAction::audit(info);
  const OdDbObjectIdArray listed = m_actions;
  for (const OdDbObjectId& id : listed) {
    if (id.isErased()) continue;
    const OdRxClass* itsClass = id.objectClass();
    if (itsClass == nullptr) continue;
    if (!itsClass->isDerivedFrom(OdDbAssocAction::desc()) || id.ownerId() != objectId()) {
      info->printError(this, L"entry " + id.getHandle().ascii(), L"an action of the network",
                       L"no entry");
      if (!info->fixErrors()) continue;
      removeAction(id, /*alsoErase=*/false);
      info->errorsFixed();
      continue;
    }
    const OdDbAssocVariablePtr variable = id.openAs<OdDbAssocVariable>();
    if (variable.isNull() || variable->isAnonymous()) continue;
    const OdDbObjectId first = variableNamed(variable->name());
    if (first == id) continue;
    info->printError(this, L"variable name " + variable->name(), L"the only one of its kind",
                     L"a free name");
    if (!info->fixErrors()) continue;
    const OdDbOpenUpgrade upgrade(variable);
    variable->takeFreeName(*this);
    info->errorsFixed();
  }
}
