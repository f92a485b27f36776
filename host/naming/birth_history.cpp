// The births of a body's faces, followed through the changes of its solid.
//
// The idea: a face of the new body comes from old faces, which the modeller's history names, and
// from faces of tools, which the rows of the openings name. Its births are the union of theirs.
// Histories say too much in two cases. An opening that is closed leaves its births on a face that
// had merged with its own; therefore births of redone openings come from their tools alone. Tools
// that are united before they cut share a face, and what that leaves counts as left by both; of
// such a face each part keeps the tools whose own face has its box in common with it.
//
// The cost is one walk over the faces of both bodies; faces that nothing is known of are few.
#include "host/naming/birth_history.h"

#include <algorithm>
#include <unordered_set>

namespace vdm_host {

namespace {

using Type = OdModelerSubentType;

// In how many directions boxes have a length in common; none for boxes that are apart. Neighbours
// in one plane have one.
int commonDirections(const OdGeExtents3d& a, const OdGeExtents3d& b) {
  constexpr double kTouch =
      1e-5;  // a hundred times the modeller's confusion: boxes are widened by it
  const OdGePoint3d low(std::max(a.minPoint().x, b.minPoint().x),
                        std::max(a.minPoint().y, b.minPoint().y),
                        std::max(a.minPoint().z, b.minPoint().z));
  const OdGePoint3d high(std::min(a.maxPoint().x, b.maxPoint().x),
                         std::min(a.maxPoint().y, b.maxPoint().y),
                         std::min(a.maxPoint().z, b.maxPoint().z));
  int count = 0;
  for (const double length : {high.x - low.x, high.y - low.y, high.z - low.z}) {
    if (length < -kTouch) return 0;
    if (length > kTouch) ++count;
  }
  return count;
}

}  // namespace

BirthHistory::BirthHistory(const OdDbObjectId& solid, SolidBirths& births,
                           const OdModelerBody& before, const OdModelerBody& now,
                           const BodyTrace& trace, LineageMatcher& lineage,
                           std::span<const FaceRespawn> rows)
    : m_births(births), m_before(births.faces), m_trace(trace) {
  noteRedone(solid, rows);
  const std::unordered_set<OdUInt32> known = m_before.makers();
  for (std::size_t i = 0; i < rows.size(); ++i) {
    if (rows[i].oldFace == 0 || known.contains(m_makers[i])) continue;
    addBirths(m_late[rows[i].oldFace], BirthSet{{m_makers[i], rows[i].toolFace}});
  }
  takeLateBirths();
  followOldFaces(before, lineage);
  followTools(now, rows);
  noteToolBoxes(rows);
  giveNewBirths(now);
}

const OdGeMatrix3d& BirthHistory::motionOf(OdUInt32 maker) const {
  const auto found = m_motions.find(maker);
  return found == m_motions.end() ? m_trace.motion : found->second;
}

std::span<const FaceBirth> BirthHistory::lateBirths(OdUInt32 oldFace) const {
  const auto found = m_late.find(oldFace);
  return found == m_late.end() ? std::span<const FaceBirth>() : found->second;
}

void BirthHistory::noteRedone(const OdDbObjectId& solid, std::span<const FaceRespawn> rows) {
  m_makers.reserve(rows.size());
  for (const FaceRespawn& row : rows) {
    const bool isLast =
        !m_makers.empty() && OdUInt64(m_births.featureOf(m_makers.back())) == OdUInt64(row.feature);
    m_makers.push_back(isLast ? m_makers.back() : m_births.makerOf(solid, row.feature));
    m_motions.try_emplace(m_makers.back(), row.motion);
  }
}

void BirthHistory::takeLateBirths() {
  if (m_late.empty()) return;
  std::vector<FaceBirths::Entry> entries;
  for (OdUInt32 face = 1; face <= m_before.numFaces(); ++face) {
    for (const FaceBirth& birth : m_before.of(face)) entries.push_back({face, birth});
    for (const FaceBirth& birth : lateBirths(face)) entries.push_back({face, birth});
  }
  m_before = FaceBirths(std::move(entries), m_before.numFaces());
}

// Laws 1 and 3.
void BirthHistory::followOldFaces(const OdModelerBody& before, LineageMatcher& lineage) {
  SubentFate fate;
  for (OdUInt32 face = 1; face <= m_before.numFaces(); ++face) {
    m_trace.follow({Type::kFace, face}, fate);
    for (const FaceBirth& birth : m_before.of(face)) {
      if (isRedone(birth.maker)) continue;
      for (const OdUInt32 image : fate.images) m_entries.push_back({image, birth});
      if (!fate.images.empty() || !before.hasSubent({Type::kFace, face})) continue;
      for (const OdUInt32 image : lineage.match({Type::kFace, face}).images) {
        m_rebuilt.push_back({image, birth});
      }
    }
  }
}

// Law 2.
void BirthHistory::followTools(const OdModelerBody& now, std::span<const FaceRespawn> rows) {
  std::unordered_map<OdUInt32, OdUInt32> counts;  // rows that left each face
  for (const FaceRespawn& row : rows) {
    for (const OdUInt32 face : row.newFaces) ++counts[face];
  }
  for (std::size_t i = 0; i < rows.size(); ++i) {
    for (const OdUInt32 face : rows[i].newFaces) {
      const bool isShared = counts[face] > 1 && rows[i].toolBox.isValidExtents();
      const auto isReached = [&] {
        return commonDirections(rows[i].toolBox, now.subentExtents({Type::kFace, face})) >= 2;
      };
      if (isShared && !isReached()) continue;
      m_entries.push_back({face, {m_makers[i], rows[i].toolFace}});
    }
  }
}

void BirthHistory::noteToolBoxes(std::span<const FaceRespawn> rows) {
  for (std::size_t i = 0; i < rows.size(); ++i) {
    if (!rows[i].toolBox.isValidExtents()) continue;
    m_toolBoxes[{m_makers[i], rows[i].toolFace}] = rows[i].toolBox;
  }
}

bool BirthHistory::reaches(const FaceBirth& birth, const OdGeExtents3d& box) const {
  const auto found = m_toolBoxes.find(birth);
  return found == m_toolBoxes.end() || commonDirections(found->second, box) >= 1;
}

// Laws 3 and 4: where the others gave none.
void BirthHistory::giveNewBirths(const OdModelerBody& now) {
  std::vector<bool> isKnown(std::size_t{now.numFaces()} + 1, false);
  const auto mark = [&](const std::vector<FaceBirths::Entry>& entries) {
    for (const FaceBirths::Entry& entry : entries) {
      if (entry.face < isKnown.size()) isKnown[entry.face] = true;
    }
  };
  mark(m_entries);
  std::erase_if(m_rebuilt, [&](const FaceBirths::Entry& entry) {
    return entry.face >= isKnown.size() || isKnown[entry.face];
  });
  mark(m_rebuilt);
  m_entries.insert(m_entries.end(), m_rebuilt.begin(), m_rebuilt.end());
  for (OdUInt32 face = 1; face <= now.numFaces(); ++face) {
    if (isKnown[face]) continue;
    m_entries.push_back({face, {0, m_births.nextKey++}});
    m_fresh.insert(face);
  }
  m_births.faces = FaceBirths(std::move(m_entries), now.numFaces());
  m_births.fingerprint = now.fingerprint();
}

}  // namespace vdm_host
