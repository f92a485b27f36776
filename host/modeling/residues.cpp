// Residues: the pieces that components took from a solid or added to it, and healing with them.
//
// A tool that cuts removes from the solid what both have in common, and that common part, the
// residue, is all that is needed to undo the cut: united with the solid it restores every edge,
// notch and imported face, since it was bounded by them. The same holds for fills with the
// difference. Two things make it hold for many components:
//
//   Pieces of one kind are disjoint. Where tools overlap, the part in common belongs to the first
//   one that took it; the others take what is left (lessen). So giving one piece back never returns
//   material that another cut still takes, and giving all back returns everything once.
//
//   Only whole openings are healed. A piece that touches the wall of an open cut would leave a seam
//   there; the caller heals the touching components together (ComponentHandler::widen).
//
// Invariant: the volume of all cut pieces is what the cuts took. Boxes of tools keep components
// that cannot meet out of every boolean, so an edit costs booleans for the components near it and a
// box test for each pair of tools. Tools that meet no other are taken in one boolean (takeLoners).
#include "host/modeling/residues.h"

#include <algorithm>
#include <utility>

#include "host/modeling/box_index.h"

namespace vdm_host {
namespace {

// An empty result is an answer, not a failure: `result` is null then.
OdStatus combine(OdModelerBooleanKind kind, const OdModelerBodyPtr& a, const OdModelerBodyPtr& b,
                 OdModelerBodyPtr& result) {
  OdModelerBodyPtr made;
  OdStatus status = odModeler().boolean(kind, a, {&b, 1}, made, nullptr);
  if (status.code == eDegenerateGeometry) status = {};
  if (status.ok()) result = std::move(made);
  return status;
}

BoxIndex boxesOf(std::span<const OdModelerBodyPtr> bodies) {
  BoxIndex boxes;
  for (std::size_t i = 0; i < bodies.size(); ++i) boxes.add(bodies[i]->extents(), i);
  return boxes;
}

}  // namespace

OdStatus commonOf(const OdModelerBodyPtr& a, const OdModelerBodyPtr& b, OdModelerBodyPtr& result) {
  result = nullptr;
  if (!a || !b) return {};
  OdStatus status = combine(OdModelerBooleanKind::kIntersect, a, b, result);
  if (status.ok()) return status;
  // The same by another way, for which the modeller may not fail.
  OdModelerBodyPtr rest;
  const OdStatus again = combine(OdModelerBooleanKind::kSubtract, b, a, rest);
  if (!again.ok()) return status;
  if (!rest) {
    result = b;
    return {};
  }
  return combine(OdModelerBooleanKind::kSubtract, b, rest, result);
}

OdStatus differenceOf(const OdModelerBodyPtr& a, const OdModelerBodyPtr& b,
                      OdModelerBodyPtr& result) {
  if (a && b) return combine(OdModelerBooleanKind::kSubtract, a, b, result);
  result = a;
  return {};
}

OdStatus unionOf(const OdModelerBodyPtr& a, const OdModelerBodyPtr& b, OdModelerBodyPtr& result) {
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

ResidueLedger::ResidueLedger(PieceReader reader) : m_reader(std::move(reader)) {}

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

OdStatus ResidueLedger::loseTo(ToolKind kind, const OdModelerBodyPtr& body,
                               const OdGeExtents3d& box) {
  for (ComponentPieces& other : m_components) {
    if (!overlap(box, other.boxOf(kind)) || !other.pieceOf(kind)) continue;
    OdModelerBodyPtr rest;
    OdStatus status = differenceOf(other.pieceOf(kind), body, rest);
    if (!status.ok()) return status;
    other.setPiece(kind, rest);
  }
  return {};
}

OdStatus ResidueLedger::heal(OdDb3dSolid& solid) {
  for (const ToolKind kind : {ToolKind::kCut, ToolKind::kFill}) {
    std::vector<OdModelerBodyPtr> pieces;
    for (ComponentPieces& component : m_components) {
      if (!component.heals) continue;
      if (component.hasPiece(kind)) pieces.push_back(component.pieceOf(kind));
      component.setPiece(kind, nullptr);
      component.boxOf(kind) = OdGeExtents3d();
    }
    if (pieces.empty()) continue;
    const OdModelerBooleanKind undo =
        kind == ToolKind::kCut ? OdModelerBooleanKind::kUnite : OdModelerBooleanKind::kSubtract;
    if (OdStatus status = solid.booleanOper(undo, pieces); !status.ok()) return status;
  }
  return {};
}

// Takes off what earlier tools have taken.
OdStatus ResidueLedger::lessen(OdModelerBodyPtr& piece, const OdGeExtents3d& box,
                               std::span<const OdModelerBodyPtr> earlier) {
  for (const OdModelerBodyPtr& tool : earlier) {
    if (!piece || !overlap(box, tool->extents())) continue;
    OdModelerBodyPtr rest;
    OdStatus status = differenceOf(piece, tool, rest);
    if (!status.ok()) return status;
    piece = rest;
  }
  return {};
}

OdStatus ResidueLedger::claim(const OdDbObjectId& feature, ToolKind kind, const OdModelerBody& tool,
                              const OdModelerBodyPtr& piece) {
  ComponentPieces& owner = component(feature);
  OdModelerBodyPtr all;
  OdStatus status = unionOf(owner.pieceOf(kind), piece, all);
  if (!status.ok()) return status;
  owner.setPiece(kind, all);
  owner.boxOf(kind).addExt(tool.extents());
  owner.heals = false;
  return {};
}

// Takes the pieces of tools whose boxes do not meet. One operation intersects the solid with all of
// them, and each solid of the result belongs to the tool in whose box it lies: since boxes do not
// meet, that is one tool only. A tool may leave several solids, which become one compound. Where
// the modeller fails at the whole, each tool is intersected alone.
OdStatus ResidueLedger::takeLoners(const OdModelerBodyPtr& before,
                                   std::span<const OdModelerBodyPtr> loners,
                                   std::vector<OdModelerBodyPtr>& pieces) {
  pieces.assign(loners.size(), nullptr);
  if (loners.empty()) return {};
  if (loners.size() == 1) return commonOf(before, loners.front(), pieces.front());
  OdModelerBodyPtr all;
  OdStatus status =
      odModeler().boolean(OdModelerBooleanKind::kIntersect, before, loners, all, nullptr);
  if (status.code == eDegenerateGeometry) return {};  // no tool takes anything
  if (!status.ok()) {
    for (std::size_t i = 0; i < loners.size(); ++i) {
      status = commonOf(before, loners[i], pieces[i]);
      if (!status.ok()) return status;
    }
    return {};
  }
  const BoxIndex boxes = boxesOf(loners);
  std::vector<std::vector<OdModelerBodyPtr>> parts(loners.size());
  for (const OdModelerBodyPtr& part : all->solids()) {
    const std::vector<std::size_t> owners = boxes.meeting(part->extents());
    if (!owners.empty()) parts[owners.front()].push_back(part);
  }
  for (std::size_t i = 0; i < loners.size() && status.ok(); ++i) {
    if (parts[i].size() == 1) {
      pieces[i] = parts[i].front();
    } else if (parts[i].size() > 1) {
      status = odModeler().compound(parts[i], pieces[i]);
    }
  }
  return status;
}

OdStatus ResidueLedger::takeCuts(const OdModelerBodyPtr& before,
                                 std::span<const OdDbObjectId> features,
                                 std::span<const OdModelerBodyPtr> tools) {
  // Tools that meet no other, and where they are in the list.
  std::vector<std::size_t> apart;
  std::vector<OdModelerBodyPtr> loners;
  const BoxIndex boxes = boxesOf(tools);
  for (std::size_t i = 0; i < tools.size(); ++i) {
    if (boxes.meeting(tools[i]->extents()).size() > 1) continue;
    apart.push_back(i);
    loners.push_back(tools[i]);
  }
  std::vector<OdModelerBodyPtr> pieces;
  OdStatus status = takeLoners(before, loners, pieces);
  for (std::size_t i = 0, next = 0; i < tools.size() && status.ok(); ++i) {
    OdModelerBodyPtr piece;
    if (next < apart.size() && apart[next] == i) {
      piece = pieces[next++];
    } else {
      // Of what tools share the first one in the list has taken its part.
      status = commonOf(before, tools[i], piece);
      if (status.ok()) status = lessen(piece, tools[i]->extents(), tools.first(i));
    }
    if (status.ok()) status = claim(features[i], ToolKind::kCut, *tools[i], piece);
  }
  return status;
}

OdStatus ResidueLedger::takeFills(const OdModelerBodyPtr& before,
                                  std::span<const OdDbObjectId> features,
                                  std::span<const OdModelerBodyPtr> tools) {
  for (std::size_t i = 0; i < tools.size(); ++i) {
    OdModelerBodyPtr piece;
    OdStatus status = differenceOf(tools[i], before, piece);
    if (status.ok()) status = lessen(piece, tools[i]->extents(), tools.first(i));
    if (status.ok()) status = claim(features[i], ToolKind::kFill, *tools[i], piece);
    if (!status.ok()) return status;
  }
  return {};
}

OdStatus ResidueLedger::exclude(const OdModelerBodyPtr& tool) {
  const OdGeExtents3d box = tool->extents();
  OdStatus status = loseTo(ToolKind::kCut, tool, box);
  return status.ok() ? loseTo(ToolKind::kFill, tool, box) : status;
}

}  // namespace vdm_host
