// VdmUpdateObserver: hears each step of an update pass.
#pragma once

#include "platform/base/string.h"
#include "platform/base/types.h"
#include "platform/filer/object_id.h"
#include "vdm_db/common/vdm_db_export.h"

class VdmDbFeatureManager;
enum class OdModelerBooleanKind : OdInt32;

/// Why a feature takes part in a pass: the first cause met.
enum class VdmUpdateReason {
  kForced,              ///< the caller asked for all features
  kConstraint,          ///< a reactor of the feature reports changes after constraints were solved
  kDependencyReplaced,  ///< one of its references was replaced
  kDependencyCloned,    ///< one of its references was cloned
  kEntityTransformed,   ///< the entity of one of its references was moved
  kSeveralEntities,     ///< it refers to several entities, or to none: always updated
  kInsertTransformed,   ///< the insert that makes its opening was moved
  kEntityChanged,       ///< the host says that an entity of its references changed
};

/// What came of a feature's prepareUpdateData.
enum class VdmUpdatePreparation {
  kDone,       ///< nothing more is due
  kQueued,     ///< it waits for its update
  kCondemned,  ///< it asked for its own removal
};

/// Phases in the order in which a pass runs them. Those with nothing to do run and are reported all
/// the same; the solid operations after a failed one do not run, nor does sheet metal that was not
/// asked for.
enum class VdmUpdatePhase {
  kIntake,
  kEarlyRemoval,
  kPrepareSubtract,
  kSubtract,
  kUnite,
  kUpdate,
  kInitFeatures,
  kLateRemoval,
  kDependencies,
  kRecognition,  ///< of sheet metal
  kGeometry,     ///< of sheet metal
  kUnfolding,    ///< of sheet metal
};

/// Hears what a pass does, on the pass's thread and while it runs. Must not change the drawing nor
/// throw. Every passBegan is followed by one passEnded unless the pass ends by an exception. Ids of
/// features are those of their carriers.
class VDM_DB_EXPORT VdmUpdateObserver {
 public:
  virtual ~VdmUpdateObserver();

  virtual void passBegan(VdmDbFeatureManager* /*manager*/, OdUInt32 /*numFeatures*/) {}
  virtual void phaseBegan(VdmUpdatePhase /*phase*/) {}
  virtual void phaseEnded(VdmUpdatePhase /*phase*/) {}

  /// Asked once a pass. With true the pass looks at every feature and reports each one that it
  /// skips; with false it reports those that it looked at, and the number of the others.
  [[nodiscard]] virtual bool hearsEachSkipped() const { return true; }
  virtual void featureSkipped(const OdDbObjectId& /*feature*/) {}
  /// So many features had nothing to do and were not looked at. After the last of the features that
  /// were, and only when there are any.
  virtual void featuresPassedOver(OdUInt32 /*numFeatures*/) {}
  virtual void featureTaken(const OdDbObjectId& /*feature*/, VdmUpdateReason /*reason*/) {}
  virtual void featurePrepared(const OdDbObjectId& /*feature*/, VdmUpdatePreparation /*result*/) {}
  /// Erased, because it asked for that or an interface did.
  virtual void featureCondemned(const OdDbObjectId& /*feature*/) {}
  /// `changed` is what its update returned.
  virtual void featureUpdated(const OdDbObjectId& /*feature*/, bool /*changed*/) {}
  /// Its initAfterUpdate ran, and returned `changed`.
  virtual void featureInitialised(const OdDbObjectId& /*feature*/, bool /*changed*/) {}
  /// It raised an error, of any type; the pass continues with the next one. One that failed while
  /// it prepared has no featurePrepared.
  virtual void featureFailed(const OdDbObjectId& /*feature*/, const OdString& /*text*/) {}

  /// A solid took its tools; `sources` are those who queued them, in the order of the tools.
  virtual void solidChanged(const OdDbObjectId& /*solid*/, OdModelerBooleanKind /*kind*/,
                            const OdDbObjectIdArray& /*sources*/) {}
  /// A solid could not take its tools, or was left out.
  virtual void solidFailed(const OdDbObjectId& /*solid*/, OdModelerBooleanKind /*kind*/,
                           const OdString& /*text*/) {}
  /// The solid operations were rolled back because of this phase.
  virtual void transactionAborted(VdmUpdatePhase /*phase*/) {}

  /// A reference of a feature was dropped: it had come to mean the same as an earlier one.
  virtual void reactorDropped(const OdDbObjectId& /*feature*/, const OdDbObjectId& /*reactor*/) {}
  virtual void passEnded(bool /*changed*/) {}
};
