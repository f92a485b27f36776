// A step of the update: the report says what became of references.
#include "host/modeling/model_update_context.h"
#include "host/modeling/model_update_steps.h"

namespace vdm_host {
namespace {

ReferenceReport reportOf(const ModelUpdateContext& context, const ReferenceChange& change) {
  ReferenceReport entry;
  entry.reference = change.dependency;
  entry.before = gradeName(change.gradeBefore);
  entry.after = gradeName(change.grade);
  entry.text = causeName(change.cause);
  const OdDbObjectId feature = context.database->getOdDbObjectId(change.feature);
  if (const VdmFeaturePtr object = VdmFeature::open(feature); !object.isNull()) {
    entry.text += L" by " + object->name();
  }
  entry.needsAttention = !isResolved(change.grade) && isResolved(change.gradeBefore);
  entry.replacedBy = change.replacedBy;
  return entry;
}

}  // namespace

OdStatus reportReferences(ModelUpdateContext& context) {
  for (const ReferenceChange& change : context.references.changes) {
    // Of erased references only those are of interest that others stand for now.
    if (change.replacedBy.isEmpty() && change.dependency.isErased()) continue;
    context.report.references.push_back(reportOf(context, change));
  }
  for (const BodyReading& reading : context.references.readings) {
    context.report.readings.push_back({reading.solid, textOf(reading.motion), reading.readings});
  }
  return {};
}

}  // namespace vdm_host
