// Configuration features: links, selection, renames, ends and copies.
#include "platform/cloning/id_mapping.h"
#include "platform/db/audit_info.h"
#include "tests/vdm_db/configurations/configuration_testing.h"
#include "vdm_db/parameters/vdm_variable_evaluation.h"
#include "vdm_db/parameters/vdm_variable_names.h"
#include "vdm_db/parameters/vdm_variable_values.h"

namespace {

using namespace configuration_testing;
using Lines = std::vector<std::string>;

const Rows kSheet{{"Config", "Width", "Height", "Material"},
                  {"Small", "10", "1", "Steel"},
                  {"Large", "20", "2", "Iron"},
                  {"Wide", "30", "2", "iron"}};

class VdmConfigurationFeatureTest : public ConfigurationTest {};

// ---- Links

TEST_F(VdmConfigurationFeatureTest, LoadingLinksVariablesByNameAndSelectsWhatFits) {
  const OdDbObjectId width = addVariable(L"WIDTH", 20);
  const OdDbObjectId taken = addVariable(L"Config", 7);
  expectUndoable(
      *m_drawing, [this] { return wholeState(); }, [this] { EXPECT_EQ(loadSheet(kSheet), eOk); });
  EXPECT_EQ(state(), "Large: Config_1=Large WIDTH=20 Height=2 Material=Iron");
  EXPECT_EQ(numberOf(taken), 7);
  EXPECT_EQ(feature()->keyVariable(), variable(L"Config_1"));
  EXPECT_EQ(feature()->name(), L"Config");
  EXPECT_FALSE(VdmConfigurationFeature::isLinked(open<OdDbAssocVariable>(taken), false));
  EXPECT_FALSE(VdmConfigurationFeature::isLinked(open<OdDbAssocVariable>(variable(L"Config_1")),
                                                 /*nonKeyOnly=*/true));

  // A sheet that is refused changes nothing, one of other columns drops their links.
  const auto before = statesOf(*m_drawing);
  EXPECT_EQ(loadSheet({{"Config", "Width"}, {"", "1"}}), 5);
  EXPECT_EQ(statesOf(*m_drawing), before);
  const OdDbObjectId height = variable(L"Height");
  ASSERT_EQ(loadSheet({{"Config", "Width", "Material"}, {"A", "x", "1"}, {"B", "20", "2"}}), eOk);
  EXPECT_EQ(state(), "A: Config_1=A Width_1=x Material=1");
  EXPECT_TRUE(height.isErased());
  EXPECT_EQ(numberOf(width), 20);
  EXPECT_FALSE(VdmConfigurationFeature::isLinked(open<OdDbAssocVariable>(width), false));
}

TEST_F(VdmConfigurationFeatureTest, WithoutAFittingRowTheFreeConfigurationIsSelected) {
  addVariable(L"Width", 12);
  EXPECT_EQ(loadSheet({{"Config", "Width"}, {"", "1"}}), 5);
  EXPECT_EQ(feature()->selectedConfiguration(), L"Custom")
      << "also when the first table is refused";
  ASSERT_EQ(loadSheet(kSheet), eOk);
  EXPECT_EQ(state(), "Custom: Config=Custom Width=12 Height=1 Material=Steel");
  ASSERT_EQ(loadSheet({{"Config", "Width"}}), eOk);
  EXPECT_EQ(state(), "Custom: Config=Custom Width=12");
  EXPECT_EQ(setNumber(variable(L"Width"), 5), eOk);
  EXPECT_EQ(edit()->setConfiguration(L"Small"), 5);
}

TEST_F(VdmConfigurationFeatureTest, AValueThatAnExpressionGivesDecidesWhenTheTableIsLoaded) {
  addVariable(L"Width", 0);
  setExpression(L"Width", L"20");
  reopen();
  ASSERT_EQ(loadSheet(kSheet), eOk);
  EXPECT_EQ(state(), "Large: Config=Large Width=20 Height=2 Material=Iron");
  EXPECT_TRUE(link(L"Width")->isEnabled());
  setExpression(L"Width", L"10 + 20");
  EXPECT_FALSE(link(L"Width")->isEnabled());
}

// A lone column of numbers: the configurations are the numbers, and no variable shows their names.
TEST_F(VdmConfigurationFeatureTest, AColumnWithoutKeysSelectsByItsValues) {
  ASSERT_EQ(loadSheet({{"Width"}, {"10"}, {"20"}}, true, /*promote=*/true), eOk);
  EXPECT_EQ(state(), "10: Width=10");
  EXPECT_EQ(setNumber(variable(L"Width"), 20), eOk);
  EXPECT_EQ(state(), "20: Width=20");
  EXPECT_EQ(setNumber(variable(L"Width"), 15), eOk);
  EXPECT_EQ(state(), "Custom: Width=15");
  EXPECT_EQ(edit()->setConfiguration(L"10"), 4);
  EXPECT_EQ(feature()->generateConfigurationName(), L"*Width_3");
  EXPECT_EQ(edit()->saveConfiguration(L"15"), eOk);
  EXPECT_EQ(state(), "15: Width=15");
}

TEST_F(VdmConfigurationFeatureTest, ColumnsAreLinkedOneByOne) {
  addVariable(L"Width", 30);
  ASSERT_EQ(loadSheet(kSheet, /*createVariables=*/false), eOk);
  VdmStringArray linked, unlinked, values;
  EXPECT_EQ(feature()->getColumnNames(linked, unlinked), eOk);
  EXPECT_EQ(linked, VdmStringArray{L"Width"});
  EXPECT_EQ(unlinked, (VdmStringArray{L"Height", L"Material"}));
  EXPECT_EQ(state(), "Wide: Config=Wide Width=30");

  const OdDbObjectId other = addVariable(L"h", 77);
  EXPECT_EQ(edit()->linkColumn(other, L"none", false), 5);
  EXPECT_EQ(edit()->linkColumn(OdDbObjectId::kNull, L"Height", false), 417);
  EXPECT_EQ(edit()->linkColumn(variable(L"Width"), L"Height", false), 5);
  EXPECT_EQ(edit()->linkColumn(other, L"HEIGHT", false), eOk);
  EXPECT_EQ(edit()->linkColumn(addVariable(L"x", 1), L"Height", false), 5);
  EXPECT_EQ(edit()->linkColumnToVariable(m_block, L"Material", true), eOk);
  EXPECT_EQ(numberOf(other), 2);
  EXPECT_EQ(edit()->setConfiguration(L"small"), eOk);
  EXPECT_EQ(state(), "Small: Config=Small Width=10 h=1 Material=Steel");
  EXPECT_EQ(feature()->getValueList(other, values), eOk);
  EXPECT_EQ(values, (VdmStringArray{L"1", L"2"}));
  EXPECT_EQ(
      VdmConfigurationFeature::getValueList(open<OdDbAssocVariable>(variable(L"Material")), values),
      eOk);
  EXPECT_EQ(values, (VdmStringArray{L"Steel", L"Iron"}));
  EXPECT_EQ(edit()->unlinkColumn(other), eOk);
  EXPECT_EQ(edit()->unlinkColumn(L"height"), 5);
  EXPECT_EQ(edit()->setConfiguration(L"Large"), eOk);
  EXPECT_EQ(numberOf(other), 1);
  manager()->doAudit();
  for (const wchar_t* column : {L"Width", L"Material", L"Config"}) {
    EXPECT_EQ(edit()->unlinkColumn(column), eOk);
  }
  EXPECT_EQ(edit()->setConfiguration(L"Small"), 4);
  manager()->doAudit();
  EXPECT_FALSE(m_feature.isErased()) << "the audit took the table away";
}

// ---- Selection

TEST_F(VdmConfigurationFeatureTest, SelectionFollowsTheVariablesAndTheyFollowIt) {
  addVariable(L"Width", 10);
  ASSERT_EQ(loadSheet(kSheet), eOk);
  struct Step {
    std::function<OdResult()> edit;
    const char* state;
  };
  const auto width = [this](double value) {
    return [this, value] { return setNumber(variable(L"Width"), value); };
  };
  const auto choose = [this](const wchar_t* name) {
    return [this, name] { return edit()->setConfiguration(name); };
  };
  const auto type = [this](const wchar_t* name, const wchar_t* text) {
    return [this, name, text] {
      return VdmConfigurationFeature::setStringValue(change<OdDbAssocVariable>(variable(name)),
                                                     text, /*select=*/true);
    };
  };
  const Step steps[] = {
      {width(10 + 0.9e-10), "Small: Config=Small Width=10.0000000001 Height=1 Material=Steel"},
      {width(12), "Custom: Config=Custom Width=12 Height=1 Material=Steel"},
      {width(13), "Custom: Config=Custom Width=13 Height=1 Material=Steel"},
      {width(10), "Small: Config=Small Width=10 Height=1 Material=Steel"},
      {width(30), "Wide: Config=Wide Width=30 Height=2 Material=iron"},
      {choose(L"LARGE"), "Large: Config=Large Width=20 Height=2 Material=Iron"},
      {choose(L"none"), nullptr},
      {type(L"Material", L"STEEL"), "Small: Config=Small Width=10 Height=1 Material=STEEL"},
      {type(L"Material", L"Wood"), "Custom: Config=Custom Width=10 Height=1 Material=Wood"},
      {type(L"Config", L"wide"), "Wide: Config=wide Width=30 Height=2 Material=iron"},
      {type(L"Config", L"New"), "Custom: Config=New Width=30 Height=2 Material=iron"},
      {width(20), "Large: Config=Large Width=20 Height=2 Material=Iron"},
      {[this] { return setNumber(variable(L"Height"), 2); }, nullptr},
  };
  for (const Step& step : steps) {
    if (step.state == nullptr) {
      const std::string before = state();
      step.edit();
      EXPECT_EQ(state(), before);
      continue;
    }
    expectUndoable(
        *m_drawing, [this] { return state() + stateOf(m_feature); },
        [&] { EXPECT_EQ(step.edit(), eOk); });
    EXPECT_EQ(state(), step.state);
  }
}

/// Sets another variable whenever this one changes, as a solver may.
class Follower : public OdDbObjectReactor {
 public:
  explicit Follower(OdDbObjectId follower) : m_follower(follower) {}
  void modified(const OdDbObject*) override {
    m_follower.openAs<OdDbAssocVariable>(OdDb::kForWrite)->setValue(OdDbEvalVariant::init(9.0));
  }

 private:
  OdDbObjectId m_follower;
};

TEST_F(VdmConfigurationFeatureTest, OneSelectionIsMadeWhateverReactsToIt) {
  ASSERT_EQ(loadSheet(kSheet), eOk);
  Follower follower(variable(L"Height"));
  const OdDbObjectPtr width = variable(L"Width").openObject();
  width->addReactor(&follower);
  EXPECT_EQ(edit()->setConfiguration(L"Large"), eOk);
  EXPECT_EQ(state(), "Large: Config=Large Width=20 Height=2 Material=Iron");
  width->removeReactor(&follower);
}

TEST_F(VdmConfigurationFeatureTest, RowsAreSavedAndRemovedByName) {
  ASSERT_EQ(loadSheet(kSheet), eOk);
  EXPECT_EQ(feature()->generateConfigurationName(), L"Config_4");
  setNumber(variable(L"Width"), 12);
  EXPECT_EQ(edit()->saveConfiguration(L"CUSTOM"), 5);
  EXPECT_EQ(edit()->saveConfiguration(L""), 5);
  EXPECT_EQ(edit()->saveConfiguration(L"wide"), 27);
  EXPECT_EQ(edit()->saveConfiguration(L"Config_4"), eOk);
  EXPECT_EQ(state(), "Config_4: Config=Config_4 Width=12 Height=1 Material=Steel");
  EXPECT_EQ(feature()->generateConfigurationName(), L"Config_5");
  EXPECT_EQ(edit()->setConfiguration(L"Large"), eOk);
  EXPECT_EQ(edit()->setConfiguration(L"config_4"), eOk);
  EXPECT_EQ(state(), "Config_4: Config=Config_4 Width=12 Height=1 Material=Steel");
  EXPECT_EQ(edit()->removeConfiguration(L"none"), 5);
  EXPECT_EQ(edit()->removeConfiguration(L"Small"), eOk);
  EXPECT_EQ(feature()->selectedConfiguration(), L"Config_4");
  EXPECT_EQ(edit()->removeConfiguration(L"config_4"), eOk);
  EXPECT_EQ(state(), "Custom: Config=Custom Width=12 Height=1 Material=Steel");
  VdmStringArray names;
  OdString selected;
  EXPECT_EQ(feature()->getConfiguration(names, selected), eOk);
  EXPECT_EQ(names, (VdmStringArray{L"Large", L"Wide"}));
  EXPECT_EQ(selected, L"Custom");
}

TEST_F(VdmConfigurationFeatureTest, ADrivenVariableTakesNoPartUntilARowIsSelected) {
  const OdDbObjectId base = addVariable(L"base", 5);
  addVariable(L"Width", 10);
  ASSERT_EQ(loadSheet(kSheet), eOk);
  setExpression(L"Width", L"base + 6");
  EXPECT_FALSE(link(L"Width")->isEnabled());
  EXPECT_EQ(state(), "Small: Config=Small Width=11 Height=1 Material=Steel");
  setNumber(base, 24);
  vdmu::evaluateVariables(m_block);
  EXPECT_EQ(state(), "Small: Config=Small Width=30 Height=1 Material=Steel");
  setNumber(variable(L"Height"), 7);
  EXPECT_EQ(state(), "Custom: Config=Custom Width=30 Height=7 Material=Steel");
  setNumber(base, 14);
  vdmu::evaluateVariables(m_block);
  EXPECT_EQ(state(), "Custom: Config=Custom Width=20 Height=7 Material=Steel");
  EXPECT_EQ(edit()->setConfiguration(L"Small"), eOk);
  EXPECT_EQ(state(), "Small: Config=Small Width=10 Height=1 Material=Steel");
  EXPECT_TRUE(open<OdDbAssocVariable>(variable(L"Width"))->expression().isEmpty());
  EXPECT_TRUE(link(L"Width")->isEnabled());

  // Nor is it saved: its cell in the new row is empty.
  setExpression(L"Width", L"2 * base");
  EXPECT_EQ(edit()->saveConfiguration(L"driven"), eOk);
  VdmDbConfigurationTable::RowMap row;
  EXPECT_EQ(feature()->configTableId().openAs<VdmDbConfigurationTable>()->getRow(L"driven", row),
            eOk);
  EXPECT_EQ(row.at(L"Width").second, 0.0);
  EXPECT_EQ(row.at(L"Height").second, 1.0);
  edit()->resetExpressions();
  EXPECT_TRUE(link(L"Width")->isEnabled());
  EXPECT_EQ(numberOf(variable(L"Width")), 28);
  change<VdmDbConfigVarReactor>(link(L"Width")->objectId())->setIsEnabled(false);
  EXPECT_EQ(open<OdDbAssocVariable>(variable(L"Width"))->expression(), L"28");
}

TEST_F(VdmConfigurationFeatureTest, AVariableOfTextsFlipsItsNumberAndGivesItsTextOn) {
  ASSERT_EQ(loadSheet(kSheet), eOk);
  const OdDbObjectId material = variable(L"Material");
  EXPECT_EQ(numberOf(material), 1.0);
  for (const double number : {0.0, 1.0}) {
    EXPECT_EQ(VdmConfigurationFeature::setStringValue(change<OdDbAssocVariable>(material), L"Steel",
                                                      /*select=*/false),
              eOk);
    EXPECT_EQ(numberOf(material), number);
  }
  const OdDbObjectId first = addVariable(L"first", 0);
  const OdDbObjectId second = addVariable(L"second", 0);
  setExpression(L"first", L"Material");
  setExpression(L"second", L"first");
  OdString text;
  EXPECT_EQ(VdmConfigurationFeature::evaluateStringValue(second, text), eOk);
  EXPECT_EQ(text, L"Steel");
  EXPECT_EQ(VdmConfigurationFeature::evaluateStringValue(m_block, L"FIRST", text), eOk);
  setExpression(L"second", L"first + Width");
  EXPECT_EQ(VdmConfigurationFeature::evaluateStringValue(second, text), 5);
  EXPECT_EQ(VdmConfigurationFeature::evaluateStringValue(variable(L"Width"), text), 5);
  EXPECT_EQ(VdmConfigurationFeature::evaluateStringValue(OdDbObjectId::kNull, text), 5);
  EXPECT_EQ(VdmConfigurationFeature::evaluateStringValue(m_feature, text), 417);
  EXPECT_EQ(change<VdmDbConfigVarReactor>(link(L"Width")->objectId())->setVariableValue(L"12"), 5);
  EXPECT_EQ(vdmu::getAsString(vdmu::getEvalVariant(open<OdDbAssocVariable>(first)).get()),
            L"Steel");
}

// ---- Names

TEST_F(VdmConfigurationFeatureTest, ColumnsFollowTheirVariables) {
  addVariable(L"Height", 1.5);
  ASSERT_EQ(loadSheet(kSheet), eOk);
  ASSERT_EQ(state(), "Custom: Config=Custom Width=10 Height=1.5 Material=Steel");
  const auto rename = [this](const wchar_t* from, const wchar_t* to) {
    return change<OdDbAssocVariable>(variable(from))->setName(to, true);
  };
  // A new name is a change: the row that fits the renamed column is selected.
  EXPECT_EQ(rename(L"Width", L"Breadth"), eOk);
  EXPECT_EQ(rename(L"Config", L"Variant"), eOk);
  EXPECT_EQ(state(), "Small: Variant=Small Breadth=10 Height=1 Material=Steel");
  EXPECT_EQ(columnNames(), (Lines{"Variant", "Breadth", "Height", "Material"}));
  EXPECT_EQ(feature()->name(), L"Variant");
  EXPECT_EQ(edit()->setName(L"not a name"), eInvalidKey);
  EXPECT_EQ(edit()->setName(L"Type"), eOk);
  EXPECT_EQ(columnNames()[0], "Type");
  EXPECT_EQ(feature()->keyVariableName(), L"Type");
  // Another column has the name: the column keeps its own.
  EXPECT_EQ(edit()->unlinkColumn(L"Height"), eOk);
  change<OdDbAssocVariable>(variable(L"Height"))->setName(L"Free", true);
  EXPECT_EQ(rename(L"Material", L"Height"), eOk);
  EXPECT_EQ(columnNames(), (Lines{"Type", "Breadth", "Height", "Material"}));
  EXPECT_EQ(edit()->setConfiguration(L"Large"), eOk);
  EXPECT_EQ(state(), "Large: Type=Large Breadth=20 Height=Iron");
}

// ---- Ends

TEST_F(VdmConfigurationFeatureTest, LinksEndWithTheirVariablesAndMadeVariablesWithTheFeature) {
  const OdDbObjectId found = addVariable(L"Width", 10);
  const OdDbObjectId user = addVariable(L"user", 1);
  ASSERT_EQ(loadSheet(kSheet), eOk);
  setExpression(L"user", L"Height");
  const OdDbObjectId key = variable(L"Config"), used = variable(L"Height"),
                     made = variable(L"Material"), keyLink = link(L"Config")->objectId(),
                     table = feature()->configTableId();
  const auto everything = [this] { return wholeState(); };
  expectUndoable(*m_drawing, everything, [&] { change<OdDbAssocVariable>(key)->erase(); });
  EXPECT_TRUE(keyLink.isErased());
  EXPECT_EQ(feature()->keyVariable(), OdDbObjectId::kNull);
  EXPECT_EQ(edit()->setConfiguration(L"Large"), 4);
  EXPECT_EQ(setNumber(found, 20), eOk);
  EXPECT_EQ(feature()->selectedConfiguration(), L"Large");
  EXPECT_EQ(edit()->linkColumn(addVariable(L"choice", 0), L"Config", true), eOk);
  EXPECT_EQ(state(), "Large: Width=20 Height=2 Material=Iron choice=Large");
  const OdDbObjectIdArray links = feature()->reactors();
  expectUndoable(*m_drawing, everything,
                 [&] { change<OdDbObject>(link(L"Height")->objectId())->erase(); });
  EXPECT_EQ(feature()->reactors().size(), links.size() - 1) << "the feature has dropped it";

  expectUndoable(*m_drawing, everything, [&] { change<VdmDbFeatureData>(m_feature)->erase(); });
  EXPECT_TRUE(table.isErased());
  EXPECT_TRUE(made.isErased());
  for (const OdDbObjectId& kept : {found, used, user, variable(L"choice")}) {
    EXPECT_FALSE(kept.isErased());
    EXPECT_FALSE(VdmConfigurationFeature::isLinked(open<OdDbAssocVariable>(kept), false));
  }
}

TEST_F(VdmConfigurationFeatureTest, ACopyOfTheBlockIsIndependent) {
  ASSERT_EQ(loadSheet(kSheet), eOk);
  for (const bool toOther : {false, true}) {
    const OdDbDatabasePtr other = toOther ? m_host.createDatabase() : m_drawing;
    const OdDbObjectId block = copyBlock(other);
    const auto copy = configurationOf(block);
    ASSERT_FALSE(copy.isNull());
    EXPECT_EQ(copy->selectedConfiguration(), L"Small");
    EXPECT_EQ(copy->configTableId().ownerId(), copy->objectId());
    const OdDbObjectId width = vdmu::getAssocVariable(block, L"Width", false, L"");
    EXPECT_NE(width, variable(L"Width"));
    EXPECT_EQ(setNumber(width, 30), eOk);
    EXPECT_EQ(stateOf(*copy), "Wide: Config=Wide Width=30 Height=2 Material=iron");
    EXPECT_EQ(state(), "Small: Config=Small Width=10 Height=1 Material=Steel");
    OdDbAuditInfo info;
    other->audit(&info);
    EXPECT_EQ(info.numErrors(), 0);
  }
  // A copy of the feature alone has no variables: those of the original are not its own.
  const OdDbIdMappingPtr mapping = OdDbIdMapping::createObject();
  ASSERT_EQ(m_drawing->deepCloneObjects({m_feature}, m_feature.ownerId(), *mapping), eOk);
  OdDbIdPair pair(m_feature);
  ASSERT_TRUE(mapping->compute(pair));
  EXPECT_EQ(
      pair.value().openAs<VdmConfigurationFeature>(OdDb::kForWrite)->setConfiguration(L"Wide"),
      417);
  change<VdmDbFeatureData>(pair.value())->erase();
  EXPECT_EQ(state(), "Small: Config=Small Width=10 Height=1 Material=Steel");
}

}  // namespace
