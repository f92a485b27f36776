// Making constraints, alone and in batches.
#include "vdm_db/constraints/vdm_constraint_manager_services.h"

#include "tests/vdm_db/constraints/constraint_testing.h"

namespace {

/// Notes what it is asked.
class TestServices : public VdmConstraintManagerServices {
 public:
  OdResult answer = eOk;
  bool raises = false;
  OdDbFullSubentPathArray paths;
  OdDbObjectIdArray dependencies;
  int attached = 0;
  int updates = 0;

  void wantUpdate() { m_needUpdate = true; }
  OdResult attachIndexesToArgs(OdSmartPtr<VdmDbAssemblyPE>, const OdDbFullSubentPathArray& ofPaths,
                               const OdDbObjectIdArray& ids, bool) override {
    ++attached;
    paths = ofPaths;
    dependencies = ids;
    if (raises) throw OdError(eGeneralFailure);
    return answer;
  }
  void updateDatabase(OdSmartPtr<VdmDbAssemblyPE>, OdDbDatabase* database) override {
    updates += database != nullptr ? 1 : 0;
  }
};

class VdmServicesTest : public ConstraintTest {
 protected:
  static VdmExtendedPath origin() {
    VdmExtendedPath path;
    path.isDefaultGeometry = true;
    path.defaultGeometry = vdmu::kDefaultOrigin;
    return path;
  }
  [[nodiscard]] VdmConstraintPtr last() const { return manager()->constraints().last(); }

  TestServices m_services;
};

TEST_F(VdmServicesTest, AConstraintIsMadeWithItsArguments) {
  const OdDbObjectId line = newLine();
  VdmExtendedPath geometry = argument(line);
  geometry.isDefaultGeometry = true;
  geometry.defaultGeometry = vdmu::kDefaultZAxis;
  m_services.wantUpdate();
  const VdmConstraintPtr made = editManager()->addConstraint(
      3, {VdmExtendedPath(), geometry, origin()}, m_services, L"C", false);
  ASSERT_FALSE(made.isNull());
  EXPECT_EQ(made->name(), L"C");
  EXPECT_EQ(made->owner(), m_constraints);
  const std::vector<ExtendedDep> arguments = made->dependencies();
  ASSERT_EQ(arguments.size(), 3u);
  EXPECT_TRUE(arguments[0].dependency.isNull() && !arguments[0].isDefaultGeometry);
  EXPECT_EQ(placeOf(arguments[1].dependency), face(line, 1));
  EXPECT_EQ(arguments[1].defaultGeometry, vdmu::kDefaultZAxis);
  EXPECT_TRUE(arguments[2].dependency.isNull() && arguments[2].isDefaultGeometry);
  EXPECT_EQ(m_services.dependencies, OdDbObjectIdArray{arguments[1].dependency});
  EXPECT_EQ(m_services.updates, 1);

  // Refused, and failed on the way: nothing is left of it.
  const OdDbObjectIdArray present = registry();
  m_services.answer = eInvalidInput;
  EXPECT_TRUE(
      editManager()->addConstraint(3, {argument(newLine())}, m_services, L"D", false).isNull());
  VdmExtendedPath astray;
  astray.path = OdDbFullSubentPath(OdDbObjectIdArray{OdDbObjectId::kNull}, OdDbSubentId());
  EXPECT_THROW(
      editManager()->addConstraint(3, {argument(newLine()), astray}, m_services, L"E", false),
      OdError);
  EXPECT_EQ(nodeIds(), std::vector<OdULong>{1});
  EXPECT_EQ(registry(), present);
  EXPECT_EQ(m_services.updates, 1);
}

TEST_F(VdmServicesTest, ABatchSharesEntitiesAndPaths) {
  EXPECT_EQ(m_services.appendConstraint(3, {}, 1.0, L"X", false), L"");
  EXPECT_EQ(m_services.appendConstraint(3, {origin()}, 1.0, L"X", false), L"");
  m_services.createConstraints();
  EXPECT_EQ(m_services.attached, 0);
  const OdDbObjectId a = newLine();
  const OdDbObjectId b = newLine();
  const OdDbObjectId block = addBlock(m_drawing, L"B");
  const OdDbObjectId inBlock = addLine(block);
  EXPECT_EQ(m_services.appendConstraint(3, {argument(a), origin(), argument(b)}, 1.0, L"P", false),
            L"P");
  EXPECT_EQ(m_services.appendConstraint(10, {argument(b), argument(a)}, 1.0 / 3, L"Q", false),
            L"Q");
  EXPECT_EQ(m_services.appendConstraint(3, {argument(inBlock)}, 0.0, L"R", false), L"R");
  EXPECT_EQ(last()->getArgumentsCount(), 0u) << "as yet";
  m_services.createConstraints();

  const std::vector<ExtendedDep> first = manager()->getConstraintByNodeId(1)->dependencies();
  const std::vector<ExtendedDep> second = last()->dependencies();
  ASSERT_EQ(first.size(), 3u);
  EXPECT_EQ(first[0].dependency, second[1].dependency);
  EXPECT_EQ(first[2].dependency, second[0].dependency);
  EXPECT_TRUE(first[1].isDefaultGeometry && first[1].dependency.isNull());
  EXPECT_EQ(last()->userValue(), 1.0 / 3) << "more digits than its variable has";
  EXPECT_EQ(m_services.paths, (OdDbFullSubentPathArray{face(a, 1), face(b, 1), face(inBlock, 1)}));
  EXPECT_EQ(placeOf(m_services.dependencies[1]), face(b, 1));
  EXPECT_EQ(m_services.attached, 1);
  EXPECT_EQ(m_services.updates, 0);
  const OdDbObjectId root = Manager::getRootCM(m_drawing, /*create=*/false);
  EXPECT_TRUE(open<Manager>(root)->getAllConstraintManagers().contains(
      Manager::getInstance(block, /*create=*/false)));
}

TEST_F(VdmServicesTest, AllOfABatchOrNone) {
  addConstraint(3, {m_carrier}, L"before");
  const auto refused = [this](auto prepare, const VdmExtendedPath& extra) {
    TestServices services;
    prepare(services);
    services.appendConstraint(3, {argument(newLine())}, 0.0, L"P", false);
    services.appendConstraint(10, {argument(m_other), extra}, 1.0, L"Q", false);
    EXPECT_EQ(nodeIds().size(), 3u);
    const OdDbObjectId variable = last()->userVariable();
    EXPECT_FALSE(variable.isErased());
    try {
      services.createConstraints();
    } catch (const OdError&) {
    }
    EXPECT_EQ(nodeIds(), std::vector<OdULong>{1});
    EXPECT_TRUE(variable.isErased());
    EXPECT_EQ(registry().size(), 1u);
    EXPECT_EQ(services.updates, 0);
    services.removeConstraints();  // nothing is left to remove
  };
  VdmExtendedPath astray;
  astray.path = OdDbFullSubentPath(OdDbObjectIdArray{m_drawing->getLayerZeroId()}, OdDbSubentId());
  refused([](TestServices& services) { services.answer = eInvalidInput; }, origin());
  refused([](TestServices& services) { services.raises = true; }, origin());
  refused([](TestServices& services) { services.wantUpdate(); }, astray);
  m_solver.raises = true;
  EXPECT_THROW(m_services.appendConstraint(3, {argument(newLine())}, 0.0, L"R", false), OdError);
  EXPECT_EQ(nodeIds(), std::vector<OdULong>{1});
}

}  // namespace
