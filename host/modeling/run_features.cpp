// A step of the update: the module's passes, round by round until nothing is new.
//
// A round runs one pass over every block. Two things it leaves are new to features: references that
// it replaced, and entities that it changed after a feature had looked at them. Both are the input
// of the next round. Changes that a feature makes itself are not new to it, so rounds end unless
// two features undo each other's work; then the update is refused after kMaxRounds.
#include <utility>

#include "host/modeling/model_update_context.h"
#include "host/modeling/model_update_steps.h"
#include "vdm_db/features/vdm_db_feature_manager.h"
#include "vdm_db/model/vdm_db_object_dependency.h"

namespace vdm_host {
namespace {

constexpr OdUInt32 kMaxRounds = 8;

// The manager leaves replaced dependencies to the owner of the map.
void eraseUnwatched(const ModelUpdateContext& context) {
  for (const OdDbObjectId& id : context.map.getAll()) {
    const VdmDbObjectDependencyPtr dependency = id.openAs<VdmDbObjectDependency>(OdDb::kForWrite);
    if (!dependency.isNull() && !dependency->isWatched()) dependency->erase();
  }
}

// Handlers bring references up to date with what they do to solids. This is left for solids that
// features changed in their own updates.
void settleRest(ModelUpdateContext& context) {
  const auto changes = context.journal.changes().subspan(context.numSettled);
  if (changes.empty()) return;
  ReferenceUpdate update(context.nextMap);
  context.noteReferences(update.settle(changes));
  context.numSettled = context.journal.mark();
}

OdStatus runPasses(ModelUpdateContext& context) {
  context.pass.replacementMap = &context.map;
  for (const OdDbObjectId& id : context.managers) {
    const VdmDbFeatureManagerPtr manager = id.openAs<VdmDbFeatureManager>(OdDb::kForWrite);
    if (manager.isNull()) continue;
    manager->updateFeatures(context.pass);
    if (!context.recorder.failure().ok()) return context.recorder.failure();
    settleRest(context);
  }
  return {};
}

// One round; `leavesNews` says whether another one is due.
OdStatus runRound(ModelUpdateContext& context, bool& leavesNews) {
  ++context.report.numRounds;
  const std::size_t changesBefore = context.changes.count();
  context.nextMap.clear();
  OdStatus status = runPasses(context);
  if (!status.ok()) return status;
  eraseUnwatched(context);
  std::swap(context.map, context.nextMap);
  const bool onlyChanges = context.map.isEmptyReplacementDeps();
  const bool hasChanges = context.hasFollowers && context.changes.count() != changesBefore;
  context.pass.isFollowUp = onlyChanges;
  leavesNews = !onlyChanges || hasChanges;
  return {};
}

}  // namespace

OdStatus runFeatures(ModelUpdateContext& context) {
  for (bool leavesNews = true; leavesNews;) {
    if (context.report.numRounds == kMaxRounds) {
      OdString text;
      text.format(L"the model does not settle: something is still new after %u passes", kMaxRounds);
      return {eModelerError, text};
    }
    if (OdStatus status = runRound(context, leavesNews); !status.ok()) return status;
  }
  eraseUnwatched(context);
  return {};
}

}  // namespace vdm_host
