// OdDbAssocGraph: marks, and passes of evaluation.
//
// Marks. A node with a stored reason (it was edited, or an input has another value) and everything
// downstream of such nodes is marked. Marking is a walk in depth along the outputs that stops at
// marked nodes and lists each node when it leaves it: readers come before what they read. Lists of
// several walks one after the other keep that property, since the readers of a marked node are
// marked already; so the whole list, read from its end, is an order of evaluation, and no pass
// sorts anything. New edges can break the property: then the marks are derived anew.
//
// A pass has three phases. It computes: marked nodes in order, each once, and only those with a
// reason; one whose value changes gives its readers one. It records what undo needs in one record
// for all values. It tells reactors and runs actions that are no variables, when every value is
// final. What reactors change meanwhile is marked again and belongs to the next round.
//
// Nothing that a pass does depends on the number of variables that are not marked. Per marked one
// it costs the program, one record of undo and the marks. In a large network it waits for memory:
// so a pass asks for what the next nodes need while it computes the present one.
#include <algorithm>

#include "platform/assoc/assoc_network.h"
#include "platform/assoc/assoc_variable.h"
#include "platform/assoc/network_graph.h"
#include "platform/db/database.h"
#include "platform/db/database_impl.h"
#include "platform/db/open_upgrade.h"
#include "platform/db/reactor_calls.h"

namespace {

/// Rounds that reactors may cause by editing variables while they hear of values.
constexpr int kMaxRounds = 100;

/// How many nodes ahead a pass asks for memory: first for the node, then for what the node leads
/// to. One evaluation takes some 30 ns and a read of memory some 100.
constexpr std::size_t kFarAhead = 16;
constexpr std::size_t kAhead = 8;

}  // namespace

// ---- Marks

void OdDbAssocGraph::mark(Index root) {
  struct Step {
    Index node;
    OdUInt32 left;  // outputs, walked from the last one: the first reader is evaluated first
  };
  std::vector<Step> path;
  const auto enter = [&](Index index) {
    Node& node = m_nodes[index];
    if (node.has(kDirty)) return;
    node.set(kDirty);
    path.push_back({index, node.outputs.size()});
  };
  enter(root);
  while (!path.empty()) {
    Step& step = path.back();
    if (step.left > 0) {
      enter(m_nodes[step.node].outputs[--step.left].node);
    } else {
      m_dirty.push_back(step.node);
      ++m_numDirty;
      path.pop_back();
    }
  }
}

// The reasons are: stored ones, and broken nodes whose readers do not know it yet.
void OdDbAssocGraph::deriveMarks() {
  m_marksStale = false;
  for (const Index node : m_dirty) m_nodes[node].clear(kDirty | kNeedsEval);
  m_dirty.clear();
  m_numDirty = 0;
  std::vector<Index> reasons;
  reasons.swap(m_reasons);
  for (const Index node : reasons) {
    Node& waiting = m_nodes[node];
    if (!waiting.has(kAlive) || waiting.has(kNeedsEval)) continue;
    if (!oddbIsOutOfDate(waiting.action->m_status)) continue;
    waiting.set(kNeedsEval);
    m_reasons.push_back(node);
    mark(node);
  }
  for (const Index node : m_broken) {
    if (!m_nodes[node].has(kBroken)) continue;
    for (const Output& output : m_nodes[node].outputs) {
      if (m_nodes[output.node].has(kBroken | kFailed)) continue;
      m_nodes[output.node].set(kNeedsEval);
      mark(output.node);
    }
  }
}

void OdDbAssocGraph::clean(Index node) {
  m_nodes[node].clear(kDirty | kNeedsEval);
  --m_numDirty;
}

OdDbAssocStatus OdDbAssocGraph::statusOf(Index node) const {
  const Node& asked = m_nodes[node];
  if (!asked.has(kAlive)) return kAssocErased;
  if (asked.has(kBroken)) return m_isRetryDue ? kAssocChangedDirectly : kAssocUnresolved;
  if (asked.has(kStored) && asked.action->m_status != kAssocFailedToEvaluate) {
    return asked.action->m_status;
  }
  if (asked.has(kDirty)) return kAssocChangedTransitively;
  return asked.action->m_status;
}

// ---- A pass

OdDbAssocGraph::Pass::Pass(OdDbAssocGraph& graph, OdDbAssocEvaluationCallback* reportedTo)
    : callback(reportedTo), isDrawingHeard(!graph.m_network->database()->impl().reactors.empty()) {}

OdResult OdDbAssocGraph::prepare() {
  settleMarks();
  if (m_network->database()->isReadOnly()) return isAnyOutOfDate() ? eReadOnlyDatabase : eOk;
  checkUnits();
  if (m_isRetryDue && !m_broken.empty()) retryBroken();
  settleMarks();
  return eOk;
}

void OdDbAssocGraph::storeStatus(Index node, OdDbAssocStatus status, Pass& pass) {
  OdDbAssocAction* action = m_nodes[node].action;
  if (action->m_status == status) return;
  const bool isKept = !pass.changed.empty() && pass.changed.back().action == idOf(node);
  if (!isKept) pass.changed.push_back({idOf(node), m_values[node], action->m_status});
  action->m_status = status;
  mirrorStatus(node);
}

void OdDbAssocGraph::compute(Index index, Pass& pass) {
  Node& node = m_nodes[index];
  const bool isDue = node.has(kNeedsEval);
  clean(index);
  if (!isDue) return;
  if (!node.has(kVariable)) {
    pass.actions.push_back(idOf(index));
    return;
  }
  if (node.has(kFormula) && !node.has(kCompiled | kBroken)) compileNeeded(index);
  const bool wasFailed = node.has(kFailed);
  // Readers of an edited variable have not seen its value, whatever it was before.
  bool isNew = node.has(kStored) && node.action->m_status == kAssocChangedDirectly;
  bool isFailed = node.has(kBroken);
  if (node.has(kFormula) && !isFailed) {
    double value = 0.0;
    isFailed =
        (m_numBad > 0 && hasBadInput(node)) || !node.program.evaluate(m_values.data(), value);
    if (!isFailed && value != m_values[index]) {
      const OdDbAssocStatus status = node.has(kStored) ? node.action->m_status : kAssocUpToDate;
      pass.changed.push_back({idOf(index), m_values[index], status});
      m_values[index] = value;
      isNew = true;
      if (pass.isDrawingHeard || OdDbReactorCalls::hasReactors(node.action)) {
        pass.told.push_back(idOf(index));
      }
    }
  }
  if (!node.has(kBroken) && (node.has(kStored) || isFailed)) {
    storeStatus(index, isFailed ? kAssocFailedToEvaluate : kAssocUpToDate, pass);
  }
  if (pass.callback != nullptr) pass.evaluated.push_back(index);
  if (!isNew && !isFailed && !wasFailed) return;
  for (const Output& output : node.outputs) m_nodes[output.node].set(kNeedsEval);
}

// Undo gets the old values in one record of the network. Where the network's whole state was
// recorded in the same span, or it was created there, each variable gets its own.
void OdDbAssocGraph::record(const Pass& pass) {
  if (pass.changed.empty()) return;
  OdDbDatabaseImpl& impl = m_network->database()->impl();
  for (std::size_t i = 0; i < pass.changed.size(); ++i) {
    if (i + kAhead < pass.changed.size()) {
      __builtin_prefetch(pass.changed[i + kAhead].action.idRecord());
    }
    impl.markDirty(pass.changed[i].action.idRecord());
  }
  if (!impl.undo.isRecording()) return;
  if (OdDbDwgFiler* filer = m_network->beginPartialUndo(OdDbAssocNetwork::desc())) {
    OdDbValueRecord::beginList(filer, static_cast<OdInt32>(pass.changed.size()));
    for (const OdDbValueRecord& old : pass.changed) old.dwgOut(filer);
    return;
  }
  for (const OdDbValueRecord& old : pass.changed) {
    auto* action = static_cast<OdDbAssocAction*>(old.action.idRecord()->object);
    OdDbDwgFiler* filer = action->beginPartialUndo(OdDbAssocAction::desc());
    if (filer != nullptr) old.dwgOut(filer);
  }
}

void OdDbAssocGraph::finish(Pass& pass) {
  for (const OdDbObjectId& id : pass.told) {
    const OdDbObjectPtr told = id.openObject();
    if (told.isNull()) continue;
    const OdDbOpenUpgrade upgrade(told);
    told->assertWriteEnabled(/*autoUndo=*/false, /*recordModified=*/true);
  }
  for (const Index node : pass.evaluated) {
    if (m_nodes[node].action == nullptr) continue;
    pass.callback->actionEvaluated(idOf(node), m_nodes[node].action->m_status);
  }
  for (const OdDbObjectId& id : pass.actions) {
    const OdDbAssocActionPtr action = id.openAs<OdDbAssocAction>();
    if (action.isNull()) continue;
    const OdDbOpenUpgrade upgrade(action);
    action->runAlone(pass.callback);
  }
}

bool OdDbAssocGraph::isOfScope(Index index, OdDbAssocScope scope) const {
  const Node& node = m_nodes[index];
  const bool isVariable = node.has(kPlain);
  switch (scope) {
    case OdDbAssocScope::kAll:
      return true;
    case OdDbAssocScope::kValues:
      return isVariable || !node.inputs.empty() || node.has(kBroken);
    case OdDbAssocScope::kVariables:
      return isVariable;
  }
  return false;
}

// Of the marked nodes that a pass takes from the end of the list.
void OdDbAssocGraph::fetchAhead() const {
  const std::size_t left = m_dirty.size();
  if (left > kFarAhead) {
    const Node& node = m_nodes[m_dirty[left - kFarAhead]];
    __builtin_prefetch(&node);
    __builtin_prefetch(&node.inputs);
  }
  if (left > kAhead) {
    const Node& node = m_nodes[m_dirty[left - kAhead]];
    __builtin_prefetch(node.action);
    node.program.prefetch();
  }
}

// What is outside the scope reads no variable, so it waits for a reason of its own alone.
OdResult OdDbAssocGraph::evaluateAll(OdDbAssocEvaluationCallback* callback, OdDbAssocScope scope) {
  for (int round = 0; round < kMaxRounds; ++round) {
    const OdResult result = prepare();
    if (result != eOk || m_numDirty == 0) return result;
    Pass pass(*this, callback);
    std::vector<Index> waiting;
    bool isAnyDue = false;
    while (!m_dirty.empty()) {
      fetchAhead();
      const Index node = m_dirty.back();
      m_dirty.pop_back();
      if (!m_nodes[node].has(kDirty)) continue;
      if (isOfScope(node, scope)) {
        compute(node, pass);
        isAnyDue = true;
      } else {
        waiting.push_back(node);
      }
    }
    m_dirty.assign(waiting.rbegin(), waiting.rend());
    m_reasons = std::move(waiting);
    if (!isAnyDue) return eOk;
    record(pass);
    finish(pass);
  }
  return eLimitExceeded;
}

OdResult OdDbAssocGraph::evaluateNode(Index node, OdDbAssocEvaluationCallback* callback) {
  return evaluateNodes({node}, callback);
}

OdResult OdDbAssocGraph::evaluateFrom(Index node, OdDbAssocEvaluationCallback* callback,
                                      OdDbAssocScope scope) {
  settleMarks();
  std::vector<Index> downstream{node};
  const OdUInt32 visit = nextVisit();
  m_nodes[node].visit = visit;
  for (std::size_t i = 0; i < downstream.size(); ++i) {
    for (const Output& output : m_nodes[downstream[i]].outputs) {
      Node& reader = m_nodes[output.node];
      if (reader.visit == visit || !reader.has(kDirty)) continue;
      if (!isOfScope(output.node, scope)) continue;
      reader.visit = visit;
      downstream.push_back(output.node);
    }
  }
  return evaluateNodes(downstream, callback);
}

// The roots, and what they depend on as far as it is marked. Other readers of what has another
// value now get a stored reason.
OdResult OdDbAssocGraph::evaluateNodes(const std::vector<Index>& roots,
                                       OdDbAssocEvaluationCallback* callback) {
  const OdResult result = prepare();
  if (result != eOk) return result;
  std::vector<Index> order;
  std::vector<std::pair<Index, OdUInt32>> path;
  const OdUInt32 visit = nextVisit();
  const auto enter = [&](Index node) {
    if (m_nodes[node].visit == visit || !m_nodes[node].has(kDirty)) return;
    m_nodes[node].visit = visit;
    path.emplace_back(node, 0);
  };
  for (const Index root : roots) {
    enter(root);
    while (!path.empty()) {
      auto& [node, next] = path.back();
      const Inputs& inputs = m_nodes[node].inputs;
      if (next < inputs.size()) {
        enter(inputs[next++].node);
      } else {
        order.push_back(node);
        path.pop_back();
      }
    }
  }
  if (order.empty()) return eOk;
  Pass pass(*this, callback);
  for (const Index node : order) compute(node, pass);
  for (const Index node : order) {
    for (const Output& output : m_nodes[node].outputs) {
      const Node& reader = m_nodes[output.node];
      if (!reader.has(kDirty) || !reader.has(kNeedsEval) || reader.has(kStored | kBroken)) continue;
      storeStatus(output.node, kAssocChangedTransitively, pass);
    }
  }
  if (m_numDirty == 0) {
    m_dirty.clear();
    m_reasons.clear();
  }
  record(pass);
  finish(pass);
  return eOk;
}
