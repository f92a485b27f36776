// Values of variables, and constant expressions.
#pragma once

#include "platform/assoc/assoc_variable.h"
#include "platform/assoc/eval_variant.h"
#include "platform/base/result.h"
#include "platform/base/string.h"
#include "vdm_db/common/vdm_db_export.h"

namespace vdmu {

// ---- Values

/// The number; -1 for null and for what is none, which cannot be told from the value -1.
[[nodiscard]] VDM_DB_EXPORT double getValueAsDouble(const OdDbEvalVariant* value);
[[nodiscard]] VDM_DB_EXPORT double getValueAsDouble(const OdDbAssocVariable* variable);
/// The number without its fraction, at most what an int holds; -1 likewise.
[[nodiscard]] VDM_DB_EXPORT int getValueAsInt(const OdDbEvalVariant* value);
[[nodiscard]] VDM_DB_EXPORT bool isStringType(const OdDbEvalVariant* value);
/// The text, or the number as a constant expression; empty for null.
[[nodiscard]] VDM_DB_EXPORT OdString getAsString(const OdDbEvalVariant* value);
/// The text that a configuration binds to the variable, otherwise the variable's own value. Null
/// for null, for a variable without a value, and for a column of texts without a text.
[[nodiscard]] VDM_DB_EXPORT OdDbEvalVariantPtr getEvalVariant(const OdDbAssocVariable* variable);

// ---- Constant expressions

/// The number with up to 12 digits.
[[nodiscard]] VDM_DB_EXPORT OdString getConstExpression(double value);
/// Sets it; the result of OdDbAssocVariable::setExpression. 417 for null.
VDM_DB_EXPORT OdResult setConstExpression(OdDbAssocVariable* variable, double value);
/// The variable depends on nothing and, with `checkExpression`, its expression is a constant.
[[nodiscard]] VDM_DB_EXPORT bool hasConstExpression(const OdDbAssocVariable* variable,
                                                    bool checkExpression);
/// The value of a constant expression; null for a text that is none. Lengths are in millimetres.
[[nodiscard]] VDM_DB_EXPORT OdDbEvalVariantPtr getConstValue(const OdString& text);

}  // namespace vdmu
