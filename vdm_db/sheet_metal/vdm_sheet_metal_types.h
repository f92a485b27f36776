// Enumerations and result numbers of sheet-metal options.
#pragma once

#include "platform/base/result.h"
#include "platform/base/types.h"

// The numbers are stored.

/// How a length is stored.
enum class VdmRelationToThicknessType : OdLong { kRatio = 0, kAbsolute = 1 };
enum class VdmCornerReliefDiameterType : OdLong { kAutomatic = 0, kAbsolute = 1 };
/// How the fillet radius of a rib is stored.
enum class VdmRibFilletRadiusType : OdLong { kProfileRatio = 0, kAbsolute = 1 };

// Numbers that modules which unfold sheet metal give a meaning; the defaults alone have names.
enum class VdmJunctionAlignmentToReliefType : OdLong { kDefault = 0 };
enum class VdmTabEdgeType : OdLong { kDefault = 0 };
enum class VdmFormFeatureUnfoldingMode : OdLong { kDefault = 4 };

// Results that have no name in the runtime's table. Callers see the numbers.
inline constexpr OdResult kVdmOutOfRange = static_cast<OdResult>(5);  // a value was refused
/// There is no extension, table, settings or source of the right kind.
inline constexpr OdResult kVdmNoSource = static_cast<OdResult>(417);
