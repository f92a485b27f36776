// OdDbAssocGraph: an order of the nodes in which every edge leads forward.
//
// The idea (Pearce and Kelly, "A dynamic topological sort algorithm for directed acyclic graphs",
// 2006): each node has a number, all different, and edges lead from lower to higher numbers. An
// edge from x to y with x below y asks for nothing. Otherwise only nodes between y and x can be in
// the wrong order: those that y reaches with numbers up to that of x, and those that reach x with
// numbers down to that of y. Both sets are collected, and the numbers that they have are given out
// again, in rising order: first to what leads to x, then to what y leads to.
//
// It is right because nodes outside of the two sets keep their numbers, and within each set the old
// order is kept. If y reaches x, the edge would close a cycle; the path has only numbers between
// those of y and x, so the search finds it, and nothing was changed until then.
//
// It costs the two searches and a sort of what they found. The usual edge, to a variable that was
// made later, is one comparison.
#include <algorithm>

#include "platform/assoc/network_graph.h"

OdUInt32 OdDbAssocGraph::nextVisit() {
  if (++m_visit == 0) {
    for (Node& node : m_nodes) node.visit = 0;
    m_visit = 1;
  }
  return m_visit;
}

// With `cycle`, the nodes from `to` to `from` where the edge would close one.
bool OdDbAssocGraph::orderEdge(Index from, Index to, std::vector<Index>* cycle) {
  if (from == to) {
    if (cycle != nullptr) *cycle = {to};
    return false;
  }
  const OdUInt32 low = m_nodes[to].order;
  const OdUInt32 high = m_nodes[from].order;
  if (high < low) return true;

  std::vector<Index> forward{to};
  std::vector<std::size_t> parents{0};
  OdUInt32 visit = nextVisit();
  m_nodes[to].visit = visit;
  for (std::size_t i = 0; i < forward.size(); ++i) {
    for (const Output& output : m_nodes[forward[i]].outputs) {
      Node& next = m_nodes[output.node];
      if (next.visit == visit || next.order > high) continue;
      next.visit = visit;
      forward.push_back(output.node);
      parents.push_back(i);
      if (output.node != from) continue;
      if (cycle != nullptr) {
        for (std::size_t at = forward.size() - 1; at != 0; at = parents[at]) {
          cycle->push_back(forward[at]);
        }
        cycle->push_back(to);
        std::reverse(cycle->begin(), cycle->end());
      }
      return false;
    }
  }
  std::vector<Index> backward{from};
  visit = nextVisit();
  m_nodes[from].visit = visit;
  for (std::size_t i = 0; i < backward.size(); ++i) {
    for (const Input& input : m_nodes[backward[i]].inputs) {
      Node& next = m_nodes[input.node];
      if (next.visit == visit || next.order < low) continue;
      next.visit = visit;
      backward.push_back(input.node);
    }
  }

  const auto isBefore = [this](Index a, Index b) { return m_nodes[a].order < m_nodes[b].order; };
  std::sort(forward.begin(), forward.end(), isBefore);
  std::sort(backward.begin(), backward.end(), isBefore);
  std::vector<Index> moved = std::move(backward);
  moved.insert(moved.end(), forward.begin(), forward.end());
  std::vector<OdUInt32> numbers;
  numbers.reserve(moved.size());
  for (const Index node : moved) numbers.push_back(m_nodes[node].order);
  std::sort(numbers.begin(), numbers.end());
  for (std::size_t i = 0; i < moved.size(); ++i) m_nodes[moved[i]].order = numbers[i];
  return true;
}

// Numbers all nodes anew, each after its inputs, otherwise in the order of the nodes. A file can
// hold cycles: when only nodes with open inputs are left, the first of them is broken and loses
// its edges, which ends at the latest when every node has been.
void OdDbAssocGraph::renumber() {
  std::vector<std::size_t> open(m_nodes.size());
  std::vector<Index> ready;
  for (Index node = 0; node < m_nodes.size(); ++node) {
    open[node] = m_nodes[node].inputs.size();
    if (open[node] == 0) ready.push_back(node);
  }
  m_nextOrder = 0;
  Index firstLeft = 0;
  std::size_t next = 0;
  while (m_nextOrder < m_nodes.size()) {
    if (next == ready.size()) {
      while (open[firstLeft] == 0) ++firstLeft;
      open[firstLeft] = 0;
      unlinkInputs(firstLeft);
      breakNode(firstLeft);
      ready.push_back(firstLeft);
    }
    const Index node = ready[next++];
    m_nodes[node].order = m_nextOrder++;
    for (const Output& output : m_nodes[node].outputs) {
      if (open[output.node] > 0 && --open[output.node] == 0) ready.push_back(output.node);
    }
  }
}
