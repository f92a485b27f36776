// UpdateHelper: the helper of the passes of this host.
#pragma once

#include <memory>
#include <optional>
#include <span>
#include <vector>

#include "host/modeling/feature_handler.h"
#include "host/modeling/residues.h"
#include "host/modeling/update_report.h"
#include "platform/base/status.h"
#include "platform/modeler/solid_journal.h"
#include "vdm_db/update/vdm_feature_guard.h"
#include "vdm_db/update/vdm_feature_update_data.h"
#include "vdm_db/update/vdm_feature_update_data_helper.h"

namespace vdm_host {

class ModelUpdateContext;

/// Hands each operation of a pass on to the handler of the feature's class (feature_handler.h), and
/// keeps what the handlers share: the journal of the pass, the context of the update, and whether a
/// solid operation failed. Features without a handler get no work on solids from it.
class UpdateHelper final : public VdmFeatureUpdateDataHelper {
 public:
  explicit UpdateHelper(VdmFeatureUpdateData& data);
  ~UpdateHelper() override;

  // For the handlers.
  /// The update to which the pass belongs; null for a pass of another caller.
  [[nodiscard]] ModelUpdateContext* context() const { return m_context; }
  /// What happened to solids since the pass began.
  [[nodiscard]] std::span<const OdSolidChange> changes() const;
  /// The solid operations of the pass failed or were rolled back, and what was written down with
  /// them.
  [[nodiscard]] bool failed() const;
  /// Reports the failure of a feature's operation; false always.
  bool fail(const OdDbObjectId& feature, OdStatus status);
  void noteStep(const OdDbObjectId& feature, const OdDbObjectId& solid, SolidAction action) const;
  /// Works for one feature, or for the pass where the id is null. What `work` raises is reported as
  /// the feature's failure, and fails the solid operations of the pass; false then.
  template <class Work>
  bool workFor(const OdDbObjectId& feature, const Work& work) {
    const bool isDone = vdmGuardFeature(feature, updateData().observer(), [&work] {
      work();
      return true;
    });
    m_failed |= !isDone;
    return isDone;
  }
  /// The feature is erased once the solids are kept.
  void condemn(const OdDbObjectId& feature) { m_condemned.push_back(feature); }
  /// A tool of the feature in gross mode.
  void addGrossTool(const OdDbObjectId& feature, const OdDbObjectId& solid, ToolKind kind,
                    OdDb3dSolid* tool);

  /// The feature's solid was changed for it in this pass.
  [[nodiscard]] bool worked(const OdDbObjectId& feature) const;

  bool addCopiesToUpdateData(VdmUpdateFeatureInterface* updateInterface, OdDbObjectId feature,
                             VdmOpeningEntities& entities) override;
  bool getMatchingFaces(VdmUpdateFeatureInterface* updateInterface, OdDbObjectId feature,
                        const VdmFeatureUpdateDataUtils::OpeningIds& opening,
                        VdmFeatureUpdateDataUtils::FeatureArgs& args) override;
  void collectForEntity(const OdDbObjectId& entity, const IdSet& features) override;
  void collectDependentsForEntity(const OdDbObjectId& entity, const IdSet& features) override;
  bool removeSubents(const OdDbObjectId& entityId, OdSmartPtr<OdDbEntity>& entity,
                     VdmFeatureSubentsToRemove& record, bool flag) override;
  bool clearEntity(OdSmartPtr<OdDbEntity>& entity) override;
  /// The solids are kept: hands on what is condemned.
  void prepareInit() override;
  void addGrossData(VdmUpdateFeatureInterface* updateInterface, const OdDbObjectId& feature,
                    OdSmartPtr<OdDbBlockReference> insert, OdSmartPtr<OdDb3dSolid> solid) override;
  bool prepareForSubtract() override;
  bool checkTools(OdSmartPtr<OdDb3dSolid>& solid, Tools& tools) override;
  /// Has the handlers write down what became of the solids, in their transaction. False when that
  /// fails, and when an operation failed that the booleans pass over, such as a check of tools.
  bool acceptSolids() override;
  void solidsAborted(VdmUpdatePhase phase, const OdString& text) override;
  void withdrawFeature(const OdDbObjectId& feature) override;

 private:
  struct HandlerRow {
    MakeFeatureHandler make;
    std::unique_ptr<FeatureHandler> handler;
  };
  FeatureHandler* handlerOf(const OdDbObjectId& feature);
  void settleRest();

  ModelUpdateContext* m_context;
  std::optional<OdSolidJournal> m_ownJournal;  // without a context
  const OdSolidJournal* m_journal;
  std::size_t m_journalStart;
  std::size_t m_numSettled = 0;  ///< changes that the references have followed
  bool m_failed = false;
  std::vector<OdDbObjectId> m_condemned;
  std::vector<HandlerRow> m_handlers;  // of the classes that came up
};

}  // namespace vdm_host
