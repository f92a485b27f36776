// ReferenceUpdate: carries out what was decided.
//
// The order matters. Links change first and for all references, one call for each manager, since a
// manager keeps its references in order of their paths and may not see half of them moved. Records
// follow, and with them the splits, which need the records of the old references for the new ones.
//
// Laws of what is written:
//   1. nothing for an exact decision but the number;
//   2. one step, the grade and the cause for every other decision, and a fresh signature where it
//      leads somewhere. A lost reference keeps its signature: by that it is found again;
//   3. a split is a reference for each part where a manager can make them, else the largest part.
#include <algorithm>
#include <functional>
#include <optional>
#include <utility>

#include "host/naming/body_signature.h"
#include "host/naming/plane_signature.h"
#include "host/naming/reference_update_impl.h"
#include "vdm_db/model/vdm_db_pers_id_manager.h"

namespace vdm_host {

namespace {

/// The modeller measures a face in about 0.02 ms for each of its edges, signatureOfPlane() in about
/// 1 us. A face with more edges than this keeps its signature until it has an eighth more or fewer.
constexpr std::size_t kManyEdges = 64;
constexpr std::size_t kManyParts = 8;

bool isAsLargeAs(std::size_t edges, std::size_t before) {
  const std::size_t difference = edges > before ? edges - before : before - edges;
  return difference * kManyParts <= edges;
}

// The signature of what a reference leads to; none when the known one is good enough. Both lie
// where the body does.
std::optional<SubentSignature> renewed(const SubentSignature& known, const OdModelerBody& body,
                                       OdModelerSubent subent, LineageCause cause) {
  if (known.type != OdModelerSubentType::kFace) return signatureOf(body, subent);
  const std::size_t edges = body.edgesOfFace(subent.index).size();
  const bool hasMany = edges > kManyEdges;
  const bool isPart = cause == LineageCause::kSplit;
  if (hasMany && !isPart && isAsLargeAs(edges, known.bounds)) return std::nullopt;
  // What a boolean or blend leaves of a plane lies in it, with the same side out. Any other cause
  // may lead to another plane.
  if (isPart || cause == LineageCause::kBoolean || cause == LineageCause::kBlend) {
    std::optional<SubentSignature> plane = signatureOfPlane(body, subent.index, known);
    if (plane) return plane;
  }
  if (hasMany) return std::nullopt;
  return signatureOf(body, subent);
}

OdUInt32 largestOf(const OdModelerBody& body, OdModelerSubentType type,
                   const std::vector<OdUInt32>& indices) {
  const auto sizeOf = [&](OdUInt32 index) { return signatureOf(body, {type, index}).size; };
  return *std::ranges::max_element(indices, std::ranges::less(), sizeOf);
}

// What a reference remembers; a default record, which is exact, when it has none.
ReferenceRecord recordOf(const OdDbObjectId& id) {
  ReferenceRecord record;
  const VdmDbObjectDependencyPtr dependency = openDependency(id);
  if (!dependency.isNull()) (void)record.readFrom(*dependency);
  return record;
}

}  // namespace

OdDbFullSubentPath ReferenceUpdate::Impl::pathTo(const OdDbObjectId& dependency,
                                                 const OdDbSubentId& subent) {
  const VdmDbObjectDependencyPtr opened = openDependency(dependency);
  OdDbFullSubentPath path = opened->getLinkObject(/*openErased=*/true);
  path.subentId() = subent;
  return path;
}

void ReferenceUpdate::Impl::apply(Solid& solid) {
  if (solid.decisions.empty()) return;
  setLinks(solid);
  writeRecords(solid);
}

// For a dependency that no manager owns.
void ReferenceUpdate::Impl::setLink(const OdDbObjectId& id, const OdDbFullSubentPath& path) {
  const VdmDbObjectDependencyPtr dependency = openDependency(id, OdDb::kForWrite);
  if (!dependency.isNull()) dependency->setLinkObject(path);
}

void ReferenceUpdate::Impl::LinkMoves::add(const OdDbObjectId& dependency, bool isPlain,
                                           OdDbSubentId subent) {
  const OdDbObjectId manager = dependency.ownerId();
  if (m_row == nullptr || manager != m_row->manager) {
    m_row = &m_rows[manager.getHandle()];
    m_row->manager = manager;
  }
  m_row->ids.append(dependency);
  m_row->paths.append(isPlain ? OdDbFullSubentPath(m_direct, subent) : pathTo(dependency, subent));
}

void ReferenceUpdate::Impl::LinkMoves::carryOut() {
  for (auto& [handle, row] : m_rows) {
    if (row.ids.isEmpty()) continue;
    const VdmDbPersIdManagerPtr manager = row.manager.openAs<VdmDbPersIdManager>(OdDb::kForWrite);
    if (!manager.isNull()) {
      manager->updatePairs(row.ids, row.paths);
    } else {
      for (OdUInt32 i = 0; i < row.ids.size(); ++i) setLink(row.ids[i], row.paths[i]);
    }
    row.ids.clear();
    row.paths.clear();
  }
}

// The reference leads to another number, or with 0 nowhere.
void ReferenceUpdate::Impl::renumber(LinkMoves& moves, const Reference& reference, OdUInt32 image) {
  const OdInt64 index = image == 0 ? unresolvedIndexOf(reference.dependency) : OdInt64{image};
  if (index == OdInt64{reference.old.index}) return;
  const auto type = static_cast<OdDb::SubentType>(reference.old.type);
  moves.add(reference.dependency, reference.isPlain, OdDbSubentId(type, index));
  m_report.renumbered += image != 0 ? 1U : 0U;
}

// One image or none: the reference itself is changed.
void ReferenceUpdate::Impl::setLinks(const Solid& solid) {
  LinkMoves moves(solid.id);
  for (const Decision& decision : solid.decisions) {
    const std::vector<OdUInt32>& images = decision.match.images;
    if (images.size() <= 1) renumber(moves, decision, images.empty() ? 0 : images.front());
  }
  moves.carryOut();
}

void ReferenceUpdate::Impl::writeRecords(Solid& solid) {
  for (const Decision& decision : solid.decisions) {
    if (decision.match.images.size() > 1) {
      writeSplit(solid, decision);
      continue;
    }
    if (decision.match.grade == ReferenceGrade::kExact) {
      if (decision.cause == LineageCause::kReplaced) writeNewBirths(decision);
      continue;
    }
    const ReferenceRecord record = recordOf(decision.dependency);
    const OdUInt32 image = decision.match.images.empty() ? 0 : decision.match.images.front();
    writeRecord(decision.dependency, decision, record, image, solid);
    report(solid, decision, record.grade);
  }
}

// An exact decision is no step, but the part gave its faces new births.
void ReferenceUpdate::Impl::writeNewBirths(const Decision& decision) {
  const VdmDbObjectDependencyPtr dependency = openDependency(decision.dependency, OdDb::kForWrite);
  ReferenceRecord record;
  if (dependency.isNull() || !record.readFrom(*dependency)) return;
  record.births = decision.births;
  record.writeTo(*dependency);
}

void ReferenceUpdate::Impl::writeRecord(const OdDbObjectId& id, const Decision& decision,
                                        const ReferenceRecord& from, OdUInt32 image,
                                        const Solid& solid) {
  ReferenceRecord record = from;
  record.addStep({decision.cause, decision.match.grade, decision.old.index, image,
                  static_cast<OdUInt32>(decision.match.images.size()), decision.feature});
  if (decision.birth) record.birth = *decision.birth;
  if (!decision.births.empty()) record.births = decision.births;
  record.lastIndex = image != 0 ? image : decision.old.index;
  const OdGeMatrix3d& frame = solid.stamp.frame;
  if (image != 0 && !frame.isSingular()) {
    const std::optional<SubentSignature> now = renewed(record.signature.movedBy(frame), *solid.now,
                                                       {decision.old.type, image}, decision.cause);
    if (now) record.signature = now->movedBy(frame.inverse());
  }
  const VdmDbObjectDependencyPtr dependency = openDependency(id, OdDb::kForWrite);
  if (!dependency.isNull()) record.writeTo(*dependency);
}

// Clones of the reference, one for each image; none when no manager can make them.
OdDbObjectIdArray ReferenceUpdate::Impl::splitByManager(const Decision& decision) {
  const auto type = static_cast<OdDb::SubentType>(decision.old.type);
  OdDbFullSubentPathArray paths;
  for (const OdUInt32 image : decision.match.images) {
    paths.append(pathTo(decision.dependency, OdDbSubentId(type, image)));
  }
  const OdDbObjectId id = decision.dependency.ownerId();
  const VdmDbPersIdManagerPtr manager = id.openAs<VdmDbPersIdManager>(OdDb::kForWrite);
  if (manager.isNull()) return {};
  OdDbObjectIdArray parts = manager->split(decision.dependency, paths, m_map);
  if (parts.size() != paths.size()) return {};
  m_managers[id.getHandle()] = id;
  return parts;
}

// Several images: clones replace the reference. One that nothing watches follows the largest part,
// since nothing would follow the clones.
void ReferenceUpdate::Impl::writeSplit(Solid& solid, const Decision& decision) {
  const std::vector<OdUInt32>& images = decision.match.images;
  const ReferenceRecord record = recordOf(decision.dependency);
  const OdDbObjectIdArray parts = splitByManager(decision);
  Decision part = decision;
  part.match.grade = ReferenceGrade::kSplit;
  part.cause = decision.birth ? decision.cause : LineageCause::kSplit;
  for (OdUInt32 i = 0; i < parts.size(); ++i) {
    if (decision.cause == LineageCause::kReplaced) {
      part.births = birthsAt(*solid.now, solid.births.faces, {decision.old.type, images[i]});
    }
    writeRecord(parts[i], part, record, images[i], solid);
  }
  if (parts.isEmpty()) {
    const OdUInt32 largest = largestOf(*solid.now, decision.old.type, images);
    const auto type = static_cast<OdDb::SubentType>(decision.old.type);
    setLink(decision.dependency, pathTo(decision.dependency, OdDbSubentId(type, OdInt64{largest})));
    writeRecord(decision.dependency, part, record, largest, solid);
  }
  report(solid, part, record.grade);
}

void ReferenceUpdate::Impl::report(const Solid& solid, const Decision& decision,
                                   ReferenceGrade before) {
  ReferenceChange change;
  change.dependency = decision.dependency;
  change.solid = solid.id;
  change.type = decision.old.type;
  change.from = decision.old.index;
  change.to = decision.match.images.empty() ? 0 : decision.match.images.front();
  change.gradeBefore = before;
  change.grade = decision.match.grade;
  change.cause = decision.cause;
  change.feature = decision.feature;
  if (m_map.contains(decision.dependency)) {
    change.replacedBy = m_map.getReplacedWith(decision.dependency);
  }
  if (change.grade != before) {
    m_report.lost += change.grade == ReferenceGrade::kLost ? 1U : 0U;
    m_report.ambiguous += change.grade == ReferenceGrade::kAmbiguous ? 1U : 0U;
  }
  m_report.changes.push_back(std::move(change));
}

}  // namespace vdm_host
