// A step of the update: components drop references to faces that are not their openings' any more.
//
// Openings that meet in one face, such as two bosses of one height, share its reference: every
// component of them lists it. A pass notes for each opening that it made which faces the tools left
// (ModelUpdateContext::openings). From that follows what is to be dropped:
//
//   1. A component that was done anew drops each face that its own tools did not leave.
//   2. Where a shared reference was split, or an opening was closed, openings may have parted. Then
//      a component that was not done anew drops each face that the tools of another one left.
//
// A face that met no tool of the pass is no one's news and stays. Rule 2 is not applied otherwise:
// a face in which two openings meet would leave the one that was not touched. The step opens the
// references of the components at the solids concerned, and writes only where one is dropped.
#include <algorithm>
#include <functional>

#include "host/modeling/component_query.h"
#include "host/modeling/model_update_context.h"
#include "host/modeling/model_update_steps.h"

namespace vdm_host {
namespace {

using IsForeign = std::function<bool(int toolFace, OdUInt32 face)>;

// Drops the component's references to faces of openings for which `isForeign` holds.
void dropOpeningFaces(ModelUpdateContext& context, const OdDbObjectId& feature,
                      const IsForeign& isForeign) {
  const VdmComponentFeaturePtr component = openComponent(feature);
  if (component.isNull()) return;
  for (const auto& [toolFace, dependencies] : component->openingDependencies()) {
    OdDbObjectIdArray foreign;
    for (const OdDbObjectId& reference : dependencies) {
      const OdUInt32 face = resolvedIndexOf(reference);
      if (face != 0 && isForeign(toolFace, face)) foreign.append(reference);
    }
    if (foreign.isEmpty()) continue;
    const VdmComponentFeaturePtr writer = openComponent(feature, OdDb::kForWrite);
    writer->getDbObject()->assertWriteEnabled();
    writer->dropOpening(toolFace, foreign);
    context.leavesUnwatched = true;
  }
}

// Rule 1.
void dropWhatToolsDidNotLeave(ModelUpdateContext& context, const Opening& own) {
  dropOpeningFaces(context, own.feature, [&own](int toolFace, OdUInt32 face) {
    const auto found = own.faces.find(toolFace);
    return found == own.faces.end() || std::ranges::count(found->second, face) == 0;
  });
}

// Rule 2.
void dropWhatOthersLeft(ModelUpdateContext& context, const OdDbObjectId& solid,
                        const std::vector<Opening>& openings) {
  std::unordered_set<OdUInt32> left;
  std::unordered_set<OdDbObjectId> doneAnew;
  for (const Opening& opening : openings) {
    doneAnew.insert(opening.feature);
    for (const auto& [toolFace, faces] : opening.faces) left.insert(faces.begin(), faces.end());
  }
  for (const OdDbObjectId& id : context.componentsAt(solid)) {
    if (doneAnew.contains(id)) continue;
    dropOpeningFaces(context, id, [&left](int, OdUInt32 face) { return left.contains(face); });
  }
}

bool isSplit(const ReferenceChange& change) {
  return change.grade == ReferenceGrade::kSplit && change.replacedBy.size() > 1;
}

bool hasClosed(const std::vector<Opening>& openings) {
  return std::ranges::any_of(openings, [](const Opening& o) { return o.faces.empty(); });
}

bool mayHaveParted(const ModelUpdateContext& context) {
  return std::ranges::any_of(context.references.changes, isSplit) ||
         std::ranges::any_of(context.openings,
                             [](const auto& row) { return hasClosed(row.second); });
}

}  // namespace

OdStatus separateOpenings(ModelUpdateContext& context) {
  const bool concernsAll = mayHaveParted(context);
  for (const auto& [solid, openings] : context.openings) {
    for (const Opening& own : openings) dropWhatToolsDidNotLeave(context, own);
    if (concernsAll) dropWhatOthersLeft(context, solid, openings);
  }
  return {};
}

}  // namespace vdm_host
