// PassRecorder: fills an UpdateReport with what update passes do.
#pragma once

#include <chrono>
#include <map>
#include <unordered_map>

#include "host/modeling/entity_changes.h"
#include "host/modeling/update_report.h"
#include "platform/base/status.h"
#include "vdm_db/update/vdm_update_observer.h"

namespace vdm_host {

/// Hears any number of passes one after the other. Outlives them.
class PassRecorder final : public VdmUpdateObserver {
 public:
  /// The log learns what features have seen and made; both outlive the recorder.
  PassRecorder(UpdateReport& report, EntityChanges& changes);

  /// The first failure; ok while there was none.
  [[nodiscard]] const OdStatus& failure() const { return m_failure; }
  /// A failure of one feature's operation; the pass continues, and its host rolls back.
  void noteFailure(const OdDbObjectId& feature, OdStatus status);
  /// The feature was done and changed nothing; `text` says where it is and where its solid is.
  void noteIdle(const OdDbObjectId& feature, const OdString& text);
  void noteStep(const OdDbObjectId& feature, const OdDbObjectId& solid, SolidAction action);
  /// Why the feature will be taken, where the host knows better than the pass.
  void setReason(const OdDbObjectId& feature, const OdString& reason);

  void phaseBegan(VdmUpdatePhase phase) override;
  void phaseEnded(VdmUpdatePhase phase) override;
  [[nodiscard]] bool hearsEachSkipped() const override { return false; }
  void featureSkipped(const OdDbObjectId& feature) override;
  void featuresPassedOver(OdUInt32 numFeatures) override;
  void featureTaken(const OdDbObjectId& feature, VdmUpdateReason reason) override;
  void featurePrepared(const OdDbObjectId& feature, VdmUpdatePreparation result) override;
  void featureCondemned(const OdDbObjectId& feature) override;
  void featureUpdated(const OdDbObjectId& feature, bool changed) override;
  void featureInitialised(const OdDbObjectId& feature, bool changed) override;
  void featureFailed(const OdDbObjectId& feature, const OdString& text) override;
  void solidChanged(const OdDbObjectId& solid, OdModelerBooleanKind kind,
                    const OdDbObjectIdArray& sources) override;
  void solidFailed(const OdDbObjectId& solid, OdModelerBooleanKind kind,
                   const OdString& text) override;
  void transactionAborted(VdmUpdatePhase phase) override;

 private:
  using Clock = std::chrono::steady_clock;

  FeatureReport& entry(const OdDbObjectId& feature);

  UpdateReport& m_report;
  EntityChanges& m_changes;
  OdStatus m_failure;
  std::map<VdmUpdatePhase, Clock::time_point> m_began;
  std::unordered_map<OdDbObjectId, OdString> m_reasons;
};

[[nodiscard]] OdString toText(VdmUpdateReason reason);
[[nodiscard]] OdString toText(VdmUpdatePhase phase);

}  // namespace vdm_host
