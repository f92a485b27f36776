// runModelUpdate: brings a drawing up to date with an edit.
#include "host/modeling/model_update.h"

#include "host/modeling/model_update_context.h"
#include "host/modeling/model_update_steps.h"
#include "platform/db/locked_layers.h"

namespace vdm_host {
namespace {

// The sequence. A later capability adds its row where its turn comes: the solver, say, before
// `evaluateFeatures`, with its outcome in ModelUpdateContext::pass.
constexpr OdStatus (*kSteps[])(ModelUpdateContext&) = {
    &indexFeatures,     //
    &evaluateFeatures,  //
    &sizeComponents,    //
    &followSolids,      //
    &settleReferences,  //
    &followBaseFaces,   //
    &enterChanges,      //
    &runFeatures,       //
    &separateOpenings,  //
    &dropUnwatched,     //
    &reportReferences,  //
    &reportSolids,      //
};

}  // namespace

OdStatus runModelUpdate(OdDbDatabase* database, OdSolidJournal& journal, EntityChanges& changes,
                        const ModelUpdateScope& scope, UpdateReport& report) {
  ModelUpdateContext context(database, journal, changes, report);
  context.isForced = scope.isForced;
  context.isForeign = scope.isForeign;
  const OdDbLockedLayerAccess access(database);  // what depends on an edit follows it
  for (const auto step : kSteps) {
    if (OdStatus status = step(context); !status.ok()) return status;
  }
  return {};
}

}  // namespace vdm_host
