// Copying, moving and releasing of instance trees.
#include "vdm_db/instances/vdm_instance_tree.h"

#include <utility>
#include <vector>

namespace {

using Nodes = std::vector<std::shared_ptr<VdmDefinitionNode>>;

void takeDefinitions(VdmDefinitionNode::Instances& instances, Nodes& nodes) {
  for (auto& [id, instance] : instances) {
    if (instance.definition) nodes.push_back(std::move(instance.definition));
  }
  instances.clear();
}

// A chain of definitions that own each other would release itself by recursion, one level for each
// depth. Here the last owner of a node takes over what the node owns before it lets the node end,
// so that a node that ends owns nothing.
void release(VdmDefinitionNode::Instances& instances) {
  Nodes nodes;
  takeDefinitions(instances, nodes);
  while (!nodes.empty()) {
    const std::shared_ptr<VdmDefinitionNode> node = std::move(nodes.back());
    nodes.pop_back();
    if (node.use_count() == 1) takeDefinitions(node->instances, nodes);
  }
}

}  // namespace

// ---- Instances

VdmInstanceNode::VdmInstanceNode() = default;
VdmInstanceNode::VdmInstanceNode(const VdmInstanceNode& other) = default;
VdmInstanceNode::VdmInstanceNode(VdmInstanceNode&& other) noexcept = default;
VdmInstanceNode& VdmInstanceNode::operator=(const VdmInstanceNode& other) = default;
VdmInstanceNode& VdmInstanceNode::operator=(VdmInstanceNode&& other) noexcept = default;
VdmInstanceNode::~VdmInstanceNode() = default;

// ---- Definitions

VdmDefinitionNode::VdmDefinitionNode() : instances(kInitialBuckets) {}

VdmDefinitionNode::VdmDefinitionNode(const VdmDefinitionNode& other) = default;

// NOLINTNEXTLINE(performance-noexcept-move-constructor): allocates what `other` keeps
VdmDefinitionNode::VdmDefinitionNode(VdmDefinitionNode&& other) : VdmDefinitionNode() {
  *this = std::move(other);
}

VdmDefinitionNode& VdmDefinitionNode::operator=(const VdmDefinitionNode& other) {
  if (this == &other) return *this;
  VdmDefinitionNode copy(other);  // `other` may be owned by this node
  return *this = std::move(copy);
}

// NOLINTNEXTLINE(performance-noexcept-move-constructor): the same
VdmDefinitionNode& VdmDefinitionNode::operator=(VdmDefinitionNode&& other) {
  if (this == &other) return *this;
  VdmProperties takenData = std::exchange(other.data, VdmProperties());
  Instances takenInstances = std::exchange(other.instances, Instances(kInitialBuckets));
  const OdUInt64 takenReference = other.reference;
  const bool takenFlag = other.flag;
  release(instances);  // may end `other`
  data = std::move(takenData);
  instances = std::move(takenInstances);
  reference = takenReference;
  flag = takenFlag;
  return *this;
}

VdmDefinitionNode::~VdmDefinitionNode() { release(instances); }

// ---- Trees

VdmInstanceTree::VdmInstanceTree() : definitions(kInitialBuckets) {}
VdmInstanceTree::VdmInstanceTree(const VdmInstanceTree& other) = default;
VdmInstanceTree& VdmInstanceTree::operator=(const VdmInstanceTree& other) = default;

VdmInstanceTree::~VdmInstanceTree() {
  definitions.clear();
  root.reset();
}
