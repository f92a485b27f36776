// Residues: what tools take away or add, whatever the modeller's way to it.
#include "host/modeling/residues.h"

#include "host/modeling/component_query.h"
#include "tests/host/modeling/modeling_testing.h"
#include "vdm_db/features/vdm_update_feature_interface.h"

using namespace vdm_host;

namespace {

class ResidueTest : public ModelingTest {
 protected:
  static double volumeOf(const OdModelerBodyPtr& body) {
    return body ? body->massProperties().volume : 0.0;
  }
  /// a and b have in common what their volumes say; the cut that follows is right, too.
  static void expectCommon(const OdModelerBodyPtr& a, const OdModelerBodyPtr& b) {
    const double both = volumeOf(combine(OdModelerBooleanKind::kUnite, a, {b}));
    OdModelerBodyPtr common;
    OdModelerBodyPtr rest;
    ASSERT_TRUE(succeeded(commonOf(a, b, common)));
    ASSERT_TRUE(succeeded(differenceOf(a, b, rest)));
    EXPECT_NEAR(volumeOf(common), volumeOf(a) + volumeOf(b) - both, 1e-6 * both);
    EXPECT_NEAR(volumeOf(rest), both - volumeOf(b), 1e-6 * both);
    if (common) {
      EXPECT_TRUE(succeeded(common->check()));
    }
  }
};

TEST_F(ResidueTest, TheCommonPartIsRightHoweverTheToolLies) {
  const OdModelerBodyPtr block = box(100.0, 100.0, 20.0);
  const OdModelerBodyPtr cavity =
      combine(OdModelerBooleanKind::kSubtract, block, {box(20.0, 20.0, 6.0, {40.0, 40.0, 7.0})});
  const OdModelerBodyPtr channel =
      combine(OdModelerBooleanKind::kSubtract, block, {box(100.0, 20.0, 6.0, {0.0, 40.0, 7.0})});
  const std::vector<OdModelerBodyPtr> bases = {block, cavity, channel};
  const std::vector<OdModelerBodyPtr> tools = {
      cylinder(5.0, 30.0, {50.0, 50.0, -5.0}),             // through
      cylinder(5.0, 20.0, {50.0, 50.0, 0.0}),              // level with both faces
      cylinder(5.0, 30.0, {100.0, 50.0, -5.0}),            // half outside
      cylinder(3.0, 4.0, {20.0, 20.0, 8.0}),               // within
      cylinder(40.0, 30.0, {50.0, 50.0, -5.0}),            // around the cavity
      cylinder(5.0, 30.0, {200.0, 50.0, -5.0}),            // apart
      box(300.0, 300.0, 300.0, {-100.0, -100.0, -100.0}),  // all
  };
  for (std::size_t b = 0; b < bases.size(); ++b) {
    for (std::size_t t = 0; t < tools.size(); ++t) {
      SCOPED_TRACE(std::to_string(b) + ", " + std::to_string(t));
      expectCommon(bases[b], tools[t]);
    }
  }
}

TEST_F(ResidueTest, PiecesOfToolsAreDisjointAndTogetherWhatIsTaken) {
  ResidueLedger ledger(nullptr);
  const OdDbObjectIdArray features = [&] {
    OdDbObjectIdArray ids;
    for (int i = 0; i < 4; ++i) ids.append(addSolid(box(1.0, 1.0, 1.0)));
    return ids;
  }();
  const std::vector<OdModelerBodyPtr> tools = {
      cylinder(8.0, 30.0, {50.0, 50.0, -5.0}), cylinder(8.0, 30.0, {58.0, 50.0, -5.0}),
      cylinder(8.0, 30.0, {150.0, 50.0, -5.0}), cylinder(8.0, 30.0, {200.0, 200.0, -5.0})};
  ASSERT_TRUE(succeeded(ledger.takeCuts(m_base, {features.begin(), features.end()}, tools)));
  const OdModelerBodyPtr cut = combine(OdModelerBooleanKind::kSubtract, m_base, tools);
  double taken = 0.0;
  for (ComponentPieces& pieces : ledger.components()) {
    taken += volumeOf(pieces.pieceOf(ToolKind::kCut));
  }
  EXPECT_NEAR(taken, volumeOf(m_base) - volumeOf(cut), 1e-6 * volumeOf(m_base));
}

TEST_F(ResidueTest, GrossSolidsAreWithoutTheirOpenings) {
  put(hole(L"H", 20.0), 100.0, 100.0);
  put(boss(L"B", 30.0, 5.0), 200.0, 100.0);
  const OdDbEntityPtr gross =
      VdmUpdateFeatureInterface::getGrossSolid(m_plate, nullptr, nullptr, nullptr);
  EXPECT_NEAR(volumeOf(OdDb3dSolid::cast(gross)->body()), volumeOf(m_base), 1e-3);
  EXPECT_EQ(numFaces(), 9U);
}

TEST_F(ResidueTest, AnOpeningWithoutItsResidueIsClosedByItsNeighbours) {
  const EditResult made = insert(hole(L"H", 20.0, 4.0), 100.0, 100.0);
  const OdDbObjectIdArray own = component(made.feature)->ownObjectIds();
  ASSERT_EQ(own.size(), 2U);
  ASSERT_EQ(own[1].safeOpenObject(OdDb::kForWrite)->erase(), eOk);
  ASSERT_TRUE(done(m_editor->removeFeature(made.feature)));
  EXPECT_EQ(numFaces(), 6U);
}

TEST_F(ResidueTest, ImportedSolidsAreHealedExactly) {
  OdModelerAssembly parts;
  parts.products.resize(1);
  parts.products[0].bodies = {
      combine(OdModelerBooleanKind::kUnite, m_base, {cylinder(40.0, 25.0, {100.0, 100.0, 0.0})})};
  parts.roots.resize(1);
  ASSERT_TRUE(succeeded(odModeler().exportStep(OdString(L"part.step"), parts)));
  OdModelerAssembly read;
  ASSERT_TRUE(succeeded(odModeler().importStep(OdString(L"part.step"), read)));
  const OdModelerBodyPtr part = read.products[0].bodies[0];
  ASSERT_TRUE(done(m_editor->replaceBody(m_plate, part)));
  OdDbObjectId bore;
  ASSERT_TRUE(succeeded(makeCounterbore(m_database, L"C", {11.0, {}, 20.0, 5.0}, bore)));
  const EditResult made = insert(bore, 100.0, 100.0, 25.0);
  EXPECT_TRUE(isAsFresh(part));
  ASSERT_TRUE(done(m_editor->moveObject(made.created, {30.0, 0.0, 0.0})));
  EXPECT_TRUE(isAsFresh(part));
  ASSERT_TRUE(done(m_editor->removeFeature(made.feature)));
  EXPECT_NEAR(volume(), volumeOf(part), 1e-3);
  EXPECT_EQ(numFaces(), part->numFaces());
}

}  // namespace
