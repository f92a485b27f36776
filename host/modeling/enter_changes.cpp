// A step of the update: what was moved, and which components have work to do, enters the map.
#include <algorithm>

#include "host/modeling/model_update_context.h"
#include "host/modeling/model_update_steps.h"

namespace vdm_host {
namespace {

// A pass takes the features of what was moved.
void enterMotions(ModelUpdateContext& context) {
  for (const EntityChanges::Motion& motion : context.changes.motions()) {
    context.map.addTransformedObject(motion.entity, motion.transform, /*marked=*/false);
  }
}

bool isChanged(const VdmComponentFeature& component) {
  const VdmDbInsertReactorPtr reactor = component.insertReactorId().openAs<VdmDbInsertReactor>();
  return reactor.isNull() || reactor->hasChanges() || component.insertId().isErased();
}

// A component takes part when its insert counts as moved, wherever the insert is.
void enterInserts(ModelUpdateContext& context) {
  for (const auto& [solid, components] : context.components) {
    const bool solidIsGone = solid.openObject().isNull();
    const bool isReplaced = std::ranges::count(context.replacedSolids, solid) != 0;
    for (const OdDbObjectId& id : components) {
      const VdmComponentFeaturePtr component = openComponent(id);
      if (component.isNull()) continue;
      const bool isDue = solidIsGone || isChanged(*component);
      if (!isDue && !context.isForced) continue;
      if (isReplaced) {
        context.recorder.setReason(id, OdString(L"its solid was replaced"));
      } else if (!isDue) {
        context.recorder.setReason(id, toText(VdmUpdateReason::kForced));
      }
      context.map.addTransformedObject(component->insertId(), OdGeMatrix3d(), /*marked=*/false);
    }
  }
}

}  // namespace

OdStatus enterChanges(ModelUpdateContext& context) {
  enterMotions(context);
  enterInserts(context);
  return {};
}

}  // namespace vdm_host
