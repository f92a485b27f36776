// OdDbAssocGraph: expressions: compiling, checking, putting in place.
//
// A program reads numbers by their nodes, so a text is compiled against the names of the network
// with the node as slot. Compiling needs the dimensions of what the text mentions, which come from
// other programs. Programs are compiled when they are first needed, definitions first, from a list
// instead of by recursion: a chain may be as long as memory allows.
#include <algorithm>

#include "platform/assoc/assoc_network.h"
#include "platform/assoc/assoc_variable.h"
#include "platform/assoc/network_graph.h"
#include "platform/assoc/variable_dimension.h"
#include "platform/db/block_table_record.h"
#include "platform/db/database.h"
#include "platform/db/open_upgrade.h"

/// The names of a network: all of them, or those that a reader has dependencies on. Programs of the
/// latter are compiled before, so that compiling never nests.
class OdDbAssocGraph::Scope : public OdExpression::NameScope {
 public:
  explicit Scope(OdDbAssocGraph& graph, Index reader = kNone) : m_graph(graph), m_reader(reader) {}

  std::optional<OdExpression::Binding> find(const OdString& name) override {
    const Index node = m_graph.nodeNamed(name);
    if (node == kNone) return std::nullopt;
    if (m_reader == kNone) {
      m_graph.compileNeeded(node);
    } else if (!reads(node)) {
      return std::nullopt;
    }
    if (m_graph.variable(node)->m_type == OdDb::kDwgText) {
      textName = name;
      return std::nullopt;
    }
    if (std::find(inputs.begin(), inputs.end(), node) == inputs.end()) inputs.push_back(node);
    const auto changed = std::find_if(dimensions.begin(), dimensions.end(),
                                      [node](const auto& entry) { return entry.first == node; });
    return OdExpression::Binding{
        node, changed == dimensions.end() ? m_graph.dimensionOf(node) : changed->second};
  }

  std::vector<Index> inputs;  ///< each once, in order of mention
  OdString textName;          ///< a variable that holds a text
  std::vector<std::pair<Index, OdExpression::Dimension>> dimensions;  ///< other than the present

 private:
  [[nodiscard]] bool reads(Index node) const {
    const Inputs& read = m_graph.m_nodes[m_reader].inputs;
    return std::any_of(read.begin(), read.end(),
                       [node](const Input& input) { return input.node == node; });
  }

  OdDbAssocGraph& m_graph;
  const Index m_reader;
};

namespace {

OdString messageOf(const OdExpression::Diagnostic& diagnostic, const OdString& textName) {
  if (textName.isEmpty()) return diagnostic.text();
  return OdString().format(L"column %d: ", diagnostic.column) + textName +
         L" holds a text, expected a number";
}

}  // namespace

OdDb::UnitsValue OdDbAssocGraph::presentUnit() const {
  const OdDbDatabase* database = m_network->database();
  const OdDbObjectId owner = m_network->objectThatOwnsNetworkInstance();
  if (owner == database->getModelSpaceId()) return database->getINSUNITS();
  const OdDbBlockTableRecordPtr block = owner.openAs<OdDbBlockTableRecord>();
  return block.isNull() ? OdDb::kUnitsUndefined : block->blockInsertUnits();
}

// The unit is that of the block which has the network; values that were computed in another one
// wait for evaluation.
void OdDbAssocGraph::checkUnits() {
  const OdDb::UnitsValue unit = presentUnit();
  if (unit == m_network->m_lengthUnit || m_network->database()->isReadOnly()) return;
  const OdDbObjectPtr opened = m_network->objectId().openObject();
  const OdDbOpenUpgrade upgrade(m_network);
  m_network->assertWriteEnabled();
  m_network->m_lengthUnit = unit;
  Pass pass(*this);
  for (Index node = 0; node < m_nodes.size(); ++node) {
    Node& formula = m_nodes[node];
    if (!formula.has(kFormula)) continue;
    formula.clear(kCompiled);
    if (!formula.has(kStored)) storeStatus(node, kAssocChangedTransitively, pass);
  }
  record(pass);
  m_marksStale = true;
}

OdExpression::Dimension OdDbAssocGraph::dimensionOf(Index node) const {
  return m_nodes[node].has(kCompiled) ? m_nodes[node].program.dimension()
                                      : OdExpression::Dimension();
}

OdExpression::Dimension OdDbAssocGraph::dimensionOfVariable(const OdDbAssocVariable& variable) {
  OdDbAssocGraph* network = variable.graph();
  if (network == nullptr) return {};
  network->compileNeeded(variable.m_node);
  return network->dimensionOf(variable.m_node);
}

OdExpression::Dimension oddbDimensionOf(const OdDbAssocVariable& variable) {
  return OdDbAssocGraph::dimensionOfVariable(variable);
}

void OdDbAssocGraph::compileNeeded(Index node) {
  const auto isOpen = [this](Index at) {
    return m_nodes[at].has(kFormula) && !m_nodes[at].has(kCompiled | kBroken);
  };
  std::vector<Index> waiting{node};
  while (!waiting.empty()) {
    const Index at = waiting.back();
    const std::size_t numWaiting = waiting.size();
    if (isOpen(at)) {
      for (const Input& input : m_nodes[at].inputs) {
        if (isOpen(input.node)) waiting.push_back(input.node);
      }
    }
    if (waiting.size() > numWaiting) continue;
    waiting.pop_back();
    if (isOpen(at)) compileNode(at);
  }
}

bool OdDbAssocGraph::compileNode(Index node) {
  Scope scope(*this, node);
  OdExpression::Diagnostic diagnostic;
  OdExpression::CompileOptions options;
  options.lengthUnit = m_network->m_lengthUnit;
  // The dependencies and the text mention the same variables.
  const bool isWhole = OdExpression::compile(variable(node)->m_expression, scope, options,
                                             m_nodes[node].program, diagnostic) &&
                       scope.inputs.size() == m_nodes[node].inputs.size();
  if (isWhole) {
    m_nodes[node].set(kCompiled);
  } else {
    breakNode(node);
  }
  return isWhole;
}

OdString OdDbAssocGraph::faultOf(Index node) {
  if (!m_nodes[node].has(kFormula) || presentUnit() != m_network->m_lengthUnit) return OdString();
  compileNeeded(node);
  if (!m_nodes[node].has(kBroken)) return OdString();
  OdDbAssocDefinition definition;
  OdString error;
  if (define(node, variable(node)->m_expression, definition, error) != eOk) return error;
  if (m_isRetryDue) return OdString();  // the next evaluation links it
  OdString names;
  for (const Input& input : m_nodes[node].inputs) {
    names += (names.isEmpty() ? OdString() : OdString(L", ")) + variable(input.node)->m_name;
  }
  return names.isEmpty() ? OdString(L"it has no dependencies")
                         : L"its dependencies are on " + names;
}

// ---- Checking

// In the direction of use: `a -> b -> c -> a` where a uses b, b uses c, and c uses a.
OdString OdDbAssocGraph::cycleText(Index node, const std::vector<Index>& cycle) const {
  OdString text = variable(node)->m_name;
  for (auto used = cycle.rbegin(); used != cycle.rend(); ++used) {
    text += L" -> " + variable(*used)->m_name;
  }
  return text;
}

OdResult OdDbAssocGraph::define(Index node, const OdString& text, OdDbAssocDefinition& definition,
                                OdString& error) {
  checkUnits();
  settle();
  if (!text.isEmpty()) {
    Scope scope(*this);
    OdExpression::Diagnostic diagnostic;
    OdExpression::CompileOptions options;
    options.lengthUnit = m_network->m_lengthUnit;
    if (!OdExpression::compile(text, scope, options, definition.program, diagnostic)) {
      error = messageOf(diagnostic, scope.textName);
      return eInvalidInput;
    }
    definition.inputs = std::move(scope.inputs);
  }
  for (const Index input : definition.inputs) {
    std::vector<Index> cycle;
    if (orderEdge(input, node, &cycle)) continue;
    error = L"expression refers to itself: " + cycleText(node, cycle);
    return eCircularReference;
  }
  const OdResult result = recompileDependents(node, definition, error);
  if (result != eOk) return result;
  definition.hasValue = !text.isEmpty();
  for (const Index input : definition.inputs) {
    if (m_nodes[input].has(kBroken | kFailed)) definition.hasValue = false;
  }
  definition.hasValue =
      definition.hasValue && definition.program.evaluate(m_values.data(), definition.value);
  return eOk;
}

// What depends on the variable is compiled anew while dimensions change, definitions first.
OdResult OdDbAssocGraph::recompileDependents(Index node, OdDbAssocDefinition& definition,
                                             OdString& error) {
  compileNeeded(node);
  if (m_nodes[node].outputs.empty() || definition.program.dimension() == dimensionOf(node)) {
    return eOk;
  }
  std::vector<std::pair<Index, OdExpression::Dimension>> changed{
      {node, definition.program.dimension()}};
  std::vector<Index> affected;
  const auto isAfter = [this](Index a, Index b) { return m_nodes[a].order > m_nodes[b].order; };
  const OdUInt32 visit = nextVisit();
  const auto addReaders = [&](Index of) {
    for (const Output& output : m_nodes[of].outputs) {
      Node& reader = m_nodes[output.node];
      if (reader.visit == visit || !reader.has(kFormula) || reader.has(kBroken)) continue;
      reader.visit = visit;
      affected.push_back(output.node);
      std::push_heap(affected.begin(), affected.end(), isAfter);
    }
  };
  addReaders(node);
  while (!affected.empty()) {
    std::pop_heap(affected.begin(), affected.end(), isAfter);
    const Index reader = affected.back();
    affected.pop_back();
    Scope scope(*this);
    scope.dimensions = changed;
    OdExpression::Program program;
    OdExpression::Diagnostic diagnostic;
    OdExpression::CompileOptions options;
    options.lengthUnit = m_network->m_lengthUnit;
    if (!OdExpression::compile(variable(reader)->m_expression, scope, options, program,
                               diagnostic)) {
      error = definition.program.dimension().text() + L" does not suit " +
              variable(reader)->m_name + L" = " + variable(reader)->m_expression + L": " +
              diagnostic.text();
      return eInvalidInput;
    }
    const bool differs = program.dimension() != dimensionOf(reader);
    if (differs) {
      changed.emplace_back(reader, program.dimension());
      addReaders(reader);
    }
    definition.recompiled.emplace_back(reader, std::move(program));
  }
  return eOk;
}

// ---- Putting in place

void OdDbAssocGraph::adopt(Index node, OdDbAssocDefinition&& definition,
                           const std::vector<OdDbIdRecord*>& dependencies) {
  unlinkInputs(node);
  m_nodes[node].inputs.reserve(dependencies.size());
  for (std::size_t i = 0; i < dependencies.size(); ++i) {
    addEdge(definition.inputs[i], node, dependencies[i]);
  }
  Node& defined = m_nodes[node];
  if (defined.has(kBroken) && !defined.has(kFailed)) --m_numBad;
  defined.clear(kBroken | kFormula);
  defined.set(kCompiled);
  if (!variable(node)->m_expression.isEmpty()) defined.set(kFormula);
  defined.program = std::move(definition.program);
  for (auto& [reader, program] : definition.recompiled) {
    m_nodes[reader].program = std::move(program);
    m_nodes[reader].set(kCompiled);
  }
  mirrorStatus(node);
  if (!m_broken.empty()) m_isRetryDue = true;
  // Marked nodes are listed in an order that the new edges may not keep.
  if (m_numDirty > 0) m_marksStale = true;
}

// A value that readers have not seen yet stays a reason for them, even if the next one equals it.
void OdDbAssocGraph::valueEdited(Index node, bool isSame) {
  OdDbAssocStatus& status = m_nodes[node].action->m_status;
  if (!isSame || status != kAssocChangedDirectly) {
    status = isSame ? kAssocChangedNoDifference : kAssocChangedDirectly;
  }
  mirrorStatus(node);
  if (m_marksStale) return;  // they will be derived from the stored status
  m_nodes[node].set(kNeedsEval);
  mark(node);
}

bool OdDbAssocGraph::hasBadInput(const Node& node) const {
  return std::any_of(node.inputs.begin(), node.inputs.end(), [this](const Input& input) {
    return m_nodes[input.node].has(kBroken | kFailed);
  });
}

// A broken expression is set again: it finds its names if they are there now.
void OdDbAssocGraph::retryBroken() {
  m_isRetryDue = false;
  const std::vector<Index> broken = m_broken;
  for (const Index node : broken) {
    if (!m_nodes[node].has(kBroken) || !m_nodes[node].has(kVariable)) continue;
    OdDbAssocDefinition definition;
    OdString error;
    const OdString text = variable(node)->m_expression;
    if (define(node, text, definition, error) != eOk) continue;
    const OdDbAssocVariablePtr healed = idOf(node).openAs<OdDbAssocVariable>();
    const OdDbOpenUpgrade upgrade(healed);
    healed->takeExpression(text, std::move(definition));
  }
  std::erase_if(m_broken, [this](Index node) { return !m_nodes[node].has(kBroken); });
}
