// Which subentities of a body are those of another one, by the history of what was done.
//
// The idea: a history is believed in what it says, and doubted in what it says was deleted.
// Modellers delete and build anew what an operation left as it was: edges whose faces were
// rebuilt, seams, edges that two operations took apart and put together. Such a subentity is looked
// for among the orphans, the new subentities that no old one became. So a wrong image would have to
// be new, without another origin, and identical in place and measure.
//
// The work: most references follow one fate and end there. Counting origins, which finds the
// orphans, follows every subentity of a type once, and is done for the first reference that needs
// it. Only orphans of the wanted kind are measured.
#include "host/naming/lineage_matcher.h"

#include <algorithm>
#include <iterator>

#include "host/naming/body_signature.h"
#include "platform/base/sort_unique.h"

namespace vdm_host {

namespace {

// What bounds a face or an edge: its edges, or its ends.
std::vector<OdModelerSubent> borderOf(const OdModelerBody& body, OdModelerSubent subent) {
  std::vector<OdModelerSubent> border;
  if (subent.type == OdModelerSubentType::kFace) {
    for (const OdUInt32 edge : body.edgesOfFace(subent.index)) {
      border.push_back({OdModelerSubentType::kEdge, edge});
    }
  } else if (subent.type == OdModelerSubentType::kEdge) {
    const OdModelerEdge& edge = body.edge(subent.index);
    border.push_back({OdModelerSubentType::kVertex, edge.startVertex});
    border.push_back({OdModelerSubentType::kVertex, edge.endVertex});
  }
  return border;
}

// The kind of a subentity, as in its signature, without measuring it.
OdUInt8 kindOf(const OdModelerBody& body, OdModelerSubent subent) {
  if (subent.type == OdModelerSubentType::kFace) {
    return static_cast<OdUInt8>(body.surfaceKind(subent.index));
  }
  if (subent.type == OdModelerSubentType::kEdge) {
    return static_cast<OdUInt8>(body.curveKind(subent.index));
  }
  return 0;
}

}  // namespace

LineageMatcher::LineageMatcher(OdModelerBodyPtr before, OdModelerBodyPtr now,
                               const BodyTrace& trace)
    : m_before(std::move(before)), m_now(std::move(now)), m_trace(trace) {}

OdUInt32 LineageMatcher::untouched(OdModelerSubent subent) {
  m_trace.follow(subent, m_fate);
  return m_fate.images.size() == 1 && !m_fate.changed ? m_fate.images.front() : 0;
}

SubentMatch LineageMatcher::match(OdModelerSubent subent) {
  m_trace.follow(subent, m_fate);
  if (m_fate.images.empty()) return rebuilt(subent);
  if (m_fate.images.size() > 1) return partsOf(subent, std::vector<OdUInt32>(m_fate.images));
  return {m_fate.changed ? ReferenceGrade::kByLineage : ReferenceGrade::kExact, m_fate.images};
}

const MatchTolerance& LineageMatcher::tolerance() {
  if (!m_tolerance) m_tolerance = MatchTolerance::of(*m_before, *m_now);
  return *m_tolerance;
}

// How many old subentities each new one comes from.
const std::vector<OdUInt32>& LineageMatcher::sources(OdModelerSubentType type) {
  std::optional<std::vector<OdUInt32>>& counts = m_sources[static_cast<std::size_t>(type) - 1];
  if (!counts) counts = m_trace.sourceCounts(type, m_now->numSubents(type));
  return *counts;
}

// Neighbours that were put together and taken apart again on the way share their images. Each is
// then the part on its own side: the one that has a piece of its old border, as far as that is
// whole.
SubentMatch LineageMatcher::partsOf(OdModelerSubent subent, std::span<const OdUInt32> images) {
  const std::vector<OdUInt32>& counts = sources(subent.type);
  SubentMatch all{ReferenceGrade::kSplit, {images.begin(), images.end()}};
  const auto isShared = [&counts](OdUInt32 image) { return counts[image - 1] > 1; };
  if (!m_before->hasSubent(subent) || std::ranges::none_of(images, isShared)) return all;

  // Only a border with a single image says which side it is on.
  std::vector<OdModelerSubent> kept;
  for (const OdModelerSubent border : borderOf(*m_before, subent)) {
    m_trace.follow(border, m_fate);
    if (m_fate.images.size() == 1) kept.push_back({border.type, m_fate.images.front()});
  }
  const auto isOwn = [&](OdUInt32 image) {
    return std::ranges::any_of(borderOf(*m_now, {subent.type, image}), [&](OdModelerSubent part) {
      return std::ranges::find(kept, part) != kept.end();
    });
  };
  SubentMatch own;
  std::ranges::copy_if(images, std::back_inserter(own.images), isOwn);
  if (own.images.empty()) return all;
  own.grade = own.images.size() == 1 ? ReferenceGrade::kByLineage : ReferenceGrade::kSplit;
  return own;
}

// New subentities that come from no old one, among them those that the modeller built anew.
const LineageMatcher::Orphans& LineageMatcher::orphans(OdModelerSubentType type, OdUInt8 kind) {
  const auto [place, isNew] = m_orphans.try_emplace({type, kind});
  Orphans& row = place->second;
  if (!isNew) return row;
  const std::vector<OdUInt32>& counts = sources(type);
  for (OdUInt32 i = 1; i <= m_now->numSubents(type); ++i) {
    const OdModelerSubent subent{type, i};
    if (counts[i - 1] != 0 || kindOf(*m_now, subent) != kind) continue;
    row.indices.push_back(i);
    row.items.push_back(signatureOf(*m_now, subent));
  }
  row.grid.emplace(row.items);
  return row;
}

SubentMatch LineageMatcher::rebuilt(OdModelerSubent subent) {
  if (!m_before->hasSubent(subent)) return {};
  if (orphans(subent.type, kindOf(*m_before, subent)).items.empty()) return {};
  const SubentSignature wanted = signatureOf(*m_before, subent).movedBy(m_trace.motion);
  SubentMatch match = findNew(wanted);
  if (match.grade == ReferenceGrade::kLost && subent.type == OdModelerSubentType::kEdge) {
    return grownEdge(subent, wanted);
  }
  return match;
}

// Pieces of an edge that were put together are a new edge of the same faces, which runs along the
// same curve and over the middle of the old one (law 4).
SubentMatch LineageMatcher::grownEdge(OdModelerSubent subent, const SubentSignature& wanted) {
  const OdGePoint3d middle = m_trace.motion * m_before->edge(subent.index).midPoint;
  const auto isOver = [&](OdUInt32 edge) {
    const OdModelerSubent other{OdModelerSubentType::kEdge, edge};
    return liesOnSame(wanted, signatureOf(*m_now, other), tolerance()) &&
           m_now->distanceTo(other, middle) <= tolerance().length;
  };
  std::vector<OdUInt32> found;
  for (const OdUInt32 edge : newEdgesAtImages(subent, wanted.kind)) {
    if (isOver(edge)) found.push_back(edge);
  }
  if (found.size() == 1) return {ReferenceGrade::kByLineage, std::move(found)};
  return found.empty() ? SubentMatch() : SubentMatch{ReferenceGrade::kAmbiguous, {}};
}

// Edges of a kind that come from no old one and bound an image of a face of the old edge.
std::vector<OdUInt32> LineageMatcher::newEdgesAtImages(OdModelerSubent subent, OdUInt8 kind) {
  const std::vector<OdUInt32>& fresh = orphans(OdModelerSubentType::kEdge, kind).indices;
  std::vector<OdUInt32> edges;
  for (const OdUInt32 face : m_before->facesOfEdge(subent.index)) {
    m_trace.follow({OdModelerSubentType::kFace, face}, m_fate);
    for (const OdUInt32 image : m_fate.images) {
      std::ranges::copy_if(m_now->edgesOfFace(image), std::back_inserter(edges),
                           [&](OdUInt32 edge) { return std::ranges::binary_search(fresh, edge); });
    }
  }
  odSortUnique(edges);
  return edges;
}

SubentMatch LineageMatcher::findNew(const SubentSignature& wanted) {
  if (wanted.type == OdModelerSubentType::kNull) return {};
  const Orphans& fresh = orphans(wanted.type, wanted.kind);
  if (fresh.items.empty()) return {};
  const double radius = tolerance().length + 1e-4 * wanted.reach();
  SubentMatch match;
  fresh.grid->within(wanted.place, radius, [&](OdUInt32 i) {
    if (isIdentical(wanted, fresh.items[i], tolerance())) match.images.push_back(fresh.indices[i]);
  });
  if (match.images.size() == 1) {
    match.grade = ReferenceGrade::kExact;
  } else if (!match.images.empty()) {
    match = {ReferenceGrade::kAmbiguous, {}};
  }
  return match;
}

}  // namespace vdm_host
