// Whether a value of geometry is made of finite numbers only.
#pragma once

#include <algorithm>
#include <cmath>

#include "platform/ge/matrix3d.h"
#include "platform/ge/point2d.h"
#include "platform/ge/point3d.h"
#include "platform/ge/scale3d.h"
#include "platform/ge/vector2d.h"
#include "platform/ge/vector3d.h"

/// True when no coordinate, component, factor or entry is infinite or not a number. It looks at
/// each number by itself: a finite vector can still have a length that overflows.
inline bool odgeIsFinite(const OdGePoint2d& p) { return std::isfinite(p.x) && std::isfinite(p.y); }
inline bool odgeIsFinite(const OdGeVector2d& v) { return odgeIsFinite(OdGePoint2d(v.x, v.y)); }
inline bool odgeIsFinite(const OdGePoint3d& p) {
  return std::isfinite(p.x) && std::isfinite(p.y) && std::isfinite(p.z);
}
inline bool odgeIsFinite(const OdGeVector3d& v) { return odgeIsFinite(OdGePoint3d(v.x, v.y, v.z)); }
inline bool odgeIsFinite(const OdGeScale3d& s) {
  return odgeIsFinite(OdGePoint3d(s.sx, s.sy, s.sz));
}
inline bool odgeIsFinite(const OdGeMatrix3d& m) {
  return std::all_of(m.getElements(), m.getElements() + 16,
                     [](double entry) { return std::isfinite(entry); });
}
