// What the value of a variable measures.
#pragma once

#include "platform/expressions/dimension.h"

class OdDbAssocVariable;

/// That of the variable's expression; a plain number for a variable that has none, or whose
/// expression cannot be compiled. Outside of a network a plain number, too.
[[nodiscard]] OdExpression::Dimension oddbDimensionOf(const OdDbAssocVariable& variable);
