// Openings that were cut again: which new faces, edges and vertices are the old ones.
//
// The idea: a history cannot follow an opening that is closed and cut anew, since to the modeller
// the old faces were deleted and the new ones come from a tool. But the tool is the same one,
// perhaps moved. A face of an opening is therefore named by (feature, face of the tool), and that
// name is the same before and after. Each row (FaceRespawn) is one such name with the old face and
// the new faces that it stands for.
//
// Edges and vertices have no name of their own: an edge is where its faces meet. Its image is the
// new edge where an image of each of its faces meets, and no face that is not an image of them.
// The second half keeps an edge from becoming one that another cut made at the same opening.
//
// Why it is right: a name leads to what its own tool left and to nothing else (law 4), so two
// openings that exchange their places exchange their references too. Where names do not suffice,
// the place after the tool's motion decides, and only when it is exact or clearly nearest.
//
// The cost: a reference that touches no opening costs one look into a hash table for each face at
// it. Images of a face are computed once; candidates are the edges at the new faces of one row.
#include "host/naming/respawn_matcher.h"

#include <algorithm>
#include <limits>

#include "host/naming/body_signature.h"
#include "platform/base/sort_unique.h"

namespace vdm_host {

namespace {

using Type = OdModelerSubentType;

/// The next candidate is at least this many times as far away.
constexpr double kClearlyNearer = 2.0;

SubentMatch single(OdUInt32 image) { return {ReferenceGrade::kByLineage, {image}}; }

SubentMatch ambiguous() { return {ReferenceGrade::kAmbiguous, {}}; }

bool contains(std::span<const OdUInt32> items, OdUInt32 item) {
  return std::ranges::find(items, item) != items.end();
}

}  // namespace

RespawnMatcher::RespawnMatcher(std::span<const FaceRespawn> rows, const OdModelerBody& before,
                               const OdModelerBody& now, LineageMatcher& lineage)
    : m_rows(rows), m_before(before), m_now(now), m_lineage(lineage) {
  for (std::size_t i = 0; i < rows.size(); ++i) {
    if (rows[i].oldFace == 0) continue;
    // A face in which openings had merged has several rows: one that was cut again leads further
    // than one that was not.
    const auto [place, isNew] = m_byOldFace.emplace(rows[i].oldFace, i);
    if (!isNew && rows[place->second].newFaces.empty()) place->second = i;
  }
}

const FaceRespawn* RespawnMatcher::rowOf(OdUInt32 oldFace) const {
  const auto found = m_byOldFace.find(oldFace);
  return found == m_byOldFace.end() ? nullptr : &m_rows[found->second];
}

// Measured when it is first needed: that costs a look at every vertex.
const MatchTolerance& RespawnMatcher::tolerance() const {
  if (!m_tolerance) m_tolerance = MatchTolerance::of(m_before, m_now);
  return *m_tolerance;
}

// The row of the face, or of the first face at an edge or vertex that is of an opening.
const FaceRespawn* RespawnMatcher::rowAt(OdModelerSubent subent) const {
  if (m_byOldFace.empty() || !m_before.hasSubent(subent)) return nullptr;
  if (subent.type == Type::kFace) return rowOf(subent.index);
  const auto rowAtEdge = [this](OdUInt32 edge) {
    const FaceRespawn* found = nullptr;
    for (const OdUInt32 face : m_before.facesOfEdge(edge)) {
      if (found == nullptr) found = rowOf(face);
    }
    return found;
  };
  if (subent.type == Type::kEdge) return rowAtEdge(subent.index);
  const FaceRespawn* first = nullptr;
  for (const OdUInt32 edge : m_before.vertex(subent.index).edges) {
    const FaceRespawn* row = rowAtEdge(edge);
    if (row != nullptr && (first == nullptr || row->oldFace < first->oldFace)) first = row;
  }
  return first;
}

std::optional<RespawnMatch> RespawnMatcher::match(OdModelerSubent subent) {
  const FaceRespawn* row = rowAt(subent);
  if (row == nullptr) return std::nullopt;
  RespawnMatch result;
  result.birth = {row->feature, row->toolFace};
  if (row->newFaces.empty()) {
    // The opening was not cut again, but it may not be closed either: the plug may have been cut
    // by something else.
    result.match = stayed(subent);
    result.closed = result.match.images.empty();
  } else if (subent.type == Type::kFace) {
    result.match = matchFace(*row, signatureOf(m_before, subent).movedBy(row->motion));
    addOthers(*row, subent, result.match);
  } else {
    result.match = matchAround(subent, *row);
  }
  return result;
}

std::optional<RespawnMatch> RespawnMatcher::comeBack(const LineageBirth& birth,
                                                     const SubentSignature& wanted) {
  if (!birth.isOfTool()) return std::nullopt;
  const auto row = std::ranges::find_if(m_rows, [&](const FaceRespawn& r) {
    return OdUInt64(r.feature) == OdUInt64(birth.feature) && r.toolFace == birth.toolFace &&
           !r.newFaces.empty();
  });
  if (row == m_rows.end()) return std::nullopt;
  RespawnMatch result;
  result.birth = birth;
  const SubentSignature moved = wanted.movedBy(row->motion);
  if (wanted.type == Type::kFace) {
    result.match = matchFace(*row, moved);
  } else {
    // A record does not name the other faces that met there: only the exact place counts.
    result.match =
        chooseIdentical(wanted.type, candidatesAround(wanted.type, row->newFaces), moved);
  }
  return result;
}

// A face in which several openings had merged comes apart when one of them is cut elsewhere. Its
// images are those of each opening that was cut again, and what is left of the others.
void RespawnMatcher::addOthers(const FaceRespawn& row, OdModelerSubent face, SubentMatch& match) {
  if (match.images.empty()) return;
  const auto add = [&match](OdUInt32 image) {
    if (contains(match.images, image)) return;
    match.images.push_back(image);
    match.grade = ReferenceGrade::kSplit;
  };
  for (const FaceRespawn& other : m_rows) {
    if (other.oldFace != row.oldFace || &other == &row || other.newFaces.empty()) continue;
    const SubentSignature wanted = signatureOf(m_before, face).movedBy(other.motion);
    for (const OdUInt32 image : matchFace(other, wanted).images) add(image);
  }
  // The lineage follows the face where it lies; what a tool left there has its own row.
  for (const OdUInt32 image : m_lineage.match(face).images) {
    if (!isOpening(image)) add(image);
  }
}

// Whether a face of the new body is one that a tool of the rows left.
bool RespawnMatcher::isOpening(OdUInt32 face) const {
  return std::ranges::any_of(m_rows,
                             [&](const FaceRespawn& row) { return contains(row.newFaces, face); });
}

// The images by lineage, without those that another face of a tool left in the old place (law 4).
SubentMatch RespawnMatcher::stayed(OdModelerSubent subent) const {
  const auto facesAt = [](const OdModelerBody& body, OdModelerSubent at) {
    return at.type == Type::kFace ? std::vector{at.index} : facesAround(body, at);
  };
  const std::vector<OdUInt32> oldFaces = facesAt(m_before, subent);
  // A face that a tool left, but not the tool's face that left one of the old faces.
  const auto isForeign = [&](OdUInt32 face) {
    const auto left = [face](const FaceRespawn& row) { return contains(row.newFaces, face); };
    const auto leftAsOld = [&](const FaceRespawn& row) {
      return contains(oldFaces, row.oldFace) && left(row);
    };
    return std::ranges::any_of(m_rows, left) && std::ranges::none_of(m_rows, leftAsOld);
  };
  SubentMatch match = m_lineage.match(subent);
  const auto lost = std::erase_if(match.images, [&](OdUInt32 image) {
    return std::ranges::any_of(facesAt(m_now, {subent.type, image}), isForeign);
  });
  if (lost == 0) return match;
  if (match.images.empty()) return {};
  return match.images.size() == 1 ? single(match.images.front()) : match;
}

SubentMatch RespawnMatcher::matchFace(const FaceRespawn& row, const SubentSignature& wanted) const {
  if (row.newFaces.size() == 1) return single(row.newFaces.front());
  const SubentMatch byPlace = chooseByPlace(Type::kFace, row.newFaces, wanted);
  if (!byPlace.images.empty()) return byPlace;
  return {ReferenceGrade::kSplit, row.newFaces};
}

// The new faces that an old face at an edge or vertex is.
const std::vector<OdUInt32>& RespawnMatcher::imagesOfFace(OdUInt32 oldFace) {
  const auto [place, isNew] = m_images.try_emplace(oldFace);
  if (!isNew) return place->second;
  const FaceRespawn* row = rowOf(oldFace);
  std::vector<OdUInt32>& images = place->second;
  if (row == nullptr || row->newFaces.empty()) {
    images = stayed({Type::kFace, oldFace}).images;
    return images;
  }
  for (const FaceRespawn& each : m_rows) {
    if (each.oldFace != oldFace) continue;
    images.insert(images.end(), each.newFaces.begin(), each.newFaces.end());
  }
  return images;
}

SubentMatch RespawnMatcher::matchAround(OdModelerSubent subent, const FaceRespawn& row) {
  const SubentSignature wanted = signatureOf(m_before, subent).movedBy(row.motion);
  const std::vector<OdUInt32> atOpening = candidatesAround(subent.type, row.newFaces);
  const std::vector<OdUInt32> meeting = whereImagesMeet(subent, atOpening);
  if (!meeting.empty()) return chooseByPlace(subent.type, meeting, wanted);
  // The opening was cut into other faces: only its motion says where the old place is.
  return chooseIdentical(subent.type, atOpening, wanted);
}

// Those of the candidates where an image of each old face meets, and no other face (law 2).
std::vector<OdUInt32> RespawnMatcher::whereImagesMeet(OdModelerSubent subent,
                                                      std::span<const OdUInt32> candidates) {
  std::vector<OdUInt32> allowed;
  const std::vector<OdUInt32> oldFaces = facesAround(m_before, subent);
  for (const OdUInt32 face : oldFaces) {
    const std::vector<OdUInt32>& images = imagesOfFace(face);
    allowed.insert(allowed.end(), images.begin(), images.end());
  }
  std::vector<OdUInt32> found;
  for (const OdUInt32 candidate : candidates) {
    const std::vector<OdUInt32> around = facesAround(m_now, {subent.type, candidate});
    const bool noOthers =
        std::ranges::all_of(around, [&](OdUInt32 face) { return contains(allowed, face); });
    const bool allMeet = std::ranges::all_of(oldFaces, [&](OdUInt32 face) {
      return std::ranges::any_of(imagesOfFace(face),
                                 [&](OdUInt32 image) { return contains(around, image); });
    });
    if (noOthers && allMeet) found.push_back(candidate);
  }
  return found;
}

// Edges or vertices at the faces.
std::vector<OdUInt32> RespawnMatcher::candidatesAround(Type type,
                                                       std::span<const OdUInt32> faces) const {
  std::vector<OdUInt32> found;
  for (const OdUInt32 face : faces) {
    if (!m_now.hasSubent({Type::kFace, face})) continue;
    for (const OdUInt32 e : m_now.edgesOfFace(face)) {
      if (type == Type::kEdge) {
        found.push_back(e);
        continue;
      }
      const OdModelerEdge& edge = m_now.edge(e);
      if (edge.startVertex != 0) found.push_back(edge.startVertex);
      if (edge.endVertex != 0) found.push_back(edge.endVertex);
    }
  }
  odSortUnique(found);
  return found;
}

// One candidate of the same kind is it. Of several it is the one in the old place, else the nearest
// when the next is clearly farther away.
SubentMatch RespawnMatcher::chooseByPlace(Type type, const std::vector<OdUInt32>& candidates,
                                          const SubentSignature& wanted) const {
  OdUInt32 nearest = 0;
  double distance = std::numeric_limits<double>::infinity();
  double second = distance;
  std::vector<OdUInt32> identical;
  for (const OdUInt32 candidate : candidates) {
    const SubentSignature item = signatureOf(m_now, {type, candidate});
    // A seam or an arc is never the line that it meets at the same opening.
    if (item.kind != wanted.kind || item.closed != wanted.closed) continue;
    if (isIdentical(wanted, item, tolerance())) identical.push_back(candidate);
    const double d = item.place.distanceTo(wanted.place);
    if (d < distance) {
      second = distance;
      distance = d;
      nearest = candidate;
    } else {
      second = std::min(second, d);
    }
  }
  if (nearest == 0) return {};
  if (identical.size() == 1) return single(identical.front());
  if (identical.size() > 1) return ambiguous();
  if (second > kClearlyNearer * distance + tolerance().length) return single(nearest);
  return ambiguous();
}

// The one that lies exactly as wanted; none when there are several.
SubentMatch RespawnMatcher::chooseIdentical(Type type, const std::vector<OdUInt32>& candidates,
                                            const SubentSignature& wanted) const {
  OdUInt32 found = 0;
  for (const OdUInt32 candidate : candidates) {
    if (!isIdentical(wanted, signatureOf(m_now, {type, candidate}), tolerance())) continue;
    if (found != 0) return {};
    found = candidate;
  }
  return found == 0 ? SubentMatch() : single(found);
}

}  // namespace vdm_host
