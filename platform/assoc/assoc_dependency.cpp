// OdDbAssocDependency, OdDbAssocValueDependency: attachment, walks, filing.
#include "platform/assoc/assoc_dependency.h"

#include "platform/assoc/assoc_action.h"
#include "platform/assoc/assoc_variable.h"
#include "platform/assoc/network_graph.h"
#include "platform/db/database.h"
#include "platform/db/field_list.h"
#include "platform/db/open_upgrade.h"

OD_RX_DEFINE_DB(OdDbAssocDependency, OdDbObject, L"OdDbAssocDependency", 0, 0, 0,
                L"ASSOCDEPENDENCY", OdString())
OD_RX_DEFINE_DB(OdDbAssocValueDependency, OdDbAssocDependency, L"OdDbAssocValueDependency", 0, 0, 0,
                L"ASSOCVALUEDEPENDENCY", OdString())

namespace {

bool isOf(const OdDbObjectId& id, const OdRxClass* wanted) {
  const OdRxClass* itsClass = id.objectClass();
  return itsClass != nullptr && itsClass->isDerivedFrom(wanted);
}

bool isValueOfVariable(const OdDbAssocDependency* dependency, const OdDbObjectId& object) {
  return dependency->isKindOf(OdDbAssocValueDependency::desc()) &&
         isOf(object, OdDbAssocVariable::desc());
}

}  // namespace

// Queries.

OdDbObjectId OdDbAssocDependency::dependentOnObject() const { return read(m_dependentOn); }

OdDbObjectId OdDbAssocDependency::owningAction() const {
  const OdDbObjectId owner = ownerId();
  return isOf(owner, OdDbAssocAction::desc()) ? owner : OdDbObjectId::kNull;
}

bool OdDbAssocDependency::isReadDependency() const { return read(m_reads); }

bool OdDbAssocDependency::isWriteDependency() const { return read(m_writes); }

OdDbAssocStatus OdDbAssocDependency::status() const {
  assertReadEnabled();
  return !m_dependentOn.isNull() && m_dependentOn.isErased() ? kAssocErased : m_status;
}

const OdString& OdDbAssocValueDependency::valueName() const { return read(m_name); }

// Edits.

void OdDbAssocDependency::setIsReadDependency(bool reads) { assign(m_reads, reads); }

void OdDbAssocDependency::setIsWriteDependency(bool writes) { assign(m_writes, writes); }

void OdDbAssocDependency::setStatus(OdDbAssocStatus status) { assign(m_status, status); }

// Variables know the value dependencies on them by the graph of their network; every other object
// lists its dependencies as reactors.
OdResult OdDbAssocDependency::attachToObject(const OdDbObjectId& object) {
  if (object.isNull()) return eNullObjectId;
  if (database() == nullptr) return eObjectNotInDatabase;
  if (object.originalDatabase() != database()) return eWrongDatabase;
  if (!m_dependentOn.isNull()) return eAlreadyInDatabase;
  assertWriteEnabled();
  if (!isValueOfVariable(this, object)) {
    const OdDbObjectPtr attached = object.safeOpenObject();
    const OdDbOpenUpgrade upgrade(attached);
    attached->addPersistentReactor(objectId());
  }
  m_dependentOn = object;
  markAction();
  return eOk;
}

OdResult OdDbAssocDependency::detachFromObject() {
  if (m_dependentOn.isNull()) return eOk;
  assertWriteEnabled();
  if (!isValueOfVariable(this, m_dependentOn)) {
    const OdDbObjectPtr attached = m_dependentOn.openObject();
    if (!attached.isNull()) {
      const OdDbOpenUpgrade upgrade(attached);
      attached->removePersistentReactor(objectId());
    }
  }
  m_dependentOn.setNull();
  markAction();
  return eOk;
}

// What the object was changed to is for the action to find out.
void OdDbAssocDependency::markAction() {
  const OdDbAssocActionPtr action = owningAction().openAs<OdDbAssocAction>();
  if (action.isNull()) return;
  if (action->m_graph != nullptr) action->m_graph->noteChanged(action->m_node);
  if (!m_reads || oddbIsOutOfDate(action->m_status)) return;
  const OdDbOpenUpgrade upgrade(action);
  action->setStatus(kAssocChangedTransitively);
}

// Walks.

OdDbObjectId OdDbAssocDependency::getFirstDependencyOnObject(const OdDbObjectId& object) {
  const OdDbObjectPtr opened = object.openObject();
  if (opened.isNull()) return OdDbObjectId::kNull;
  if (auto* variable = OdDbAssocVariable::cast(opened).get(); variable != nullptr) {
    OdDbAssocGraph* graph = variable->graph();
    if (graph != nullptr && !graph->outputs(variable->m_node).empty()) {
      return graph->dependencyOf(graph->outputs(variable->m_node).front());
    }
  }
  for (const OdDbObjectId& reactor : opened->getPersistentReactors()) {
    if (isOf(reactor, OdDbAssocDependency::desc()) && !reactor.isErased()) return reactor;
  }
  return OdDbObjectId::kNull;
}

OdDbObjectId OdDbAssocDependency::nextDependencyOnObject() const {
  const OdDbObjectPtr object = dependentOnObject().openObject();
  if (object.isNull()) return OdDbObjectId::kNull;
  const OdDbAssocActionPtr action = owningAction().openAs<OdDbAssocAction>();
  OdDbAssocGraph* graph = action.isNull() ? nullptr : action->graph();
  if (graph != nullptr && isValueOfVariable(this, m_dependentOn)) {
    for (const OdDbAssocGraph::Input& input : graph->inputs(action->m_node)) {
      if (input.dependency != objectId().idRecord()) continue;
      const OdDbAssocGraph::Outputs& outputs = graph->outputs(input.node);
      const std::size_t next = std::size_t{input.place} + 1;
      return next < outputs.size() ? graph->dependencyOf(outputs[next]) : OdDbObjectId::kNull;
    }
    return OdDbObjectId::kNull;
  }
  bool isNext = false;
  for (const OdDbObjectId& reactor : object->getPersistentReactors()) {
    if (isNext && isOf(reactor, OdDbAssocDependency::desc()) && !reactor.isErased()) return reactor;
    isNext = isNext || reactor == objectId();
  }
  return OdDbObjectId::kNull;
}

// What an attached object reports.

void OdDbAssocDependency::modified(const OdDbObject* object) {
  if (isUndoing() || object->objectId() != m_dependentOn) return;
  markAction();
}

void OdDbAssocDependency::erased(const OdDbObject* object, bool) {
  if (isUndoing() || object->objectId() != m_dependentOn) return;
  markAction();
}

// Fields of a dependency:
//
//   field         binary          groups
//   version       uint8
//   dependent on  soft pointer    330
//   reads         bool            290
//   writes        bool            291
//   status        uint8           280    OdDbAssocStatus
//
// and of a value dependency after them:
//
//   version       uint8
//   name          string          300    as the owning expression mentions the variable

template <class Fields, class Self>
void OdDbAssocDependency::fields(Fields& fields, Self& self) {
  fields.version(1);
  fields.template pointer<OdDb::kSoftPointerRef>(330, self.m_dependentOn);
  fields.value(290, self.m_reads);
  fields.value(291, self.m_writes);
  fields.template number<OdUInt8>(280, self.m_status,
                                  [](OdUInt8 status) { return status <= kAssocUnresolved; });
}

template <class Fields, class Self>
void OdDbAssocValueDependency::fields(Fields& fields, Self& self) {
  fields.version(1);
  fields.value(300, self.m_name);
}

OD_DB_DEFINE_FILING(OdDbAssocDependency, OdDbObject)

OD_DB_DEFINE_FILING(OdDbAssocValueDependency, OdDbAssocDependency)
