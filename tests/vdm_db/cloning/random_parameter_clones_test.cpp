// Copies of blocks with random networks of variables and tables of configurations, by every kind of
// clone. The judge is the original: each copy computes what the original computes after the same
// change, and shares nothing with it.
#include <random>

#include "platform/assoc/assoc_dependency.h"
#include "platform/assoc/assoc_variable.h"
#include "platform/cloning/id_mapping.h"
#include "platform/db/block_table.h"
#include "tests/support/dump_drawing.h"
#include "tests/support/model_testing.h"
#include "tests/support/test_seed.h"
#include "tests/vdm_db/cloning/copied_references.h"
#include "vdm_db/cloning/vdm_model_cloning.h"
#include "vdm_db/configurations/vdm_configuration_feature.h"
#include "vdm_db/drawing_utils/vdm_assoc_action_utils.h"
#include "vdm_db/drawing_utils/vdm_block_utils.h"
#include "vdm_db/features/vdm_db_feature_manager.h"
#include "vdm_db/parameters/vdm_assoc_variable_ext.h"
#include "vdm_db/parameters/vdm_variable_evaluation.h"
#include "vdm_db/parameters/vdm_variable_names.h"
#include "vdm_utils/vdmu_reporter.h"

namespace {

using Pairs = std::vector<std::pair<OdDbObjectId, OdDbObjectId>>;

class RandomParameterClones : public ModelTest {
 protected:
  std::size_t pick(std::size_t count) {
    return std::uniform_int_distribution<std::size_t>(0, count - 1)(m_random);
  }

  /// Few names, in either case, so that names of source and target meet.
  OdString name() {
    static constexpr const wchar_t* kStems[] = {L"a", L"A", L"width", L"b_1", L"b"};
    return OdString().format(L"%ls%d", kStems[pick(5)], static_cast<int>(pick(6)));
  }
  /// Over the variables so far, or a plain number.
  OdString expression(const std::vector<OdString>& names) {
    const OdString number = OdString().format(L"%d", static_cast<int>(1 + pick(9)));
    if (names.empty() || pick(3) == 0) return number;
    OdString text = number;
    for (std::size_t i = 1 + pick(3); i > 0; --i) {
      text += (pick(2) == 0 ? L" + " : L" * ") + names[pick(names.size())];
    }
    return text;
  }
  void fill(OdDbObjectId block, bool withTable) {
    addLine(block);
    std::vector<OdString> names;
    for (std::size_t i = 3 + pick(12); i > 0; --i) {
      const OdString chosen = vdmu::generateVariableName(block, name());
      const OdDbObjectId id =
          vdmu::getAssocVariable(block, chosen, /*create=*/true, expression(names));
      ASSERT_FALSE(id.isNull());
      names.push_back(chosen);
      if (pick(4) == 0) VdmAssocVariableExt::cast(edit<OdDbAssocVariable>(id))->setExposed(true);
    }
    edit<OdDbAssocVariable>(vdmu::getAssocVariable(block, L"note", true, L""))
        ->setValue(OdDbEvalVariant::init(L"M6"));
    if (withTable && pick(4) != 0) addTable(block);
    vdmu::evaluateVariables(block);
  }
  /// Its columns drive variables of the block that depend on nothing, and a new one.
  void addTable(OdDbObjectId block) {
    VdmStringArray cells{L"Name", L"Length"};
    for (const OdDbObjectId& id : inputsOf(block)) {
      if (cells.size() < 4) cells.append(open<OdDbAssocVariable>(id)->name());
    }
    const OdUInt32 columns = cells.size();
    for (int row = 0; row < 3; ++row) {
      cells.append(OdString().format(L"row %d", row));
      for (OdUInt32 i = 1; i < columns; ++i) {
        cells.append(OdString().format(L"%d", static_cast<int>(1 + pick(50))));
      }
    }
    const auto manager =
        edit<VdmDbFeatureManager>(VdmDbFeatureManager::getInstance(block, /*create=*/true));
    const auto feature =
        manager->createFeatureData(VdmConfigurationFeature::desc(), L"Variants", false, false)
            .openAs<VdmConfigurationFeature>(OdDb::kForWrite);
    VdmuMessageCollector messages;
    EXPECT_EQ(
        feature->setConfigurationTable(block, cells, 4, columns, messages,
                                       /*createVariables=*/true, /*promoteSingleColumn=*/false),
        eOk);
    if (pick(2) == 0) {
      EXPECT_EQ(feature->setConfiguration(L"row 1"), eOk);
    }
  }

  /// Variables that are numbers and depend on nothing.
  static OdDbObjectIdArray inputsOf(OdDbObjectId block) {
    OdDbObjectIdArray inputs;
    for (const OdDbObjectId& id : vdmu::getAssocActions(block)) {
      const auto variable = open<OdDbAssocVariable>(id);
      if (readBy(id).isEmpty() && !variable->isAnonymous() && variable->name() != L"note") {
        inputs.append(id);
      }
    }
    return inputs;
  }
  static OdDbObjectIdArray readBy(OdDbObjectId variable) {
    OdDbObjectIdArray dependencies;
    OdDbObjectIdArray read;
    EXPECT_EQ(open<OdDbAssocVariable>(variable)->getDependencies(true, true, dependencies), eOk);
    for (const OdDbObjectId& id : dependencies) {
      read.append(open<OdDbAssocDependency>(id)->dependentOnObject());
    }
    return read;
  }
  static double valueOf(OdDbObjectId id) { return open<OdDbAssocVariable>(id)->numericValue(); }
  static Pairs pairsOf(OdDbObjectId block, const OdDbIdMapping& mapping) {
    Pairs pairs;
    for (const OdDbObjectId& id : vdmu::getAssocActions(block)) {
      pairs.emplace_back(id, vdmu::findClone(mapping, id));
    }
    return pairs;
  }
  static void expectEqual(const Pairs& pairs) {
    for (const auto& [original, copy] : pairs) {
      EXPECT_EQ(valueOf(original), valueOf(copy)) << open<OdDbAssocVariable>(copy)->name().utf8();
    }
  }
  void expectTwin(OdDbObjectId block, OdDbObjectId target, const OdDbIdMapping& mapping) {
    const Pairs pairs = pairsOf(block, mapping);
    for (const auto& [original, copy] : pairs) {
      ASSERT_TRUE(!copy.isNull() && copy.database() == target.database());
      EXPECT_EQ(open<OdDbAssocVariable>(copy)->objectThatOwnsNetworkInstance(), target);
      const OdDbObjectIdArray read = readBy(original);
      const OdDbObjectIdArray copies = readBy(copy);
      ASSERT_EQ(copies.size(), read.size());
      for (OdUInt32 i = 0; i < read.size(); ++i) {
        EXPECT_EQ(copies[i], vdmu::findClone(mapping, read[i]));
      }
    }
    expectNoReferences(target, belongingTo(block));
    EXPECT_EQ(findings(*target.database()), 0u);
    EXPECT_EQ(findings(*block.database()), 0u);
    expectEqual(pairs);
    // A change of one reaches the other by no way; after the same change they agree again.
    const OdDbObjectIdArray inputs = inputsOf(block);
    const OdDbObjectId changed = inputs[static_cast<OdUInt32>(pick(inputs.size()))];
    const double before = valueOf(changed);
    for (const bool isOfCopy : {false, true}) {
      const OdDbObjectId id = isOfCopy ? vdmu::findClone(mapping, changed) : changed;
      if (isOfCopy) {
        EXPECT_EQ(valueOf(id), before);
      }
      edit<OdDbAssocVariable>(id)->setExpression(L"77");
      vdmu::evaluateVariables(isOfCopy ? target : block);
    }
    expectEqual(pairs);
  }

  std::mt19937 m_random{freshSeed()};
};

struct CloneRow {
  const char* name;
  bool toOther;
  bool withTables;
  /// Where the copy is; null when cloning failed.
  OdDbObjectId (*clone)(OdDbObjectId block, OdDbObjectId target, OdDbIdMappingPtr& mapping);
};

OdDbObjectId wholeBlock(OdDbObjectId block, OdDbObjectId target, OdDbIdMappingPtr& mapping) {
  OdDbDatabase* from = block.database();
  OdDbDatabase* to = target.database();
  const OdDbObjectId table = to->getBlockTableId();
  const OdResult result =
      from == to ? from->deepCloneObjects({block}, table, *mapping)
                 : from->wblockCloneObjects({block}, table, *mapping, OdDb::kDrcMangleName);
  return result == eOk ? vdmu::findClone(*mapping, block) : OdDbObjectId();
}

OdDbObjectId inserted(OdDbObjectId block, OdDbObjectId target, OdDbIdMappingPtr& mapping) {
  return vdmu::cloneBlockWithModel(block, target, mapping) == eOk ? target : OdDbObjectId();
}

OdDbObjectId variablesAlone(OdDbObjectId block, OdDbObjectId target, OdDbIdMappingPtr& mapping) {
  const OdResult result = vdmu::cloneAssocActions(block.database(), vdmu::getAssocActions(block),
                                                  target, *mapping, /*deferXlation=*/false);
  return result == eOk ? target : OdDbObjectId();
}

constexpr CloneRow kRows[] = {
    {"deep", false, true, wholeBlock},
    {"wblock", true, true, wholeBlock},
    {"insert", false, true, inserted},
    {"insert into another drawing", true, true, inserted},
    {"variables", false, false, variablesAlone},
    {"variables into another drawing", true, false, variablesAlone},
};

TEST_F(RandomParameterClones, ComputeAsTheirOriginalsAndShareNothing) {
  for (int round = 0; round < 8; ++round) {
    for (const CloneRow& row : kRows) {
      SCOPED_TRACE(row.name);
      m_drawing = m_host.createDatabase();
      const OdDbDatabasePtr other = row.toOther ? m_host.createDatabase() : m_drawing;
      const OdDbObjectId block = addBlock(m_drawing, L"PART");
      fill(block, row.withTables);
      const OdDbObjectId target = addBlock(other, L"TARGET");
      if (pick(3) != 0) fill(target, /*withTable=*/true);
      const std::string before = dumpDrawing(other);
      other->clearUndo();
      other->startUndoRecord();
      OdDbIdMappingPtr mapping = OdDbIdMapping::createObject(OdDb::kDcObjects);
      const OdDbObjectId copy = row.clone(block, target, mapping);
      ASSERT_FALSE(copy.isNull());
      const std::string after = dumpDrawing(other);
      ASSERT_EQ(other->undo(), eOk);
      EXPECT_EQ(firstDifference(before, dumpDrawing(other)), "");
      ASSERT_EQ(other->redo(), eOk);
      EXPECT_EQ(firstDifference(after, dumpDrawing(other)), "");
      expectTwin(block, copy, *mapping);
      if (HasFailure()) return;
    }
  }
}

}  // namespace
