// Residues: the pieces that components took from a solid or added to it, and healing with them.
#pragma once

#include <array>
#include <functional>
#include <span>
#include <vector>

#include "platform/base/non_copyable.h"
#include "platform/filer/object_id.h"
#include "platform/ge/extents3d.h"
#include "platform/modeler/db_3d_solid.h"

namespace vdm_host {

/// What a component's tool does to the solid, and which of its residues is meant.
enum class ToolKind : std::size_t { kCut = 0, kFill = 1 };
inline constexpr std::size_t kToolKindCount = 2;
inline constexpr std::array<ToolKind, kToolKindCount> kToolKinds = {ToolKind::kCut,
                                                                    ToolKind::kFill};

/// Reads the stored residue of a component; null when it has none.
using PieceReader = std::function<OdModelerBodyPtr(const OdDbObjectId& feature, ToolKind)>;

/// One component at one solid. Null bodies and invalid boxes: none.
class ComponentPieces {
 public:
  /// With a reader the pieces are those that are stored, read when they are first needed.
  explicit ComponentPieces(const OdDbObjectId& ofFeature, const PieceReader* reader = nullptr)
      : feature(ofFeature), m_reader(reader) {}

  OdDbObjectId feature;
  /// Boxes of the tools as they were last applied, in the coordinates of the solid's block.
  std::array<OdGeExtents3d, kToolKindCount> box;
  bool heals = false;  ///< its pieces are given back

  [[nodiscard]] const OdModelerBodyPtr& pieceOf(ToolKind kind);
  [[nodiscard]] bool hasPiece(ToolKind kind) { return pieceOf(kind) != nullptr; }
  OdGeExtents3d& boxOf(ToolKind kind) { return box[static_cast<std::size_t>(kind)]; }
  /// Null takes the piece away.
  void setPiece(ToolKind kind, OdModelerBodyPtr body);
  /// The piece differs from what is stored.
  [[nodiscard]] bool isChanged(ToolKind kind) const {
    return m_pieces[static_cast<std::size_t>(kind)].changed;
  }

 private:
  struct Piece {
    OdModelerBodyPtr body;
    bool read = false;
    bool changed = false;
  };
  std::array<Piece, kToolKindCount> m_pieces;
  const PieceReader* m_reader;
};

/// The pieces of all components of one solid. A solid is (G + fills) - cuts, with G the part
/// without components: the order in which components came does not matter.
///
/// Laws, with B the present solid, C a cut tool and F a fill tool as last applied:
///   1. the piece of a cut is what B + all cut pieces has within C and no other cut's piece has;
///      the piece of a fill is what F has outside of G and no other fill's piece has. Pieces of one
///      kind are disjoint;
///   2. healing gives the pieces of cuts back and takes the pieces of fills away; a component that
///      meets one that heals, heals with it and is done anew (ComponentHandler::widen);
///   3. fills are added while no cut is open where they are, and cuts are made after them;
///   4. what others do to the solid is final there: pieces lose what the other tool reaches.
///
/// All operations return the modeller's status; after a failure the pieces are of no use, and the
/// caller rolls back.
class ResidueLedger : OdNonCopyable {
 public:
  ResidueLedger() = default;
  explicit ResidueLedger(PieceReader reader);

  /// A component that is at the solid already; its boxes are to be filled in.
  ComponentPieces& add(const OdDbObjectId& feature);
  [[nodiscard]] std::vector<ComponentPieces>& components() { return m_components; }
  /// Null when the feature has none.
  [[nodiscard]] ComponentPieces* find(const OdDbObjectId& feature);

  /// Law 2 for all components that heal; these have no pieces and no boxes afterwards.
  OdStatus heal(OdDb3dSolid& solid);
  /// Takes in the pieces of new cuts before they are made; `tools` belong to `features`. A tool
  /// that takes nothing away gives no piece.
  OdStatus takeCuts(const OdModelerBodyPtr& before, std::span<const OdDbObjectId> features,
                    std::span<const OdModelerBodyPtr> tools);
  /// The same for fills. No cut of a component is open where they are.
  OdStatus takeFills(const OdModelerBodyPtr& before, std::span<const OdDbObjectId> features,
                     std::span<const OdModelerBodyPtr> tools);
  /// Law 4 for a tool of no component.
  OdStatus exclude(const OdModelerBodyPtr& tool);

 private:
  OdStatus loseTo(ToolKind kind, const OdModelerBodyPtr& body, const OdGeExtents3d& box);
  static OdStatus lessen(OdModelerBodyPtr& piece, const OdGeExtents3d& box,
                         std::span<const OdModelerBodyPtr> earlier);
  static OdStatus takeLoners(const OdModelerBodyPtr& before,
                             std::span<const OdModelerBodyPtr> loners,
                             std::vector<OdModelerBodyPtr>& pieces);
  OdStatus claim(const OdDbObjectId& feature, ToolKind kind, const OdModelerBody& tool,
                 const OdModelerBodyPtr& piece);
  ComponentPieces& component(const OdDbObjectId& feature);

  PieceReader m_reader;
  std::vector<ComponentPieces> m_components;
};

/// a and b in common, a without b, a and b together. Null means an empty body, as argument and as
/// result; an empty result is no failure.
OdStatus commonOf(const OdModelerBodyPtr& a, const OdModelerBodyPtr& b, OdModelerBodyPtr& result);
OdStatus differenceOf(const OdModelerBodyPtr& a, const OdModelerBodyPtr& b,
                      OdModelerBodyPtr& result);
OdStatus unionOf(const OdModelerBodyPtr& a, const OdModelerBodyPtr& b, OdModelerBodyPtr& result);
/// Whether two boxes have a point in common; false when one is invalid.
[[nodiscard]] bool overlap(const OdGeExtents3d& a, const OdGeExtents3d& b);

}  // namespace vdm_host
