// How far a tool reaches at its place: decided on the body that it is about to cut.
#pragma once

#include <vector>

#include "host/modeling/box_index.h"
#include "host/modeling/tool_form.h"
#include "platform/ge/matrix3d.h"

namespace vdm_host {

/// The base face of a component. `kOther` is also one that its reference does not lead to at
/// present.
enum class BaseKind { kNone, kPlane, kOther };
struct BaseFace {
  BaseKind kind = BaseKind::kNone;
  OdGePoint3d point;    ///< of the plane
  OdGeVector3d normal;  ///< of the plane, outward
};

/// A tool and where it is to cut.
struct ToolPlace {
  ToolForm form;
  OdGeMatrix3d place;
  BaseFace base;
};

/// The boxes of the faces of a body, for the tools that are fitted to it.
class FaceBoxes {
 public:
  explicit FaceBoxes(const OdModelerBodyPtr& body);

  [[nodiscard]] const OdModelerBodyPtr& body() const { return m_body; }
  [[nodiscard]] const OdGeExtents3d& whole() const { return m_whole; }
  [[nodiscard]] const OdGeExtents3d& of(std::size_t face) const { return m_boxes[face]; }
  /// Numbers of the faces near the box, for of().
  [[nodiscard]] std::vector<std::size_t> near(const OdGeExtents3d& box) const {
    return m_index.meeting(box);
  }

 private:
  OdModelerBodyPtr m_body;
  std::vector<OdGeExtents3d> m_boxes;
  OdGeExtents3d m_whole;
  BoxIndex m_index;
};

/// Laws:
///   1. a tool without a depth reaches through all of the body that is below its face;
///   2. above its face a tool reaches as far as its clearance where that removes nothing;
///   3. above a plane face across its axis, and without a base face, it removes nothing: it ends
///   half
///      way to what it would reach, and at the face where something rises from there;
///   4. above other faces it removes what rises from its rim, and ends half way to what lies
///   beyond.
OdStatus fitReach(const FaceBoxes& faces, const ToolPlace& tool, ToolReach& reach);
OdStatus fitReach(const OdModelerBodyPtr& body, const ToolPlace& tool, ToolReach& reach);

}  // namespace vdm_host
