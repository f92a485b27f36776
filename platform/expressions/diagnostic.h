// What is wrong with an expression, and where.
#pragma once

#include "platform/base/export.h"
#include "platform/base/string.h"

namespace OdExpression {

/// One finding. Texts are lower case without a full stop.
struct OD_API Diagnostic {
  enum class Kind : OdUInt8 {
    kSyntax,       ///< the text is not formed as the language asks
    kUnknownName,  ///< a name that the scope does not know
    kDimension,    ///< dimensions that do not fit
    kLimit,        ///< too long, too deep or too many names
    kEvaluation,   ///< no value for these arguments, such as a division by zero
  };

  Kind kind = Kind::kSyntax;
  int column = 1;       ///< 1-based, in characters; one past the end where something is missing
  OdString found;       ///< such as "area"
  OdString expected;    ///< such as "length"
  OdString suggestion;  ///< the nearest legal form, such as "length + sqrt(area)"; may be empty

  /// "column 5: found area, expected length; write length + sqrt(area)".
  [[nodiscard]] OdString text() const;
};

}  // namespace OdExpression
