// One hole moved among many: what the pass costs beside the modeller, and what the edit costs
// beside healing and cutting that one hole with the modeller alone, which looks at the whole body.
#include <algorithm>
#include <cmath>
#include <stdexcept>

#include "bench/naming/made_body.h"
#include "bench/update/component_drawing.h"
#include "bench/update/figures.h"
#include "platform/modeler/modeler.h"
#include "platform/modeler_occt/occt_modeler.h"

namespace {

constexpr double kPitch = 30.0;
constexpr double kDiameter = 10.0;

using naming_bench::made;

OdModelerBodyPtr boolean(OdModeler& modeler, OdModelerBooleanKind kind,
                         const OdModelerBodyPtr& body, const OdModelerBodyPtr& tool) {
  OdModelerHistory history;
  return made([&](auto& result) {
    return modeler.boolean(kind, body, {&tool, 1}, result, &history);
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

struct Move {
  OdModelerBodyPtr before;
  OdGePoint3d from;
  OdGePoint3d to;
};

/// The peers: the hole healed and a new one cut, on the same body.
double pieceAndCut(OdModeler& modeler, const Move& move) {
  const OdModelerBodyPtr piece = cylinderAt(move.from, 0.0, 10.0);
  const OdModelerBodyPtr tool = cylinderAt(move.to, -1.0, 12.0);
  return secondsOf([&] {
    const auto healed = boolean(modeler, OdModelerBooleanKind::kUnite, move.before, piece);
    (void)boolean(modeler, OdModelerBooleanKind::kSubtract, healed, tool);
  });
}

double removeAndCut(OdModeler& modeler, const Move& move) {
  const OdUInt32 wall = wallAt(*move.before, move.from);
  const OdModelerBodyPtr tool = cylinderAt(move.to, -1.0, 12.0);
  return secondsOf([&] {
    OdModelerHistory history;
    const auto healed = made([&](auto& result) {
      return modeler.removeFaces(move.before, {&wall, 1}, result, &history);
    });
    (void)boolean(modeler, OdModelerBooleanKind::kSubtract, healed, tool);
  });
}

/// A plate with many holes, each of them an insert.
class Plate {
 public:
  explicit Plate(std::size_t holes)
      : m_columns(static_cast<std::size_t>(std::ceil(std::sqrt(static_cast<double>(holes))))),
        m_drawing(kPitch * static_cast<double>(m_columns), kPitch * static_cast<double>(m_columns),
                  kDiameter),
        m_editor(m_drawing.database) {
    const OdUInt32 top = m_drawing.topFace();
    std::vector<vdm_host::ComponentInsert> inserts;
    for (std::size_t i = 0; i < holes; ++i) {
      m_places.emplace_back(kPitch * (static_cast<double>(i % m_columns) + 0.5),
                            kPitch * (static_cast<double>(i / m_columns) + 0.5), 10.0);
      inserts.push_back({m_drawing.hole, m_drawing.at(m_places[i].x, m_places[i].y, top)});
    }
    for (const auto& result : insertTogether(m_editor, inserts)) {
      m_inserts.push_back(result.created);
    }
  }

  /// Moves one of the holes; gives the seconds of the edit and its report.
  double move(std::size_t round, const OdGeVector3d& by, vdm_host::UpdateReport& report,
              Move& what) {
    const std::size_t chosen = (37 * round + 11) % m_inserts.size();
    what = {m_drawing.plateBody(), m_places[chosen], m_places[chosen] + by};
    m_places[chosen] += by;
    return secondsOf([&] {
      const auto result = m_editor.moveObject(m_inserts[chosen], by);
      require(result);
      report = result.report;
    });
  }

 private:
  std::size_t m_columns;
  ComponentDrawing m_drawing;
  vdm_host::ModelEditor m_editor;
  std::vector<OdDbObjectId> m_inserts;
  std::vector<OdGePoint3d> m_places;
};

void measureMovesAmong(std::size_t holes, const FigureOptions& options,
                       std::vector<Figure>& figures) {
  constexpr std::size_t kPeerRounds = 5;
  constexpr double kMs = 1e3;
  Plate plate(holes);
  std::vector<Move> moves;
  std::vector<double> passes;
  std::vector<double> modeler;
  std::vector<double> edits;
  for (std::size_t round = 0; round < options.rounds; ++round) {
    // There and back, so that no hole comes near another one.
    const double step = (round / holes) % 2 == 0 ? 1.0 : -1.0;
    vdm_host::UpdateReport report;
    edits.push_back(plate.move(round, {4.0 * step, 3.0 * step, 0.0}, report, moves.emplace_back()));
    passes.push_back(report.passSeconds - report.modelerSeconds);
    modeler.push_back(report.modelerSeconds);
  }
  const std::string name = "one hole of " + std::to_string(holes) + " moved, ";
  figures.push_back({name + "the pass but for the modeller", "the modeller within that pass",
                     kMs * medianOf(passes), kMs * medianOf(modeler), "ms"});
  if (!options.peers) {
    figures.push_back({name + "the whole edit", "", kMs * medianOf(edits), 0.0, "ms"});
    return;
  }
  // Apart from the edits: in between they would drive the drawing out of the caches.
  const auto whole = odCreateOcctModeler({OdOcctReach::kWhole, {}});
  std::vector<double> pieces;
  std::vector<double> removals;
  for (std::size_t i = 0; i < std::min(moves.size(), kPeerRounds); ++i) {
    pieces.push_back(pieceAndCut(*whole, moves[i]));
    removals.push_back(removeAndCut(*whole, moves[i]));
  }
  figures.push_back({name + "the whole edit", "piece united, tool cut (modeller alone)",
                     kMs * medianOf(edits), kMs * medianOf(pieces), "ms"});
  figures.push_back({name + "the whole edit", "faces removed, tool cut (modeller alone)",
                     kMs * medianOf(edits), kMs * medianOf(removals), "ms"});
}

}  // namespace

std::vector<Figure> measureMoves(const FigureOptions& options) {
  std::vector<Figure> figures;
  for (const std::size_t holes : options.holes) measureMovesAmong(holes, options, figures);
  return figures;
}
