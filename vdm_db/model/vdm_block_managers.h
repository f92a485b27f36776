// VdmModelObjectRegistry, VdmFeatureRegistry: what model objects and reactors of features need of
// the managers of a block. The classes of the managers belong to rooms above this one.
#pragma once

#include "platform/base/string.h"
#include "platform/db/db_object.h"
#include "vdm_db/common/vdm_db_export.h"

class VdmDbObject;

/// Second base of the constraint manager: it owns the model objects of a block and lists them.
class VDM_DB_EXPORT VdmModelObjectRegistry {
 public:
  virtual ~VdmModelObjectRegistry();

  /// The registry that an open object is; null for any other object and for null.
  [[nodiscard]] static VdmModelObjectRegistry* of(OdDbObject* object);
  /// The same, and raises OdError_NotThatKindOfClass for another object.
  [[nodiscard]] static VdmModelObjectRegistry& required(OdDbObject* object);

  /// The registry of a block; with `create` a missing one is made. Null without one, for a null id,
  /// and while no finder is installed.
  [[nodiscard]] static OdDbObjectId ofBlock(const OdDbObjectId& block, bool create);
  using Finder = OdDbObjectId (*)(const OdDbObjectId& block, bool create);
  /// The module installs the constraint manager's function when it registers its classes, and null
  /// when it releases them.
  static void installFinder(Finder finder);

  /// `base` without its number, and the first number that makes it unique among the names of the
  /// registered objects.
  [[nodiscard]] virtual OdString generateVdmDbObjectName(const OdString& base) = 0;
  virtual void registerVdmDbObject(const VdmDbObject* object) = 0;
  virtual void unregisterVdmDbObject(VdmDbObject* object) = 0;
  /// An entity was modified, or (false) its change has been solved.
  virtual void notifyAboutModifications(const OdDbObjectId& entity, bool modified) = 0;
};

/// Second base of the feature manager: it owns the carriers of a block's features.
class VDM_DB_EXPORT VdmFeatureRegistry {
 public:
  virtual ~VdmFeatureRegistry();

  /// The registry that an open object is; null for any other object and for null.
  [[nodiscard]] static const VdmFeatureRegistry* of(const OdDbObject* object);

  [[nodiscard]] virtual OdDbObjectId blockId() const = 0;
};
