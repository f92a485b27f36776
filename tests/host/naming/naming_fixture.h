// Bodies and geometry for naming tests: truth comes from where things lie, never from numbers.
#pragma once

#include <optional>
#include <vector>

#include "host/naming/body_lineage.h"
#include "host/naming/body_signature.h"
#include "host/naming/lineage_matcher.h"
#include "platform/modeler/solid_journal.h"
#include "tests/support/modeler_testing.h"

namespace vdm_host {

using Type = OdModelerSubentType;
using BooleanKind = OdModelerBooleanKind;

class NamingTest : public ModelerTest {
 protected:
  /// `body` changed by a boolean; the change is written down.
  OdModelerBodyPtr apply(BooleanKind kind, const OdModelerBodyPtr& body,
                         const std::vector<OdModelerBodyPtr>& tools) {
    OdModelerHistory history;
    OdSolidChange change;
    change.kind = OdSolidChangeKind::kBoolean;
    change.before = body;
    change.tools = tools;
    change.after = combine(kind, body, tools, &history);
    change.history = std::make_shared<const OdModelerHistory>(std::move(history));
    m_changes.push_back(change);
    return change.after;
  }
  OdModelerBodyPtr cut(const OdModelerBodyPtr& body, const std::vector<OdModelerBodyPtr>& tools) {
    return apply(BooleanKind::kSubtract, body, tools);
  }
  OdModelerBodyPtr unite(const OdModelerBodyPtr& body, const std::vector<OdModelerBodyPtr>& tools) {
    return apply(BooleanKind::kUnite, body, tools);
  }
  OdModelerBodyPtr fillet(const OdModelerBodyPtr& body, const std::vector<OdUInt32>& edges,
                          double radius) {
    OdModelerHistory history;
    OdSolidChange change;
    change.kind = OdSolidChangeKind::kBlend;
    change.before = body;
    change.after = made(
        [&](auto& result) { return odModeler().fillet(body, edges, radius, result, &history); });
    change.history = std::make_shared<const OdModelerHistory>(std::move(history));
    m_changes.push_back(change);
    return change.after;
  }

  /// A plate 300 x 200 x 10 with holes of radius 4 on a grid of 20, the first at (x, y).
  static std::vector<OdModelerBodyPtr> drills(int columns, int rows, double x = 30.0,
                                              double y = 30.0) {
    std::vector<OdModelerBodyPtr> tools;
    for (int i = 0; i < columns; ++i) {
      for (int j = 0; j < rows; ++j) {
        tools.push_back(cylinder(4.0, 20.0, {x + 20.0 * i, y + 20.0 * j, -5.0}));
      }
    }
    return tools;
  }
  static OdModelerBodyPtr plate(double dx = 300.0) { return box(dx, 200.0, 10.0); }
  static OdModelerBodyPtr drilled(const std::vector<OdModelerBodyPtr>& tools, double dx = 300.0) {
    return combine(BooleanKind::kSubtract, plate(dx), tools);
  }

  /// The first subentity of a type that holds a point; 0 when none does.
  static OdUInt32 faceAt(const OdModelerBody& body, const OdGePoint3d& point) {
    return nearest(body, Type::kFace, point);
  }
  static OdUInt32 edgeAt(const OdModelerBody& body, const OdGePoint3d& point) {
    return nearest(body, Type::kEdge, point);
  }
  static OdUInt32 vertexAt(const OdModelerBody& body, const OdGePoint3d& point) {
    return nearest(body, Type::kVertex, point);
  }
  static OdUInt32 nearest(const OdModelerBody& body, Type type, const OdGePoint3d& point) {
    for (OdUInt32 i = 1; i <= body.numSubents(type); ++i) {
      if (body.distanceTo({type, i}, point) < 1e-6) return i;
    }
    return 0;
  }

  std::vector<OdSolidChange> m_changes;
};

}  // namespace vdm_host
