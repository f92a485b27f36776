// The check of a drawing in all its parts.
//
// Fixing runs the parts in order, so that a later one sees the drawing as the earlier ones left it,
// and then looks again: what the second look finds is what remains. The managers of features and
// references have no dry run: what they would change is found by letting them change it in a trial,
// comparing each feature before and after, and taking the trial back.
//
// One fault is one finding. A record that cannot be read is known to the drawing when the check of
// objects comes to it, so the complaint of the file about it is left out; bodies with the same
// fault (features keep copies of bodies) are one finding with all their solids.
#include "host/modeling/drawing_audit.h"

#include <algorithm>
#include <map>
#include <string>
#include <utility>

#include "host/modeling/component_feature.h"
#include "host/modeling/component_query.h"
#include "platform/db/audit_info.h"
#include "platform/db/read_faults.h"
#include "platform/db/trial.h"
#include "platform/modeler/db_3d_solid.h"
#include "vdm_db/features/vdm_db_feature_manager.h"
#include "vdm_db/model/vdm_db_pers_id_manager.h"

namespace vdm_host {

namespace {

OdString describe(const OdDbObjectId& feature) {
  const VdmFeaturePtr opened = VdmFeature::open(feature);
  const OdString name = opened.isNull() ? OdString() : opened->name();
  return L"feature '" + name + L"' (" + feature.getHandle().ascii() + L")";
}

OdString counted(OdUInt32 count, const char* noun) {
  return OdString(std::to_string(count) + " " + noun + (count == 1 ? "" : "s"));
}

/// What a feature holds; a check of its manager changes it where it is not sound.
struct FeatureState {
  OdString name;
  OdUInt32 reactors = 0;
  OdUInt32 references = 0;
};
using FeatureStates = std::map<OdDbObjectId, FeatureState>;

template <class Visit>
void forEachFeature(OdDbDatabase* database, const Visit& visit) {
  for (const OdDbObjectId& managerId : featureManagers(database)) {
    const VdmDbFeatureManagerPtr manager = managerId.openAs<VdmDbFeatureManager>();
    if (manager.isNull()) continue;
    const OdDbObjectIdArray ids = manager->featureIds();
    for (const OdDbObjectId& id : ids) {
      const VdmFeaturePtr feature = VdmFeature::open(id);
      if (!feature.isNull()) visit(id, feature);
    }
  }
}

FeatureStates statesOf(OdDbDatabase* database) {
  FeatureStates states;
  forEachFeature(database, [&](const OdDbObjectId& id, const VdmFeaturePtr& feature) {
    states[id] = {describe(id), feature->reactorIds().size(),
                  feature->getAllDependencies(/*filtered=*/false).size()};
  });
  return states;
}

std::vector<OdDbObjectId> managedReferences(OdDbDatabase* database) {
  std::vector<OdDbObjectId> all;
  const OdDbObjectIdArray managers = vdmu::getAllPersIdManagers(database);
  for (const OdDbObjectId& id : managers) {
    const auto manager = id.openAs<VdmDbPersIdManager>();
    if (manager.isNull()) continue;
    const OdDbObjectIdArray ids = manager->objectDependencyIds();
    all.insert(all.end(), ids.begin(), ids.end());
  }
  return all;
}

void letManagersMend(OdDbDatabase* database) {
  for (const OdDbObjectId& id : featureManagers(database)) {
    id.safeOpenAs<VdmDbFeatureManager>(OdDb::kForWrite)->doAudit();
  }
  for (const OdDbObjectId& id : vdmu::getAllPersIdManagers(database)) {
    id.safeOpenAs<VdmDbPersIdManager>(OdDb::kForWrite)->doAudit();
  }
}

class Check {
 public:
  Check(OdDbDatabase* database, AuditMode mode, const AuditParts& parts)
      : m_database(database), m_fixes(mode == AuditMode::kFix), m_parts(parts) {}

  DrawingAudit run() {
    // Whatever the parts, they see all ids of the drawing, and the number of its records is
    // checked.
    m_database->forEachId([](OdDbObjectId) { return true; });
    if (m_parts.drawing || !hasRoots()) checkDrawing();
    if (hasRoots()) {
      if (m_parts.features) checkFeatures();
      if (m_parts.features) checkComponents();
      if (m_parts.references) checkReferences();
    }
    mergeAlike();
    count();
    return std::move(m_audit);
  }

 private:
  /// Without them there is nothing below which features could be looked for.
  bool hasRoots() {
    const auto opens = [](const OdDbObjectId& id) { return !id.openObject().isNull(); };
    return opens(m_database->getBlockTableId()) && opens(m_database->getModelSpaceId()) &&
           opens(m_database->getNamedObjectsDictionaryId());
  }

  void add(const wchar_t* code, OdUInt64 handle, OdString text, const wchar_t* remedy,
           AuditLevel level = AuditLevel::kError) {
    const bool mends = m_fixes && *remedy != L'\0';
    m_audit.findings.push_back({code, level, handle, std::move(text), remedy, mends, {}});
  }

  void checkDrawing() {
    const OdStatus loaded = m_database->loadAll();
    OdDbAuditInfo info(m_fixes);
    m_database->audit(&info);
    for (const OdDbAuditFinding& found : info.findings()) {
      const bool mends = m_fixes && !found.remedy.isEmpty();
      m_audit.findings.push_back(
          {found.code, AuditLevel::kError, found.handle, found.text(), found.remedy, mends, {}});
    }
    // Findings that an object counted without saying more.
    const OdUInt32 named = static_cast<OdUInt32>(info.findings().size());
    if (info.numErrors() > named) {
      add(L"object", 0, counted(info.numErrors() - named, "finding") + L" of objects", L"");
    }
    const OdStringArray faults = oddbFileFaults(m_database);
    for (const OdString& line : faults) add(L"file-damaged", 0, line, L"");
    if (!loaded.ok() && m_audit.findings.empty()) add(L"file-damaged", 0, loaded.text, L"");
  }

  // Features that lack what they cannot be without, or hold what is lost; references that nothing
  // needs.
  void checkFeatures() {
    const FeatureStates before = statesOf(m_database);
    const std::vector<OdDbObjectId> references = managedReferences(m_database);
    OdDbTrial trial(m_database);
    letManagersMend(m_database);
    const FeatureStates after = statesOf(m_database);
    for (const auto& [id, was] : before) {
      const auto found = after.find(id);
      if (found == after.end()) {
        add(L"feature-incomplete", id.getHandle(),
            was.name + L" has lost what it cannot be without", L"erased");
      } else if (found->second.reactors != was.reactors ||
                 found->second.references != was.references) {
        add(L"feature-references", id.getHandle(),
            was.name + L" had " + counted(was.references, "reference") + L", " +
                OdString(std::to_string(found->second.references)) + L" of them sound",
            L"without the others");
      }
    }
    for (const OdDbObjectId& id : references) {
      if (id.isErased()) {
        add(L"reference-unneeded", id.getHandle(),
            L"reference " + id.getHandle().ascii() + L" has no watcher or leads to nothing",
            L"removed", AuditLevel::kNote);
      }
    }
    if (m_fixes) trial.keep();
  }

  // A component needs its solid, its block and the pieces that it cut.
  void checkComponents() {
    forEachFeature(m_database, [this](const OdDbObjectId& id, const VdmFeaturePtr& feature) {
      const auto component = VdmComponentFeature::cast(feature.get());
      // An erased insert is a change that the next update deals with.
      if (component.isNull() || component->insertId().isErased()) return;
      const OdString name = describe(id);
      if (component->solidId().openAs<OdDb3dSolid>().isNull()) {
        add(L"component-incomplete", id.getHandle(), name + L" has lost its solid", L"");
      } else if (component->componentName().isEmpty()) {
        add(L"component-incomplete", id.getHandle(), name + L" has lost its block", L"");
      } else if (component->hasLostPiece()) {
        add(L"component-incomplete", id.getHandle(), name + L" has lost a piece that it cut", L"");
      }
    });
  }

  void checkReferences() {
    m_audit.references = listReferences(m_database);
    for (const ReferenceEntry& entry : m_audit.references) {
      if (needOf(entry) != ReferenceNeed::kWanted) continue;
      const OdDbHandle handle = entry.now.dependency.getHandle();
      add(L"reference-unresolved", handle,
          L"reference " + handle.ascii() + L" is " + gradeName(entry.now.grade) +
              (entry.now.note.isEmpty() ? OdString() : L": " + entry.now.note),
          L"");
    }
  }

  /// The text without the object that it begins with: equal faults of several objects.
  static OdString faultIn(const DrawingFinding& finding) {
    OdString text = finding.text;
    text.replace(OdDbHandle(finding.handle).ascii(), L"#");
    return text;
  }

  void mergeAlike() {
    std::map<std::pair<OdString, OdString>, std::size_t> known;
    std::vector<DrawingFinding> merged;
    for (DrawingFinding& finding : m_audit.findings) {
      const bool isBody = finding.code == L"body-unsound";
      const OdString text = isBody ? faultIn(finding) : finding.text;
      const auto [place, isNew] = known.try_emplace({finding.code, text}, merged.size());
      if (isNew) {
        merged.push_back(std::move(finding));
      } else if (merged[place->second].handle != finding.handle) {
        merged[place->second].alike.push_back(finding.handle);
      }
    }
    m_audit.findings = std::move(merged);
  }

  void count() {
    for (const DrawingFinding& finding : m_audit.findings) {
      if (finding.level == AuditLevel::kError) ++m_audit.errors;
      if (finding.mended) ++m_audit.mended;
    }
    m_audit.remaining = m_audit.errors;
  }

  OdDbDatabase* m_database;
  bool m_fixes;
  AuditParts m_parts;
  DrawingAudit m_audit;
};

}  // namespace

ReferenceNeed needOf(const ReferenceEntry& entry) {
  if (entry.now.resolved()) return ReferenceNeed::kResolved;
  if (entry.watchers.isEmpty()) return ReferenceNeed::kUnneeded;
  const bool isAwaited = std::ranges::all_of(entry.watchers, [](const OdDbObjectId& watcher) {
    const auto component = VdmComponentFeature::cast(VdmFeature::open(watcher.ownerId()).get());
    return !component.isNull() && component->state() == VdmComponentFeature::kStateSuppressed;
  });
  return isAwaited ? ReferenceNeed::kWaiting : ReferenceNeed::kWanted;
}

DrawingAudit auditDrawing(OdDbDatabase* database, AuditMode mode, const AuditParts& parts) {
  DrawingAudit audit = Check(database, mode, parts).run();
  if (mode == AuditMode::kLook) return audit;
  DrawingAudit rest = Check(database, AuditMode::kLook, parts).run();
  audit.remaining = rest.errors;
  audit.references = std::move(rest.references);
  return audit;
}

}  // namespace vdm_host
