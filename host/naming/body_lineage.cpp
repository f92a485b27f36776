// What became of the subentities of a body through any number of changes.
#include "host/naming/body_lineage.h"

#include <algorithm>
#include <map>
#include <utility>

namespace vdm_host {

namespace {

void sortUnique(std::vector<OdUInt32>& items) {
  std::ranges::sort(items);
  items.erase(std::unique(items.begin(), items.end()), items.end());
}

// Images of images, after one more operation.
void goOn(SubentFate& fate, const std::vector<OdModelerFate>& next, std::vector<OdUInt32>& found) {
  found.clear();
  for (const OdUInt32 middle : fate.images) {
    if (middle > next.size()) continue;
    const OdModelerFate& step = next[middle - 1];
    found.insert(found.end(), step.images.begin(), step.images.end());
    fate.changed |= step.changed;
  }
  if (found.size() > 1) sortUnique(found);
  std::swap(fate.images, found);
}

}  // namespace

// ---- BodyTrace

// Forgets what does not lead to the body.
void BodyTrace::keepWaysTo(OdUInt32 body) {
  m_last = body;
  std::vector<bool> leads(m_bodies, false);
  leads[body] = true;
  std::vector<Step> kept;
  for (auto step = m_steps.rbegin(); step != m_steps.rend(); ++step) {
    if (!leads[step->to]) continue;
    leads[step->from] = true;
    kept.push_back(*step);
  }
  m_steps.assign(kept.rbegin(), kept.rend());
  OdUInt32 at = 0;
  for (const Step& step : m_steps) {
    m_isChain &= step.from == at;
    at = step.to;
  }
}

void BodyTrace::follow(OdModelerSubent subent, SubentFate& fate) const {
  fate.images.clear();
  fate.changed = false;
  if (!m_old->hasSubent(subent)) return;
  if (m_isChain) {
    followChain(subent, fate);
  } else {
    followWays(subent, fate);
  }
}

void BodyTrace::followChain(OdModelerSubent subent, SubentFate& fate) const {
  fate.images.push_back(subent.index);
  std::vector<OdUInt32> found;
  for (const Step& step : m_steps) {
    if (step.history == nullptr) continue;
    const std::vector<OdModelerFate>& next = step.history->fates(subent.type);
    if (fate.images.size() != 1) {
      goOn(fate, next, found);
      continue;
    }
    // Nearly always: it is one thing and stays one.
    const OdUInt32 index = fate.images.front();
    if (index > next.size()) {
      fate.images.clear();
      continue;
    }
    const OdModelerFate& one = next[index - 1];
    fate.images.assign(one.images.begin(), one.images.end());
    if (fate.images.size() > 1) sortUnique(fate.images);
    fate.changed |= one.changed;
  }
}

// Several ways lead from the old body to the new one: what came by each is united where they meet.
void BodyTrace::followWays(OdModelerSubent subent, SubentFate& fate) const {
  std::vector<SubentFate> reached(m_bodies);
  reached[0].images.push_back(subent.index);
  std::vector<OdUInt32> found;
  for (const Step& step : m_steps) {
    SubentFate next = reached[step.from];
    if (step.history != nullptr) goOn(next, step.history->fates(subent.type), found);
    SubentFate& meeting = reached[step.to];
    meeting.images.insert(meeting.images.end(), next.images.begin(), next.images.end());
    sortUnique(meeting.images);
    meeting.changed |= next.changed;
  }
  fate = std::move(reached[m_last]);
}

std::vector<OdUInt32> BodyTrace::sourceCounts(OdModelerSubentType type, OdUInt32 count) const {
  std::vector<OdUInt32> counts(count, 0);
  SubentFate fate;
  for (OdUInt32 index = 1; index <= m_old->numSubents(type); ++index) {
    follow({type, index}, fate);
    for (const OdUInt32 image : fate.images) {
      if (image > counts.size()) counts.resize(image, 0);
      ++counts[image - 1];
    }
  }
  return counts;
}

// ---- BodyLineage

BodyLineage::BodyLineage(std::span<const OdSolidChange> changes)
    : m_changes(changes.begin(), changes.end()) {
  for (std::size_t i = 0; i < m_changes.size(); ++i) {
    const OdSolidChange& change = m_changes[i];
    if (change.solid.isValid()) {
      const auto [place, isNew] =
          m_ends.try_emplace(change.solid, Ends{change.before, nullptr, {}});
      if (isNew) {
        m_solids.push_back(change.solid);
      } else {
        linkRereadBody(change, place->second);
      }
      place->second.after = change.after;
      place->second.changes.push_back(i);
    }
    noteUses(i);
  }
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

// Goes through the changes that the body and what comes of it take part in, in the order in which
// they happened, and notes each as a step.
std::optional<BodyTrace> BodyLineage::trace(const OdModelerBodyPtr& from,
                                            const OdModelerBodyPtr& to) const {
  if (!from || !to) return std::nullopt;
  /// A body that comes of the old one, and how by the first way that led there.
  struct Reached {
    OdUInt32 number = 0;
    OdGeMatrix3d motion;
    OdUInt32 operations = 0;
    bool blends = false;
  };
  BodyTrace trace;
  trace.m_old = from;
  std::unordered_map<const OdModelerBody*, Reached> reached;
  std::map<std::pair<std::size_t, std::size_t>, const OdModelerBody*> due;
  const auto schedule = [&](const OdModelerBody* body, std::size_t after) {
    const auto uses = m_uses.find(body);
    if (uses == m_uses.end()) return;
    for (const Use& use : uses->second) {
      if (use.change >= after) due.emplace(std::pair(use.change, use.input), body);
    }
  };
  reached.emplace(same(from.get()), Reached());
  schedule(same(from.get()), 0);
  while (!due.empty()) {
    const auto [key, body] = *due.begin();
    due.erase(due.begin());
    const OdSolidChange& change = m_changes[key.first];
    const OdModelerBody* const after = same(change.after.get());
    // A change that led to a body which was there already adds nothing.
    if (after == body) continue;
    Reached next = reached.at(body);
    BodyTrace::Step step{next.number, 0, nullptr};
    if (change.kind == OdSolidChangeKind::kMoved) {
      next.motion = change.transform * next.motion;
    } else {
      step.history = &change.history->inputs[key.second];
      ++next.operations;
      next.blends |= change.kind == OdSolidChangeKind::kBlend;
    }
    next.number = trace.m_bodies;
    const auto [place, isNew] = reached.try_emplace(after, next);
    if (isNew) {
      ++trace.m_bodies;
      schedule(after, key.first + 1);
    } else {
      place->second.blends |= next.blends;
    }
    step.to = place->second.number;
    trace.m_steps.push_back(step);
  }
  const auto found = reached.find(same(to.get()));
  if (found == reached.end()) return std::nullopt;
  trace.motion = found->second.motion;
  trace.operations = found->second.operations;
  trace.blends = found->second.blends;
  trace.keepWaysTo(found->second.number);
  return trace;
}

std::vector<OdUInt32> BodyLineage::facesFrom(const OdModelerBodyPtr& tool, OdUInt32 face,
                                             const OdModelerBodyPtr& to) const {
  SubentFate fate;
  if (const std::optional<BodyTrace> way = trace(tool, to))
    way->follow({OdModelerSubentType::kFace, face}, fate);
  return std::move(fate.images);
}

}  // namespace vdm_host
