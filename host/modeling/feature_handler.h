// FeatureHandler: the work on solids for one feature class, and the registry of such classes.
#pragma once

#include <memory>

#include "platform/entities/block_reference.h"
#include "platform/modeler/db_3d_solid.h"
#include "vdm_db/update/vdm_feature_update_data_helper.h"

namespace vdm_host {

class UpdateHelper;

/// What the pass's helper has done for the features of one class. One object for each pass, made
/// when the first feature of the class comes up. The operations run in the order in which they are
/// declared; each is the helper's operation of the same purpose, for features of the class alone.
class FeatureHandler {
 public:
  using Tools = VdmFeatureUpdateDataHelper::Tools;

  virtual ~FeatureHandler();

  /// Plans what the feature needs and samples the faces that are to be followed. True when there is
  /// work to do.
  virtual bool matchFaces(const OdDbObjectId& feature,
                          VdmFeatureUpdateDataUtils::FeatureArgs& args) = 0;
  /// Queues the tools of the feature's insert. True when it did.
  virtual bool addTools(const OdDbObjectId& feature, VdmOpeningEntities& entities) = 0;
  /// In gross mode, in place of both.
  virtual void addGrossTools(const OdDbObjectId& feature, const OdDbBlockReference& insert,
                             const OdDbObjectId& solid) = 0;
  /// The handler changes the solid as a whole: no interface is asked to remove faces from it.
  [[nodiscard]] virtual bool takesOver(const OdDbObjectId& solid) const = 0;
  /// The feature failed after it was planned: nothing is done for it.
  virtual void withdraw(const OdDbObjectId& feature) = 0;
  /// Before anything is subtracted. False fails the solid operations of the pass.
  virtual bool prepareSolids() = 0;
  /// Moves the tools that it queued from `waiting` to `tools`, as far as they cut. False when it
  /// failed.
  virtual bool checkTools(const OdDb3dSolidPtr& solid, Tools& waiting, Tools& tools) = 0;
  /// The solids are done, in a transaction that is still open: brings references and what features
  /// store up to date. False takes both back.
  virtual bool settle() = 0;
  /// The feature's solid was changed for it in this pass.
  [[nodiscard]] virtual bool worked(const OdDbObjectId& feature) const = 0;
};

using MakeFeatureHandler = std::unique_ptr<FeatureHandler> (*)(UpdateHelper& helper);

/// A feature class whose features, those of derived classes among them, are handled by the host. At
/// most once for each class, at start; not while a pass runs.
void registerFeatureHandler(const OdRxClass* featureClass, MakeFeatureHandler make);
void unregisterFeatureHandler(const OdRxClass* featureClass);
/// The maker for the class or the nearest class above it; null without one.
[[nodiscard]] MakeFeatureHandler featureHandlerOf(const OdRxClass* featureClass);

/// Whether features of the class may follow changes of their entities by themselves: not those that
/// a handler brings up to date, and not those of the classes that only carry data.
[[nodiscard]] bool followsEntities(const OdRxClass* featureClass);

}  // namespace vdm_host
