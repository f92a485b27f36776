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

// One step of a trace: from the state before a change to the state after it.
BodyTrace traceThrough(const BodyTrace& before, const OdSolidChange& change, std::size_t input) {
  BodyTrace after = before;
  if (change.kind == OdSolidChangeKind::kMoved) {
    after.motion = change.transform * before.motion;
    return after;
  }
  const OdModelerInputHistory& history = change.history->inputs[input];
  after.faces = before.faces.then(history.faces);
  after.edges = before.edges.then(history.edges);
  after.vertices = before.vertices.then(history.vertices);
  ++after.operations;
  after.blends |= change.kind == OdSolidChangeKind::kBlend;
  return after;
}

void uniteInto(BodyTrace& trace, const BodyTrace& other) {
  trace.faces = trace.faces.unitedWith(other.faces);
  trace.edges = trace.edges.unitedWith(other.edges);
  trace.vertices = trace.vertices.unitedWith(other.vertices);
  trace.blends |= other.blends;
}

using FaceSet = std::vector<OdUInt32>;

FaceSet facesThrough(const FaceSet& before, const OdSolidChange& change, std::size_t input) {
  if (change.kind == OdSolidChangeKind::kMoved) return before;
  const std::vector<OdModelerFate>& fates = change.history->inputs[input].faces;
  FaceSet after;
  for (const OdUInt32 face : before) {
    if (face > fates.size()) continue;
    const std::vector<OdUInt32>& images = fates[face - 1].images;
    after.insert(after.end(), images.begin(), images.end());
  }
  sortUnique(after);
  return after;
}

void uniteInto(FaceSet& faces, const FaceSet& other) {
  faces.insert(faces.end(), other.begin(), other.end());
  sortUnique(faces);
}

}  // namespace

// ---- FateList

FateList FateList::identity(OdUInt32 count) {
  FateList list;
  list.m_images.resize(count);
  list.m_begin.resize(std::size_t{count} + 1);
  for (OdUInt32 i = 0; i < count; ++i) {
    list.m_images[i] = i + 1;
    list.m_begin[i + 1] = i + 1;
  }
  list.m_changed.assign(count, 0);
  return list;
}

std::span<const OdUInt32> FateList::images(OdUInt32 index) const {
  if (index < 1 || index > size()) return {};
  return std::span(m_images).subspan(m_begin[index - 1], m_begin[index] - m_begin[index - 1]);
}

void FateList::add(std::vector<OdUInt32>& images, bool isChanged) {
  if (images.size() > 1) sortUnique(images);
  m_images.insert(m_images.end(), images.begin(), images.end());
  m_begin.push_back(static_cast<OdUInt32>(m_images.size()));
  m_changed.push_back(isChanged ? 1 : 0);
}

FateList FateList::then(std::span<const OdModelerFate> next) const {
  FateList result;
  result.m_begin.reserve(m_begin.size());
  result.m_images.reserve(m_images.size());
  result.m_changed.reserve(m_changed.size());
  std::vector<OdUInt32> found;
  for (OdUInt32 index = 1; index <= size(); ++index) {
    found.clear();
    bool isChanged = changed(index);
    for (const OdUInt32 middle : images(index)) {
      if (middle > next.size()) continue;
      const OdModelerFate& fate = next[middle - 1];
      found.insert(found.end(), fate.images.begin(), fate.images.end());
      isChanged |= fate.changed;
    }
    result.add(found, isChanged);
  }
  return result;
}

FateList FateList::unitedWith(const FateList& other) const {
  FateList result;
  std::vector<OdUInt32> found;
  for (OdUInt32 index = 1; index <= std::max(size(), other.size()); ++index) {
    found.assign(images(index).begin(), images(index).end());
    found.insert(found.end(), other.images(index).begin(), other.images(index).end());
    result.add(found, changed(index) || other.changed(index));
  }
  return result;
}

std::vector<OdUInt32> FateList::sourceCounts(OdUInt32 count) const {
  std::vector<OdUInt32> counts(count, 0);
  for (const OdUInt32 image : m_images) {
    if (image > counts.size()) counts.resize(image, 0);
    ++counts[image - 1];
  }
  return counts;
}

const FateList& BodyTrace::of(OdModelerSubentType type) const {
  switch (type) {
    case OdModelerSubentType::kFace:
      return faces;
    case OdModelerSubentType::kEdge:
      return edges;
    default:
      return vertices;
  }
}

// ---- BodyLineage

BodyLineage::BodyLineage(std::span<const OdSolidChange> changes)
    : m_changes(changes.begin(), changes.end()) {
  for (std::size_t i = 0; i < m_changes.size(); ++i) {
    const OdSolidChange& change = m_changes[i];
    if (change.solid.isValid()) {
      const auto [place, isNew] = m_ends.try_emplace(change.solid, Ends{change.before, nullptr});
      if (isNew) {
        m_solids.push_back(change.solid);
      } else {
        linkRereadBody(change, place->second);
      }
      place->second.after = change.after;
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

// Goes through the changes that the body and what comes of it take part in, in the order in which
// they happened, and joins the states of all ways that meet.
template <class State, class Step>
std::optional<State> BodyLineage::follow(const OdModelerBody* from, const OdModelerBody* to,
                                         State start, const Step& step) const {
  from = same(from);
  to = same(to);
  std::unordered_map<const OdModelerBody*, State> reached;
  std::map<std::pair<std::size_t, std::size_t>, const OdModelerBody*> due;
  const auto schedule = [&](const OdModelerBody* body, std::size_t after) {
    const auto uses = m_uses.find(body);
    if (uses == m_uses.end()) return;
    for (const Use& use : uses->second) {
      if (use.change >= after) due.emplace(std::pair(use.change, use.input), body);
    }
  };
  reached.emplace(from, std::move(start));
  schedule(from, 0);
  while (!due.empty()) {
    const auto [key, body] = *due.begin();
    due.erase(due.begin());
    const OdSolidChange& change = m_changes[key.first];
    const OdModelerBody* const after = same(change.after.get());
    // A change that led to a body which was there already adds nothing.
    if (after == body) continue;
    State next = step(reached.at(body), change, key.second);
    const auto [place, isNew] = reached.try_emplace(after, next);
    if (!isNew) uniteInto(place->second, next);
    if (isNew) schedule(after, key.first + 1);
  }
  const auto found = reached.find(to);
  if (found == reached.end()) return std::nullopt;
  return std::move(found->second);
}

std::optional<BodyTrace> BodyLineage::trace(const OdModelerBodyPtr& from,
                                            const OdModelerBodyPtr& to) const {
  if (!from || !to) return std::nullopt;
  BodyTrace start;
  start.faces = FateList::identity(from->numFaces());
  start.edges = FateList::identity(from->numEdges());
  start.vertices = FateList::identity(from->numVertices());
  return follow(from.get(), to.get(), std::move(start), traceThrough);
}

std::vector<OdUInt32> BodyLineage::facesFrom(const OdModelerBodyPtr& tool, OdUInt32 face,
                                             const OdModelerBodyPtr& to) const {
  if (!tool || !to) return {};
  return follow(tool.get(), to.get(), FaceSet{face}, facesThrough).value_or(FaceSet{});
}

}  // namespace vdm_host
