// Tests of copies of blocks with their models: random blocks with features and constraints, into
// empty and full blocks of the same drawing and of another. What must come out is computed from
// the places of entities in their blocks.
#include "vdm_db/cloning/vdm_model_cloning.h"

#include <algorithm>
#include <random>
#include <set>

#include "platform/base/case_compare.h"
#include "platform/base/error.h"
#include "tests/support/dump_drawing.h"
#include "tests/support/plain_solver.h"
#include "tests/support/test_seed.h"
#include "tests/vdm_db/cloning/copied_references.h"
#include "tests/vdm_db/features/feature_testing.h"
#include "vdm_db/constraints/vdm_constraint_manager_services.h"
#include "vdm_db/drawing_utils/vdm_block_utils.h"
#include "vdm_db/drawing_utils/vdm_db_reverse_id_mapping.h"
#include "vdm_db/parameters/vdm_variable_evaluation.h"
#include "vdm_db/references/vdm_path_utils.h"

namespace {

using Paths = std::vector<OdDbFullSubentPath>;

/// Paths as tests print and compare them.
std::vector<std::string> texts(const std::vector<Paths>& all) {
  std::vector<std::string> lines;
  for (const Paths& paths : all) {
    lines.emplace_back();
    for (const OdDbFullSubentPath& path : paths) {
      lines.back() += std::string(vdmu::formatFullSubentPath(path, true).utf8()) + " ";
    }
  }
  return lines;
}

/// Answers the remapping of merges as it is set, or raises at the question of that number.
class MergeSolver : public PlainSolver {
 public:
  bool dropUnmappedConstraint() override { return drops; }
  bool skipRemapping(VdmConstraint*, OdInt32) override {
    if (raisesAt-- == 0) throw OdError(eGeneralFailure, OdString(L"a solver that fails"));
    return skips;
  }

  bool drops = false;
  bool skips = false;
  int raisesAt = -1;
};

class VdmModelCloningTest : public FeatureTest {
 protected:
  VdmModelCloningTest() {
    VdmDbConstraintManager::desc()->addX(VdmDbConstraintManagerPE::desc(), &m_solver);
  }
  ~VdmModelCloningTest() override {
    VdmDbConstraintManager::desc()->delX(VdmDbConstraintManagerPE::desc());
  }

  std::size_t pick(std::size_t count) {
    return std::uniform_int_distribution<std::size_t>(0, count - 1)(m_random);
  }
  static OdDbObjectIdArray entitiesOf(OdDbObjectId block) {
    return open<OdDbBlockTableRecord>(block)->entityIds();
  }
  static OdDbObjectId blockOf(OdDbObjectId reference) {
    const OdDbBlockReferencePtr opened = reference.openAs<OdDbBlockReference>();
    return opened.isNull() ? OdDbObjectId::kNull : opened->blockTableRecord();
  }
  static VdmDbConstraintManagerPtr constraintsOf(OdDbObjectId block, bool create = false) {
    return VdmDbConstraintManager::getInstance(block, create)
        .openAs<VdmDbConstraintManager>(OdDb::kForWrite);
  }
  static VdmDbFeatureManagerPtr featuresOf(OdDbObjectId block, bool create = false) {
    return VdmDbFeatureManager::getInstance(block, create)
        .openAs<VdmDbFeatureManager>(OdDb::kForWrite);
  }

  /// A face of an entity of the block, or of one in a block that it shows, at any depth.
  OdDbFullSubentPath randomPath(OdDbObjectId block) {
    OdDbObjectIdArray path;
    while (true) {
      const OdDbObjectIdArray entities = entitiesOf(block);
      path.append(entities[static_cast<OdUInt32>(pick(entities.size()))]);
      block = blockOf(path.last());
      if (block.isNull()) break;
    }
    return {path, OdDbSubentId(OdDb::kFaceSubentType, static_cast<OdGsMarker>(1 + pick(3)))};
  }
  VdmConstraintPtr addConstraint(OdDbObjectId block, const Paths& paths, const OdString& name,
                                 OdLong type = 1) {
    VdmExtendedPathArray arguments;
    for (const OdDbFullSubentPath& path : paths) {
      VdmExtendedPath argument;
      argument.path = path;
      arguments.append(argument);
    }
    VdmConstraintManagerServices services;
    return constraintsOf(block, true)
        ->addConstraint(type, arguments, services, name,
                        /*flag=*/false);
  }
  void addFeature(OdDbObjectId block, const Paths& paths) {
    const OdDbObjectId id =
        featuresOf(block, true)->createFeatureData(HoleFeature::desc(), L"Hole", false, false);
    OdDbFullSubentPathArray array;
    for (const OdDbFullSubentPath& path : paths) array.append(path);
    OdArray<VdmFeatureGroupFaces> groups;
    groups.append(VdmFeatureGroupFaces(1, array, 7));
    hole(id, OdDb::kForWrite)->init(groups);
    hole(id, OdDb::kForWrite)->depth = static_cast<double>(pick(100));
  }
  /// Carriers, references to `inner`, and features and constraints about them.
  void fill(OdDbObjectId block, const std::vector<OdDbObjectId>& inner) {
    for (std::size_t i = 0; i < 2 + pick(3); ++i) addCarrier(block);
    for (std::size_t i = 0; !inner.empty() && i < pick(3); ++i) {
      addReference(block, inner[pick(inner.size())], randomPlacement());
    }
    for (std::size_t i = 0; i < pick(4); ++i) addFeature(block, {randomPath(block)});
    for (std::size_t i = 0; i < pick(5); ++i) {
      addConstraint(block, {randomPath(block), randomPath(block)},
                    OdString().format(L"D_%d", static_cast<int>(pick(3))));
    }
    addDimensions(block);
  }
  /// Turned, scaled unevenly, and mirrored or not.
  OdGeMatrix3d randomPlacement() {
    const auto factor = [&] {
      return (pick(2) == 0 ? 1.0 : -1.0) * (0.5 + 0.25 * double(pick(5)));
    };
    return OdGeMatrix3d::translation({double(pick(9)), double(pick(9)), 0.0}) *
           OdGeMatrix3d::rotation(double(pick(7)), OdGeVector3d(1, 2, 3).normal()) *
           OdGeMatrix3d::scaling(OdGeScale3d(factor(), factor(), factor()));
  }
  /// Dimensions whose expressions use each other.
  void addDimensions(OdDbObjectId block) {
    OdString text = L"10";
    for (std::size_t i = 0; i < pick(4); ++i) {
      const VdmConstraintPtr made = addConstraint(
          block, {randomPath(block)}, OdString().format(L"L%d", static_cast<int>(i)), 10);
      if (constraintsOf(block)->setConstraintExpression(made, text) != eOk) continue;
      text = L"2 * " + made->name();
    }
  }
  static std::vector<double> valuesOf(OdDbObjectId block, std::size_t first = 0) {
    std::vector<double> values;
    const VdmDbConstraintManagerPtr manager = constraintsOf(block);
    if (manager.isNull()) return values;
    for (const VdmConstraintPtr& constraint : manager->constraints()) {
      values.push_back(constraint->userVariable().isNull() ? 0.0 : constraint->userValue());
    }
    values.erase(values.begin(), values.begin() + static_cast<std::ptrdiff_t>(first));
    return values;
  }

  /// Paths of the arguments of constraints from the `first` on.
  static std::vector<Paths> argumentsOf(OdDbObjectId block, std::size_t first = 0) {
    std::vector<Paths> all;
    const VdmDbConstraintManagerPtr manager = constraintsOf(block);
    if (manager.isNull()) return all;
    for (const VdmConstraintPtr& constraint : manager->constraints()) {
      const OdArray<OdDbFullSubentPath> paths = constraint->getArguments();
      all.emplace_back(paths.begin(), paths.end());
    }
    all.erase(all.begin(), all.begin() + static_cast<std::ptrdiff_t>(first));
    return all;
  }
  static std::vector<Paths> facesOf(OdDbObjectId block, std::size_t first = 0) {
    std::vector<Paths> all;
    const VdmDbFeatureManagerPtr manager = featuresOf(block);
    if (manager.isNull()) return all;
    const OdDbObjectIdArray ids = manager->featureIds();
    for (OdUInt32 i = static_cast<OdUInt32>(first); i < ids.size(); ++i) {
      const OdDbFullSubentPathArray faces = hole(ids[i])->getEntities(1, 7);
      all.emplace_back(faces.begin(), faces.end());
      std::sort(all.back().begin(), all.back().end(), vdmu::FullSubentPathLess());
    }
    return all;
  }
  static std::set<OdString> namesOf(OdDbObjectId block) {
    std::set<OdString> names;
    const VdmDbConstraintManagerPtr manager = constraintsOf(block);
    if (manager.isNull()) return names;
    for (const VdmConstraintPtr& constraint : manager->constraints()) {
      EXPECT_TRUE(names.insert(odToUpper(constraint->name())).second);
    }
    return names;
  }

  /// The entity at the same place: the copies follow what the target held before.
  static OdDbFullSubentPath moved(const OdDbFullSubentPath& path, OdDbObjectId source,
                                  OdDbObjectId target, OdUInt32 numBefore) {
    OdDbObjectIdArray result;
    for (const OdDbObjectId& id : path.objectIds()) {
      OdUInt32 place = 0;
      EXPECT_TRUE(entitiesOf(source).find(id, place));
      result.append(entitiesOf(target)[place + numBefore]);
      numBefore = 0;
      source = blockOf(id);
      target = blockOf(result.last());
    }
    return {result, path.subentId()};
  }
  static std::vector<Paths> moved(const std::vector<Paths>& all, OdDbObjectId source,
                                  OdDbObjectId target, OdUInt32 numBefore) {
    std::vector<Paths> result = all;
    for (Paths& paths : result) {
      for (OdDbFullSubentPath& path : paths) path = moved(path, source, target, numBefore);
    }
    return result;
  }

  void expectCopied(OdDbObjectId source, OdDbObjectId target) {
    const OdUInt32 numBefore = entitiesOf(target).size();
    const std::size_t numConstraints = argumentsOf(target).size();
    const std::size_t numFeatures = facesOf(target).size();
    const std::vector<Paths> arguments = argumentsOf(source);
    const std::vector<Paths> faces = facesOf(source);
    OdDbIdMappingPtr mapping;
    if (!arguments.empty()) {
      const std::string before = dumpDrawing(target.database());
      m_solver.raisesAt = static_cast<int>(pick(arguments.size()));
      EXPECT_EQ(raisedBy([&] { (void)vdmu::cloneBlockWithModel(source, target, mapping); }),
                eGeneralFailure);
      EXPECT_EQ(dumpDrawing(target.database()), before);
      mapping = nullptr;
    }
    ASSERT_EQ(vdmu::cloneBlockWithModel(source, target, mapping), eOk);
    EXPECT_EQ(valuesOf(target, numConstraints), valuesOf(source));
    EXPECT_EQ(argumentsOf(source), arguments);
    EXPECT_EQ(facesOf(source), faces);
    EXPECT_EQ(texts(argumentsOf(target, numConstraints)),
              texts(moved(arguments, source, target, numBefore)));
    std::vector<Paths> expected = moved(faces, source, target, numBefore);
    for (Paths& paths : expected) {
      std::sort(paths.begin(), paths.end(), vdmu::FullSubentPathLess());
    }
    EXPECT_EQ(texts(facesOf(target, numFeatures)), texts(expected));
    expectNoReferences(target, belongingTo(source));
    EXPECT_EQ(findings(*source.database()), 0u);
    EXPECT_EQ(findings(*target.database()), 0u);
  }

  MergeSolver m_solver;
  std::mt19937 m_random{freshSeed()};
};

TEST_F(VdmModelCloningTest, CopiesOfRandomBlocksHaveTheirModelsAndUndoWhole) {
  for (int round = 0; round < 6; ++round) {
    m_drawing = m_host.createDatabase();
    OdDbDatabasePtr other = m_host.createDatabase();
    std::vector<OdDbObjectId> blocks;
    for (int i = 0; i < 4; ++i) {
      const OdDbObjectId block = addBlock(m_drawing, OdString().format(L"B%d", i));
      fill(block, blocks);
      blocks.push_back(block);
    }
    const OdDbObjectId full = addBlock(m_drawing, L"FULL");
    fill(full, {});
    for (const OdDbObjectId& source : blocks) {
      const OdDbObjectId empty = addBlock(m_drawing, L"E" + source.getHandle().ascii());
      const OdDbObjectId space = other->getModelSpaceId();
      for (const OdDbObjectId& target : {empty, full, space, empty, space}) {
        OdDbDatabase& drawing = *target.database();
        const std::string before = dumpDrawing(&drawing);
        drawing.startUndoRecord();
        expectCopied(source, target);
        const std::string after = dumpDrawing(&drawing);
        drawing.startUndoRecord();
        ASSERT_EQ(drawing.undo(), eOk);
        EXPECT_EQ(dumpDrawing(&drawing), before);
        ASSERT_EQ(drawing.redo(), eOk);
        EXPECT_EQ(dumpDrawing(&drawing), after);
        if (HasFailure()) return;
      }
    }
    const std::set<OdString> names = namesOf(other->getModelSpaceId());
    saveAs(other, path("copy.vdm"));
    other = nullptr;
    other = read("copy.vdm");
    EXPECT_EQ(namesOf(other->getModelSpaceId()), names);
    EXPECT_EQ(findings(*other), 0u);
    if (HasFailure()) return;
  }
}

// Dimensions are copied with their variables: the copies follow each other and no original.
TEST_F(VdmModelCloningTest, DimensionsOfACopyDriveTheCopyAlone) {
  const auto addDimension = [&](OdDbObjectId block, const wchar_t* name, const wchar_t* text) {
    const OdDbFullSubentPath path = face(entitiesOf(block)[0], 1);
    const VdmConstraintPtr made = addConstraint(block, {path}, name, 10);
    EXPECT_EQ(constraintsOf(block)->setConstraintExpression(made, text), eOk);
  };
  const OdDbObjectId source = addBlock(m_drawing, L"SOURCE");
  addCarrier(source);
  addDimension(source, L"width", L"10");
  addDimension(source, L"height", L"2 * width");
  addDimension(m_modelSpace, L"WIDTH_2", L"3");
  OdDbIdMappingPtr mapping;
  m_drawing->startUndoRecord();
  const std::string before = dumpDrawing(m_drawing);
  ASSERT_EQ(vdmu::cloneBlockWithModel(source, m_modelSpace, mapping), eOk);
  const auto all = [&] { return constraintsOf(m_modelSpace)->constraints(); };
  ASSERT_EQ(all().size(), 3u);
  EXPECT_EQ(all()[1]->name(), L"width_3");  // its number here is 2, which is taken
  EXPECT_EQ(all()[2]->name(), L"height_3");
  EXPECT_EQ(all()[2]->userExpression(), L"2 * width_3");
  EXPECT_EQ(constraintsOf(m_modelSpace)->setConstraintExpression(all()[1], L"20"), eOk);
  vdmu::evaluateVariables(m_modelSpace);
  EXPECT_EQ(all()[2]->userValue(), 40.0);
  EXPECT_EQ(all()[0]->userValue(), 3.0);
  EXPECT_EQ(constraintsOf(source)->constraints()[1]->userValue(), 20.0);
  expectNoReferences(m_modelSpace, belongingTo(source));
  EXPECT_EQ(findings(*m_drawing), 0u);
  ASSERT_EQ(m_drawing->undo(), eOk);
  EXPECT_EQ(dumpDrawing(m_drawing), before);
}

/// A manager in a block of its own, whose constraint is about the origin of m_carrier.
class VdmManagerMergeTest : public VdmModelCloningTest {
 protected:
  VdmManagerMergeTest()
      : m_block(addBlock(m_drawing, L"SOURCE")),
        m_origin(addCarrier(m_block)),
        m_source(VdmDbConstraintManager::getInstance(m_block, /*create=*/true)) {
    addConstraint(m_block, {face(m_origin, 2)}, L"d_1");
    m_mapping = OdDbIdMapping::createObject(OdDb::kDcObjects);
  }
  void merge(bool keepAll = false) {
    VdmDbReverseIdMapping reverse(*m_mapping);
    edit<VdmDbConstraintManager>(m_constraints)
        ->mergeManagers(edit<VdmDbConstraintManager>(m_source), *m_mapping, reverse, m_merged,
                        keepAll, m_replaced);
  }
  static void setStatus(OdDbObjectId manager, VdmDbConstraintManager::ConstraintManagerStatus to) {
    edit<VdmDbConstraintManager>(manager)->setStatus(to);
  }

  OdDbObjectId m_block, m_origin, m_source;
  OdDbIdMappingPtr m_mapping;
  std::unordered_set<OdDbObjectId> m_merged;
  std::map<OdDbObjectId, OdDbObjectId> m_replaced;
};

TEST_F(VdmManagerMergeTest, ConstraintsMoveToTheClonesUnderFreeNames) {
  for (const wchar_t* name : {L"D_1", L"D_7", L"A", L"B", L"C", L"E"}) {
    addConstraint(m_modelSpace, {face(m_other, 1)}, name);
  }
  m_mapping->assign(OdDbIdPair(m_origin, m_carrier, /*cloned=*/true));
  const OdDbObjectId object = VdmDbObject::openVdmDbObject(m_origin)->objectId();
  expectUndoable([&] { merge(); });
  const OdArray<VdmConstraintPtr> all = constraintsOf(m_modelSpace)->constraints();
  ASSERT_EQ(all.size(), 7u);
  EXPECT_EQ(all[6]->nodeId(), 7u);
  EXPECT_EQ(all[6]->name(), L"d_8");
  EXPECT_EQ(all[6]->owner(), m_constraints);
  EXPECT_EQ(argumentsOf(m_modelSpace).back(), Paths{face(m_carrier, 2)});
  EXPECT_TRUE(m_source.isErased() && object.isErased());
  EXPECT_FALSE(open<OdDbEntity>(m_origin)->hasPersistentReactor(object));
  EXPECT_EQ(m_replaced, (std::map<OdDbObjectId, OdDbObjectId>{{m_source, m_constraints}}));
  EXPECT_EQ(findings(*m_drawing), 0u);
  EXPECT_EQ(raisedBy([&] {
              VdmDbReverseIdMapping reverse(*m_mapping);
              edit<VdmDbConstraintManager>(m_constraints)
                  ->mergeManagers(nullptr, *m_mapping, reverse, m_merged, false, m_replaced);
            }),
            eNullPointer);
}

// A lost argument drops its constraint, and the objects of the others move. So do objects that
// another manager has merged. What the source lists and the target does not own ends.
TEST_F(VdmManagerMergeTest, EveryMergedObjectMovesAndTheRestEnds) {
  const OdDbObjectId reached = addCarrier(m_block), left = addCarrier(m_block);
  addConstraint(m_block, {face(m_origin, 3), face(reached, 1)}, L"");
  for (int i = 0; i < 2; ++i) addConstraint(m_block, {face(reached, 2)}, L"");
  edit<VdmDbObject>(VdmDbObject::openVdmDbObject(m_origin)->objectId())->eraseWithSubObjects();
  const OdDbObjectId elsewhere = addBlock(m_drawing, L"ELSEWHERE");
  addConstraint(elsewhere, {face(addCarrier(elsewhere), 1)}, L"x");
  const OdDbObjectId foreign = constraintsOf(elsewhere)->vdmDbObjects()[0];
  m_merged.insert(foreign);
  const OdDbObjectId ending = edit<VdmDbConstraintManager>(m_source)->getVdmDbObject(left);
  edit<VdmDbObject>(ending)->setOwnerId(foreign.ownerId());
  merge(/*keepAll=*/true);
  const OdArray<VdmConstraintPtr> all = constraintsOf(m_modelSpace)->constraints();
  ASSERT_EQ(all.size(), 2u);
  EXPECT_EQ(all[0]->name(), L"");
  EXPECT_EQ(all[1]->name(), L"_2") << "two without a name have the same one";
  const OdDbObjectId moved = VdmDbObject::openVdmDbObject(reached)->objectId();
  EXPECT_EQ(m_merged, (std::unordered_set<OdDbObjectId>{foreign, moved}));
  for (const OdDbObjectId& id : m_merged) EXPECT_EQ(id.ownerId(), m_constraints);
  EXPECT_TRUE(ending.isErased());
}

TEST_F(VdmManagerMergeTest, WhatCannotBeMappedStaysOrIsDroppedAsTheHostSays) {
  const struct {
    bool drops;
    bool keepAll;
    OdUInt32 count;
  } kRows[] = {{true, false, 0}, {false, false, 1}, {true, true, 1}};
  for (const auto& row : kRows) {
    m_drawing->startUndoRecord();
    m_solver.drops = row.drops;
    const OdDbObjectId object = VdmDbObject::openVdmDbObject(m_origin)->objectId();
    merge(row.keepAll);
    EXPECT_EQ(constraintsOf(m_modelSpace)->constraintsCount(), row.count);
    EXPECT_EQ(object.isErased(), row.count == 0);
    if (row.count == 1) {
      EXPECT_EQ(argumentsOf(m_modelSpace)[0], Paths{face(m_origin, 2)});
      EXPECT_EQ(object.ownerId(), m_constraints);
    }
    ASSERT_EQ(m_drawing->undo(), eOk);
  }
}

TEST_F(VdmManagerMergeTest, StatusesRiseAndAnExplosionDisablesOpenConstraints) {
  const OdDbObjectId origin = VdmDbConstraintManager::getInstance(addBlock(m_drawing, L"O"), true);
  m_mapping = OdDbIdMapping::createObject(OdDb::kDcExplode);
  m_mapping->assign(OdDbIdPair(origin, m_source, /*cloned=*/true));
  m_mapping->assign(OdDbIdPair(m_origin, m_carrier, /*cloned=*/true));
  VdmExtendedPathArray added;
  VdmExtendedPathArray axis(1);
  axis.append(VdmExtendedPath());
  axis[0].isDefaultGeometry = true;
  const VdmDbConstraintManagerPtr source = constraintsOf(m_block);
  source->addArguments(source->constraints()[0], axis, added);
  ASSERT_EQ(added.size(), 1u);
  const struct {
    VdmDbConstraintManager::ConstraintManagerStatus origin, target, result;
  } kRows[] = {{VdmDbConstraintManager::kFullyModified, VdmDbConstraintManager::kUpToDate,
                VdmDbConstraintManager::kFullyModified},
               {VdmDbConstraintManager::kUpToDate, VdmDbConstraintManager::kPartlyModified,
                VdmDbConstraintManager::kPartlyModified}};
  for (const auto& row : kRows) {
    m_drawing->startUndoRecord();
    setStatus(origin, row.origin);
    setStatus(m_constraints, row.target);
    if (row.target == VdmDbConstraintManager::kPartlyModified) {
      edit<VdmDbConstraintManager>(m_constraints)->notifyAboutModifications(m_other, true);
    }
    merge();
    EXPECT_EQ(status(), row.result);
    EXPECT_FALSE(constraintsOf(m_modelSpace)->constraints()[0]->isEnabled());
    const OdDbObjectIdArray modified = constraintsOf(m_modelSpace)->getModifiedObjects();
    EXPECT_EQ(modified.isEmpty(), row.result == VdmDbConstraintManager::kFullyModified);
    EXPECT_EQ(modified.contains(m_other), !modified.isEmpty());
    ASSERT_EQ(m_drawing->undo(), eOk);
  }
}

}  // namespace
