// Tests of instance trees: what copies share, what moving leaves, release of deep trees.
#include "vdm_db/instances/vdm_instance_tree.h"

#include <utility>

#include "tests/support/reference_testing.h"

namespace {

class VdmInstanceTreeTest : public ReferenceTest {
 protected:
  VdmInstanceTreeTest() : m_first(addLine(m_modelSpace)), m_second(addLine(m_modelSpace)) {}

  static VdmInstanceNode instanceOf(std::shared_ptr<VdmDefinitionNode> definition) {
    VdmInstanceNode node;
    node.definition = std::move(definition);
    node.firstValue = 7;
    node.secondValue = ~OdUInt64{0};
    return node;
  }
  VdmDefinitionNode filled(const std::shared_ptr<VdmDefinitionNode>& shown) const {
    VdmDefinitionNode node;
    node.data.setProperty(L"Mass", 12.5);
    node.instances.emplace(m_first, instanceOf(shown));
    node.reference = 3;
    node.flag = true;
    return node;
  }

  OdDbObjectId m_first;
  OdDbObjectId m_second;
};

TEST_F(VdmInstanceTreeTest, CopiesShareDefinitionsAndMovingLeavesNone) {
  const auto shown = std::make_shared<VdmDefinitionNode>();
  VdmDefinitionNode node = filled(shown);
  const VdmDefinitionNode copy(node);
  EXPECT_EQ(shown.use_count(), 3);
  VdmDefinitionNode moved(std::move(node));
  EXPECT_EQ(shown.use_count(), 3);
  for (const VdmDefinitionNode* each : {&copy, &std::as_const(moved)}) {
    ASSERT_EQ(each->instances.size(), 1u);
    double mass = 0;
    EXPECT_TRUE(each->data.getProperty(L"Mass", mass));
    EXPECT_EQ(mass, 12.5);
    EXPECT_EQ(each->instances.at(m_first).definition, shown);
    EXPECT_EQ(each->instances.at(m_first).secondValue, ~OdUInt64{0});
    EXPECT_TRUE(each->reference == 3 && each->flag);
  }
  EXPECT_TRUE(node.data.isEmpty() && node.instances.empty());
  EXPECT_GE(node.instances.bucket_count(), VdmDefinitionNode::kInitialBuckets);
  EXPECT_TRUE(node.reference == 3 && node.flag);
  node = filled(shown);  // used again
  EXPECT_EQ(node.instances.size(), 1u);

  VdmInstanceNode& source = node.instances.at(m_first);
  const VdmInstanceNode taken(std::move(source));
  EXPECT_EQ(source.definition, nullptr);
  EXPECT_TRUE(source.firstValue == 7 && taken.firstValue == 7);
}

// A node takes the place of its owner, which owns it no more afterwards.
TEST_F(VdmInstanceTreeTest, ANodeCanBeReplacedByOneThatItOwns) {
  for (const bool moves : {false, true}) {
    VdmDefinitionNode top;
    top.instances.emplace(m_second,
                          instanceOf(std::make_shared<VdmDefinitionNode>(filled(nullptr))));
    VdmDefinitionNode& below = *top.instances.at(m_second).definition;
    if (moves) {
      top = std::move(below);
    } else {
      top = std::as_const(below);
    }
    EXPECT_EQ(top.reference, 3u);
    EXPECT_EQ(top.instances.count(m_first), 1u);
    EXPECT_EQ(top.instances.count(m_second), 0u);
  }
}

TEST_F(VdmInstanceTreeTest, TreesShareNodesAndReleaseDeepOnes) {
  const VdmInstanceTree empty;
  const VdmInstanceTree copyOfEmpty(empty);
  EXPECT_TRUE(copyOfEmpty.root == nullptr && copyOfEmpty.definitions.empty());

  const auto bottom = std::make_shared<VdmDefinitionNode>();
  {
    VdmInstanceTree tree;
    tree.root = bottom;
    for (int depth = 0; depth < 200000; ++depth) {
      tree.root = std::make_shared<VdmDefinitionNode>(filled(tree.root));
    }
    tree.definitions.emplace(m_first, tree.root);
    VdmInstanceTree copy;
    copy = tree;
    EXPECT_EQ(copy.root, tree.root);
    EXPECT_EQ(copy.definitions.at(m_first).use_count(), 4);
  }
  EXPECT_EQ(bottom.use_count(), 1);
}

}  // namespace
