// VdmUpdateContext: what an update of features is handed by its caller and hands on to its steps.
#pragma once

#include <cstddef>
#include <optional>

#include "platform/base/types.h"
#include "platform/filer/object_id.h"
#include "vdm_db/common/vdm_db_export.h"

class VdmDependenciesReplacementMap;
class VdmFeature;
class VdmUpdateObserver;
enum EPostprocessingOperationType : OdUInt32;

/// The host's own state of an update. The module carries it from the caller of a pass to
/// VdmDbFeatureManagerPE::createHelper and to the features, and asks it which entities changed.
class VDM_DB_EXPORT VdmUpdateHost {
 public:
  virtual ~VdmUpdateHost();

  /// Entities changed in a way that the replacement map does not express. A pass over all features
  /// then looks at each of them, even with an empty map.
  [[nodiscard]] virtual bool hasChangedEntities() const = 0;
  /// Whether the feature has yet to follow such a change of an entity that it refers to. Called for
  /// references to listed entities, and without a list for every reference of every feature.
  [[nodiscard]] virtual bool concerns(const VdmFeature& feature,
                                      const OdDbObjectId& entity) const = 0;
  /// The length of the host's list of changed entities, for a host that keeps one: every entity
  /// that concerns() may say true of is in it, some may be in it several times, and it only grows
  /// while a pass runs. Passes then find the features of changed entities. Nothing in the base:
  /// each pass looks at every feature.
  [[nodiscard]] virtual std::optional<std::size_t> numChangedEntities() const;
  [[nodiscard]] virtual OdDbObjectId changedEntity(std::size_t number) const;
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
