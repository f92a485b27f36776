// Which subentities of a body are those that were born where a reference was.
//
// The idea: births are the identity of faces, and an edge or vertex is known by the faces that meet
// in it. So the candidates follow from the births of the new body's faces alone, and it makes no
// difference whether a face stayed, was cut again, merged with another one or came apart from it in
// between. Only among candidates of the same births other evidence decides: the history for what
// stayed, the place after the tool's motion for what was cut again.
//
// Why it is right: a candidate has a source of the reference, by the laws of BirthHistory, and all
// that have one are candidates. A choice among them is made only where the old body had several,
// too, or where curves differ; it never leads to something of other births.
//
// The cost: most references are steady and cost a comparison of the births at two faces. The others
// look at the edges around the faces of their births; faces are found by birth in an index that the
// first of them makes.
#include "host/naming/birth_matcher.h"

#include <algorithm>
#include <iterator>
#include <limits>

#include "host/naming/body_signature.h"
#include "platform/base/sort_unique.h"

namespace vdm_host {

namespace {

using Type = OdModelerSubentType;
using Indices = std::vector<OdUInt32>;

/// The next candidate is at least this many times as far away.
constexpr double kClearlyNearer = 2.0;

bool contains(const Indices& items, OdUInt32 item) {
  return std::ranges::find(items, item) != items.end();
}

Indices without(const Indices& items, const Indices& others) {
  Indices rest;
  std::ranges::copy_if(items, std::back_inserter(rest),
                       [&](OdUInt32 item) { return !contains(others, item); });
  return rest;
}

Indices facesAt(const OdModelerBody& body, OdModelerSubent subent) {
  return subent.type == Type::kFace ? Indices{subent.index} : facesAround(body, subent);
}

bool isSame(std::span<const FaceBirth> a, std::span<const FaceBirth> b) {
  return std::ranges::equal(a, b);
}

}  // namespace

std::vector<BirthSet> birthsAt(const OdModelerBody& body, const FaceBirths& births,
                               OdModelerSubent subent) {
  std::vector<BirthSet> all;
  for (const OdUInt32 face : facesAt(body, subent)) {
    const std::span<const FaceBirth> set = births.of(face);
    all.emplace_back(set.begin(), set.end());
  }
  std::ranges::sort(all);
  return all;
}

BirthMatcher::BirthMatcher(const OdModelerBody& before, const OdModelerBody& now,
                           const BirthHistory& history, LineageMatcher& lineage)
    : m_before{before, history.before(), {}},
      m_now{now, history.now(), {}},
      m_history(history),
      m_lineage(lineage) {}

const MatchTolerance& BirthMatcher::tolerance() {
  if (!m_tolerance) m_tolerance = MatchTolerance::of(m_before.body, m_now.body);
  return *m_tolerance;
}

// ---- Births at subentities

bool BirthMatcher::isSteady(OdModelerSubent old, OdUInt32 image) const {
  if (old.type == Type::kFace) {
    return isSame(m_before.births.of(old.index), m_now.births.of(image));
  }
  const Indices before = facesAround(m_before.body, old);
  const Indices now = facesAround(m_now.body, {old.type, image});
  if (before.size() != now.size()) return false;
  return std::ranges::all_of(before, [&](OdUInt32 face) {
    return std::ranges::any_of(now, [&](OdUInt32 other) {
      return isSame(m_before.births.of(face), m_now.births.of(other));
    });
  });
}

std::vector<BirthSet> BirthMatcher::birthsBefore(OdModelerSubent subent) const {
  return birthsAt(m_before.body, m_before.births, subent);
}

std::vector<BirthSet> BirthMatcher::birthsNow(OdModelerSubent subent) const {
  return birthsAt(m_now.body, m_now.births, subent);
}

void BirthMatcher::addLateBirths(BornReference& reference) const {
  if (reference.old.index == 0) return;
  for (const OdUInt32 face : facesAt(m_before.body, reference.old)) {
    const std::span<const FaceBirth> late = m_history.lateBirths(face);
    if (late.empty()) continue;
    for (BirthSet& set : reference.births) {
      if (meet(set, m_before.births.of(face))) addBirths(set, late);
    }
  }
}

FaceBirth BirthMatcher::redoneBirth(const std::vector<BirthSet>& births) const {
  for (const BirthSet& set : births) {
    for (const FaceBirth& birth : set) {
      if (birth.maker != 0 && m_history.isRedone(birth.maker)) return birth;
    }
  }
  return {};
}

// ---- Candidates

void BirthMatcher::index(Side& side) {
  if (side.isIndexed) return;
  side.isIndexed = true;
  for (OdUInt32 face = 1; face <= side.births.numFaces(); ++face) {
    for (const FaceBirth& birth : side.births.of(face)) side.faces[birth].push_back(face);
  }
}

Indices BirthMatcher::facesOf(Side& side, const BirthSet& set) {
  index(side);
  Indices found;
  for (const FaceBirth& birth : set) {
    const auto row = side.faces.find(birth);
    if (row != side.faces.end()) {
      found.insert(found.end(), row->second.begin(), row->second.end());
    }
  }
  odSortUnique(found);
  return found;
}

// Law 1. Edges and vertices are looked for around the faces that have the fewest edges.
Indices BirthMatcher::candidates(Side& side, Type type, const std::vector<BirthSet>& births) {
  if (births.empty()) return {};
  if (type == Type::kFace) return facesOf(side, births.front());
  Indices fewest;
  std::size_t least = std::numeric_limits<std::size_t>::max();
  for (const BirthSet& set : births) {
    const Indices faces = facesOf(side, set);
    std::size_t edges = 0;
    for (const OdUInt32 face : faces) edges += side.body.edgesOfFace(face).size();
    if (edges >= least) continue;
    least = edges;
    fewest = faces;
  }
  Indices near;
  for (const OdUInt32 face : fewest) {
    for (const OdUInt32 edge : side.body.edgesOfFace(face)) {
      if (type == Type::kEdge) {
        near.push_back(edge);
        continue;
      }
      const OdModelerEdge& row = side.body.edge(edge);
      if (row.startVertex != 0) near.push_back(row.startVertex);
      if (row.endVertex != 0) near.push_back(row.endVertex);
    }
  }
  odSortUnique(near);
  std::erase_if(near, [&](OdUInt32 one) {
    const Indices around = facesAround(side.body, {type, one});
    if (type == Type::kEdge && around.size() != births.size()) return true;
    const auto isMet = [&](const BirthSet& set, OdUInt32 face) {
      return meet(set, side.births.of(face));
    };
    if (type == Type::kEdge && around.size() == 2) {
      return !(isMet(births[0], around[0]) && isMet(births[1], around[1])) &&
             !(isMet(births[0], around[1]) && isMet(births[1], around[0]));
    }
    return !std::ranges::all_of(births, [&](const BirthSet& set) {
      return std::ranges::any_of(around, [&](OdUInt32 face) { return isMet(set, face); });
    });
  });
  return near;
}

// Where faces have merged: the edge lies on the part of the face that has one of the births.
bool BirthMatcher::isMetAt(const BirthSet& set, OdUInt32 face, OdUInt32 edge) const {
  const std::span<const FaceBirth> births = m_now.births.of(face);
  if (births.size() == 1) return meet(set, births);
  const OdGeExtents3d box = m_now.body.subentExtents({Type::kEdge, edge});
  return std::ranges::any_of(births, [&](const FaceBirth& birth) {
    return std::ranges::binary_search(set, birth) && m_history.reaches(birth, box);
  });
}

void BirthMatcher::keepReached(const std::vector<BirthSet>& births, Indices& edges) const {
  std::erase_if(edges, [&](OdUInt32 edge) {
    const std::span<const OdUInt32> faces = m_now.body.facesOfEdge(edge);
    if (faces.size() != 2 || births.size() != 2) return false;
    const auto isMet = [&](std::size_t first) {
      return isMetAt(births[0], faces[first], edge) && isMetAt(births[1], faces[1 - first], edge);
    };
    return !isMet(0) && !isMet(1);
  });
}

// ---- The choice

SubentMatch BirthMatcher::match(const BornReference& reference) {
  const Type type = reference.old.type;
  Indices all = candidates(m_now, type, reference.births);
  if (type == Type::kEdge) keepReached(reference.births, all);
  if (all.empty()) return ofThePart(reference);
  const Indices siblings = candidates(m_before, type, reference.births);
  const bool isAlone = reference.old.index != 0
                           ? siblings.size() <= 1 || !contains(siblings, reference.old.index)
                           : siblings.empty();
  if (!isAlone) all = ofSeveral(reference, all, siblings);
  return byEachBirth(reference, all);
}

// An edge that was one of several births comes apart where they do: each finds its own.
SubentMatch BirthMatcher::byEachBirth(const BornReference& reference, const Indices& found) {
  constexpr std::size_t kMany = 64;
  const std::vector<BirthSet>& births = reference.births;
  const bool isOne =
      std::ranges::all_of(births, [](const BirthSet& set) { return set.size() == 1; });
  if (reference.old.type != Type::kEdge || births.size() != 2 || isOne || found.size() < 2 ||
      births[0].size() * births[1].size() > kMany) {
    return byCurve(reference, found);
  }
  Indices all;
  bool isAmbiguous = false;
  BornReference one = reference;
  for (const FaceBirth& a : births[0]) {
    for (const FaceBirth& b : births[1]) {
      one.births = {{a}, {b}};
      Indices own = candidates(m_now, Type::kEdge, one.births);
      keepReached(one.births, own);
      std::erase_if(own, [&](OdUInt32 edge) { return !contains(found, edge); });
      const SubentMatch match = byCurve(one, std::move(own));
      all.insert(all.end(), match.images.begin(), match.images.end());
      isAmbiguous |= match.grade == ReferenceGrade::kAmbiguous;
    }
  }
  odSortUnique(all);
  if (all.empty() && isAmbiguous) return {ReferenceGrade::kAmbiguous, {}};
  return graded(reference, std::move(all));
}

// Law 2.
Indices BirthMatcher::ofSeveral(const BornReference& reference, const Indices& all,
                                const Indices& siblings) {
  const Type type = reference.old.type;
  Indices taken;
  Indices homeless;
  for (const OdUInt32 sibling : siblings) {
    Indices images = m_lineage.match({type, sibling}).images;
    std::erase_if(images, [&](OdUInt32 image) { return !contains(all, image); });
    if (sibling == reference.old.index && !images.empty()) return images;
    if (images.empty()) homeless.push_back(sibling);
    taken.insert(taken.end(), images.begin(), images.end());
  }
  Indices fresh = without(all, taken);
  if (const std::optional<Indices> own = inOwnPlaces(reference, fresh, homeless)) return *own;
  return fresh;
}

// Where each of several lies in the place of one of the old ones: those that lie in its own.
std::optional<Indices> BirthMatcher::inOwnPlaces(const BornReference& reference,
                                                 const Indices& fresh, const Indices& homeless) {
  if (!contains(homeless, reference.old.index)) return std::nullopt;
  Indices own;
  for (const OdUInt32 one : fresh) {
    const SubentSignature now = signatureOf(m_now.body, {reference.old.type, one});
    Indices owners;
    for (const OdUInt32 sibling : homeless) {
      const SubentSignature wanted = placed({reference.old.type, sibling}, reference.births);
      if (isIdentical(wanted, now, tolerance())) owners.push_back(sibling);
    }
    if (owners.size() != 1) return std::nullopt;
    if (owners.front() == reference.old.index) own.push_back(one);
  }
  return own;
}

// The signature of an old subentity after the motion of what made it.
SubentSignature BirthMatcher::placed(OdModelerSubent old, const std::vector<BirthSet>& births) {
  const FaceBirth redone = redoneBirth(births);
  return signatureOf(m_before.body, old).movedBy(m_history.motionOf(redone.maker));
}

// Law 3.
SubentMatch BirthMatcher::byCurve(const BornReference& reference, Indices found) {
  const Type type = reference.old.type;
  if (type == Type::kFace || found.empty()) return graded(reference, std::move(found));
  const bool isRedone = redoneBirth(reference.births).maker != 0;
  if (isRedone && found.size() == 1) return graded(reference, std::move(found));
  const bool isKnown = reference.old.index != 0;
  if (!isKnown && reference.record.type != type) {
    return found.size() == 1 ? graded(reference, std::move(found))
                             : SubentMatch{ReferenceGrade::kAmbiguous, {}};
  }
  const SubentSignature wanted =
      isKnown ? placed(reference.old, reference.births) : reference.record;
  Indices onCurve;
  OdUInt32 nearest = 0;
  double distance = std::numeric_limits<double>::infinity();
  double second = distance;
  std::vector<SubentSignature> items;
  for (const OdUInt32 one : found) {
    items.push_back(signatureOf(m_now.body, {type, one}));
    if (liesOnSame(wanted, items.back(), tolerance())) onCurve.push_back(one);
  }
  if (!onCurve.empty()) return graded(reference, std::move(onCurve));
  if (!isRedone) {
    // The history may know better than its curve what an edge has become.
    Indices images = isKnown ? m_lineage.match(reference.old).images : Indices();
    std::erase_if(images, [&](OdUInt32 image) { return !contains(found, image); });
    return graded(reference, std::move(images));
  }
  // All on one curve are its parts, wherever that lies.
  const auto isOnFirst = [&](const SubentSignature& item) {
    return liesOnSame(items.front(), item, tolerance());
  };
  if (type == Type::kEdge && std::ranges::all_of(items, isOnFirst)) {
    return graded(reference, std::move(found));
  }
  for (std::size_t i = 0; i < found.size(); ++i) {
    const double d = items[i].place.distanceTo(wanted.place);
    if (d < distance) {
      second = distance;
      distance = d;
      nearest = found[i];
    } else {
      second = std::min(second, d);
    }
  }
  if (second > kClearlyNearer * distance + tolerance().length) {
    return graded(reference, {nearest});
  }
  return {ReferenceGrade::kAmbiguous, {}};
}

SubentMatch BirthMatcher::graded(const BornReference& reference, Indices found) {
  if (found.empty()) return {};
  if (found.size() > 1) return {ReferenceGrade::kSplit, std::move(found)};
  const OdModelerSubent old = reference.old;
  const bool isExact =
      old.index != 0 && m_lineage.untouched(old) == found.front() && isSteady(old, found.front());
  return {isExact ? ReferenceGrade::kExact : ReferenceGrade::kByLineage, std::move(found)};
}

// ---- What the part lost

// Law 4.
SubentMatch BirthMatcher::ofThePart(const BornReference& reference) {
  for (const BirthSet& set : reference.births) {
    if (std::ranges::any_of(set, [](const FaceBirth& b) { return b.maker != 0; })) return {};
  }
  SubentMatch match = reference.old.index != 0 ? m_lineage.match(reference.old)
                                               : m_lineage.findNew(reference.record);
  // An edge that was lost before births were kept: only its place is known.
  if (!reference.births.empty()) {
    std::erase_if(match.images,
                  [&](OdUInt32 image) { return !isOfUnknownOrigin(reference, image); });
  }
  if (match.images.empty()) {
    return match.grade == ReferenceGrade::kAmbiguous ? match : SubentMatch();
  }
  if (reference.old.index == 0) match.grade = ReferenceGrade::kBySignature;
  return match;
}

// Each face at it has no known origin, or one of the births.
bool BirthMatcher::isOfUnknownOrigin(const BornReference& reference, OdUInt32 image) const {
  const Indices around = facesAt(m_now.body, {reference.old.type, image});
  return std::ranges::all_of(around, [&](OdUInt32 face) {
    return m_history.isFresh(face) ||
           std::ranges::any_of(reference.births, [&](const BirthSet& set) {
             return meet(set, m_now.births.of(face));
           });
  });
}

}  // namespace vdm_host
