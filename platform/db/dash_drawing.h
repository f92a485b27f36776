// Lines drawn in the pattern of a line type.
#pragma once

#include <span>

#include "platform/db/linetype_table.h"
#include "platform/gi/world_geometry.h"

/// Draws a polyline of two points or more in a pattern whose lengths are multiplied by `scale`, by
/// these laws:
///
///   1. the pattern runs over the corners;
///   2. the line begins and ends with the first dash, and what remains of whole periods is shared
///      out between these two (a pattern that begins with a gap has it there); a line that is
///      shorter than a period and its first dash is drawn whole;
///   3. a dot is a segment without length; texts stand on the line as their offsets say;
///   4. shapes are left out: their files belong to other programs;
///   5. a line of more than kOdDbMaxPeriods periods is drawn whole: its pattern would not show.
///
/// A line type without dashes draws the polyline as it is.
void oddbDrawDashed(OdGiWorldGeometry& geometry, std::span<const OdGePoint3d> points,
                    const OdDbLinetypeTableRecord& linetype, double scale);

constexpr double kOdDbMaxPeriods = 20000;
