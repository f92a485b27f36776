// How far a tool reaches at its place: decided on the body that it is about to cut.
//
// A tool that ended exactly at its face would leave a skin where its point is off the face by a
// rounding error, and would not open a curved face. So it reaches above the face, by a part of its
// width. What it finds there may be material that is not meant: the opposite wall of a slit, the
// wall of a pocket beside it. To find out, the opening is continued above the face and intersected
// with the body. Each piece of the outcome either begins at the face, and is a wall at a plane face
// or the rim of another one, or lies beyond, and is not meant.
//
// Nearly all tools cut from the outside, where nothing is above the face. The boxes of faces show
// that, so the boolean is made only where a face other than that of the tool is near.
#include "host/modeling/tool_fit.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>
#include <vector>

#include "host/modeling/residues.h"

namespace vdm_host {
namespace {

// Parallel within about 0.06 degrees: what tells a face across the axis from an oblique one.
constexpr double kParallelCosine = 1.0 - 5e-7;
// What counts as at the face, as a part of the clearance.
constexpr double kAtFace = 1e-4;

/// Of a box along the axis of the tool, in its own coordinates.
struct Span {
  double low = std::numeric_limits<double>::infinity();
  double high = -std::numeric_limits<double>::infinity();
};

Span alongAxis(const OdGeExtents3d& box, const OdGeMatrix3d& toTool) {
  Span span;
  for (int corner = 0; corner < 8; ++corner) {
    const OdGePoint3d at((corner & 1) != 0 ? box.maxPoint().x : box.minPoint().x,
                         (corner & 2) != 0 ? box.maxPoint().y : box.minPoint().y,
                         (corner & 4) != 0 ? box.maxPoint().z : box.minPoint().z);
    const double z = (toTool * at).z;
    span.low = std::min(span.low, z);
    span.high = std::max(span.high, z);
  }
  return span;
}

// Where the plane base face crosses the axis, in the tool's coordinates: at 0 without a base face.
// None for a face that is curved or oblique, or from which the tool was taken away.
std::optional<double> heightOfBase(const ToolPlace& tool, const OdGeMatrix3d& toTool) {
  if (tool.base.kind == BaseKind::kNone) return 0.0;
  if (tool.base.kind == BaseKind::kOther) return std::nullopt;
  const OdGeVector3d axis = (tool.place * OdGeVector3d::kZAxis).normal();
  if (axis.dotProduct(tool.base.normal) < kParallelCosine) return std::nullopt;
  const double height = (toTool * tool.base.point).z;
  return std::abs(height) <= tool.form.clearance() ? std::optional(height) : std::nullopt;
}

class Fit {
 public:
  Fit(const FaceBoxes& faces, const ToolPlace& tool)
      : m_faces(faces),
        m_tool(tool),
        m_toTool(tool.place.inverse()),
        m_clearance(tool.form.clearance()),
        m_base(heightOfBase(tool, m_toTool)),
        m_from(m_base.value_or(0.0)) {}

  [[nodiscard]] double below() const {
    if (m_tool.form.depth) return *m_tool.form.depth;
    const OdGeExtents3d& whole = m_faces.whole();
    const double deepest = whole.isValidExtents() ? alongAxis(whole, m_toTool).low : 0.0;
    return std::max(-deepest, m_tool.form.boreDepth) + m_clearance;
  }

  OdStatus above(double& above) {
    above = m_from + m_clearance;
    OdModelerBodyPtr opening;
    OdModelerBodyPtr continued;
    OdStatus status = makeOpening(m_tool.form, m_from, above, continued);
    if (status.ok()) status = continued->transformed(m_tool.place, opening);
    if (!status.ok() || !mayMeet(*opening)) return status;
    OdModelerBodyPtr met;
    status = commonOf(m_faces.body(), opening, met);
    if (!status.ok() || !met) return status;
    Span rim{m_from, m_from};
    double beyond = above;
    for (const OdModelerBodyPtr& piece : met->solids()) {
      const std::optional<Span> span = spanOf(piece);
      if (!span) continue;
      if (span->low <= m_from + kAtFace * m_clearance) {
        rim.high = std::max(rim.high, span->high);
      } else {
        beyond = std::min(beyond, span->low);
      }
    }
    const bool hasRim = rim.high > m_from + kAtFace * m_clearance;
    if (m_base) {
      above = hasRim ? m_from : std::min(above, 0.5 * (m_from + beyond));
    } else if (beyond > rim.high) {
      above = std::min(above, beyond < above ? 0.5 * (rim.high + beyond) : above);
    }
    return {};
  }

 private:
  // A plane face lies in the bottom of the opening, and so do others of its plane.
  [[nodiscard]] bool mayMeet(const OdModelerBody& opening) const {
    const OdGeExtents3d box = opening.extents();
    const double atFace = m_from + kAtFace * m_clearance;
    if (alongAxis(m_faces.whole(), m_toTool).high <= atFace) return false;
    return std::ranges::any_of(m_faces.near(box), [&](std::size_t face) {
      return alongAxis(m_faces.of(face), m_toTool).high > atFace;
    });
  }
  [[nodiscard]] std::optional<Span> spanOf(const OdModelerBodyPtr& piece) const {
    OdModelerBodyPtr own;
    if (!piece->transformed(m_toTool, own).ok()) return std::nullopt;
    const OdGeExtents3d box = own->extents();
    if (!box.isValidExtents()) return std::nullopt;
    return Span{box.minPoint().z, box.maxPoint().z};
  }

  const FaceBoxes& m_faces;
  const ToolPlace& m_tool;
  OdGeMatrix3d m_toTool;
  double m_clearance;
  std::optional<double> m_base;  // height of the plane face
  double m_from;                 // height from which the tool is above its face
};

}  // namespace

FaceBoxes::FaceBoxes(const OdModelerBodyPtr& body) : m_body(body) {
  for (OdUInt32 face = 1; face <= body->numFaces(); ++face) {
    m_boxes.push_back(body->subentExtents({OdModelerSubentType::kFace, face}));
    m_index.add(m_boxes.back(), face - 1);
    m_whole.addExt(m_boxes.back());
  }
}

OdStatus fitReach(const FaceBoxes& faces, const ToolPlace& tool, ToolReach& reach) {
  Fit fit(faces, tool);
  reach.below = fit.below();
  return fit.above(reach.above);
}

OdStatus fitReach(const OdModelerBodyPtr& body, const ToolPlace& tool, ToolReach& reach) {
  return fitReach(FaceBoxes(body), tool, reach);
}

}  // namespace vdm_host
