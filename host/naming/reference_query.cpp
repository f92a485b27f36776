// Questions about persistent references: where they lead, how sure that is, who needs them.
#include "host/naming/reference_query.h"

#include <unordered_map>

#include "host/naming/subent_name.h"
#include "platform/db/database.h"
#include "platform/modeler/db_3d_solid.h"
#include "vdm_db/references/vdm_db_object_dependency.h"
#include "vdm_db/references/vdm_db_pers_id_manager.h"

namespace vdm_host {

namespace {

/// Answers for many references; each solid is looked at once.
class Resolver {
 public:
  ResolvedReference resolve(const OdDbObjectId& id) {
    ResolvedReference result;
    result.dependency = id;
    const VdmDbObjectDependencyPtr dependency = VdmDbObjectDependency::cast(id.openObject());
    if (dependency.isNull()) {
      result.note = L"there is no such reference";
      return result;
    }
    const vdmu::EVdmPathRes link = dependency->getLinkObject(result.path, /*openErased=*/false);
    const OdDbObjectIdArray& ids = result.path.objectIds();
    if (link == vdmu::ePathXrefUnreferenced) {
      result.note = L"an external drawing on its path is not there";
      return result;
    }
    if (link != vdmu::ePathOk || ids.isEmpty() || ids.last().isErased()) {
      result.note = L"its entity is not there";
      return result;
    }
    result.solid = ids.last();
    resolveSubent(*dependency, result);
    return result;
  }

 private:
  struct Row {
    OdModelerBodyPtr body;
    bool isSolid = false;
    bool isCurrent = true;  ///< the numbers hold for the body
  };

  const Row& rowOf(const OdDbObjectId& id) {
    const auto [place, isNew] = m_rows.try_emplace(id);
    Row& row = place->second;
    if (!isNew) return row;
    const OdDb3dSolidPtr solid = OdDb3dSolid::cast(id.openObject());
    row.isSolid = !solid.isNull();
    if (solid.isNull() || !solid->getBody(row.body).ok() || !row.body) return row;
    const OdUInt64 stamp = SolidStamp::read(id).fingerprint;
    row.isCurrent = stamp == 0 || stamp == row.body->fingerprint();
    return row;
  }

  void resolveSubent(const VdmDbObjectDependency& dependency, ResolvedReference& result) {
    const OdDbSubentId& subent = result.path.subentId();
    if (subent.type() == OdDb::kNullSubentType) {
      result.grade = ReferenceGrade::kExact;
      return;
    }
    ReferenceRecord record;
    const bool hasRecord = record.readFrom(dependency);
    if (isUnresolvedIndex(subent.index())) {
      if (hasRecord && !isResolved(record.grade)) result.grade = record.grade;
      result.note = result.grade == ReferenceGrade::kAmbiguous ? L"several subentities look like it"
                                                               : L"nothing is left of it";
      return;
    }
    const Row& row = rowOf(result.solid);
    const OdModelerSubent number{static_cast<OdModelerSubentType>(subent.type()),
                                 static_cast<OdUInt32>(subent.index())};
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

ReferenceStory explainReference(const OdDbObjectId& id) {
  ReferenceStory story;
  story.now = resolveReference(id);
  const VdmDbObjectDependencyPtr dependency = VdmDbObjectDependency::cast(id.openObject());
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
    const VdmDbPersIdManagerPtr manager = VdmDbPersIdManager::cast(managerId.openObject());
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
