// Signatures by place: who lies within a radius of a point.
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
  // Places lie on a surface rather than in a volume.
  const double perAxis = std::max(1.0, std::sqrt(static_cast<double>(items.size())));
  const double extent = std::max({high.x - m_corner.x, high.y - m_corner.y, high.z - m_corner.z});
  if (extent > 0.0) m_side = extent / perAxis;
  m_cells.reserve(items.size());
  for (OdUInt32 i = 0; i < items.size(); ++i) m_cells.emplace(keyOf(cellOf(items[i].place)), i);
}

PlaceGrid::Cell PlaceGrid::cellOf(const OdGePoint3d& point) const {
  // Outside of the grid by so much that nothing is there: the number must only stay a number.
  static constexpr double kFar = 1e9;
  const auto step = [this](double offset) {
    return static_cast<OdInt64>(std::clamp(std::floor(offset / m_side), -kFar, kFar));
  };
  return {step(point.x - m_corner.x), step(point.y - m_corner.y), step(point.z - m_corner.z)};
}

OdUInt64 PlaceGrid::keyOf(const Cell& cell) {
  // 21 bits an axis, wrapped around: cells that share a key are told apart by distance.
  constexpr OdUInt64 kMask = (OdUInt64{1} << 21U) - 1;
  const auto part = [](OdInt64 value) { return static_cast<OdUInt64>(value) & kMask; };
  return part(cell.x) | (part(cell.y) << 21U) | (part(cell.z) << 42U);
}

}  // namespace vdm_host
