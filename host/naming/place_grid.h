// Signatures by place: which lie within a radius of a point.
#pragma once

#include <span>
#include <unordered_map>
#include <vector>

#include "host/naming/subent_signature.h"

namespace vdm_host {

/// A grid over the places of signatures, which outlive it. Its cells are about as many as there are
/// signatures, so that a small radius meets a few.
class PlaceGrid {
 public:
  explicit PlaceGrid(std::span<const SubentSignature> items);

  /// Calls `visit(index)`, counted from 0, for each signature whose place is at most `radius` from
  /// `point`, in any order.
  template <class Visit>
  void within(const OdGePoint3d& point, double radius, const Visit& visit) const;

 private:
  struct Cell {
    OdInt64 x = 0, y = 0, z = 0;
  };
  [[nodiscard]] Cell cellOf(const OdGePoint3d& point) const;
  static OdUInt64 keyOf(const Cell& cell);

  std::span<const SubentSignature> m_items;
  OdGePoint3d m_corner;
  double m_side = 1.0;
  std::unordered_multimap<OdUInt64, OdUInt32> m_cells;
};

template <class Visit>
void PlaceGrid::within(const OdGePoint3d& point, double radius, const Visit& visit) const {
  const auto look = [&](OdUInt32 index) {
    if (m_items[index].place.distanceTo(point) <= radius) visit(index);
  };
  const OdGeVector3d reach(radius, radius, radius);
  const Cell low = cellOf(point - reach);
  const Cell high = cellOf(point + reach);
  const double cells = static_cast<double>(high.x - low.x + 1) *
                       static_cast<double>(high.y - low.y + 1) *
                       static_cast<double>(high.z - low.z + 1);
  // More cells than signatures: looking at each signature is less work.
  if (cells > static_cast<double>(m_items.size())) {
    for (OdUInt32 i = 0; i < m_items.size(); ++i) look(i);
    return;
  }
  for (Cell cell{low.x, 0, 0}; cell.x <= high.x; ++cell.x) {
    for (cell.y = low.y; cell.y <= high.y; ++cell.y) {
      for (cell.z = low.z; cell.z <= high.z; ++cell.z) {
        const auto [first, last] = m_cells.equal_range(keyOf(cell));
        for (auto it = first; it != last; ++it) look(it->second);
      }
    }
  }
}

}  // namespace vdm_host
