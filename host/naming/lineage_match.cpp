// Which subentities of a body are those of another one, by the history of what was done.
#include "host/naming/lineage_match.h"

#include <algorithm>
#include <iterator>

#include "host/naming/body_match.h"

namespace vdm_host {

LineageMatcher::LineageMatcher(OdModelerBodyPtr before, OdModelerBodyPtr now,
                               const BodyTrace& trace)
    : m_before(std::move(before)), m_now(std::move(now)), m_trace(trace) {}

SubentMatch LineageMatcher::match(OdModelerSubent subent) {
  const FateList& fates = m_trace.of(subent.type);
  const std::span<const OdUInt32> images = fates.images(subent.index);
  if (images.empty()) return rebuilt(subent);
  if (images.size() > 1) return partsOf(subent, images);
  const ReferenceGrade grade =
      fates.changed(subent.index) ? ReferenceGrade::kByLineage : ReferenceGrade::kExact;
  return {grade, {images.front()}};
}

// What bounds a face or an edge: its edges, or its ends.
static std::vector<OdModelerSubent> borderOf(const OdModelerBody& body, OdModelerSubent subent) {
  std::vector<OdModelerSubent> border;
  if (subent.type == OdModelerSubentType::kFace) {
    for (const OdUInt32 edge : body.edgesOfFace(subent.index))
      border.push_back({OdModelerSubentType::kEdge, edge});
  } else if (subent.type == OdModelerSubentType::kEdge) {
    const OdModelerEdge& edge = body.edge(subent.index);
    border.push_back({OdModelerSubentType::kVertex, edge.startVertex});
    border.push_back({OdModelerSubentType::kVertex, edge.endVertex});
  }
  return border;
}

// Neighbours that were put together and taken apart again on the way share their images. Each is
// then the part on its own side: the one whose border is its own, as far as that is whole.
SubentMatch LineageMatcher::partsOf(OdModelerSubent subent, std::span<const OdUInt32> images) {
  const FateList& fates = m_trace.of(subent.type);
  std::vector<OdUInt32>& sources = m_sources[static_cast<std::size_t>(subent.type) - 1];
  if (sources.empty()) sources = fates.sourceCounts(m_now->numSubents(subent.type));
  SubentMatch all{ReferenceGrade::kSplit, {images.begin(), images.end()}};
  const auto isShared = [&sources](OdUInt32 image) { return sources[image - 1] > 1; };
  if (!m_before->hasSubent(subent) || std::ranges::none_of(images, isShared)) return all;

  std::vector<OdModelerSubent> kept;
  for (const OdModelerSubent border : borderOf(*m_before, subent)) {
    const std::span<const OdUInt32> left = m_trace.of(border.type).images(border.index);
    if (left.size() == 1) kept.push_back({border.type, left.front()});
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

// New subentities that come from no old one: among them those that the modeller built anew.
const LineageMatcher::Orphans& LineageMatcher::orphans(OdModelerSubentType type) {
  Orphans& row = m_orphans[static_cast<std::size_t>(type) - 1];
  if (row.grid) return row;
  const OdUInt32 count = m_now->numSubents(type);
  const std::vector<OdUInt32> sources = m_trace.of(type).sourceCounts(count);
  for (OdUInt32 i = 1; i <= count; ++i) {
    if (sources[i - 1] != 0) continue;
    row.indices.push_back(i);
    row.items.push_back(signatureOf(*m_now, {type, i}));
  }
  row.grid.emplace(row.items);
  return row;
}

SubentMatch LineageMatcher::rebuilt(OdModelerSubent subent) {
  if (!m_before->hasSubent(subent) || orphans(subent.type).items.empty()) return {};
  const SubentSignature wanted = signatureOf(*m_before, subent).movedBy(m_trace.motion);
  SubentMatch match = findNew(wanted);
  if (match.grade == ReferenceGrade::kLost && subent.type == OdModelerSubentType::kEdge) {
    return grownEdge(subent, wanted);
  }
  return match;
}

// Pieces of an edge that were put together again: a new edge of the same faces that runs along the
// same curve and over the middle of the old one.
SubentMatch LineageMatcher::grownEdge(OdModelerSubent subent, const SubentSignature& wanted) {
  if (!m_tolerance) m_tolerance = MatchTolerance::of(*m_before, *m_now);
  const OdGePoint3d middle = m_trace.motion * m_before->edge(subent.index).midPoint;
  const std::vector<OdUInt32>& fresh = orphans(OdModelerSubentType::kEdge).indices;
  std::vector<OdUInt32> found;
  for (const OdUInt32 face : m_before->facesOfEdge(subent.index)) {
    for (const OdUInt32 image : m_trace.faces.images(face)) {
      for (const OdUInt32 edge : m_now->edgesOfFace(image)) {
        if (!std::ranges::binary_search(fresh, edge)) continue;
        if (std::ranges::count(found, edge) != 0) continue;
        const SubentSignature item = signatureOf(*m_now, {OdModelerSubentType::kEdge, edge});
        if (!liesOnSame(wanted, item, *m_tolerance)) continue;
        const double distance = m_now->distanceTo({OdModelerSubentType::kEdge, edge}, middle);
        if (distance <= m_tolerance->length) found.push_back(edge);
      }
    }
  }
  if (found.size() == 1) return {ReferenceGrade::kByLineage, std::move(found)};
  return found.empty() ? SubentMatch() : SubentMatch{ReferenceGrade::kAmbiguous, {}};
}

SubentMatch LineageMatcher::findNew(const SubentSignature& wanted) {
  if (wanted.type == OdModelerSubentType::kNull) return {};
  const Orphans& fresh = orphans(wanted.type);
  if (fresh.items.empty()) return {};
  if (!m_tolerance) m_tolerance = MatchTolerance::of(*m_before, *m_now);
  const double radius = m_tolerance->length + 1e-4 * wanted.reach();
  SubentMatch match;
  fresh.grid->within(wanted.place, radius, [&](OdUInt32 i) {
    if (isIdentical(wanted, fresh.items[i], *m_tolerance)) match.images.push_back(fresh.indices[i]);
  });
  if (match.images.size() == 1) {
    match.grade = ReferenceGrade::kExact;
  } else if (!match.images.empty()) {
    match = {ReferenceGrade::kAmbiguous, {}};
  }
  return match;
}

}  // namespace vdm_host
