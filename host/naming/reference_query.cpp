// Questions about persistent references: where they lead, how sure that is, who needs them.
#include "host/naming/reference_query.h"

#include <algorithm>
#include <array>
#include <unordered_map>
#include <utility>

#include "host/naming/read_ahead.h"
#include "host/naming/solid_stamp.h"
#include "host/naming/subent_name.h"
#include "platform/db/database.h"
#include "platform/modeler/db_3d_solid.h"
#include "vdm_db/model/vdm_db_object_dependency.h"
#include "vdm_db/model/vdm_db_pers_id_manager.h"

namespace vdm_host {

namespace {

/// Answers for many references; each solid is looked at once.
class Resolver {
 public:
  ResolvedReference resolve(const OdDbObjectId& id) {
    const VdmDbObjectDependencyPtr dependency = id.openAs<VdmDbObjectDependency>();
    VdmBlob record;
    if (!dependency.isNull()) ReferenceRecord::readBytes(*dependency, record);
    return resolve(id, dependency, record);
  }
  /// The same with the dependency and the bytes of its record at hand.
  ResolvedReference resolve(const OdDbObjectId& id, const VdmDbObjectDependencyPtr& dependency,
                            const VdmBlob& record) {
    ResolvedReference result;
    result.dependency = id;
    if (dependency.isNull()) {
      result.note = L"there is no such reference";
      return result;
    }
    const vdmu::EVdmPathRes link = followLink(*dependency, result.path);
    if (link == vdmu::ePathXrefUnreferenced) {
      result.note = L"an external drawing on its path is not there";
      return result;
    }
    const OdDbObjectIdArray& ids = std::as_const(result.path).objectIds();
    if (link != vdmu::ePathOk || ids.isEmpty() || rowOf(ids.last()).isErased) {
      result.note = L"its entity is not there";
      return result;
    }
    result.solid = ids.last();
    resolveSubent(record, result);
    return result;
  }

 private:
  /// An entity that references lead to.
  struct Row {
    OdDbObjectIdArray plainPath;  ///< the entity alone; shared by the paths that are no more
    OdModelerBodyPtr body;
    bool isErased = false;
    bool isSolid = false;
    bool isCurrent = true;  ///< the numbers hold for the body
  };

  vdmu::EVdmPathRes followLink(const VdmDbObjectDependency& dependency, OdDbFullSubentPath& path) {
    const VdmCompoundObjectId& stored = dependency.compoundId();
    const OdDbObjectId top = stored.isSimpleObjectId() ? stored.topId() : OdDbObjectId();
    if (top.isNull()) return dependency.getLinkObject(path, /*openErased=*/false);
    path = OdDbFullSubentPath(rowOf(top).plainPath, dependency.subentId());
    return vdmu::ePathOk;
  }

  const Row& rowOf(const OdDbObjectId& id) {
    if (m_last != nullptr && m_lastId == id) return *m_last;
    const auto [place, isNew] = m_rows.try_emplace(id);
    if (isNew) fill(id, place->second);
    m_last = &place->second;
    m_lastId = id;
    return *m_last;
  }

  static void fill(const OdDbObjectId& id, Row& row) {
    row.plainPath.append(id);
    row.isErased = id.isErased();
    const OdDb3dSolidPtr solid = id.openAs<OdDb3dSolid>();
    row.isSolid = !solid.isNull();
    if (solid.isNull() || !solid->getBody(row.body).ok() || !row.body) return;
    const OdUInt64 stamp = SolidStamp::read(id).fingerprint;
    row.isCurrent = stamp == 0 || stamp == row.body->fingerprint();
  }

  void resolveSubent(const VdmBlob& bytes, ResolvedReference& result) {
    const OdDbSubentId& subent = result.path.subentId();
    if (subent.type() == OdDb::kNullSubentType) {
      result.grade = ReferenceGrade::kExact;
      return;
    }
    ReferenceRecord record;
    const auto type = static_cast<OdModelerSubentType>(subent.type());
    const bool hasRecord = record.decode(bytes, type);
    if (isUnresolvedIndex(subent.index())) {
      if (hasRecord && !isResolved(record.grade)) result.grade = record.grade;
      result.note = result.grade == ReferenceGrade::kAmbiguous ? L"several subentities look like it"
                                                               : L"nothing is left of it";
      return;
    }
    const Row& row = rowOf(result.solid);
    const OdModelerSubent number{type, static_cast<OdUInt32>(subent.index())};
    if (!row.isSolid) {
      result.note = L"its entity is no solid";
    } else if (!row.body) {
      result.note = L"its solid is empty or cannot be read";
    } else if (!row.isCurrent) {
      result.note = L"its solid was changed since, run an update";
    } else if (!row.body->hasSubent(number)) {
      result.note = L"its solid has no " + subentName(number);
    } else {
      result.grade = hasRecord && isResolved(record.grade) ? record.grade : ReferenceGrade::kExact;
    }
  }

  std::unordered_map<OdDbObjectId, Row> m_rows;
  OdDbObjectId m_lastId;
  const Row* m_last = nullptr;
};

OdString line(const LineageStep& step, OdModelerSubentType type) {
  OdString text = causeName(step.cause);
  if (OdUInt64(step.feature) != 0) text += L" by feature " + step.feature.ascii();
  text += L": ";
  text += step.from == 0 ? OdString(L"nothing") : subentName({type, step.from});
  text += L" -> ";
  text += step.to == 0 ? OdString(L"nothing") : subentName({type, step.to});
  if (step.images > 1) {
    OdString images;
    images.format(L" of %u", step.images);
    text += images;
  }
  return text + L", " + gradeName(step.grade);
}

}  // namespace

ResolvedReference resolveReference(const OdDbObjectId& dependency) {
  return Resolver().resolve(dependency);
}

// In portions, whose dependencies and records are fetched together (read_ahead.h).
std::vector<ResolvedReference> resolveReferences(std::span<const OdDbObjectId> dependencies) {
  constexpr std::size_t kPortion = 64;
  struct Fetched {
    VdmDbObjectDependencyPtr dependency;
    VdmBlob record;
  };
  std::array<Fetched, kPortion> fetched;
  std::vector<ResolvedReference> results;
  results.reserve(dependencies.size());
  Resolver resolver;
  for (std::size_t i = 0; i < dependencies.size(); i += kPortion) {
    const auto ids = dependencies.subspan(i, std::min(kPortion, dependencies.size() - i));
    readAhead(ids);
    for (std::size_t k = 0; k < ids.size(); ++k) {
      fetched[k].dependency = ids[k].openAs<VdmDbObjectDependency>();
      fetched[k].record.clear();
      if (!fetched[k].dependency.isNull()) {
        ReferenceRecord::readBytes(*fetched[k].dependency, fetched[k].record);
      }
    }
    for (std::size_t k = 0; k < ids.size(); ++k) {
      results.push_back(resolver.resolve(ids[k], fetched[k].dependency, fetched[k].record));
    }
  }
  return results;
}

ReferenceStory explainReference(const OdDbObjectId& id) {
  ReferenceStory story;
  story.now = resolveReference(id);
  const VdmDbObjectDependencyPtr dependency = id.openAs<VdmDbObjectDependency>();
  if (dependency.isNull()) return story;
  story.hasRecord = story.record.readFrom(*dependency);
  const auto type = static_cast<OdModelerSubentType>(dependency->subentId().type());
  if (story.hasRecord) {
    const ReferenceRecord& record = story.record;
    if (record.birth.isOfTool()) {
      OdString birth;
      birth.format(L"of face %u of the tool of feature %ls", record.birth.toolFace,
                   record.birth.feature.ascii().c_str());
      story.lines.push_back(birth);
    }
    for (std::size_t i = 0; i < record.steps.size(); ++i) {
      story.lines.push_back(line(record.steps[i], type));
      if (i == 0 && record.stepCount > record.steps.size()) {
        OdString skipped;
        skipped.format(L"... %u more",
                       record.stepCount - static_cast<OdUInt32>(record.steps.size()));
        story.lines.push_back(skipped);
      }
    }
  }
  OdString now = L"now: " + gradeName(story.now.grade);
  if (story.now.resolved() && type != OdModelerSubentType::kNull) {
    now += L", " + subentName({type, static_cast<OdUInt32>(dependency->subentId().index())});
  }
  if (!story.now.note.isEmpty()) now += L", " + story.now.note;
  story.lines.push_back(now);
  return story;
}

std::vector<ReferenceEntry> listReferences(OdDbDatabase* database) {
  std::vector<ReferenceEntry> entries;
  Resolver resolver;
  for (const OdDbObjectId& managerId : vdmu::getAllPersIdManagers(database)) {
    const VdmDbPersIdManagerPtr manager = managerId.openAs<VdmDbPersIdManager>();
    if (manager.isNull()) continue;
    for (const OdDbObjectId& id : manager->objectDependencyIds()) {
      ReferenceEntry& entry = entries.emplace_back();
      entry.now = resolver.resolve(id);
      const OdDbObjectPtr dependency = id.openObject();
      if (dependency.isNull()) continue;
      for (const OdDbObjectId& watcher : dependency->getPersistentReactors()) {
        if (!watcher.isErased()) entry.watchers.append(watcher);
      }
    }
  }
  return entries;
}

}  // namespace vdm_host
