// VdmDbLayerHelper: the layers and line types of drawing views.
#pragma once

#include "platform/base/result.h"
#include "platform/base/string.h"
#include "platform/db/color.h"
#include "platform/filer/object_id.h"
#include "vdm_db/common/vdm_db_export.h"

class OdDbDatabase;

/// Finds or makes the layers of drawing views, with line types and colours from a visual style, and
/// carries the settings of layers of older drawings over. Laws:
///
/// 1. A layer that is there stays as it is.
/// 2. A new layer is on, thawed and unlocked, has the line type and colour of the style, and then
///    takes over the settings of the older layer of its type, if the drawing has that.
/// 3. The older layer of trailing lines becomes the two present ones: it is renamed to
///    "VM_Trailing_Visible", so that its entities come along, and "VM_Trailing_Hidden" is made with
///    the same settings. Both are there after the first of them was asked for. Where one of them
///    was there before, the other one takes over the settings, the entities move to
///    "VM_Trailing_Visible", and the older layer is erased.
class VDM_DB_EXPORT VdmDbLayerHelper {
 public:
  /// What a layer holds. Callers may use other numbers, too: for those no older layer is known.
  enum Type : int {
    kVisible = 2,
    kHidden = 3,
    kOtherHidden = 5,
    kTangentVisible = 7,
    kTangentHidden = 8,
    kTrailingVisible = 9,
    kThreadVisible = 14,
    kThreadHidden = 15,
  };

  /// The drawing outlives the helper.
  explicit VdmDbLayerHelper(OdDbDatabase* database) : m_database(database) {}

  /// The layer of a name, made when it is missing; `created` says whether it was. `style` names a
  /// visual style, or is empty. Null without a drawing. Raises what adding a record raises, as for
  /// a name that no layer can have.
  OdDbObjectId getLayer(Type type, const OdString& name, const OdString& style, bool& created);
  /// Copies everything but the name. eKeyNotFound, and nothing changes, when one is missing.
  OdResult copyLayerSettings(const OdString& to, const OdString& from);
  /// The line type of a name, which the VdmDbIStandardLineTypeLoader loads when it is missing; null
  /// when it is missing then.
  OdDbObjectId getLineType(const OdString& name);
  /// Hidden kinds have the line type of hidden edges in the style; all others, and where there is
  /// no such line type, "Continuous". Hidden threads have "HIDDEN2" without a style.
  OdDbObjectId getLineTypeFromVisualStyle(Type type, const OdString& style);
  /// The colour of hidden edges in the style for hidden kinds, that of edges for others. Index 7
  /// without the style, and where it says no colour.
  [[nodiscard]] OdCmColor getColorFromVisualStyle(Type type, const OdString& style) const;

 private:
  OdDbObjectId adoptTrailingLayer(const OdString& name);
  void removeTrailingLayer();

  OdDbDatabase* m_database;
};
