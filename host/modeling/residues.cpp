// Residues: the pieces that components took from a solid or added to it, and healing with them.
#include "host/modeling/residues.h"

#include <algorithm>
#include <utility>

namespace vdm_host {
namespace {

// Nothing left is an answer, not a failure.
OdModelerStatus combine(OdModelerBooleanKind kind, const OdModelerBodyPtr& a,
                        const OdModelerBodyPtr& b, OdModelerBodyPtr& result) {
  OdModelerBodyPtr made;
  OdModelerStatus status = odModeler().boolean(kind, a, {&b, 1}, made, nullptr);
  if (status.code == eDegenerateGeometry) status = {};
  if (status.ok()) result = std::move(made);
  return status;
}

}  // namespace

OdModelerStatus commonOf(const OdModelerBodyPtr& a, const OdModelerBodyPtr& b,
                         OdModelerBodyPtr& result) {
  if (a && b) return combine(OdModelerBooleanKind::kIntersect, a, b, result);
  result = nullptr;
  return {};
}

OdModelerStatus differenceOf(const OdModelerBodyPtr& a, const OdModelerBodyPtr& b,
                             OdModelerBodyPtr& result) {
  if (a && b) return combine(OdModelerBooleanKind::kSubtract, a, b, result);
  result = a;
  return {};
}

OdModelerStatus unionOf(const OdModelerBodyPtr& a, const OdModelerBodyPtr& b,
                        OdModelerBodyPtr& result) {
  if (a && b) return combine(OdModelerBooleanKind::kUnite, a, b, result);
  result = a ? a : b;
  return {};
}

bool overlap(const OdGeExtents3d& a, const OdGeExtents3d& b) {
  return a.isValidExtents() && b.isValidExtents() && !a.isDisjoint(b);
}

const OdModelerBodyPtr& ComponentPieces::pieceOf(ToolKind kind) {
  Piece& piece = m_pieces[static_cast<std::size_t>(kind)];
  if (!piece.read && m_reader != nullptr) piece.body = (*m_reader)(feature, kind);
  piece.read = true;
  return piece.body;
}

void ComponentPieces::setPiece(ToolKind kind, OdModelerBodyPtr body) {
  if (pieceOf(kind) == body) return;
  Piece& piece = m_pieces[static_cast<std::size_t>(kind)];
  piece.body = std::move(body);
  piece.changed = true;
}

ResidueLedger::ResidueLedger(PieceReader reader, ToolMaker toolMaker)
    : m_reader(std::move(reader)), m_toolMaker(std::move(toolMaker)) {}

ComponentPieces& ResidueLedger::add(const OdDbObjectId& feature) {
  return m_components.emplace_back(feature, m_reader ? &m_reader : nullptr);
}

ComponentPieces* ResidueLedger::find(const OdDbObjectId& feature) {
  const auto found = std::ranges::find(m_components, feature, &ComponentPieces::feature);
  return found == m_components.end() ? nullptr : &*found;
}

ComponentPieces& ResidueLedger::component(const OdDbObjectId& feature) {
  if (ComponentPieces* known = find(feature)) return *known;
  return m_components.emplace_back(feature);
}

// The part of the piece that others which stay reach becomes theirs.
OdModelerStatus ResidueLedger::handOver(ComponentPieces& from, ToolKind kind) {
  for (ComponentPieces& other : m_components) {
    if (!from.pieceOf(kind)) return {};
    if (other.heals || !overlap(from.boxOf(kind), other.boxOf(kind))) continue;
    OdModelerBodyPtr tool;
    OdModelerBodyPtr shared;
    OdModelerBodyPtr theirs;
    OdModelerBodyPtr rest;
    OdModelerStatus status = m_toolMaker(other.feature, kind, tool);
    if (status.ok()) status = commonOf(from.pieceOf(kind), tool, shared);
    if (!status.ok()) return status;
    if (!shared) continue;
    status = unionOf(other.pieceOf(kind), shared, theirs);
    if (status.ok()) status = differenceOf(from.pieceOf(kind), shared, rest);
    if (!status.ok()) return status;
    other.setPiece(kind, theirs);
    from.setPiece(kind, rest);
  }
  return {};
}

OdModelerStatus ResidueLedger::loseTo(ToolKind kind, const OdModelerBodyPtr& body,
                                      const OdGeExtents3d& box) {
  for (ComponentPieces& other : m_components) {
    if (!overlap(box, other.boxOf(kind)) || !other.pieceOf(kind)) continue;
    OdModelerBodyPtr rest;
    OdModelerStatus status = differenceOf(other.pieceOf(kind), body, rest);
    if (!status.ok()) return status;
    other.setPiece(kind, rest);
  }
  return {};
}

OdModelerStatus ResidueLedger::heal(OdDb3dSolid& solid) {
  std::array<std::vector<OdModelerBodyPtr>, kToolKindCount> given;
  for (const ToolKind kind : {ToolKind::kCut, ToolKind::kFill}) {
    std::vector<OdModelerBodyPtr>& pieces = given[static_cast<std::size_t>(kind)];
    for (ComponentPieces& component : m_components) {
      if (!component.heals || !component.pieceOf(kind)) continue;
      if (OdModelerStatus status = handOver(component, kind); !status.ok()) return status;
      if (component.pieceOf(kind)) pieces.push_back(component.pieceOf(kind));
    }
  }
  const auto& [cuts, fills] = given;
  if (!cuts.empty()) {
    OdModelerStatus status = solid.booleanOper(OdModelerBooleanKind::kUnite, cuts);
    if (!status.ok()) return status;
  }
  if (!fills.empty()) {
    OdModelerStatus status = solid.booleanOper(OdModelerBooleanKind::kSubtract, fills);
    if (!status.ok()) return status;
  }
  for (ComponentPieces& component : m_components) {
    if (!component.heals) continue;
    const OdModelerBodyPtr fill = component.pieceOf(ToolKind::kFill);
    const OdGeExtents3d box = component.boxOf(ToolKind::kFill);
    for (const ToolKind kind : {ToolKind::kCut, ToolKind::kFill}) {
      component.setPiece(kind, nullptr);
      component.boxOf(kind) = OdGeExtents3d();
    }
    if (!fill) continue;
    if (OdModelerStatus status = loseTo(ToolKind::kCut, fill, box); !status.ok()) return status;
  }
  return {};
}

OdModelerStatus ResidueLedger::takeCuts(const OdModelerBodyPtr& before,
                                        std::span<const OdDbObjectId> features,
                                        std::span<const OdModelerBodyPtr> tools) {
  for (std::size_t i = 0; i < tools.size(); ++i) {
    const OdGeExtents3d box = tools[i]->extents();
    OdModelerBodyPtr piece;
    OdModelerStatus status = commonOf(before, tools[i], piece);
    for (std::size_t j = 0; j < i && status.ok() && piece; ++j) {
      if (!overlap(box, tools[j]->extents())) continue;
      OdModelerBodyPtr rest;
      status = differenceOf(piece, tools[j], rest);
      piece = rest;
    }
    if (!status.ok()) return status;
    ComponentPieces& owner = component(features[i]);
    OdModelerBodyPtr all;
    status = unionOf(owner.pieceOf(ToolKind::kCut), piece, all);
    if (!status.ok()) return status;
    owner.setPiece(ToolKind::kCut, all);
    owner.boxOf(ToolKind::kCut).addExt(box);
    owner.heals = false;
  }
  return {};
}

// What the tool adds to the part: not what the solid has, nor what cuts or earlier tools took.
OdModelerStatus ResidueLedger::addedBy(const OdModelerBodyPtr& before, const OdModelerBodyPtr& tool,
                                       std::span<const OdModelerBodyPtr> earlier,
                                       OdModelerBodyPtr& added) {
  const OdGeExtents3d box = tool->extents();
  OdModelerStatus status = differenceOf(tool, before, added);
  const auto lessen = [&](const OdModelerBodyPtr& by) {
    OdModelerBodyPtr rest;
    if (status.ok()) status = differenceOf(added, by, rest);
    if (status.ok()) added = rest;
  };
  for (ComponentPieces& cut : m_components) {
    if (overlap(box, cut.boxOf(ToolKind::kCut))) lessen(cut.pieceOf(ToolKind::kCut));
  }
  for (const OdModelerBodyPtr& other : earlier) {
    if (overlap(box, other->extents())) lessen(other);
  }
  return status;
}

// Cuts go through what is added: that part is theirs, and the tool loses it.
OdModelerStatus ResidueLedger::keepCutsOpen(OdDb3dSolid& tool, const OdModelerBodyPtr& added) {
  const OdGeExtents3d box = tool.body()->extents();
  OdModelerBodyPtr unclaimed = added;
  for (ComponentPieces& cut : m_components) {
    if (!overlap(box, cut.boxOf(ToolKind::kCut))) continue;
    OdModelerBodyPtr cutter;
    OdModelerBodyPtr shared;
    OdModelerBodyPtr all;
    OdModelerBodyPtr rest;
    OdModelerStatus status = m_toolMaker(cut.feature, ToolKind::kCut, cutter);
    if (status.ok()) status = commonOf(unclaimed, cutter, shared);
    if (status.ok()) status = unionOf(cut.pieceOf(ToolKind::kCut), shared, all);
    if (status.ok()) status = differenceOf(unclaimed, shared, rest);
    if (!status.ok()) return status;
    cut.setPiece(ToolKind::kCut, all);
    unclaimed = rest;
    if (cutter) status = tool.booleanOper(OdModelerBooleanKind::kSubtract, {&cutter, 1});
    if (status.code == eDegenerateGeometry) {
      tool.setBody(nullptr);
      return {};
    }
    if (!status.ok()) return status;
  }
  return {};
}

OdModelerStatus ResidueLedger::takeFills(const OdModelerBodyPtr& before,
                                         std::span<const OdDbObjectId> features,
                                         std::span<const OdDb3dSolidPtr> tools) {
  std::vector<OdModelerBodyPtr> bodies;
  for (const OdDb3dSolidPtr& tool : tools) bodies.push_back(tool->body());
  for (std::size_t i = 0; i < tools.size(); ++i) {
    OdModelerBodyPtr added;
    OdModelerBodyPtr all;
    OdModelerStatus status = addedBy(before, bodies[i], std::span(bodies).first(i), added);
    if (status.ok()) status = keepCutsOpen(*tools[i], added);
    ComponentPieces& owner = component(features[i]);
    if (status.ok()) status = unionOf(owner.pieceOf(ToolKind::kFill), added, all);
    if (!status.ok()) return status;
    owner.setPiece(ToolKind::kFill, all);
    owner.boxOf(ToolKind::kFill).addExt(bodies[i]->extents());
    owner.heals = false;
  }
  return {};
}

OdModelerStatus ResidueLedger::exclude(const OdModelerBodyPtr& tool) {
  const OdGeExtents3d box = tool->extents();
  OdModelerStatus status = loseTo(ToolKind::kCut, tool, box);
  return status.ok() ? loseTo(ToolKind::kFill, tool, box) : status;
}

}  // namespace vdm_host
