// A scene seen through a camera: what PNG and SVG pictures share.
#include "host/rendering/view.h"

#include <algorithm>
#include <cmath>

namespace rendering {

namespace {

// In samples of the picture, turned into depth by the scale.
constexpr double kLineBias = 3.0;
constexpr double kOutlineGap = 6.0;

// In pixels. Below these, lines a pixel wide would hide the colours that they bound.
constexpr double kSmallestOutlined = 20.0;  // across an occurrence
constexpr double kSmallestEdge = 4.0;       // across an edge

/// Two lights and what comes from all sides; shares of the surface's colour.
class Lights {
 public:
  explicit Lights(const Camera& camera)
      : m_toEye(camera.toEye()),
        m_key((camera.toEye() * 0.7 + camera.up() * 0.75 - camera.right() * 0.35).normal()),
        m_fill((camera.toEye() * 0.5 + camera.right() * 0.9 + camera.up() * 0.1).normal()),
        m_half((m_key + m_toEye).normal()) {}

  [[nodiscard]] LitPoint light(const PicturePoint& at, OdGeVector3d normal,
                               double shininess) const {
    constexpr double kAmbient = 0.42;
    constexpr double kKeyShare = 0.52;
    constexpr double kFillShare = 0.26;
    constexpr double kHighlight = 0.5;
    constexpr double kSharpness = 30.0;
    if (normal.dotProduct(m_toEye) < 0.0) normal = -normal;
    const double key = std::max(0.0, normal.dotProduct(m_key));
    const double fill = std::max(0.0, normal.dotProduct(m_fill));
    const double half = std::max(0.0, normal.dotProduct(m_half));
    return {at, kAmbient + kKeyShare * key + kFillShare * fill,
            kHighlight * shininess * std::pow(half, kSharpness)};
  }

 private:
  OdGeVector3d m_toEye;
  OdGeVector3d m_key;
  OdGeVector3d m_fill;
  OdGeVector3d m_half;
};

PictureArea scaled(PictureArea area, double factor) {
  area.left *= factor;
  area.top *= factor;
  area.right *= factor;
  area.bottom *= factor;
  return area;
}

PlacedLabel scaled(PlacedLabel label, double factor) {
  label.anchor.x *= factor;
  label.anchor.y *= factor;
  label.elbowX *= factor;
  label.textLeft *= factor;
  label.textRight *= factor;
  label.baseLine *= factor;
  return label;
}

void drawSurface(const Surface& surface, const OdGeMatrix3d& toWorld, std::uint32_t firstPart,
                 bool isOutlined, const Camera& camera, const Lights& lights, Raster& raster) {
  const OdGeMatrix3d normals = toWorld.inverse().transpose();
  std::vector<LitPoint> points;
  points.reserve(surface.points.size());
  for (std::size_t i = 0; i < surface.points.size(); ++i) {
    const OdGeVector3d normal = normals * surface.normals[i];
    const double length = normal.length();
    points.push_back(lights.light(camera.project(toWorld * surface.points[i]),
                                  length > 0.0 ? normal / length : camera.toEye(),
                                  surface.look.shininess));
  }
  for (std::size_t i = 0; i < surface.triangles.size(); ++i) {
    const auto& triangle = surface.triangles[i];
    const LitPoint corners[3] = {points[triangle[0]], points[triangle[1]], points[triangle[2]]};
    raster.triangle(corners, surface.look.color, firstPart + surface.parts[i], isOutlined);
  }
}

std::uint32_t numParts(const Shape& shape) {
  std::uint32_t most = 0;
  for (const Surface& surface : shape.surfaces) {
    for (const std::uint32_t part : surface.parts) most = std::max(most, part);
  }
  return most + 1;
}

}  // namespace

View::View(const Scene& scene, const RenderOptions& options, int samplesPerSide)
    : camera(options.viewDirection), factor(samplesPerSide) {
  const LabelLayout layout(scene, options);
  camera.fit(scene, layout.modelArea());
  for (PlacedLabel& label : layout.place(camera)) labels.push_back(scaled(label, factor));
  textHeight = layout.textHeight() * factor;
  camera.fit(scene, scaled(layout.modelArea(), factor));
  std::vector<OdGeExtents3d> boxes;
  for (const Shape& shape : scene.shapes) boxes.push_back(shape.extents());
  for (const Instance& instance : scene.instances) {
    isSmall.push_back(sizeOf(boxes[instance.shape], instance.toWorld) < kSmallestOutlined * factor);
  }
}

double View::sizeOf(const OdGeExtents3d& box, const OdGeMatrix3d& toWorld) const {
  const OdGePoint3d low = box.minPoint();
  const OdGePoint3d high = box.maxPoint();
  const PicturePoint first = camera.project(toWorld * low);
  PictureArea area{first.x, first.y, first.x, first.y};
  for (unsigned corner = 1; corner < 8; ++corner) {
    const PicturePoint at = camera.project(toWorld * OdGePoint3d((corner & 1) ? high.x : low.x,
                                                                 (corner & 2) ? high.y : low.y,
                                                                 (corner & 4) ? high.z : low.z));
    area.left = std::min(area.left, at.x);
    area.right = std::max(area.right, at.x);
    area.top = std::min(area.top, at.y);
    area.bottom = std::max(area.bottom, at.y);
  }
  return std::hypot(area.right - area.left, area.bottom - area.top);
}

bool View::showsEdge(const Line& line, const OdGeMatrix3d& toWorld) const {
  OdGeExtents3d box;
  for (const OdGePoint3d& point : line.points) box.addPoint(point);
  return sizeOf(box, toWorld) >= kSmallestEdge * factor;
}

double View::lineBias() const { return kLineBias / camera.scale(); }

double View::outlineGap() const { return kOutlineGap / camera.scale(); }

Raster rasterise(const Scene& scene, const View& view, const RenderOptions& options,
                 int lightLevels) {
  Raster raster(options.width * view.factor, options.height * view.factor, options.background,
                lightLevels);
  const Lights lights(view.camera);
  std::vector<std::uint32_t> parts;
  for (const Shape& shape : scene.shapes) parts.push_back(numParts(shape));
  std::uint32_t firstPart = 1;
  for (std::size_t index = 0; index < scene.instances.size(); ++index) {
    const Instance& instance = scene.instances[index];
    for (const Surface& surface : scene.shapes[instance.shape].surfaces) {
      drawSurface(surface, instance.toWorld, firstPart, !view.isSmall[index], view.camera, lights,
                  raster);
    }
    firstPart += parts[instance.shape];
  }
  return raster;
}

}  // namespace rendering
