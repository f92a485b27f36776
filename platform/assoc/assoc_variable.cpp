// OdDbAssocVariable: names, expressions, values, filing.
#include "platform/assoc/assoc_variable.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "platform/assoc/assoc_dependency.h"
#include "platform/assoc/assoc_network.h"
#include "platform/assoc/network_graph.h"
#include "platform/db/audit_info.h"
#include "platform/db/database.h"
#include "platform/db/field_list.h"
#include "platform/db/open_upgrade.h"
#include "platform/expressions/names.h"

OD_RX_DEFINE_DB(OdDbAssocVariable, OdDbAssocAction, L"OdDbAssocVariable", 0, 0, 0, L"ASSOCVARIABLE",
                OdString())

// The graph reads the name of a variable that leaves it, so that has to come before the base's
// part.
OdDbAssocVariable::~OdDbAssocVariable() {
  if (m_graph != nullptr) m_graph->forget(m_node);
}

namespace {

// A damaged file may hold any number.
constexpr double kMinInt32 = std::numeric_limits<OdInt32>::min();
constexpr double kMaxInt32 = std::numeric_limits<OdInt32>::max();
constexpr int kMaxNameLength = OdExpression::kMaxNameLength;

OdResult refuse(OdResult result, const OdString& error, OdString* errorMessage) {
  if (errorMessage != nullptr) *errorMessage = error;
  return result;
}

}  // namespace

// Queries.

const OdString& OdDbAssocVariable::name() const { return read(m_name); }

OdString OdDbAssocVariable::expression() const {
  assertReadEnabled();
  if (m_graph != nullptr) m_graph->settle();  // texts of clones follow the names of clones
  return m_expression;
}

const OdString& OdDbAssocVariable::evaluatorId() const { return read(m_evaluatorId); }

bool OdDbAssocVariable::isAnonymous() const {
  assertReadEnabled();
  return isAnonymous(m_name);
}

OdDbEvalVariantPtr OdDbAssocVariable::value() const {
  assertReadEnabled();
  switch (m_type) {
    case OdDb::kDwgReal:
      return OdDbEvalVariant::init(number());
    case OdDb::kDwgInt32:
      return OdDbEvalVariant::init(
          static_cast<OdInt32>(std::clamp(number(), kMinInt32, kMaxInt32)));
    case OdDb::kDwgText:
      return OdDbEvalVariant::init(m_text);
    default:
      return {};
  }
}

double OdDbAssocVariable::numericValue() const {
  assertReadEnabled();
  return number();
}

double& OdDbAssocVariable::number() {
  return m_graph == nullptr ? m_number : m_graph->value(m_node);
}

const double& OdDbAssocVariable::number() const {
  return m_graph == nullptr ? m_number : m_graph->value(m_node);
}

// Names.

OdResult OdDbAssocVariable::checkNewName(const OdString& name, OdString& error) const {
  OdExpression::Diagnostic diagnostic;
  if (name.getLength() > kMaxNameLength) {
    error =
        OdString().format(L"name of %d characters, at most %d", name.getLength(), kMaxNameLength);
    return eInvalidKey;
  }
  if (isAnonymous(name)) return eOk;
  if (!OdExpression::checkName(name, diagnostic)) {
    error = L"name " + name + L": " + diagnostic.text();
    return eInvalidKey;
  }
  const OdDbAssocGraph* network = graph();
  if (network == nullptr) return eOk;
  const OdDbAssocGraph::Index present = network->nodeNamed(name);
  if (present == OdDbAssocGraph::kNone || present == m_node) return eOk;
  error = L"name " + name + L" is that of the variable " + network->variable(present)->m_name;
  return eDuplicateKey;
}

OdResult OdDbAssocVariable::setName(const OdString& name, bool updateReferencingExpressions,
                                    OdString* errorMessage, bool) {
  if (name == m_name) return eOk;
  OdString error;
  const OdResult checked = checkNewName(name, error);
  if (checked != eOk) return refuse(checked, error, errorMessage);
  OdDbAssocGraph* network = graph();
  const bool isUsed = network != nullptr && !network->outputs(m_node).empty();
  const bool follow = updateReferencingExpressions || name.iEquals(m_name);
  if (isUsed && follow && isAnonymous(name)) {
    return refuse(eInvalidKey, L"expressions use " + m_name + L", and cannot use the name " + name,
                  errorMessage);
  }
  assertWriteEnabled();
  const OdString oldName = m_name;
  if (network != nullptr) network->nameLeaves(m_node);
  m_name = name;
  if (network == nullptr) return eOk;
  network->nameComes(m_node);
  if (isUsed) renameInReaders(oldName, name, follow);
  return eOk;
}

// Readers follow, or lose the dependency and so are unresolved.
void OdDbAssocVariable::renameInReaders(const OdString& oldName, const OdString& newName,
                                        bool follow) {
  std::vector<std::pair<OdDbObjectId, OdDbObjectId>> readers;  // with their dependencies
  for (const OdDbAssocGraph::Output& output : m_graph->outputs(m_node)) {
    readers.emplace_back(m_graph->idOf(output.node), m_graph->dependencyOf(output));
  }
  for (const auto& [readerId, dependencyId] : readers) {
    const OdDbAssocVariablePtr reader = readerId.openAs<OdDbAssocVariable>();
    if (reader.isNull()) continue;  // an action that is no variable has no text
    const OdDbOpenUpgrade upgrade(reader);
    if (!follow) {
      reader->dropDependency(dependencyId);
      continue;
    }
    reader->assertWriteEnabled();
    reader->m_expression = OdExpression::renameInText(reader->m_expression, oldName, newName);
    const OdDbAssocValueDependencyPtr dependency = dependencyId.openAs<OdDbAssocValueDependency>();
    if (dependency.isNull()) continue;
    const OdDbOpenUpgrade upgradeDependency(dependency);
    dependency->assertWriteEnabled();
    dependency->m_name = newName;
    m_graph->textChanged(reader->m_node);
  }
}

void OdDbAssocVariable::dropDependency(const OdDbObjectId& dependency) {
  removeDependency(dependency);
  setStatus(kAssocUnresolved);
}

// A clone whose name is taken gets a number at the end of it.
void OdDbAssocVariable::takeFreeName(const OdDbAssocNetwork& network) {
  if (isAnonymous(m_name)) return;
  const OdDbAssocGraph& graph = network.actionGraph();
  const auto isFree = [&](const OdString& name) {
    const OdDbAssocGraph::Index present = graph.nodeNamed(name);
    return present == OdDbAssocGraph::kNone || graph.idOf(present) == objectId();
  };
  if (isFree(m_name)) return;
  OdString name;
  for (int i = 1; name.isEmpty() || !isFree(name); ++i) {
    name = m_name.left(kMaxNameLength - 12) + OdString().format(L"_%d", i);
  }
  assertWriteEnabled();
  if (m_graph != nullptr) m_graph->nameLeaves(m_node);
  m_name = name;
  if (m_graph != nullptr) m_graph->nameComes(m_node);
}

// Expressions.

// Outside of a network there are no names.
OdResult OdDbAssocVariable::defineAlone(const OdString& text, OdDbAssocDefinition& definition,
                                        OdString& error) const {
  if (text.isEmpty()) return eOk;
  OdExpression::EmptyScope scope;
  OdExpression::Diagnostic diagnostic;
  const OdExpression::CompileOptions options;
  if (!OdExpression::compile(text, scope, options, definition.program, diagnostic)) {
    error = diagnostic.text();
    return eInvalidInput;
  }
  definition.hasValue = definition.program.evaluate(nullptr, definition.value);
  return eOk;
}

OdResult OdDbAssocVariable::setExpression(const OdString& expression, const OdString& evaluatorId,
                                          bool, bool, OdString* errorMessage, bool) {
  OdDbAssocGraph* network = graph();
  const bool isBroken = network != nullptr && network->isBroken(m_node);
  if (expression == m_expression && evaluatorId == m_evaluatorId && !isBroken) return eOk;
  OdDbAssocDefinition definition;
  OdString error;
  const OdResult result = network == nullptr
                              ? defineAlone(expression, definition, error)
                              : network->define(m_node, expression, definition, error);
  if (result != eOk) return refuse(result, error, errorMessage);
  assertWriteEnabled();
  m_evaluatorId = evaluatorId;
  takeExpression(expression, std::move(definition));
  return eOk;
}

// The definition is checked; the object and then the graph take it.
void OdDbAssocVariable::takeExpression(const OdString& text, OdDbAssocDefinition&& definition) {
  assertWriteEnabled();
  const OdDb::DwgDataType oldType = m_type;
  const double oldNumber = number();
  m_expression = text;
  if (!text.isEmpty()) {
    m_type = OdDb::kDwgReal;
    m_text.empty();
  }
  if (definition.hasValue) number() = definition.value;
  const bool isSame = oldType == m_type && oldNumber == number();
  if (m_graph == nullptr) {
    m_status = kAssocChangedDirectly;
    return;
  }
  const std::vector<OdDbIdRecord*> dependencies = syncDependencies(definition.inputs);
  const bool readersSee = !isSame || !definition.recompiled.empty() ||
                          m_status == kAssocFailedToEvaluate || m_graph->isBroken(m_node);
  m_graph->adopt(m_node, std::move(definition), dependencies);
  m_graph->valueEdited(m_node, /*isSame=*/!readersSee);
}

// Dependencies on variables that are still mentioned stay, in the order of the new text; the others
// are erased.
std::vector<OdDbIdRecord*> OdDbAssocVariable::syncDependencies(
    const std::vector<OdDbAssocGraph::Index>& inputs) {
  std::vector<OdDbIdRecord*> dependencies;
  dependencies.reserve(inputs.size());
  const OdDbAssocGraph::Inputs& present = m_graph->inputs(m_node);
  for (const OdDbAssocGraph::Index input : inputs) {
    const auto known = std::find_if(present.begin(), present.end(),
                                    [input](const auto& edge) { return edge.node == input; });
    if (known != present.end()) {
      dependencies.push_back(known->dependency);
      continue;
    }
    const OdDbAssocValueDependencyPtr made = OdDbAssocValueDependency::createObject();
    made->m_dependentOn = m_graph->idOf(input);
    made->m_name = m_graph->variable(input)->m_name;
    dependencies.push_back(database()->addOdDbObject(made.get(), objectId()).idRecord());
  }
  const OdDbObjectIdArray old = m_dependencies;
  m_dependencies = OdDbObjectIdArray();
  m_dependencies.reserve(static_cast<OdUInt32>(dependencies.size()));
  for (OdDbIdRecord* dependency : dependencies) m_dependencies.append(OdDbObjectId(dependency));
  for (const OdDbObjectId& id : old) {
    if (id.isErased() || m_dependencies.contains(id)) continue;
    const OdDbAssocValueDependencyPtr stale = id.openAs<OdDbAssocValueDependency>();
    if (stale.isNull()) {
      m_dependencies.append(id);  // a dependency of another kind is none of the expression's
      continue;
    }
    const OdDbOpenUpgrade upgrade(stale);
    stale->erase();
  }
  return dependencies;
}

// Values.

OdResult OdDbAssocVariable::setValue(const OdDbEvalVariant* value) {
  if (value == nullptr) return eInvalidInput;
  const OdDb::DwgDataType type = value->getType();
  const double newNumber = value->getAsDouble();
  if (type == OdDb::kDwgNull || !std::isfinite(newNumber)) return eInvalidInput;
  OdDbAssocGraph* network = graph();
  OdDbAssocDefinition plain;
  if (network != nullptr) {
    const bool isUsed = !network->outputs(m_node).empty();
    if (!network->inputs(m_node).empty() || network->isBroken(m_node)) return eInvalidInput;
    if (type == OdDb::kDwgText && isUsed) return eInvalidInput;
    OdString error;
    if (!m_expression.isEmpty()) {
      const OdResult result = network->define(m_node, OdString(), plain, error);
      if (result != eOk) return result;
    }
  }
  const OdString newText = type == OdDb::kDwgText ? value->getString() : OdString();
  const bool isSame = type == m_type && newNumber == number() && newText == m_text;
  if (isSame && m_expression.isEmpty()) return eOk;
  assertWriteEnabled();
  if (!m_expression.isEmpty()) takeExpression(OdString(), std::move(plain));
  m_type = type;
  m_text = newText;
  number() = newNumber;
  if (m_graph == nullptr) {
    m_status = kAssocChangedDirectly;
  } else {
    m_graph->valueEdited(m_node, isSame);
  }
  return eOk;
}

// Reactors: those of the object, and the dependencies of what reads the variable.

bool OdDbAssocVariable::hasPersistentReactor(const OdDbObjectId& reactor) const {
  if (OdDbAssocAction::hasPersistentReactor(reactor)) return true;
  const OdRxClass* itsClass = reactor.objectClass();
  if (itsClass == nullptr || !itsClass->isDerivedFrom(OdDbAssocValueDependency::desc())) {
    return false;
  }
  return getPersistentReactors().contains(reactor);
}

OdDbObjectIdArray OdDbAssocVariable::getPersistentReactors() const {
  OdDbObjectIdArray reactors = OdDbAssocAction::getPersistentReactors();
  const OdDbAssocGraph* network = database() == nullptr ? nullptr : graph();
  if (network == nullptr) return reactors;
  const OdDbAssocGraph::Outputs& outputs = network->outputs(m_node);
  reactors.reserve(static_cast<OdUInt32>(reactors.size() + outputs.size()));
  for (const OdDbAssocGraph::Output& output : outputs) {
    reactors.append(network->dependencyOf(output));
  }
  return reactors;
}

std::size_t OdDbAssocVariable::approximateSize() const {
  const int characters = m_name.getLength() + m_expression.getLength() + m_evaluatorId.getLength() +
                         m_text.getLength();
  return OdDbAssocAction::approximateSize() + static_cast<std::size_t>(characters);
}

void OdDbAssocVariable::audit(OdDbAuditInfo* info) {
  OdDbAssocAction::audit(info);
  OdDbAssocGraph* network = graph();
  if (network == nullptr || m_expression.isEmpty()) return;
  const OdString fault = network->faultOf(m_node);
  if (!fault.isEmpty()) {
    info->printError(this, m_name + L" = " + m_expression + L" (" + fault + L")",
                     L"an expression of the network", L"nothing");
  }
}

// Fields:
//
//   field         binary    groups
//   version       uint8
//   name          string    300
//   expression    string    301
//   evaluator     string    302
//   type          uint8     280    OdDb::DwgDataType
//   number        double    40     of types 1 and 2: lengths in units of the block, radians
//   text          string    303    of type 5

template <class Fields, class Self>
void OdDbAssocVariable::fields(Fields& fields, Self& self) {
  const auto isType = [](OdUInt8 type) {
    return type <= OdDb::kDwgInt32 || type == OdDb::kDwgText;
  };
  fields.version(1);
  fields.value(300, self.m_name,
               [](const OdString& name) { return name.getLength() <= kMaxNameLength; });
  fields.value(301, self.m_expression);
  fields.value(302, self.m_evaluatorId);
  fields.template number<OdUInt8>(280, self.m_type, isType);
  fields.value(40, self.number(), [](double number) { return std::isfinite(number); });
  fields.value(303, self.m_text);
}

OD_DB_DEFINE_FILING(OdDbAssocVariable, OdDbAssocAction)
