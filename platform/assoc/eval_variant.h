// OdDbEvalVariant: a typed value, as variables hold and expressions give it.
#pragma once

#include "platform/base/types.h"
#include "platform/filer/res_buf.h"

namespace OdDb {

/// Types of values; the numbers are stored.
enum DwgDataType : OdUInt8 {
  kDwgNull = 0,
  kDwgReal = 1,   ///< double
  kDwgInt32 = 2,  ///< 32-bit integer
  kDwgText = 5,   ///< string
};

}  // namespace OdDb

class OdDbEvalVariant;
using OdDbEvalVariantPtr = OdSmartPtr<OdDbEvalVariant>;

/// A result buffer with a value of one of three types. A buffer of any other code has no type.
class OdDbEvalVariant : public OdResBuf {
 public:
  OD_RX_DECLARE_MEMBERS(OdDbEvalVariant)

  static OdDbEvalVariantPtr init(double value);
  static OdDbEvalVariantPtr init(OdInt32 value);
  static OdDbEvalVariantPtr init(const OdString& value);
  static OdDbEvalVariantPtr init(const wchar_t* value) { return init(OdString(value)); }

  [[nodiscard]] OdDb::DwgDataType getType() const;
  /// The number; 0 for a text and for a variant without a value.
  [[nodiscard]] double getAsDouble() const;
};
