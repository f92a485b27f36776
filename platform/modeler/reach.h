// Where bodies may lie.
#pragma once

#include "platform/base/status.h"
#include "platform/ge/matrix3d.h"

class OdModelerBody;

/// The largest coordinate and size of bodies, in drawing units. Neighbouring numbers are 1.5e-8
/// apart there (2^-26), and a modeller that takes points within 1e-7 for one needs some of them to
/// compute with.
inline constexpr double kOdModelerReach = 1e8;

/// eInvalidInput when the body under the matrix has a vertex beyond the reach; the text names the
/// coordinate.
OdStatus odCheckReach(const OdModelerBody& body,
                      const OdGeMatrix3d& matrix = OdGeMatrix3d::kIdentity);

/// True when each coordinate is finite and within the reach.
[[nodiscard]] bool odIsWithinReach(const OdGePoint3d& point);
