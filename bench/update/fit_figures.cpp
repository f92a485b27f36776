// What it costs to decide how far a tool reaches at its place, beside the cut.
#include <stdexcept>

#include "bench/update/cut_parts.h"
#include "bench/update/figures.h"
#include "host/modeling/tool_fit.h"
#include "platform/modeler/modeler.h"

namespace {

constexpr double kMs = 1e3;
constexpr double kDiameter = 1.0;

void require(const OdStatus& status) {
  if (!status.ok()) throw std::runtime_error(std::string(status.text.utf8()));
}

/// A hole through the part from the middle of its box, `above` its top: in the open, or in a slit
/// whose upper wall the tool must not reach.
vdm_host::ToolPlace placeOn(const OdModelerBody& part, double z) {
  const OdGeExtents3d box = part.extents();
  const OdGePoint3d middle = box.minPoint() + 0.5 * box.diagonal();
  vdm_host::ToolPlace tool;
  tool.form.width = kDiameter;
  tool.place = OdGeMatrix3d::translation({middle.x, middle.y, z});
  tool.base = {vdm_host::BaseKind::kPlane, {middle.x, middle.y, z}, OdGeVector3d::kZAxis};
  return tool;
}

Figure measurePlace(const std::string& name, OdModeler& modeler, const OdModelerBodyPtr& part,
                    double z, std::size_t rounds) {
  const vdm_host::ToolPlace tool = placeOn(*part, z);
  std::vector<double> fit;
  std::vector<double> cut;
  for (std::size_t round = 0; round < rounds; ++round) {
    vdm_host::ToolReach reach;
    fit.push_back(secondsOf([&] { require(vdm_host::fitReach(part, tool, reach)); }));
    OdModelerBodyPtr standing;
    OdModelerBodyPtr placed;
    require(vdm_host::makeTool(tool.form, reach, standing));
    require(standing->transformed(tool.place, placed));
    cut.push_back(secondsOf([&] { (void)cutFrom(modeler, part, {placed}); }));
  }
  return {"tool fitted " + name + ", " + std::to_string(part->numFaces()) + " faces", "the cut",
          kMs * medianOf(fit), kMs * medianOf(cut), "ms"};
}

}  // namespace

std::vector<Figure> measureFits(const FigureOptions& options) {
  OdModeler& modeler = odModeler();
  std::vector<Figure> figures;
  for (const std::size_t faces : {300U, 635U}) {
    const OdModelerBodyPtr plate = plateOf(modeler, faces);
    const OdGeExtents3d box = plate->extents();
    const double height = box.maxPoint().z - box.minPoint().z;
    figures.push_back(
        measurePlace("in the open", modeler, plate, box.maxPoint().z, options.rounds));
    // A slit across the plate, lower than the tool would reach above its floor.
    OdModelerBodyPtr bar;
    OdModelerBodyPtr slit;
    const double gap = 0.1 * kDiameter;
    require(modeler.box(4.0 * kDiameter, 2.0 * box.diagonal().y, gap, bar));
    const OdGePoint3d middle = box.minPoint() + 0.5 * box.diagonal();
    const double floor = box.minPoint().z + 0.5 * height;
    require(bar->transformed(
        OdGeMatrix3d::translation({middle.x - 2.0 * kDiameter, box.minPoint().y - height, floor}),
        slit));
    figures.push_back(
        measurePlace("in a slit", modeler, cutFrom(modeler, plate, {slit}), floor, options.rounds));
  }
  return figures;
}
