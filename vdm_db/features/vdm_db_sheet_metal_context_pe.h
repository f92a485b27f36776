// VdmDbSheetMetalContextPE: what a sheet-metal host does with modified entities.
#pragma once

#include "platform/filer/object_id.h"
#include "platform/rx/rx_macros.h"
#include "platform/rx/rx_object.h"
#include "vdm_db/common/vdm_db_export.h"

class OdDbObject;

/// Protocol extension of the class of sheet-metal contexts. After an update pass the feature
/// manager calls its operations with the context of the model space, the first, the third and the
/// second, as far as they are asked for, until one gives true: then something changed, and the
/// others wait for the next pass.
class VDM_DB_EXPORT VdmDbSheetMetalContextPE : public OdRxObject {
 public:
  OD_RX_DECLARE_MEMBERS(VdmDbSheetMetalContextPE)

  /// Asked for by PostprocessBit2.
  virtual bool updateRecognition(OdDbObject* context, const OdDbObjectIdArray& modifiedEnts) = 0;
  /// Asked for by PostprocessBit1.
  virtual bool updateUnfolding(OdDbObject* context, const OdDbObjectIdArray& modifiedEnts) = 0;
  /// Asked for by PostprocessBit4.
  virtual bool updateGeometry(OdDbObject* context, const OdDbObjectIdArray& modifiedEnts) = 0;
};
