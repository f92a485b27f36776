// VdmInstanceTree: an assembly as a tree of block definitions and their instances.
#pragma once

#include <cstddef>
#include <memory>
#include <unordered_map>

#include "platform/base/types.h"
#include "platform/filer/object_id.h"
#include "vdm_db/common/vdm_db_export.h"
#include "vdm_db/common/vdm_object_id_hash.h"
#include "vdm_db/properties/vdm_properties.h"

class VdmDefinitionNode;

// Plain values. The module neither builds, walks nor files them: those who describe an assembly
// fill them, and give the values marked as the user's their meaning. A definition that is shown
// several times is one node, shared by its instances. No definition may contain an instance of
// itself, at any depth.

/// One instance of a definition, such as a block reference. Copies share the definition.
struct VDM_DB_EXPORT VdmInstanceNode {
  VdmInstanceNode();
  VdmInstanceNode(const VdmInstanceNode& other);
  /// `other` has no definition then; the two values stay with it, too.
  VdmInstanceNode(VdmInstanceNode&& other) noexcept;
  VdmInstanceNode& operator=(const VdmInstanceNode& other);
  VdmInstanceNode& operator=(VdmInstanceNode&& other) noexcept;
  ~VdmInstanceNode();

  std::shared_ptr<VdmDefinitionNode> definition;  ///< what the instance shows; may be null
  OdUInt64 firstValue = 0;                        ///< the user's
  OdUInt64 secondValue = 0;                       ///< the user's
};

/// One definition, such as a block, with the instances in it.
class VDM_DB_EXPORT VdmDefinitionNode {
 public:
  using Instances = std::unordered_map<OdDbObjectId, VdmInstanceNode, vdmu::OdDbObjectIdHash>;
  static constexpr std::size_t kInitialBuckets = 8;

  VdmDefinitionNode();
  /// Shares values of the data and definitions of the instances.
  VdmDefinitionNode(const VdmDefinitionNode& other);
  /// `other` is empty then and can be used again; reference and flag stay with it, too.
  VdmDefinitionNode(VdmDefinitionNode&& other);  // NOLINT: allocates what `other` keeps
  VdmDefinitionNode& operator=(const VdmDefinitionNode& other);
  VdmDefinitionNode& operator=(VdmDefinitionNode&& other);  // NOLINT: the same
  /// Releases definitions below it from a list, so that the depth of the tree does not matter.
  ~VdmDefinitionNode();

  VdmProperties data;      ///< of the definition, by key
  Instances instances;     ///< in this definition, by the id of each
  OdUInt64 reference = 0;  ///< the user's
  bool flag = false;       ///< the user's
};

/// The whole assembly. Copies share all nodes. It has no move operations.
class VDM_DB_EXPORT VdmInstanceTree {
 public:
  using Definitions =
      std::unordered_map<OdDbObjectId, std::shared_ptr<VdmDefinitionNode>, vdmu::OdDbObjectIdHash>;
  static constexpr std::size_t kInitialBuckets = 8;

  VdmInstanceTree();
  VdmInstanceTree(const VdmInstanceTree& other);
  VdmInstanceTree& operator=(const VdmInstanceTree& other);
  /// Empties `definitions`, then releases `root`.
  virtual ~VdmInstanceTree();

  std::shared_ptr<VdmDefinitionNode> root;  ///< null for an empty tree
  Definitions definitions;                  ///< all of the tree, by the id of each
};
