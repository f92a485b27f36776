// OdDbAssocGraph: nodes, names and links, made from the filed objects.
//
// Nodes that something happened to wait in a queue. relinkQueued() takes all of them apart first
// and links them after that: what undo or a clone changed is sound as a whole only, and an edge
// that is going away could otherwise close a cycle with one that is coming. Each node of the queue
// is linked once, and an edge costs a constant time, so the work is proportional to what was
// changed.
#include "platform/assoc/network_graph.h"

#include <algorithm>

#include "platform/assoc/assoc_dependency.h"
#include "platform/assoc/assoc_network.h"
#include "platform/assoc/assoc_variable.h"
#include "platform/base/case_compare.h"
#include "platform/db/database_impl.h"
#include "platform/db/internal_access.h"
#include "platform/expressions/names.h"

namespace {

/// An object is filled by the runtime itself, and differs from its file then.
template <class Change>
void changeQuietly(OdDbObject* object, Change&& change) {
  const OdDbInternalWrite internalWrite(object);
  change();
  OdDbDatabaseImpl::of(object->objectId().idRecord()).markDirty(object->objectId().idRecord());
}

bool isReadOnly(const OdDbObject* object) { return object->database()->isReadOnly(); }

}  // namespace

OdDbAssocGraph::~OdDbAssocGraph() {
  for (Index node = 0; node < m_nodes.size(); ++node) {
    OdDbAssocAction* action = m_nodes[node].action;
    if (action == nullptr) continue;
    if (m_nodes[node].has(kVariable)) variable(node)->m_number = m_values[node];
    action->m_graph = nullptr;
  }
}

// What objects report.

void OdDbAssocGraph::noteChanged(Index node) { enqueue(node); }

void OdDbAssocGraph::noteStatusChanged(Index node) {
  mirrorStatus(node);
  m_marksStale = true;
}

void OdDbAssocGraph::noteSwapped() {
  m_listStale = true;
  for (Index node = 0; node < m_nodes.size(); ++node) {
    if (m_nodes[node].action != nullptr) enqueue(node);
  }
}

void OdDbAssocGraph::forget(Index node) { detach(node); }

void OdDbAssocGraph::enqueue(Index node) {
  if (m_nodes[node].has(kQueued)) return;
  m_nodes[node].set(kQueued);
  m_queue.push_back(node);
}

void OdDbAssocGraph::settle() {
  if (m_isSettling) return;
  const OdDbBusyMark settling(m_isSettling);
  if (m_listStale) syncList();
  if (!m_queue.empty()) relinkQueued();
}

void OdDbAssocGraph::settleMarks() {
  settle();
  if (m_marksStale && !m_isSettling) deriveMarks();
}

// Nodes.

OdDbAssocVariable* OdDbAssocGraph::variable(Index node) const {
  return static_cast<OdDbAssocVariable*>(m_nodes[node].action);
}

void OdDbAssocGraph::noteListed(const OdDbObjectId& id, bool listed) {
  if (m_listStale) return;
  const OdDbAssocActionPtr action = openListed(id);
  if (action.isNull()) return;
  if (listed) {
    nodeOf(action.get());
  } else if (action->m_graph == this) {
    detach(action->m_node);
  }
}

void OdDbAssocGraph::syncList() {
  m_listStale = false;
  const OdUInt32 visit = nextVisit();
  const OdDbObjectIdArray& listed = m_network->m_actions;
  m_nodes.reserve(listed.size());
  m_values.reserve(listed.size());
  for (const OdDbObjectId& id : listed) {
    const OdDbAssocActionPtr action = openListed(id);
    if (action.isNull()) continue;
    Node& node = m_nodes[nodeOf(action.get())];
    node.visit = visit;
    node.id = id.idRecord();
  }
  for (Index node = 0; node < m_nodes.size(); ++node) {
    if (m_nodes[node].action != nullptr && m_nodes[node].visit != visit) detach(node);
  }
}

// In small steps: doubling would leave half of a large graph unused.
void OdDbAssocGraph::makeRoom() {
  if (m_nodes.size() < m_nodes.capacity()) return;
  const std::size_t capacity = m_nodes.size() + m_nodes.size() / 8 + 8;
  m_nodes.reserve(capacity);
  m_values.reserve(capacity);
}

OdDbAssocActionPtr OdDbAssocGraph::openListed(const OdDbObjectId& id) {
  if (id.isErased() && !id.isResident()) return {};
  return id.openAs<OdDbAssocAction>(OdDb::kForRead, /*openErased=*/true);
}

OdDbAssocGraph::Index OdDbAssocGraph::nodeOf(OdDbAssocAction* action) {
  if (action->m_graph == this) return action->m_node;
  if (action->m_graph != nullptr) action->m_graph->detach(action->m_node);
  return attach(action);
}

OdDbAssocGraph::Index OdDbAssocGraph::attach(OdDbAssocAction* action) {
  Index node = static_cast<Index>(m_nodes.size());
  if (m_free.empty()) {
    makeRoom();
    m_nodes.emplace_back();
    m_values.push_back(0.0);
  } else {
    node = m_free.back();
    m_free.pop_back();
    m_nodes[node] = Node();
  }
  Node& added = m_nodes[node];
  added.action = action;
  added.id = action->objectId().idRecord();
  added.order = m_nextOrder++;
  if (auto* variable = OdDbAssocVariable::cast(action).get(); variable != nullptr) {
    added.set(action->isA() == OdDbAssocVariable::desc() ? kVariable | kPlain : kVariable);
    m_values[node] = variable->m_number;
  }
  action->m_graph = this;
  action->m_node = node;
  enqueue(node);
  return node;
}

void OdDbAssocGraph::detach(Index node) {
  while (!m_nodes[node].outputs.empty()) {
    const Index reader = m_nodes[node].outputs.back().node;
    unlinkInputs(reader);
    enqueue(reader);
  }
  unlinkInputs(node);
  dropName(node);
  Node& left = m_nodes[node];
  if (left.has(kBroken | kFailed)) --m_numBad;
  if (left.has(kDirty)) --m_numDirty;
  if (left.has(kVariable)) variable(node)->m_number = m_values[node];
  left.action->m_graph = nullptr;
  left = Node();
  m_free.push_back(node);
  m_marksStale = true;
}

// Names.

OdDbAssocGraph::Index OdDbAssocGraph::nodeNamed(const OdString& name) const {
  const auto found = m_names.find(odCaseFold(name));
  return found == m_names.end() ? kNone : found->second;
}

// The index has the node under the name that its object has now.
bool OdDbAssocGraph::keepsName(Index node) const {
  return m_nodes[node].has(kHasName) && !OdDbObjectId(m_nodes[node].id).isErased() &&
         nodeNamed(variable(node)->m_name) == node;
}

void OdDbAssocGraph::putName(Index node) {
  if (!m_nodes[node].has(kVariable) || OdDbAssocVariable::isAnonymous(variable(node)->m_name))
    return;
  const bool isFirst = m_names.try_emplace(odCaseFold(variable(node)->m_name), node).second;
  if (isFirst) {
    m_nodes[node].set(kHasName);
    if (!m_broken.empty()) m_isRetryDue = true;
  } else {
    m_hasDoubleNames = true;
  }
}

// The name of the index is searched for by its node: the object may have another one meanwhile.
void OdDbAssocGraph::dropName(Index node) {
  if (!m_nodes[node].has(kHasName)) return;
  m_nodes[node].clear(kHasName);
  const auto known = m_names.find(odCaseFold(variable(node)->m_name));
  if (known != m_names.end() && known->second == node) {
    m_names.erase(known);
  } else {
    std::erase_if(m_names, [node](const auto& entry) { return entry.second == node; });
  }
  if (!m_hasDoubleNames) return;
  m_hasDoubleNames = false;
  for (Index other = 0; other < m_nodes.size(); ++other) {
    if (other != node && m_nodes[other].has(kAlive) && !m_nodes[other].has(kHasName)) {
      putName(other);
    }
  }
}

// Links.

void OdDbAssocGraph::mirrorStatus(Index node) {
  Node& mirrored = m_nodes[node];
  const OdDbAssocStatus status = mirrored.action->m_status;
  const bool wasBad = mirrored.has(kBroken | kFailed);
  mirrored.clear(kFailed | kStored);
  if (status != kAssocUpToDate) mirrored.set(kStored);
  if (status == kAssocFailedToEvaluate) mirrored.set(kFailed);
  if (oddbIsOutOfDate(status)) m_reasons.push_back(node);
  m_numBad +=
      static_cast<std::size_t>(mirrored.has(kBroken | kFailed)) - static_cast<std::size_t>(wasBad);
}

void OdDbAssocGraph::breakNode(Index node) {
  Node& broken = m_nodes[node];
  if (broken.has(kBroken)) return;
  if (!broken.has(kFailed)) ++m_numBad;
  broken.set(kBroken);
  broken.clear(kCompiled);
  m_broken.push_back(node);
  m_marksStale = true;
}

void OdDbAssocGraph::relinkQueued() {
  for (const Index node : m_broken) {
    if (m_nodes[node].has(kBroken)) enqueue(node);
  }
  std::vector<Index> queue;
  queue.swap(m_queue);
  // The queue grows while it is walked: what reads a node that is erased now is broken.
  for (std::size_t i = 0; i < queue.size(); ++i) {
    const Index node = queue[i];
    if (m_nodes[node].action == nullptr) continue;  // left since it was queued
    if (!keepsName(node)) dropName(node);
    unlinkInputs(node);
    Node& changed = m_nodes[node];
    if (changed.has(kBroken) && !changed.has(kFailed)) --m_numBad;
    changed.clear(kBroken | kCompiled | kFormula | kAlive);
    if (!OdDbObjectId(changed.id).isErased()) {
      changed.set(kAlive);
    } else {
      for (const Output& output : changed.outputs) enqueue(output.node);
    }
    queue.insert(queue.end(), m_queue.begin(), m_queue.end());
    m_queue.clear();
  }
  // A place that was free meanwhile can be in the queue twice.
  std::erase_if(queue, [this](Index node) {
    const bool isFirst = m_nodes[node].has(kQueued);
    m_nodes[node].clear(kQueued);
    return !isFirst;
  });
  for (const Index node : queue) {
    if (m_nodes[node].has(kAlive) && !m_nodes[node].has(kHasName)) putName(node);
  }
  m_broken.clear();  // they are in the queue
  const bool isBulk = queue.size() * 4 > m_nodes.size();
  for (const Index node : queue) {
    mirrorStatus(node);
    if (m_nodes[node].has(kAlive)) link(node, /*keepsOrder=*/!isBulk);
  }
  if (isBulk) renumber();
  m_marksStale = true;
  for (const Index node : m_broken) m_isRetryDue = m_isRetryDue || hasItsNames(node);
}

// The names of a broken expression are there: it may link if it is set again.
bool OdDbAssocGraph::hasItsNames(Index node) const {
  if (!m_nodes[node].has(kVariable)) return false;
  std::vector<OdExpression::Mention> mentions;
  OdExpression::Diagnostic diagnostic;
  if (!OdExpression::listNames(variable(node)->m_expression, mentions, diagnostic)) return false;
  return std::all_of(mentions.begin(), mentions.end(),
                     [this](const auto& mention) { return nodeNamed(mention.name) != kNone; });
}

OdDbAssocVariable* OdDbAssocGraph::asVariable(const OdDbObjectId& id, Index& node) const {
  const OdDbIdRecord* idRecord = id.idRecord();
  if (idRecord == nullptr || idRecord->object == nullptr || id.isErased()) return nullptr;
  OdDbAssocVariable* found = OdDbAssocVariable::cast(idRecord->object).get();
  if (found == nullptr || found->m_graph != this) return nullptr;
  node = found->m_node;
  return m_nodes[node].has(kAlive) ? found : nullptr;
}

void OdDbAssocGraph::link(Index node, bool keepsOrder) {
  OdDbAssocAction* action = m_nodes[node].action;
  m_nodes[node].inputs.reserve(action->m_dependencies.size());
  std::vector<std::pair<OdString, OdString>> renamed;
  for (const OdDbObjectId& id : static_cast<const OdDbObjectIdArray&>(action->m_dependencies)) {
    if (id.ownerId() != action->objectId()) continue;  // a clone whose ids are not yet its own
    const OdDbAssocValueDependencyPtr dependency = id.openAs<OdDbAssocValueDependency>();
    if (dependency.isNull()) continue;
    Index from = kNone;
    const OdDbAssocVariable* read = asVariable(dependency->m_dependentOn, from);
    if (read == nullptr || (keepsOrder && !orderEdge(from, node))) {
      breakNode(node);
      continue;
    }
    if (!dependency->m_name.isEmpty() && dependency->m_name != read->m_name) {
      renamed.emplace_back(dependency->m_name, read->m_name);
      if (!isReadOnly(action)) {
        changeQuietly(dependency.get(), [&] { dependency->m_name = read->m_name; });
      }
    }
    addEdge(from, node, id.idRecord());
  }
  if (action->m_status == kAssocUnresolved) breakNode(node);
  if (!m_nodes[node].has(kVariable)) return;
  OdDbAssocVariable* reader = variable(node);
  if (!renamed.empty() && !isReadOnly(action)) followNames(reader, renamed);
  if (reader->m_expression.isEmpty()) return;
  m_nodes[node].set(kFormula);
  reader->m_type = OdDb::kDwgReal;
}

// A clone got another name where its own was taken: the text of a clone that uses it follows. The
// names change at once, so that one that becomes another one's old name is not taken for it.
void OdDbAssocGraph::followNames(OdDbAssocVariable* variable,
                                 const std::vector<std::pair<OdString, OdString>>& names) {
  std::vector<OdExpression::Mention> mentions;
  OdExpression::Diagnostic diagnostic;
  if (!OdExpression::listNames(variable->m_expression, mentions, diagnostic)) return;
  OdString text = variable->m_expression;
  for (auto mention = mentions.rbegin(); mention != mentions.rend(); ++mention) {
    for (const auto& [oldName, newName] : names) {
      if (!mention->name.iEquals(oldName)) continue;
      const int at = mention->column - 1;
      text = text.left(at) + newName + text.mid(at + mention->name.getLength());
      break;
    }
  }
  changeQuietly(variable, [&] { variable->m_expression = text; });
}

void OdDbAssocGraph::addEdge(Index from, Index to, OdDbIdRecord* dependency) {
  Outputs& outputs = m_nodes[from].outputs;
  Inputs& inputs = m_nodes[to].inputs;
  inputs.push_back({from, outputs.size(), dependency});
  outputs.push_back({to, inputs.size() - 1});
}

void OdDbAssocGraph::unlinkInputs(Index node) {
  for (const Input& input : m_nodes[node].inputs) {
    Outputs& outputs = m_nodes[input.node].outputs;
    const Output moved = outputs.back();
    outputs[input.place] = moved;
    m_nodes[moved.node].inputs[moved.input].place = input.place;
    outputs.pop_back();
  }
  m_nodes[node].inputs.clear();
}

std::size_t OdDbAssocGraph::memoryBytes() const {
  std::size_t bytes = m_nodes.capacity() * sizeof(Node) + m_values.capacity() * sizeof(double);
  for (const Node& node : m_nodes) {
    bytes += node.inputs.memoryBytes() + node.outputs.memoryBytes();
    bytes += node.program.memoryBytes() - sizeof(node.program);
  }
  return bytes + m_names.size() * (sizeof(OdString) + 4 * sizeof(void*));
}
