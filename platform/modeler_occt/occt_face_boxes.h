// Boxes of the faces of a body and of the loops of a face: which of them a tool can reach.
#pragma once

#include <Bnd_Box.hxx>
#include <TopoDS_Face.hxx>
#include <vector>

namespace od_occt {

/// Boxes of tools are wider by this, in drawing units, so that what touches within the largest
/// tolerance of a boolean's tries (1e-5) counts as met.
inline constexpr double kReachMargin = 2e-5;

/// Boxes of a few small things, asked for those that meet a box. An open box meets everything.
class BoxSet {
 public:
  BoxSet() = default;
  explicit BoxSet(std::vector<Bnd_Box> boxes);

  [[nodiscard]] bool meets(const Bnd_Box& box) const;
  /// True when no two of the boxes meet.
  [[nodiscard]] bool areApart() const;

 private:
  std::vector<Bnd_Box> m_boxes;  // rising by their lower end along x
  Bnd_Box m_whole;
  double m_longest = 0.0;  // extent of a box along x
};

/// A box around a face, a little larger than it.
Bnd_Box boxOfFace(const TopoDS_Face& face);
/// A box around a loop of edges, and on a curved face around what the loop encloses there as long
/// as that is less than half a turn.
Bnd_Box boxOfLoop(const TopoDS_Shape& loop, bool isPlane);

}  // namespace od_occt
