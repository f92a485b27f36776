// BoxIndex: boxes with numbers, asked for those that meet a box.
#pragma once

#include <cstddef>
#include <map>
#include <utility>
#include <vector>

#include "platform/ge/extents3d.h"

namespace vdm_host {

/// Keeps its boxes in their order along x, so that a question visits those that lie beside the box
/// there, and no wider than the longest one before it.
class BoxIndex {
 public:
  /// An invalid box meets nothing.
  void add(const OdGeExtents3d& box, std::size_t number);
  /// The numbers of the boxes that have a point in common with the box, rising.
  [[nodiscard]] std::vector<std::size_t> meeting(const OdGeExtents3d& box) const;
  [[nodiscard]] bool meets(const OdGeExtents3d& box) const;

 private:
  using Row = std::pair<OdGeExtents3d, std::size_t>;

  /// Visits rows that meet the box until `visit` gives false.
  template <class Visit>
  void visit(const OdGeExtents3d& box, const Visit& visit) const;

  std::multimap<double, Row> m_rows;  // by the lower end along x
  double m_longest = 0.0;             // extent of a box along x
};

}  // namespace vdm_host
