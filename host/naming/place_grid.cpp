// Signatures by place: which lie within a radius of a point.
//
// The idea: a hash of cubic cells. A query visits the cells that its ball may touch, and looks at
// the places in them. It misses nothing, because the cells cover the box around the ball, and finds
// nothing wrong, because each place is measured: cells may share a key, and do no harm.
//
// The subentities of a body lie on its surface: n of them on a surface of extent L are about
// L / sqrt(n) apart, which is the side of a cell. A query whose radius is of that order looks at a
// few places; one that covers more cells than there are places looks at each place once instead.
#include "host/naming/place_grid.h"

#include <algorithm>
#include <cmath>

namespace vdm_host {

PlaceGrid::PlaceGrid(std::span<const SubentSignature> items) : m_items(items) {
  if (items.empty()) return;
  OdGePoint3d high = m_corner = items.front().place;
  for (const SubentSignature& item : items) {
    m_corner.set(std::min(m_corner.x, item.place.x), std::min(m_corner.y, item.place.y),
                 std::min(m_corner.z, item.place.z));
    high.set(std::max(high.x, item.place.x), std::max(high.y, item.place.y),
             std::max(high.z, item.place.z));
  }
  const double perAxis = std::max(1.0, std::sqrt(static_cast<double>(items.size())));
  const double extent = std::max({high.x - m_corner.x, high.y - m_corner.y, high.z - m_corner.z});
  if (extent > 0.0) m_side = extent / perAxis;
  m_cells.reserve(items.size());
  for (OdUInt32 i = 0; i < items.size(); ++i) m_cells.emplace(keyOf(cellOf(items[i].place)), i);
}

PlaceGrid::Cell PlaceGrid::cellOf(const OdGePoint3d& point) const {
  // So far outside of the grid there is nothing: the cell must only fit its integer.
  static constexpr double kFar = 1e9;
  const auto step = [this](double offset) {
    return static_cast<OdInt64>(std::clamp(std::floor(offset / m_side), -kFar, kFar));
  };
  return {step(point.x - m_corner.x), step(point.y - m_corner.y), step(point.z - m_corner.z)};
}

OdUInt64 PlaceGrid::keyOf(const Cell& cell) {
  // 21 bits an axis, wrapped around.
  constexpr OdUInt64 kMask = (OdUInt64{1} << 21U) - 1;
  const auto part = [](OdInt64 value) { return static_cast<OdUInt64>(value) & kMask; };
  return part(cell.x) | (part(cell.y) << 21U) | (part(cell.z) << 42U);
}

}  // namespace vdm_host
