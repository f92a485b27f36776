// Many inserts as one pass: on one plate beside one cut with all tools by the modeller alone, and
// into many solids beside the cuts alone, one for each.
#include <cmath>

#include "bench/update/component_drawing.h"
#include "bench/update/cut_parts.h"
#include "bench/update/figures.h"
#include "platform/modeler_occt/occt_modeler.h"

namespace {

constexpr double kPitch = 30.0;
constexpr double kDiameter = 10.0;
constexpr double kMs = 1e3;

using Inserts = std::vector<vdm_host::ComponentInsert>;

double side(std::size_t count) { return kPitch * std::ceil(std::sqrt(static_cast<double>(count))); }

/// Holes in a square grid on the drawing's plate.
Inserts gridOf(const ComponentDrawing& drawing, std::size_t count) {
  const auto columns = static_cast<std::size_t>(side(count) / kPitch);
  const OdUInt32 top = drawing.topFace();
  Inserts inserts;
  for (std::size_t i = 0; i < count; ++i) {
    const double x = kPitch * (static_cast<double>(i % columns) + 0.5);
    const double y = kPitch * (static_cast<double>(i / columns) + 0.5);
    inserts.push_back({drawing.hole, drawing.at(x, y, top)});
  }
  return inserts;
}

std::vector<OdModelerBodyPtr> toolsFor(const Inserts& inserts) {
  std::vector<OdModelerBodyPtr> tools;
  for (const vdm_host::ComponentInsert& insert : inserts) {
    tools.push_back(pinAt(insert.placement.point, kDiameter));
  }
  return tools;
}

double insertAll(ComponentDrawing& drawing, const Inserts& inserts) {
  vdm_host::ModelEditor editor(drawing.database);
  return secondsOf([&] { (void)insertTogether(editor, inserts); });
}

Figure measureScript(std::size_t count, std::size_t rounds) {
  const std::shared_ptr<OdModeler> whole = odCreateOcctModeler({OdOcctReach::kWhole, {}});
  std::vector<double> ours;
  std::vector<double> peer;
  for (std::size_t round = 0; round < rounds; ++round) {
    ComponentDrawing drawing(side(count), side(count), kDiameter);
    const Inserts inserts = gridOf(drawing, count);
    const OdModelerBodyPtr plate = drawing.plateBody();
    ours.push_back(insertAll(drawing, inserts));
    const std::vector<OdModelerBodyPtr> tools = toolsFor(inserts);
    peer.push_back(secondsOf([&] { (void)cutFrom(*whole, plate, tools); }));
  }
  return {std::to_string(count) + " inserts on one plate", "one cut with all tools, modeller alone",
          kMs * medianOf(ours), kMs * medianOf(peer), "ms"};
}

/// One hole into each of many plates.
Figure measureSolids(std::size_t count, std::size_t rounds) {
  std::vector<double> ours;
  std::vector<double> peer;
  for (std::size_t round = 0; round < rounds; ++round) {
    ComponentDrawing drawing(100.0, 100.0, kDiameter);
    Inserts inserts;
    for (std::size_t i = 0; i < count; ++i) {
      vdm_host::ComponentPlacement place = drawing.at(50.0, 40.0, drawing.topFace());
      if (i != 0) place.solid = drawing.addPlate();
      inserts.push_back({drawing.hole, place});
    }
    const OdModelerBodyPtr plate = drawing.plateBody();
    ours.push_back(insertAll(drawing, inserts));
    const OdModelerBodyPtr tool = pinAt(inserts.front().placement.point, kDiameter);
    peer.push_back(secondsOf([&] {
      for (std::size_t i = 0; i < count; ++i) (void)cutFrom(odModeler(), plate, {tool});
    }));
  }
  return {"one insert into each of " + std::to_string(count) + " solids",
          "the cuts alone, one by one", kMs * medianOf(ours), kMs * medianOf(peer), "ms"};
}

}  // namespace

std::vector<Figure> measureScripts(const FigureOptions& options) {
  std::vector<Figure> figures;
  for (const std::size_t count : options.inserts) {
    figures.push_back(measureScript(count, options.rounds));
  }
  constexpr std::size_t kNumSolids = 100;
  figures.push_back(measureSolids(kNumSolids, options.rounds));
  return figures;
}
