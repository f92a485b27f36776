// PassRecorder: fills an UpdateReport with what update passes do.
#include "host/modeling/pass_recorder.h"

#include "host/modeling/component_feature.h"
#include "host/modeling/feature_handler.h"
#include "platform/modeler/modeler.h"
#include "vdm_db/features/vdm_feature.h"

namespace vdm_host {
namespace {

bool onlyCarriesData(const OdDbObjectId& feature) {
  const VdmFeaturePtr object = VdmFeature::open(feature);
  return !object.isNull() && featureHandlerOf(object->isA()) == nullptr &&
         !followsEntities(object->isA());
}

bool isSolidPhase(VdmUpdatePhase phase) {
  return phase == VdmUpdatePhase::kPrepareSubtract || phase == VdmUpdatePhase::kSubtract ||
         phase == VdmUpdatePhase::kUnite;
}

}  // namespace

OdString toText(VdmUpdateReason reason) {
  static const wchar_t* const kNames[] = {L"asked for",
                                          L"constraints were solved",
                                          L"a reference was replaced",
                                          L"a reference was cloned",
                                          L"its solid was moved",
                                          L"refers to several entities or to none",
                                          L"its insert was changed",
                                          L"its solid was changed"};
  return OdString(kNames[static_cast<std::size_t>(reason)]);
}

OdString toText(VdmUpdatePhase phase) {
  static const wchar_t* const kNames[] = {L"intake",
                                          L"removal",
                                          L"healing",
                                          L"cutting",
                                          L"adding",
                                          L"update",
                                          L"initialising",
                                          L"late removal",
                                          L"references",
                                          L"sheet metal recognition",
                                          L"sheet metal geometry",
                                          L"unfolding"};
  return OdString(kNames[static_cast<std::size_t>(phase)]);
}

PassRecorder::PassRecorder(UpdateReport& report, EntityChanges& changes)
    : m_report(report), m_changes(changes) {}

// Names are read at the first mention: a feature that is condemned cannot be asked later.
FeatureReport& PassRecorder::entry(const OdDbObjectId& feature) {
  FeatureReport& report = m_report.feature(feature);
  if (!report.name.isEmpty()) return report;
  const VdmFeaturePtr object = VdmFeature::open(feature);
  if (object.isNull()) return report;
  report.name = object->name();
  const VdmComponentFeaturePtr component = VdmComponentFeature::cast(object.get());
  if (!component.isNull()) report.component = component->componentName();
  return report;
}

void PassRecorder::noteFailure(const OdDbObjectId& feature, OdStatus status) {
  FeatureReport& report = entry(feature);
  report.outcome = FeatureOutcome::kFailed;
  report.text = status.text;
  if (!report.name.isEmpty()) status.text = report.name + L", " + status.text;
  if (m_failure.ok()) m_failure = std::move(status);
}

void PassRecorder::setReason(const OdDbObjectId& feature, const OdString& reason) {
  m_reasons[feature] = reason;
}

void PassRecorder::noteIdle(const OdDbObjectId& feature, const OdString& text) {
  FeatureReport& report = entry(feature);
  report.outcome = FeatureOutcome::kIdle;
  report.text = text;
}

void PassRecorder::noteStep(const OdDbObjectId& feature, const OdDbObjectId& solid,
                            SolidAction action) {
  FeatureReport& report = entry(feature);
  if (report.outcome == FeatureOutcome::kChecked) report.outcome = FeatureOutcome::kUpdated;
  report.steps.push_back({solid, action});
}

// In these phases features work in turn.
void PassRecorder::phaseBegan(VdmUpdatePhase phase) {
  m_began[phase] = Clock::now();
  if (phase == VdmUpdatePhase::kUpdate) m_changes.beginTurns();
}

void PassRecorder::phaseEnded(VdmUpdatePhase phase) {
  const double seconds = std::chrono::duration<double>(Clock::now() - m_began[phase]).count();
  m_report.addPhase(toText(phase), seconds);
  if (isSolidPhase(phase)) m_report.modelerSeconds += seconds;
}

void PassRecorder::featureSkipped(const OdDbObjectId& /*feature*/) { ++m_report.numSkipped; }

void PassRecorder::featuresPassedOver(OdUInt32 numFeatures) { m_report.numSkipped += numFeatures; }

void PassRecorder::featureTaken(const OdDbObjectId& feature, VdmUpdateReason reason) {
  // What only carries data has nothing to do at a moved solid.
  if (reason == VdmUpdateReason::kEntityTransformed && onlyCarriesData(feature)) {
    ++m_report.numSkipped;
    return;
  }
  FeatureReport& report = entry(feature);
  if (!report.reason.isEmpty()) return;
  const auto known = m_reasons.find(feature);
  report.reason = known == m_reasons.end() ? toText(reason) : known->second;
}

void PassRecorder::featurePrepared(const OdDbObjectId& feature, VdmUpdatePreparation result) {
  if (result == VdmUpdatePreparation::kCondemned) {
    entry(feature).outcome = FeatureOutcome::kCondemned;
  }
  if (result == VdmUpdatePreparation::kDone) m_changes.noteSeen(feature);
}

void PassRecorder::featureCondemned(const OdDbObjectId& feature) {
  entry(feature).outcome = FeatureOutcome::kCondemned;
}

void PassRecorder::featureUpdated(const OdDbObjectId& feature, bool changed) {
  m_changes.endTurn(feature);
  m_changes.noteSeen(feature);
  if (!changed) return;
  FeatureReport& report = entry(feature);
  if (report.outcome == FeatureOutcome::kChecked) report.outcome = FeatureOutcome::kUpdated;
}

void PassRecorder::featureInitialised(const OdDbObjectId& feature, bool /*changed*/) {
  m_changes.endTurn(feature);
}

void PassRecorder::featureFailed(const OdDbObjectId& feature, const OdString& text) {
  noteFailure(feature, {eModelerError, text});
}

void PassRecorder::solidChanged(const OdDbObjectId& solid, OdModelerBooleanKind kind,
                                const OdDbObjectIdArray& sources) {
  const SolidAction action =
      kind == OdModelerBooleanKind::kSubtract ? SolidAction::kCut : SolidAction::kAdded;
  for (const OdDbObjectId& feature : sources) noteStep(feature, solid, action);
}

// One operation serves all components that were to change the solid.
void PassRecorder::solidFailed(const OdDbObjectId& solid, OdModelerBooleanKind /*kind*/,
                               const OdString& text) {
  OdString names;
  for (FeatureReport& report : m_report.features) {
    const VdmComponentFeaturePtr component =
        VdmComponentFeature::cast(VdmFeature::open(report.feature).get());
    if (component.isNull() || component->solidId() != solid) continue;
    report.outcome = FeatureOutcome::kFailed;
    report.text = text;
    names += report.name + L", ";
  }
  if (!m_failure.ok()) return;
  m_failure = {eModelerError, names + L"solid " + solid.getHandle().ascii() + L": " + text};
}

void PassRecorder::transactionAborted(VdmUpdatePhase phase) {
  if (m_failure.ok()) m_failure = {eModelerError, toText(phase) + L" of the solids failed"};
}

}  // namespace vdm_host
