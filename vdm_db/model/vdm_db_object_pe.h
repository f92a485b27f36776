// VdmDbObjectPE: what a host adds to the events of model objects.
#pragma once

#include "platform/filer/object_id.h"
#include "platform/ge/matrix3d.h"
#include "platform/rx/rx_macros.h"
#include "platform/rx/rx_object.h"
#include "vdm_db/common/vdm_db_export.h"

class OdDbDatabase;
class OdDbObject;

/// Protocol extension of VdmDbObject, one object for all model objects. Without one entityChanged
/// counts as false.
class VDM_DB_EXPORT VdmDbObjectPE : public OdRxObject {
 public:
  OD_RX_DECLARE_MEMBERS(VdmDbObjectPE)

  /// The host wants to hear of transforms; true at first.
  [[nodiscard]] bool isTransformTrackingEnabled() const { return m_trackTransforms; }
  void setIsTransformTrackingEnabled(bool enabled) { m_trackTransforms = enabled; }

  /// The entity that the model object `self` shadows was changed or is being erased. True when the
  /// change matters to the model: the manager is then notified of it.
  virtual bool entityChanged(OdDbObject* entity, OdDbObjectId self) = 0;
  /// A transform was added to those that wait. The host may change the sum and the flag: false says
  /// that the sum is complete, so that the next transform begins a new one.
  virtual void transformAdded(OdDbDatabase* database, OdDbObjectId* attachedEntity,
                              OdGeMatrix3d* transform, bool* isOpen) = 0;

 private:
  bool m_trackTransforms = true;
};
using VdmDbObjectPEPtr = OdSmartPtr<VdmDbObjectPE>;
