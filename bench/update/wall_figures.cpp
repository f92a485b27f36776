// One hole more in parts of some hundred faces: with the modeller behind a wall, and without.
#include <array>
#include <cstdlib>
#include <filesystem>
#include <stdexcept>

#include "bench/update/figures.h"
#include "platform/modeler/modeler.h"
#include "platform/modeler_occt/occt_modeler.h"
#include "platform/modeler_wall/walled_modeler.h"

namespace {

constexpr double kPitch = 10.0;

template <class Call>
auto made(Call call) {
  OdModelerBodyPtr result;
  const OdStatus status = call(result);
  if (!status.ok()) throw std::runtime_error(std::string(status.text.utf8()));
  return result;
}

OdModelerBodyPtr moved(const OdModelerBodyPtr& body, const OdGeVector3d& by) {
  return made(
      [&](auto& result) { return body->transformed(OdGeMatrix3d::translation(by), result); });
}

OdModelerBodyPtr cut(OdModeler& modeler, const OdModelerBodyPtr& body,
                     const std::vector<OdModelerBodyPtr>& tools) {
  OdModelerHistory history;
  return made([&](auto& result) {
    return modeler.boolean(OdModelerBooleanKind::kSubtract, body, tools, result, &history);
  });
}

/// A plate with through holes in a square grid, `faces` - 6 of them.
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
  return cut(modeler, plate, tools);
}

struct Part {
  std::string name;
  OdModelerBodyPtr body;
};

/// Bodies of some hundred faces out of the STEP files of a folder, if one is named.
void addFiles(OdModeler& modeler, std::vector<Part>& parts) {
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

/// A small hole into the largest plane face of a part, at one place out of many.
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

Figure measurePart(const std::string& name, const OdModelerBodyPtr& part, OdModeler& plain,
                   OdModeler& walled, std::size_t rounds) {
  std::vector<double> ours;
  std::vector<double> peer;
  OdModelerBodyPtr plainBody = part;
  OdModelerBodyPtr walledBody = part;
  for (std::size_t round = 0; round < rounds; ++round) {
    const OdModelerBodyPtr tool = toolFor(plain, *part, round);
    OdBinaryData bytes;
    (void)tool->serialise(bytes);  // as a component's tool is, whose body is stored
    peer.push_back(secondsOf([&] { plainBody = cut(plain, plainBody, {tool}); }));
    ours.push_back(secondsOf([&] { walledBody = cut(walled, walledBody, {tool}); }));
    if (walledBody->numFaces() != plainBody->numFaces()) throw std::runtime_error("other faces");
  }
  constexpr double kMs = 1e3;
  return {
      "one hole cut behind the wall, " + name + ", " + std::to_string(part->numFaces()) + " faces",
      "the same without it", kMs * medianOf(ours), kMs * medianOf(peer), "ms"};
}

}  // namespace

std::vector<Figure> measureWall(const FigureOptions& options) {
  const std::shared_ptr<OdModeler> plain = odCreateOcctModeler();
  const std::shared_ptr<OdModeler> walled = odCreateWalledModeler(odCreateOcctModeler());
  std::vector<Part> parts{{"plate", plateOf(*plain, 300)}, {"plate", plateOf(*plain, 700)}};
  addFiles(*plain, parts);
  std::vector<Figure> figures;
  for (const Part& part : parts) {
    figures.push_back(measurePart(part.name, part.body, *plain, *walled, options.rounds));
  }
  return figures;
}
