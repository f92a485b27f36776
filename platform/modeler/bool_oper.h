// Boolean operations under the names that drawings use for them.
#pragma once

#include "platform/modeler/modeler.h"

namespace OdDb {

using BoolOperType = OdModelerBooleanKind;
inline constexpr BoolOperType kBoolUnite = OdModelerBooleanKind::kUnite;
inline constexpr BoolOperType kBoolIntersect = OdModelerBooleanKind::kIntersect;
inline constexpr BoolOperType kBoolSubtract = OdModelerBooleanKind::kSubtract;

}  // namespace OdDb
