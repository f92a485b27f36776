// UpdateHelper: heals and cuts solids for the components of an update pass.
#pragma once

#include <map>
#include <memory>
#include <optional>
#include <unordered_map>
#include <vector>

#include "host/modeling/component_feature.h"
#include "host/modeling/component_tools.h"
#include "host/modeling/residues.h"
#include "platform/modeler/solid_journal.h"
#include "vdm_db/update/vdm_feature_update_data_helper.h"

namespace vdm_host {

class ModelUpdate;

/// What a component has to have done in a pass.
enum class ComponentPlan {
  kNothing,    ///< the solid is as the component wants it
  kWork,       ///< it is to be healed, cut, or both
  kCondemned,  ///< its insert or its solid is gone; it is healed and erased
};

/// The helper of the passes of this host. In a pass it first plans each component
/// (getMatchingFaces), takes copies of the tools of those that are cut (addCopiesToUpdateData),
/// heals all solids concerned (prepareForSubtract), writes down what the new tools take away or add
/// (checkTools), and brings references and stored residues up to date (prepareInit).
///
/// The tolerances are the modeller's: faces are followed by the histories of its operations.
class UpdateHelper final : public VdmFeatureUpdateDataHelper {
 public:
  explicit UpdateHelper(VdmFeatureUpdateData& data);
  ~UpdateHelper() override;

  /// The helper of the innermost pass of this thread; null outside of passes.
  static UpdateHelper* current();

  ComponentPlan plan(const VdmComponentFeature& feature);
  /// The feature's part of prepareInit was done; true when its solid was changed for it.
  [[nodiscard]] bool worked(const OdDbObjectId& feature) const;
  /// A solid operation of the pass failed: nothing more is written down.
  [[nodiscard]] bool failed() const;

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
  void prepareInit() override;
  void addGrossData(VdmUpdateFeatureInterface* updateInterface, const OdDbObjectId& feature,
                    OdSmartPtr<OdDbBlockReference> insert, OdSmartPtr<OdDb3dSolid> solid) override;
  bool prepareForSubtract() override;
  bool checkTools(OdSmartPtr<OdDb3dSolid>& solid, Tools& tools) override;

 private:
  struct Tool {
    OdDbObjectId feature;
    ToolKind kind = ToolKind::kCut;
    OdModelerBodyPtr body;  ///< in the coordinates of the solid's block
    int firstFace = 0;      ///< faces of the component's tools before it
  };
  struct Work {
    OdDbObjectId feature;
    OdDbObjectId solid;
    bool heals = false;
    bool applies = false;
    bool condemned = false;
    bool pieceIsLost = false;
    VdmComponentFeature::State state = VdmComponentFeature::kStateApplied;
    VdmComponentFeature::Placed before;  ///< as it was last cut
    bool wasPlaced = false;
    OdGeMatrix3d now;
    OdUInt64 toolStamp = 0;
    /// Faces of the solid that the tools' faces left, before anything is done.
    std::vector<std::pair<int, OdUInt32>> oldFaces;
    /// Those of them, and base faces, that are followed through the pass as samples.
    std::vector<OdUInt32> sampledFaces;
    std::vector<Tool> tools;
  };
  struct Site;

  // Planning and solids.
  Work* findWork(const OdDbObjectId& feature);
  void planAt(const VdmComponentFeature& feature, Work& work);
  void enterSite(const VdmComponentFeature& feature, Work& work);
  Site& siteOf(const OdDbObjectId& solid);
  void fillSite(Site& site);
  const OdDbObjectIdArray& componentsAt(const OdDbObjectId& solid);
  OdStatus healSite(Site& site);
  static OdStatus healWithoutResidue(const Work& work, OdDb3dSolid& solid);
  OdStatus makeTools(Work& work, const BlockTools& tools);
  static bool meets(const Work& work, ComponentPieces& stays);
  OdStatus widen(Site& site);
  OdStatus doAnew(ComponentPieces& pieces);
  OdStatus addFills(Site& site);
  bool fail(const OdDbObjectId& feature, OdStatus status);

  // Results.
  void settleReferences();
  void tellOpenings(class ReferenceUpdate& update, const class BodyLineage& lineage,
                    const Work& work) const;
  void storePieces();
  void storeApplied();
  void referToOpenings(const class BodyLineage& lineage);
  void noteOpenings(const BodyLineage& lineage) const;
  void matchSamples(const class BodyLineage& lineage);
  [[nodiscard]] std::vector<std::pair<int, std::vector<OdUInt32>>> toolFaces(
      const class BodyLineage& lineage, const Work& work) const;
  [[nodiscard]] std::vector<OdUInt32> facesOf(const class BodyLineage& lineage, const Work& work,
                                              int toolFace) const;
  [[nodiscard]] std::span<const OdSolidChange> changes() const;

  std::optional<OdSolidJournal> m_ownJournal;
  OdSolidJournal* m_journal;
  std::size_t m_journalStart;
  ModelUpdate* m_update;
  UpdateHelper* m_outer;
  bool m_failed = false;
  ComponentTools m_tools;
  std::vector<Work> m_work;
  std::unordered_map<OdDbObjectId, std::size_t> m_workIndex;
  std::vector<std::unique_ptr<Site>> m_sites;
  std::unordered_map<const OdDb3dSolid*, Tool> m_toolOf;  // the queued copies
  OdDbObjectIdArray m_componentsOfSite;                   // without a ModelUpdate
};

}  // namespace vdm_host
