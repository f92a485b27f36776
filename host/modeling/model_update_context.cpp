// ModelUpdateContext: the state of one update of a drawing, which its steps hand on.
#include "host/modeling/model_update_context.h"

#include "host/modeling/feature_handler.h"

namespace vdm_host {

ModelUpdateContext::ModelUpdateContext(OdDbDatabase* ofDatabase, OdSolidJournal& ofJournal,
                                       EntityChanges& ofChanges, UpdateReport& toReport)
    : database(ofDatabase),
      journal(ofJournal),
      changes(ofChanges),
      recorder(toReport, ofChanges),
      report(toReport) {
  pass.observer = &recorder;
  pass.host = this;
}

const OdDbObjectIdArray& ModelUpdateContext::componentsAt(const OdDbObjectId& solid) const {
  static const OdDbObjectIdArray kNone;
  const auto found = components.find(solid);
  return found == components.end() ? kNone : found->second;
}

bool ModelUpdateContext::hasChangedEntities() const { return hasFollowers && changes.count() != 0; }

bool ModelUpdateContext::concerns(const VdmFeature& feature, const OdDbObjectId& entity) const {
  return hasFollowers && changes.isNews(feature.objectId(), entity) &&
         followsEntities(feature.isA());
}

VdmComponentFeaturePtr openComponent(const OdDbObjectId& id, OdDb::OpenMode mode) {
  return VdmComponentFeature::cast(VdmFeature::open(id, mode));
}

}  // namespace vdm_host
