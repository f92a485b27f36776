// VdmUpdateContext: what an update of features is handed by its caller and hands on to its steps.
#pragma once

#include "platform/base/types.h"
#include "vdm_db/common/vdm_db_export.h"

class OdDbObjectId;
class VdmDependenciesReplacementMap;
class VdmFeature;
class VdmUpdateObserver;
enum EPostprocessingOperationType : OdUInt32;

/// The host's own state of an update. The module carries it from the caller of a pass to
/// VdmDbFeatureManagerPE::createHelper and to the features, and asks it two questions.
class VDM_DB_EXPORT VdmUpdateHost {
 public:
  virtual ~VdmUpdateHost();

  /// Entities changed in a way that the replacement map does not express. A pass over all features
  /// then looks at each of them, even with an empty map.
  [[nodiscard]] virtual bool hasChangedEntities() const = 0;
  /// Whether the feature has yet to follow such a change of an entity that it refers to. Called for
  /// every reference of every feature.
  [[nodiscard]] virtual bool concerns(const VdmFeature& feature,
                                      const OdDbObjectId& entity) const = 0;
};

/// One update of a block's features, from the solving of constraints to the sheet metal. A plain
/// record that its caller owns and that outlives the passes that it is handed to; nothing in it is
/// owned. The steps that come before the features fill in the constraint status, the features read
/// it, and the steps that come after clear the post-processing flags.
struct VdmUpdateContext {
  /// What the edit did to references and entities; null means nothing.
  const VdmDependenciesReplacementMap* replacementMap = nullptr;
  bool constraintsWereCalculated = false;
  bool constraintsWereCalculatedSuccesfully = false;
  /// The pass follows another one over the same features, because of changed entities alone: a
  /// feature with several entities, or with none, is not taken for that.
  bool isFollowUp = false;
  /// In: what is to be done once features are current. Out: what of that was not done.
  EPostprocessingOperationType postFlags{};
  VdmUpdateObserver* observer = nullptr;  ///< hears what passes do; null for none
  VdmUpdateHost* host = nullptr;          ///< null for none
};
