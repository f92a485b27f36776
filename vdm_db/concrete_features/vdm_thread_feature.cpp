// Features that record a thread.
#include "vdm_db/concrete_features/vdm_thread_feature.h"

#include "vdm_db/common/vdm_constants.h"
#include "vdm_db/features/vdm_db_feature_data.h"
#include "vdm_db/features/vdm_feature_results.h"

VDM_DEFINE_FEATURE_CLASS(VdmThreadFeature, VdmFeature, L"VdmThreadFeature")

// ---- References

OdDbFullSubentPathArray VdmThreadFeature::faces() const {
  return getFeatureEntities(kFacesMask, /*filtered=*/true);
}

OdDbFullSubentPathArray VdmThreadFeature::edges() const {
  return getFeatureEntities(kEdgesMask, /*filtered=*/true);
}

// ---- Sizes

const VdmProperties& VdmThreadFeature::bag() const {
  assertReadable();
  return static_cast<const VdmDbFeatureData*>(getDbObject())->getReadProperties();
}

VdmProperties& VdmThreadFeature::bagForWrite() {
  return static_cast<VdmDbFeatureData*>(assertWritable())->getWriteProperties();
}

double VdmThreadFeature::size(const OdString& key) const {
  double size = kNoSize;
  bag().getProperty(key, size);
  return size;
}

OdResult VdmThreadFeature::setSize(const OdString& key, double size) {
  if (size < 0) return kVdmValueRefused;
  bagForWrite().setProperty(key, size);
  return eOk;
}

double VdmThreadFeature::pitch() const { return size(kVdmThreadDepth); }
OdResult VdmThreadFeature::setPitch(double pitch) { return setSize(kVdmThreadDepth, pitch); }
double VdmThreadFeature::length() const { return size(kVdmThreadLength); }
OdResult VdmThreadFeature::setLength(double length) { return setSize(kVdmThreadLength, length); }
double VdmThreadFeature::step() const { return size(kVdmThreadStep); }
OdResult VdmThreadFeature::setStep(double step) { return setSize(kVdmThreadStep, step); }

VdmThreadFeature::ESenseType VdmThreadFeature::senseType() const {
  OdLong sense = kSenseNotSpecified;
  bag().getProperty(kVdmThreadSense, sense);
  return static_cast<ESenseType>(sense);
}

OdResult VdmThreadFeature::setSenseType(ESenseType sense) {
  bagForWrite().setProperty(kVdmThreadSense, OdLong{sense});
  return eOk;
}
