// VdmDbSheetMetalContextPE: what a host knows and does about sheet metal.
#pragma once

#include "platform/base/array.h"
#include "platform/base/result.h"
#include "platform/base/string.h"
#include "platform/filer/object_id.h"
#include "platform/rx/rx_macros.h"
#include "platform/rx/rx_object.h"
#include "vdm_db/common/vdm_db_export.h"

class OdDbObject;
class VdmDbSheetMetalContext;

/// Protocol extension of the class of sheet-metal contexts. The context calls the operations of
/// bend tables and dies; the feature manager calls those of updates, which know the context as an
/// object: VdmDbSheetMetalContext::cast(context). The order of the operations is that of the slots.
class VDM_DB_EXPORT VdmDbSheetMetalContextPE : public OdRxObject {
 public:
  OD_RX_DECLARE_MEMBERS(VdmDbSheetMetalContextPE)

  // ---- Bend tables. The context is open for read.

  /// Loads the table of a file, which has the host's own format, for the context.
  virtual OdResult loadBendTable(const VdmDbSheetMetalContext* context, const OdString& path) = 0;
  /// The loaded table as text, cell by cell.
  virtual OdResult getBendTable(OdArray<OdString>& cells) = 0;
  /// What bending by an angle (radians) at an inner radius takes off the flat length (drawing
  /// units).
  virtual OdResult getBendDeduction(const VdmDbSheetMetalContext* context, double angle,
                                    double radius, double& deduction) = 0;
  /// Widths of the vee dies in the table, in any order, in drawing units.
  virtual OdResult getDieWidths(const VdmDbSheetMetalContext* context, OdArray<double>& widths) = 0;
  [[nodiscard]] virtual bool hasBendTable(const VdmDbSheetMetalContext* context) = 0;

  // ---- Updates. After an update pass the feature manager calls these with the context of the
  // ---- model space, the first, the third and the second, as far as they are asked for, until one
  // ---- gives true: then something changed, and the others wait for the next pass.

  /// Asked for by PostprocessBit2.
  virtual bool updateRecognition(OdDbObject* context, const OdDbObjectIdArray& modifiedEnts) = 0;
  /// Asked for by PostprocessBit1.
  virtual bool updateUnfolding(OdDbObject* context, const OdDbObjectIdArray& modifiedEnts) = 0;
  /// Asked for by PostprocessBit4.
  virtual bool updateGeometry(OdDbObject* context, const OdDbObjectIdArray& modifiedEnts) = 0;

  // ---- Solids, for hosts among themselves: the module does not call these.

  /// Whether the solid has been recognised as sheet metal.
  [[nodiscard]] virtual bool isSheetMetal(const VdmDbSheetMetalContext* context,
                                          const OdDbObjectId& solid) = 0;
  /// Makes the flat pattern of a solid; `flat` gets its entities.
  virtual OdResult unfold(const VdmDbSheetMetalContext* context, const OdDbObjectId& solid,
                          OdDbObjectIdArray& flat) = 0;
};
