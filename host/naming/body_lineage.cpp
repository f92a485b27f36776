// What became of bodies and their subentities through any number of changes.
//
// The idea: the journal is read as a graph whose nodes are bodies and whose arrows are the inputs
// of changes. Bodies are immutable, so a body's address is its identity, and the graph has no
// cycles. trace() is a walk from one body along all arrows, by the order of the changes.
//
// The invariant of the walk: arrows are taken in the order in which their changes happened. A body
// is made by one change and used by later ones only, so every arrow into it is taken before the
// first arrow out of it. The steps of a trace are therefore in an order in which BodyTrace can
// follow them in one pass.
//
// The walk ends because each arrow is scheduled once, when its first body is reached for the first
// time. The cost is that of sorting the arrows that can be reached, O(n log n).
#include "host/naming/body_lineage.h"

#include <map>
#include <utility>

namespace vdm_host {

// ---- Reading the journal

BodyLineage::BodyLineage(std::span<const OdSolidChange> changes)
    : m_changes(changes.begin(), changes.end()) {
  for (std::size_t i = 0; i < m_changes.size(); ++i) {
    // First the ends: a body that was read again must be known as such when its uses are noted.
    if (m_changes[i].solid.isValid()) noteEnds(i);
    noteUses(i);
  }
}

void BodyLineage::noteEnds(std::size_t index) {
  const OdSolidChange& change = m_changes[index];
  const auto [place, isNew] = m_ends.try_emplace(change.solid, Ends{change.before, nullptr, {}});
  Ends& ends = place->second;
  if (isNew) {
    m_solids.push_back(change.solid);
  } else {
    linkRereadBody(change, ends);
  }
  ends.after = change.after;
  ends.changes.push_back(index);
}

void BodyLineage::linkRereadBody(const OdSolidChange& change, const Ends& ends) {
  if (!change.before || !ends.after || same(change.before.get()) == same(ends.after.get())) return;
  if (change.before->fingerprint() != ends.after->fingerprint()) return;
  m_same.emplace(change.before.get(), same(ends.after.get()));
}

void BodyLineage::noteUses(std::size_t change) {
  const OdSolidChange& row = m_changes[change];
  if (!row.after || !row.before || row.kind == OdSolidChangeKind::kReplaced) return;
  m_uses[same(row.before.get())].push_back({change, 0});
  for (std::size_t i = 0; i < row.tools.size(); ++i) {
    if (row.tools[i]) m_uses[same(row.tools[i].get())].push_back({change, i + 1});
  }
}

const OdModelerBody* BodyLineage::same(const OdModelerBody* body) const {
  const auto found = m_same.find(body);
  return found == m_same.end() ? body : found->second;
}

// ---- Queries

OdModelerBodyPtr BodyLineage::bodyBefore(const OdDbObjectId& solid) const {
  const auto found = m_ends.find(solid);
  return found == m_ends.end() ? nullptr : found->second.before;
}

OdModelerBodyPtr BodyLineage::bodyAfter(const OdDbObjectId& solid) const {
  const auto found = m_ends.find(solid);
  return found == m_ends.end() ? nullptr : found->second.after;
}

std::span<const std::size_t> BodyLineage::changesOf(const OdDbObjectId& solid) const {
  const auto found = m_ends.find(solid);
  return found == m_ends.end() ? std::span<const std::size_t>() : found->second.changes;
}

/// The walk of trace() from one body.
class BodyLineage::Walk {
 public:
  Walk(const BodyLineage& lineage, const OdModelerBodyPtr& from) : m_lineage(lineage) {
    m_trace.m_old = from;
    m_reached.emplace(lineage.same(from.get()), Reached());
    schedule(lineage.same(from.get()), 0);
  }

  std::optional<BodyTrace> to(const OdModelerBodyPtr& target) {
    while (!m_due.empty()) {
      const auto [use, body] = *m_due.begin();
      m_due.erase(m_due.begin());
      take(use, body);
    }
    const auto found = m_reached.find(m_lineage.same(target.get()));
    if (found == m_reached.end()) return std::nullopt;
    m_trace.motion = found->second.motion;
    m_trace.operations = found->second.operations;
    m_trace.blends = found->second.blends;
    m_trace.keepWaysTo(found->second.number);
    return std::move(m_trace);
  }

 private:
  /// A body that comes of the old one, and how by the first way that led there.
  struct Reached {
    OdUInt32 number = 0;
    OdGeMatrix3d motion;
    OdUInt32 operations = 0;
    bool blends = false;
  };
  using Arrow = std::pair<std::size_t, std::size_t>;  // change, input

  void schedule(const OdModelerBody* body, std::size_t after) {
    const auto uses = m_lineage.m_uses.find(body);
    if (uses == m_lineage.m_uses.end()) return;
    for (const Use& use : uses->second) {
      if (use.change >= after) m_due.emplace(Arrow(use.change, use.input), body);
    }
  }

  void take(const Arrow& arrow, const OdModelerBody* body) {
    const OdSolidChange& change = m_lineage.m_changes[arrow.first];
    const OdModelerBody* const after = m_lineage.same(change.after.get());
    // A change that gave back the body that it was given adds nothing.
    if (after == body) return;
    Reached next = m_reached.at(body);
    BodyTrace::Step step{next.number, 0, nullptr};
    if (change.kind == OdSolidChangeKind::kMoved) {
      next.motion = change.transform * next.motion;
    } else {
      step.history = &change.history->inputs[arrow.second];
      ++next.operations;
      next.blends |= change.kind == OdSolidChangeKind::kBlend;
    }
    next.number = m_trace.m_bodies;
    const auto [place, isNew] = m_reached.try_emplace(after, next);
    if (isNew) {
      ++m_trace.m_bodies;
      schedule(after, arrow.first + 1);
    } else {
      place->second.blends |= next.blends;
    }
    step.to = place->second.number;
    m_trace.m_steps.push_back(step);
  }

  const BodyLineage& m_lineage;
  BodyTrace m_trace;
  std::unordered_map<const OdModelerBody*, Reached> m_reached;
  std::map<Arrow, const OdModelerBody*> m_due;
};

std::optional<BodyTrace> BodyLineage::trace(const OdModelerBodyPtr& from,
                                            const OdModelerBodyPtr& to) const {
  if (!from || !to) return std::nullopt;
  return Walk(*this, from).to(to);
}

std::vector<OdUInt32> BodyLineage::facesFrom(const OdModelerBodyPtr& tool, OdUInt32 face,
                                             const OdModelerBodyPtr& to) const {
  SubentFate fate;
  if (const std::optional<BodyTrace> way = trace(tool, to)) {
    way->follow({OdModelerSubentType::kFace, face}, fate);
  }
  return std::move(fate.images);
}

}  // namespace vdm_host
