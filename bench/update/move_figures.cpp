// One hole moved among a hundred: what the pass costs beside the modeller, and what the edit costs
// beside healing and cutting that one hole with the modeller alone.
#include <array>
#include <stdexcept>

#include "bench/naming/made_body.h"
#include "bench/update/component_drawing.h"
#include "bench/update/figures.h"
#include "platform/modeler/modeler.h"

namespace {

constexpr std::size_t kColumns = 10;
constexpr double kPitch = 30.0;
constexpr double kDiameter = 10.0;

using naming_bench::made;

OdModelerBodyPtr boolean(OdModelerBooleanKind kind, const OdModelerBodyPtr& body,
                         const OdModelerBodyPtr& tool) {
  OdModelerHistory history;
  return made([&](auto& result) {
    return odModeler().boolean(kind, body, {&tool, 1}, result, &history);
  });
}

OdModelerBodyPtr cylinderAt(const OdGePoint3d& point, double z, double height) {
  const OdModelerBodyPtr upright =
      made([&](auto& result) { return odModeler().cylinder(kDiameter / 2.0, height, result); });
  return made([&](auto& result) {
    return upright->transformed(OdGeMatrix3d::translation({point.x, point.y, z}), result);
  });
}

OdUInt32 wallAt(const OdModelerBody& body, const OdGePoint3d& point) {
  for (OdUInt32 i = 1; i <= body.numFaces(); ++i) {
    const OdModelerFace& face = body.face(i);
    const bool onAxis =
        std::abs(face.origin.x - point.x) < 1e-6 && std::abs(face.origin.y - point.y) < 1e-6;
    if (face.kind == OdModelerSurfaceKind::kCylinder && onAxis) return i;
  }
  throw std::runtime_error("the plate has no hole at the point");
}

void require(const vdm_host::EditResult& result) {
  if (!result.ok()) throw std::runtime_error(std::string(result.status.text.utf8()));
}

/// The peers: the hole at `from` healed and a new one cut at `to`, on the same body.
double pieceAndCut(const OdModelerBodyPtr& body, const OdGePoint3d& from, const OdGePoint3d& to) {
  const OdModelerBodyPtr piece = cylinderAt(from, 0.0, 10.0);
  const OdModelerBodyPtr tool = cylinderAt(to, -1.0, 12.0);
  return secondsOf([&] {
    const auto healed = boolean(OdModelerBooleanKind::kUnite, body, piece);
    (void)boolean(OdModelerBooleanKind::kSubtract, healed, tool);
  });
}

double removeAndCut(const OdModelerBodyPtr& body, const OdGePoint3d& from, const OdGePoint3d& to) {
  const OdUInt32 wall = wallAt(*body, from);
  const OdModelerBodyPtr tool = cylinderAt(to, -1.0, 12.0);
  return secondsOf([&] {
    OdModelerHistory history;
    const auto healed = made([&](auto& result) {
      return odModeler().removeFaces(body, {&wall, 1}, result, &history);
    });
    (void)boolean(OdModelerBooleanKind::kSubtract, healed, tool);
  });
}

}  // namespace

std::vector<Figure> measureMoves(const FigureOptions& options) {
  ComponentDrawing drawing(kPitch * kColumns, kPitch * kColumns, kDiameter);
  vdm_host::ModelEditor editor(drawing.database);
  std::vector<OdDbObjectId> inserts;
  std::vector<OdGePoint3d> places;
  for (std::size_t i = 0; i < kColumns * kColumns; ++i) {
    places.emplace_back(kPitch * (static_cast<double>(i % kColumns) + 0.5),
                        kPitch * (static_cast<double>(i / kColumns) + 0.5), 10.0);
    const auto result = editor.insertComponent(
        drawing.hole, drawing.at(places.back().x, places.back().y, drawing.topFace()));
    require(result);
    inserts.push_back(result.created);
  }

  struct Move {
    OdModelerBodyPtr before;
    OdGePoint3d from;
    OdGePoint3d to;
  };
  std::vector<Move> moves;
  std::vector<double> passes;
  std::vector<double> modeler;
  std::vector<double> edits;
  const OdGeVector3d by(4.0, 3.0, 0.0);
  for (std::size_t round = 0; round < options.rounds; ++round) {
    const std::size_t chosen = (37 * round + 11) % inserts.size();
    moves.push_back({drawing.plateBody(), places[chosen], places[chosen] + by});
    places[chosen] += by;
    edits.push_back(secondsOf([&] {
      const auto result = editor.moveObject(inserts[chosen], by);
      require(result);
      passes.push_back(result.report.passSeconds - result.report.modelerSeconds);
      modeler.push_back(result.report.modelerSeconds);
    }));
  }
  // Apart from the edits: in between they would drive the drawing out of the caches.
  std::vector<double> pieces;
  std::vector<double> removals;
  for (const Move& move : moves) {
    pieces.push_back(pieceAndCut(move.before, move.from, move.to));
    removals.push_back(removeAndCut(move.before, move.from, move.to));
  }
  constexpr double kMs = 1e3;
  return {{"one hole of 100 moved, the pass but for the modeller", "the modeller within that pass",
           kMs * medianOf(passes), kMs * medianOf(modeler), "ms"},
          {"one hole of 100 moved, the whole edit", "piece united, tool cut (modeller alone)",
           kMs * medianOf(edits), kMs * medianOf(pieces), "ms"},
          {"one hole of 100 moved, the whole edit", "faces removed, tool cut (modeller alone)",
           kMs * medianOf(edits), kMs * medianOf(removals), "ms"}};
}
