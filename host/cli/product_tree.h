// The product structure of a drawing: model space, what is placed in it, and what that is made of.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "platform/base/handle.h"
#include "platform/db/database.h"
#include "platform/ge/matrix3d.h"

namespace cli {

/// A block, an insert, a solid or another entity.
struct ProductNode {
  enum class Kind { kBlock, kInsert, kSolid, kEntity };

  Kind kind = Kind::kEntity;
  OdDbHandle handle;
  std::string className;
  std::string name;        ///< of block, occurrence or body; may be empty
  OdDbHandle blockHandle;  ///< insert: the block that it shows
  std::string blockName;   ///< insert
  OdGeMatrix3d placement;  ///< insert: from the block to its owner
  std::string note;        ///< what else there is to say
  bool sound = true;       ///< false when it or its block cannot be read
  /// The insert's block has its contents at an earlier insert, in the order of the tree.
  bool repeated = false;
  std::vector<ProductNode> children;
};

/// The tree of model space. A block that is inserted more than once has its contents at its first
/// insert only, so that the tree is not longer than the drawing.
[[nodiscard]] ProductNode productTree(OdDbDatabase& drawing);

/// The node and all below it are sound.
[[nodiscard]] bool isSound(const ProductNode& node);

}  // namespace cli
