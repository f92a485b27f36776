// InsertRow: components that are inserted with one pass, as if each had had its own.
#include "host/modeling/insert_row.h"

#include <algorithm>
#include <iterator>
#include <set>

#include "host/modeling/component_query.h"
#include "host/modeling/model_update_context.h"
#include "host/naming/reference_query.h"
#include "platform/base/error.h"

namespace vdm_host {
namespace {

OdStatus refuse(const OdString& text) { return {eInvalidInput, text}; }

// A tool that is made to fit goes through all of the body that is below it, and above its face as
// far as its clearance.
void addReachOfFit(const ToolForm& form, const OdModelerBody& body, const OdGeMatrix3d& frame,
                   OdGeExtents3d& box) {
  const OdGePoint3d middle = box.center();
  box.addPoint({middle.x, middle.y, form.clearance()});
  if (form.depth) return;
  OdGeExtents3d whole = body.extents();
  whole.transformBy(frame.inverse());
  const double deepest = std::min(whole.minPoint().z, -form.boreDepth);
  box.addPoint({middle.x, middle.y, deepest - form.clearance()});
}

}  // namespace

// The box around all that the component may change, and around its point.
OdGeExtents3d InsertRow::reachOf(const ComponentInsert& component, const InsertionPlace& place) {
  const OdModelerBodyPtr body = component.placement.solid.safeOpenAs<OdDb3dSolid>()->body();
  const BlockTools& tools = m_tools.of(component.block);
  OdGeExtents3d reach;
  for (const ToolKind kind : kToolKinds) {
    for (const OdModelerBodyPtr& tool : tools.of(kind)) {
      OdGeExtents3d box = tool->extents();
      if (tools.form && kind == ToolKind::kCut) {
        addReachOfFit(*tools.form, *body, place.frame, box);
      }
      box.transformBy(place.frame);
      reach.addExt(box);
    }
  }
  reach.addPoint(component.placement.point);
  // What lies within the tolerance of a point decides in which face the point is.
  return reach.expandBy(2.0 * kOnFace * body->extents().diagonal().length());
}

bool InsertRow::add(const ComponentInsert& component) {
  InsertionPlace place;
  if (!placeInsertion(component, m_tools, place).ok()) return false;
  const OdGeExtents3d reach = reachOf(component, place);
  BoxIndex& taken = m_taken[component.placement.solid];
  if (taken.meets(reach)) return false;
  Entry entry{{}, {}, component.placement.solid, component.placement.acceptsNoEffect, {}};
  const OdStatus status = makeInsertion(m_database, component, place, entry.insert, entry.feature);
  if (!status.ok()) throw OdError(status.code, status.text);
  taken.add(reach, m_entries.size());
  m_entries.push_back(entry);
  return true;
}

OdStatus InsertRow::acceptEntry(const Entry& entry, UpdateReport& report) const {
  const FeatureReport& own = report.feature(entry.feature);
  if (own.outcome == FeatureOutcome::kUpdated) return {};
  // One without effect is looked at again by every later pass.
  const bool isAlone = m_entries.size() == 1;
  if (own.outcome == FeatureOutcome::kIdle && entry.acceptsNoEffect && isAlone) return {};
  return refuse(L"component \"" + own.component + L"\": " + toText(own.outcome));
}

OdStatus InsertRow::accept(UpdateReport& report) {
  for (const Entry& entry : m_entries) {
    if (OdStatus status = acceptEntry(entry, report); !status.ok()) return status;
  }
  if (m_entries.size() == 1) return {};
  if (report.features.size() != m_entries.size() || report.numRounds != 1) {
    return refuse(OdString(L"other features take part"));
  }
  const bool isPlain = report.readings.empty() && shareReferences(report);
  return isPlain ? OdStatus() : refuse(OdString(L"references are resolved in another way"));
}

// ---- References to the faces around openings

std::unordered_map<OdDbObjectId, InsertRow::OpeningFaces> InsertRow::openingFaces() const {
  std::unordered_map<OdDbObjectId, OpeningFaces> faces;
  for (std::size_t i = 0; i < m_entries.size(); ++i) {
    for (const auto& [toolFace, face] : openingFacesOf(*openComponent(m_entries[i].feature))) {
      faces[m_entries[i].solid][face] = i;
    }
  }
  return faces;
}

// The entry that made the reference as its base face; the first one for a reference that was there.
std::size_t InsertRow::makerOf(const OdDbObjectId& reference) const {
  const auto after =
      std::ranges::upper_bound(m_entries, reference.getHandle(), {},
                               [](const Entry& entry) { return entry.insert.getHandle(); });
  return after == m_entries.begin() ? 0 : static_cast<std::size_t>(after - m_entries.begin()) - 1;
}

// A face in which openings were cut has an edge with each of them. One pass for each would have
// changed the reference with the first of them that found it, and kept what it became with the
// others.
bool InsertRow::shareReference(const ReferenceReport& reference,
                               const std::unordered_map<OdDbObjectId, OpeningFaces>& openings) {
  const ResolvedReference now = resolveReference(reference.reference);
  const auto around = openings.find(now.solid);
  const bool isPlain = now.resolved() && reference.replacedBy.isEmpty() &&
                       now.path.subentId().type() == OdDb::kFaceSubentType &&
                       around != openings.end();
  if (!isPlain) return false;
  const OdModelerBodyPtr body = now.solid.safeOpenAs<OdDb3dSolid>()->body();
  const auto face = static_cast<OdUInt32>(now.path.subentId().index());
  const std::size_t maker = makerOf(reference.reference);
  std::set<std::size_t> entries;
  for (const OdUInt32 edge : body->edgesOfFace(face)) {
    for (const OdUInt32 other : body->facesOfEdge(edge)) {
      const auto found = around->second.find(other);
      if (found != around->second.end() && found->second >= maker) entries.insert(found->second);
    }
  }
  OdString before = reference.before;
  for (const std::size_t entry : entries) {
    ReferenceReport& own = m_entries[entry].references.emplace_back(reference);
    own.before = before;
    own.text = causeName(LineageCause::kBoolean) + L" by " +
               VdmFeature::open(m_entries[entry].feature)->name();
    before = reference.after;
  }
  return !entries.empty();
}

bool InsertRow::shareReferences(const UpdateReport& report) {
  const std::unordered_map<OdDbObjectId, OpeningFaces> openings = openingFaces();
  const OdString boolean = causeName(LineageCause::kBoolean);
  return std::ranges::all_of(report.references, [&](const ReferenceReport& reference) {
    return reference.text.find(boolean) == 0 && shareReference(reference, openings);
  });
}

// ---- Results

std::vector<EditResult> InsertRow::results(const UpdateReport& all) const {
  if (m_entries.size() == 1) return {{{}, all, m_entries[0].insert, m_entries[0].feature}};
  std::unordered_map<OdDbObjectId, const FeatureReport*> reports;
  for (const FeatureReport& feature : all.features) reports[feature.feature] = &feature;
  const double share = 1.0 / static_cast<double>(m_entries.size());
  std::vector<EditResult> results;
  for (const Entry& entry : m_entries) {
    EditResult& result = results.emplace_back(EditResult{{}, {}, entry.insert, entry.feature});
    UpdateReport& own = result.report;
    own.features = {*reports.at(entry.feature)};
    // In a pass of its own it would have passed over those before it in the row, too.
    own.numSkipped = all.numSkipped + static_cast<OdUInt32>(results.size() - 1);
    own.numRounds = all.numRounds;
    own.references = entry.references;
    std::ranges::copy_if(all.solidWork, std::back_inserter(own.solidWork),
                         [&](const SolidWorkReport& work) { return work.solid == entry.solid; });
    for (const PhaseReport& phase : all.phases) own.addPhase(phase.phase, share * phase.seconds);
    own.seconds = share * all.seconds;
    own.passSeconds = share * all.passSeconds;
    own.modelerSeconds = share * all.modelerSeconds;
  }
  return results;
}

}  // namespace vdm_host
