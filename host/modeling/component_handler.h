// ComponentHandler: heals and cuts solids for the components of a pass.
#pragma once

#include <map>
#include <memory>
#include <optional>
#include <span>
#include <unordered_map>
#include <utility>
#include <vector>

#include "host/modeling/component_feature.h"
#include "host/modeling/component_tools.h"
#include "host/modeling/feature_handler.h"
#include "host/modeling/residues.h"
#include "host/modeling/tool_fit.h"

class VdmDbFeatureManagerTransaction;

namespace vdm_host {

class BodyLineage;
class ReferenceUpdate;
class UpdateHelper;

/// The handler of VdmComponentFeature. It first plans each component (matchFaces), takes copies of
/// the tools of those that are cut (addTools), heals all solids concerned and adds fills
/// (prepareSolids), writes down what the new cuts take away (checkTools), and brings references and
/// stored residues up to date (settle). Planning and tools are in component_handler.cpp, the work
/// on solids in component_handler_solids.cpp, the results in component_handler_results.cpp.
///
/// The tolerances are the modeller's: faces are followed by the histories of its operations.
class ComponentHandler final : public FeatureHandler {
 public:
  explicit ComponentHandler(UpdateHelper& helper);
  ~ComponentHandler() override;

  bool matchFaces(const OdDbObjectId& feature,
                  VdmFeatureUpdateDataUtils::FeatureArgs& args) override;
  bool addTools(const OdDbObjectId& feature, VdmOpeningEntities& entities) override;
  void addGrossTools(const OdDbObjectId& feature, const OdDbBlockReference& insert,
                     const OdDbObjectId& solid) override;
  [[nodiscard]] bool takesOver(const OdDbObjectId& solid) const override;
  void withdraw(const OdDbObjectId& feature) override;
  bool prepareSolids() override;
  bool checkTools(const OdDb3dSolidPtr& solid, Tools& waiting, Tools& tools) override;
  bool settle() override;
  [[nodiscard]] bool worked(const OdDbObjectId& feature) const override;

 private:
  /// What a component has to have done.
  enum class Plan {
    kNothing,    ///< the solid is as the component wants it
    kWork,       ///< it is to be healed, cut, or both
    kCondemned,  ///< its insert or its solid was erased: it is healed, and erased after that
  };
  struct Tool {
    OdDbObjectId feature;
    ToolKind kind = ToolKind::kCut;
    OdModelerBodyPtr body;         ///< in the coordinates of the solid's block
    int firstFace = 0;             ///< faces of the component's tools before it
    std::optional<ToolForm> form;  ///< of a tool that is made to fit before it cuts
    OdDb3dSolidPtr queued;         ///< the copy that waits to cut; null for a fill
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
    BaseFace base;  ///< as the pass found it
  };
  /// One solid that components change.
  struct Site {
    OdDbObjectId solid;
    ResidueLedger ledger;
    bool isFilled = false;

    Site(const OdDbObjectId& id, PieceReader reader) : solid(id), ledger(std::move(reader)) {}
  };
  /// The faces that each face of a component's tools left in the solid, by its number.
  using ToolFaces = std::vector<std::pair<int, std::vector<OdUInt32>>>;

  // Planning and tools.
  Work* findWork(const OdDbObjectId& feature);
  void addWork(Work work);
  void indexWork();
  Plan plan(const VdmComponentFeature& feature);
  void planAt(const VdmComponentFeature& feature, Work& work);
  void enterSite(const VdmComponentFeature& feature, Work& work);
  void sampleFaces(const VdmComponentFeature& feature, Work& work,
                   VdmFeatureUpdateDataUtils::FeatureArgs& args);
  Site& siteOf(const OdDbObjectId& solid);
  OdStatus makeTools(Work& work, const BlockTools& tools);
  bool fail(const OdDbObjectId& feature, OdStatus status);

  // Solids.
  [[nodiscard]] OdDbObjectIdArray componentsAt(const OdDbObjectId& solid) const;
  void fillSite(Site& site);
  OdStatus widen(Site& site);
  static bool mayMeetOthers(const Work& work);
  static bool meets(const Work& work, ComponentPieces& stays);
  OdStatus doAnew(ComponentPieces& pieces);
  OdStatus healSite(Site& site);
  static OdStatus healWithoutResidue(const Work& work, OdDb3dSolid& solid);
  OdStatus addFills(Site& site);
  OdStatus fitTools(const Site& site);
  std::vector<const Tool*> takeOwn(Tools& waiting) const;
  OdStatus fitTool(const FaceBoxes& faces, const Work& work, Tool& tool);

  // Results.
  bool storePieces();
  static void storePiecesOf(ComponentPieces& pieces);
  void settleReferences();
  void addRespawns(ReferenceUpdate& update, const BodyLineage& lineage, const Work& work);
  [[nodiscard]] const Work& twinOf(const Work& work);
  void referToOpenings(const BodyLineage& lineage);
  static bool referToOpening(VdmDbFeatureManagerTransaction& transaction,
                             const BodyLineage& lineage, const Work& work);
  void noteOpenings(const BodyLineage& lineage) const;
  void matchSamples(const BodyLineage& lineage);
  bool storeApplied();
  void storeAppliedOf(const Work& work);
  void storeHealedOf(const Work& work);
  void noteWithoutEffect(const Work& work);
  [[nodiscard]] static OdGeExtents3d boxOfToolFace(const Work& work, int toolFace);
  [[nodiscard]] static ToolFaces toolFaces(const BodyLineage& lineage, const Work& work);

  UpdateHelper& m_helper;
  ComponentTools m_tools;
  std::vector<Work> m_work;
  std::unordered_map<OdDbObjectId, std::size_t> m_workIndex;
  std::vector<std::unique_ptr<Site>> m_sites;
  std::unordered_map<const OdDb3dSolid*, Tool> m_toolOf;  // the queued copies
};

}  // namespace vdm_host
