// Parts of some hundred faces, and small holes to cut into them.
#include "bench/update/cut_parts.h"

#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <stdexcept>

#include "bench/naming/made_body.h"

namespace {

constexpr double kPitch = 10.0;

using naming_bench::made;

OdModelerBodyPtr moved(const OdModelerBodyPtr& body, const OdGeVector3d& by) {
  return made(
      [&](auto& result) { return body->transformed(OdGeMatrix3d::translation(by), result); });
}

}  // namespace

OdModelerBodyPtr cutFrom(OdModeler& modeler, const OdModelerBodyPtr& base,
                         const std::vector<OdModelerBodyPtr>& tools) {
  OdModelerHistory history;
  return made([&](auto& result) {
    return modeler.boolean(OdModelerBooleanKind::kSubtract, base, tools, result, &history);
  });
}

OdModelerBodyPtr plateOf(OdModeler& modeler, std::size_t faces) {
  const std::size_t holes = faces - 6;
  const auto columns = static_cast<std::size_t>(std::ceil(std::sqrt(static_cast<double>(holes))));
  const double size = kPitch * (static_cast<double>(columns) + 1.0);
  const OdModelerBodyPtr pin =
      made([&](auto& result) { return modeler.cylinder(2.0, 12.0, result); });
  std::vector<OdModelerBodyPtr> tools;
  for (std::size_t i = 0; i < holes; ++i) {
    const double x = kPitch * static_cast<double>(i % columns + 1);
    const double y = kPitch * static_cast<double>(i / columns + 1);
    tools.push_back(moved(pin, {x, y, -1.0}));
  }
  const OdModelerBodyPtr plate =
      made([&](auto& result) { return modeler.box(size, size, 10.0, result); });
  return cutFrom(modeler, plate, tools);
}

OdModelerBodyPtr pinBetweenHoles(OdModeler& modeler, std::size_t number) {
  const OdModelerBodyPtr pin =
      made([&](auto& result) { return modeler.cylinder(1.5, 12.0, result); });
  return moved(pin, {kPitch * (static_cast<double>(number) + 1.5), 1.5 * kPitch, -1.0});
}

OdModelerBodyPtr pinAt(const OdGePoint3d& point, double diameter) {
  const OdModelerBodyPtr pin =
      made([&](auto& result) { return odModeler().cylinder(diameter / 2.0, 12.0, result); });
  return moved(pin, {point.x, point.y, point.z - 11.0});
}

void addFiles(OdModeler& modeler, std::vector<CutPart>& parts) {
  constexpr OdUInt32 kFewFaces = 150;
  const char* folder = std::getenv("VDM_STEP_DIR");
  if (folder == nullptr) return;
  for (const auto& entry : std::filesystem::directory_iterator(folder)) {
    OdModelerAssembly assembly;
    const OdString path = OdString::fromUtf8(entry.path().string());
    if (!modeler.importStep(path, assembly).ok()) continue;
    for (const OdModelerProduct& product : assembly.products) {
      for (const OdModelerBodyPtr& body : product.bodies) {
        if (body->kind() != OdModelerBodyKind::kSolid || body->numFaces() < kFewFaces) continue;
        parts.push_back({entry.path().stem().string(), body});
      }
    }
  }
}

OdModelerBodyPtr toolFor(OdModeler& modeler, const OdModelerBody& part, std::size_t round) {
  OdUInt32 best = 1;
  for (OdUInt32 i = 1; i <= part.numFaces(); ++i) {
    if (part.surfaceKind(i) == OdModelerSurfaceKind::kPlane &&
        part.face(i).area > part.face(best).area) {
      best = i;
    }
  }
  const OdModelerFace& face = part.face(best);
  const double radius = 0.01 * std::sqrt(face.area);
  const OdModelerBodyPtr pin =
      made([&](auto& result) { return modeler.cylinder(radius, 2.0 * radius, result); });
  OdGeVector3d along = face.normal.perpVector();
  along = along * (radius * 2.5 * static_cast<double>(round));
  return moved(pin, face.pointOnFace.asVector() + along - OdGeVector3d(0.0, 0.0, radius));
}
