// VdmDbSheetMetalContext: the sheet-metal settings of a block.
#pragma once

#include <memory>

#include "platform/base/array.h"
#include "platform/base/string.h"
#include "platform/db/db_object.h"
#include "vdm_db/common/vdm_db_export.h"
#include "vdm_db/features/vdm_sheet_metal_source.h"
#include "vdm_db/sheet_metal/vdm_sheet_metal_context_options.h"

class OdDbAssocVariable;
class VdmDbSheetMetalContextImpl;
class VdmFeature;

/// The thickness of a block's sheet metal, its options, and the link to the variable that drives
/// the thickness. The feature manager of the block owns it and lists its id. Unfolding, bend tables
/// and materials belong to hosts, through VdmDbSheetMetalContextPE and
/// VdmDbSheetMetalContextMaterialPE on this class.
///
/// Readers raise OdError eNotOpenForRead (61) unless the context is open for read; those that
/// change it need it open for write, and record the whole state for undo.
class VDM_DB_EXPORT VdmDbSheetMetalContext : public OdDbObject, public VdmSheetMetalSource {
 public:
  OD_RX_DECLARE_MEMBERS(VdmDbSheetMetalContext)

  VdmDbSheetMetalContext();
  ~VdmDbSheetMetalContext() override;

  /// The context of a block. With `create` what is missing is made: the feature manager, the
  /// material of feature colours, the context. Null without one otherwise, and for a null block.
  static OdDbObjectId getInstance(OdDbObjectId block, bool create);
  /// The context of the feature's manager, open for read; null without one and for null.
  static OdSmartPtr<VdmDbSheetMetalContext> openInstance(const VdmFeature* feature);
  [[nodiscard]] OdDbObjectId featureManager() const;

  // ---- Options. A reference lasts as long as the object; what optionForWrite gave is changed
  // ---- while the context stays open for write.

#define VDM_OPTION_READ_WRITE(Name) \
  [[nodiscard]] const VdmSheetMetalContext##Name##Option& optionForRead##Name() const;
#define VDM_OPTION_WRITE_ONLY(Name)
#define VDM_SHEET_METAL_OPTION(Name, member, access) \
  VDM_OPTION_##access(Name) VdmSheetMetalContext##Name##Option& optionForWrite##Name();
#include "vdm_db/sheet_metal/vdm_sheet_metal_option_rows.inc"
#undef VDM_SHEET_METAL_OPTION
#undef VDM_OPTION_WRITE_ONLY
#undef VDM_OPTION_READ_WRITE

  /// All options take the values of the drawing's VdmDbISettings; their fallbacks without a drawing
  /// or settings.
  void initDefaultParameters(OdDbDatabase* database);
  /// All options take those of the other context, which is open for read. Nothing happens for null.
  void copyParameters(const OdSmartPtr<VdmDbSheetMetalContext>& other);

  // ---- Bend tables of the host

  /// Finds the bend table of the unfolding option as the host finds files, has the host load it,
  /// and gives its cells. The path is empty when there is no such file, and the result is what the
  /// host says. 417 without a drawing or a VdmDbSheetMetalContextPE.
  OdResult loadBendTable(OdArray<OdString>& cells);
  /// Widths of the vee dies in the loaded table, in rising order. 417 without a
  /// VdmDbSheetMetalContextPE or a table.
  OdResult getAvailableDieWidths(OdArray<double>& widths);

  // ---- The variable "_SM_THICKNESS" of the block. From its making on its value and the thickness
  // ---- stay equal, whichever of them changes; a new thickness makes all features due.

  /// The variable that drives the thickness. With `create` a missing one is made, or one of that
  /// name taken, and gets the thickness as its expression. Null without one, outside a block, and
  /// when the variable does not take the thickness.
  OdDbObjectId getThicknessParameter(bool create);
  [[nodiscard]] OdDbObjectId getThicknessParameter() const;
  /// The variables that drive the context.
  [[nodiscard]] OdDbObjectIdArray variables() const;
  /// Whether the variable drives the sheet metal of the block that has it. False for null.
  [[nodiscard]] static bool isThicknessVariable(const OdDbAssocVariable* variable);

  /// Takes over a number that the variable has now. A text or no value changes nothing.
  void modified(const OdDbObject* object) override;
  /// The thickness outlives its variable.
  void erased(const OdDbObject* object, bool erasing) override;
  void copied(const OdDbObject* object, const OdDbObject* clone) override;
  /// The variable goes with the context.
  OdResult subErase(bool erasing) override;

  [[nodiscard]] const VdmProperties& sheetMetalProperties() const override;
  OdResult dwgInFields(OdDbDwgFiler* filer) override;
  void dwgOutFields(OdDbDwgFiler* filer) const override;

 private:
  [[nodiscard]] const VdmDbSheetMetalContextImpl& implForRead() const;
  VdmDbSheetMetalContextImpl& implForWrite();

  std::unique_ptr<VdmDbSheetMetalContextImpl> m_impl;
};
using VdmDbSheetMetalContextPtr = OdSmartPtr<VdmDbSheetMetalContext>;
