// ModelTruth: what a model has to look like, computed from the edits alone.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "platform/base/handle.h"
#include "platform/ge/matrix3d.h"
#include "platform/modeler/body.h"

/// A component's block: its tools in its own coordinates, cutting ones first, as their faces are
/// numbered through.
struct TruthBlock {
  OdDbHandle handle;
  std::vector<OdModelerBodyPtr> cuts;
  std::vector<OdModelerBodyPtr> fills;

  /// The body that holds the face of a number; the number becomes that within the body.
  [[nodiscard]] OdModelerBodyPtr toolOf(OdUInt32& face) const;
};

struct TruthSolid {
  OdDbHandle handle;
  OdModelerBodyPtr base;                 ///< where `frame` is the identity
  std::vector<OdModelerBodyPtr> drills;  ///< by hand, in the same coordinates
  OdGeMatrix3d frame;
  double top = 0.0;  ///< z of the face on which components are put
};

/// The surface that a face lies in: a face of the base, of a tool of an insert, or of a drill.
struct TruthFace {
  enum class Of { kBase, kInsert, kDrill };
  Of of = Of::kBase;
  std::size_t owner = 0;  ///< number of the insert or drill
  OdUInt32 face = 0;      ///< of the base, drill, or all tools of the block

  friend bool operator==(const TruthFace&, const TruthFace&) = default;
};

struct TruthInsert {
  OdDbHandle insert;
  OdDbHandle feature;
  std::size_t solid = 0;
  std::size_t block = 0;
  OdGeMatrix3d place;             ///< in the frame of the solid
  std::optional<TruthFace> base;  ///< on which it stands; nothing when that is not known
  bool isSuppressed = false;
  bool isErased = false;
};

/// A reference of the user to the subentity at which these faces meet, to a face itself for one.
struct TruthReference {
  OdDbHandle feature;  ///< that gives it its name
  std::size_t solid = 0;
  OdModelerSubentType type = OdModelerSubentType::kFace;
  std::vector<TruthFace> faces;
};

/// A plain value: one for each step of undo.
struct ModelTruth {
  std::vector<TruthBlock> blocks;
  std::vector<TruthSolid> solids;
  std::vector<TruthInsert> inserts;
  std::vector<TruthReference> references;

  [[nodiscard]] OdGeMatrix3d worldOf(const TruthInsert& insert) const {
    return solids[insert.solid].frame * insert.place;
  }
  /// Whether a face of the solid's present body lies in a surface, where that is now, and reaches
  /// into the box of the face that it comes from: several that have merged are one face.
  [[nodiscard]] bool liesIn(const OdModelerBody& body, OdUInt32 face, const TruthFace& source,
                            std::size_t solid) const;
  /// Where the face comes from; nothing when that is no single surface.
  [[nodiscard]] std::optional<TruthFace> sourceOf(const OdModelerBody& body, OdUInt32 face,
                                                  std::size_t solid) const;
  /// The faces that meet at a subentity, or the face itself.
  static std::vector<OdUInt32> facesAt(const OdModelerBody& body, OdModelerSubent subent);
  /// Empty when the subentity is the one that is meant.
  [[nodiscard]] std::string judge(const OdModelerBody& body, OdModelerSubent subent,
                                  std::size_t solid, const std::vector<TruthFace>& meant) const;

  /// The solid built at once, in its frame: base less drills, with all fills, less all cuts.
  [[nodiscard]] OdModelerBodyPtr built(std::size_t solid) const;
};
