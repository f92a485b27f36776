// OdGiWorldGeometry: what contexts need not bring themselves.
#include "platform/gi/world_geometry.h"

#include <vector>

#include "platform/gi/stroke_font.h"

void OdGiWorldGeometry::text(const OdGiText& text) {
  std::vector<OdGePoint3d> points;
  for (const auto& stroke : odgiLayOutText(text.text).strokes) {
    points.clear();
    for (const OdGePoint2d& point : stroke) {
      points.push_back(text.position + text.along * point.x + text.up * point.y);
    }
    if (points.size() > 1) polyline(points);
  }
}
