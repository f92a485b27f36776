// The variable that drives the thickness: both sides stay equal, whichever changes.
#include <random>

#include "platform/assoc/assoc_network.h"
#include "platform/assoc/assoc_variable.h"
#include "platform/cloning/id_mapping.h"
#include "tests/support/test_seed.h"
#include "tests/vdm_db/sheet_metal/sheet_metal_testing.h"
#include "vdm_db/cloning/vdm_model_cloning.h"
#include "vdm_db/parameters/vdm_variable_evaluation.h"
#include "vdm_db/parameters/vdm_variable_names.h"
#include "vdm_db/parameters/vdm_variable_values.h"

namespace {

class VdmDbSheetMetalVariable : public SheetMetalTest {
 protected:
  VdmDbSheetMetalVariable()
      : m_feature(edit<VdmDbFeatureManager>(sheet()->featureManager())
                      ->createFeatureData(VdmFeature::desc(), L"F", false, false)) {}

  OdDbObjectId link() { return editSheet()->getThicknessParameter(/*create=*/true); }
  [[nodiscard]] OdDbObjectId variable() const { return sheet()->getThicknessParameter(); }
  OdResult setVariable(const OdString& expression) {
    return edit<OdDbAssocVariable>(variable())->setExpression(expression);
  }
  OdResult setOption(double v) { return editSheet()->optionForWriteThickness().setValue(v); }
  [[nodiscard]] double thickness() const { return std::get<double>(values().at("Thickness")); }
  [[nodiscard]] double driven() const {
    return vdmu::getValueAsDouble(open<OdDbAssocVariable>(variable()).get());
  }
  // Whether the feature became due since the last question.
  bool isDue() {
    const VdmFeaturePtr feature = m_feature.openAs<VdmFeature>(OdDb::kForWrite);
    const bool due = (feature->getStatus() & VdmFeature::StatusNotifyEntities) != 0;
    feature->setStatus(VdmFeature::StatusInitialized);
    return due;
  }

  OdDbObjectId m_feature;
};

TEST_F(VdmDbSheetMetalVariable, BothSidesStayEqual) {
  EXPECT_TRUE(sheet()->getThicknessParameter().isNull() && sheet()->variables().isEmpty());
  expectUndoable([&] { link(); });
  const OdDbObjectId id = variable();
  EXPECT_EQ(link(), id);
  EXPECT_EQ(sheet()->variables(), OdDbObjectIdArray{id});
  EXPECT_EQ(vdmu::getAssocVariable(m_modelSpace, L"_sm_thickness", false, L""), id);
  EXPECT_EQ(open<OdDbAssocVariable>(id)->expression(), L"2");
  EXPECT_TRUE(Sheet::isThicknessVariable(open<OdDbAssocVariable>(id).get()));
  edit<OdDbAssocVariable>(id)->removePersistentReactor(m_context);
  EXPECT_TRUE(Sheet::isThicknessVariable(open<OdDbAssocVariable>(id).get())) << "by its id alone";
  edit<OdDbAssocVariable>(id)->addPersistentReactor(m_context);
  isDue();

  expectUndoable([&] { EXPECT_EQ(setOption(3.5), eOk); });
  EXPECT_EQ(driven(), 3.5);
  EXPECT_FALSE(isDue()) << "who sets the option knows";
  expectUndoable([&] { EXPECT_EQ(setVariable(L"4.25"), eOk); });
  EXPECT_EQ(thickness(), 4.25);
  EXPECT_TRUE(isDue());
  EXPECT_EQ(setOption(3.5), eOk) << "also when the option has had that value before";
  EXPECT_EQ(driven(), 3.5);

  EXPECT_EQ(setVariable(L"3.50000000001"), eOk);
  EXPECT_EQ(thickness(), 3.5) << "no change";
  EXPECT_FALSE(isDue());
  EXPECT_EQ(setOption(3.50000000002), eOk);
  EXPECT_EQ(open<OdDbAssocVariable>(id)->expression(), L"3.50000000001") << "no change either";
  // A thickness with more digits than an expression has: both get what the variable can hold.
  EXPECT_EQ(setOption(1234567.1234567), eOk);
  EXPECT_EQ(thickness(), driven());
}

TEST_F(VdmDbSheetMetalVariable, ExpressionsAndWhatIsNoNumber) {
  link();
  const OdDbObjectId base = vdmu::getAssocVariable(m_modelSpace, L"base", true, L"3");
  EXPECT_EQ(setVariable(L"base * 2"), eOk);
  EXPECT_EQ(thickness(), 6);
  EXPECT_FALSE(Sheet::isThicknessVariable(open<OdDbAssocVariable>(base).get()));
  vdmu::setConstExpression(edit<OdDbAssocVariable>(base), 5);
  vdmu::propagateVariableModification(base);
  EXPECT_EQ(thickness(), 10);
  // The option takes the place of the expression.
  EXPECT_EQ(setOption(7), eOk);
  EXPECT_EQ(open<OdDbAssocVariable>(variable())->expression(), L"7");
  const double infinite = std::numeric_limits<double>::infinity();
  EXPECT_NE(setOption(infinite), eOk) << "no variable has that value";
  EXPECT_EQ(thickness(), 7);
  edit<OdDbAssocVariable>(variable())->setValue(OdDbEvalVariant::init(L"thick").get());
  EXPECT_EQ(thickness(), 7);

  const SheetPtr other = Sheet::createObject();
  other->optionForWriteThickness().setValue(9);
  edit<OdDbAssocVariable>(variable())->setExpression(L"7");
  editSheet()->copyParameters(other);
  EXPECT_EQ(driven(), 9);
  editSheet()->initDefaultParameters(nullptr);
  EXPECT_EQ(driven(), 2);
  EXPECT_TRUE(other->getThicknessParameter(true).isNull()) << "outside a block";
}

TEST_F(VdmDbSheetMetalVariable, EndsOfOneAndTheOther) {
  const OdDbObjectId first = link();
  setOption(5);
  expectUndoable([&] { edit<OdDbAssocVariable>(first)->erase(); });
  EXPECT_TRUE(variable().isNull() && sheet()->variables().isEmpty());
  EXPECT_FALSE(
      first.openObject(OdDb::kForRead, /*openErased=*/true)->hasPersistentReactor(m_context));
  EXPECT_EQ(thickness(), 5);
  EXPECT_EQ(setOption(6), eOk);
  EXPECT_NE(link(), first);
  EXPECT_EQ(driven(), 6);

  const OdDbObjectId second = variable();
  const OdDbObjectId manager = sheet()->featureManager();
  expectUndoable([&] { edit<VdmDbFeatureManager>(manager)->deleteSheetMetalContext(); });
  EXPECT_TRUE(second.isErased());
  EXPECT_TRUE(vdmu::getAssocVariable(m_modelSpace, L"_SM_THICKNESS", false, L"").isNull());
  ASSERT_EQ(m_drawing->undo(), eOk);
  EXPECT_EQ(setVariable(L"8"), eOk);
  EXPECT_EQ(thickness(), 8) << "the link is back";
}

TEST_F(VdmDbSheetMetalVariable, ACloneOfTheBlockHasAVariableOfItsOwn) {
  link();
  const OdDbIdMappingPtr mapping = OdDbIdMapping::createObject(OdDb::kDcObjects);
  ASSERT_EQ(m_drawing->deepCloneObjects({m_modelSpace}, m_drawing->getBlockTableId(), *mapping),
            eOk);
  OdDbIdPair pair(m_context), variables(variable());
  ASSERT_TRUE(mapping->compute(pair) && mapping->compute(variables));
  EXPECT_EQ(open<Sheet>(pair.value())->getThicknessParameter(), variables.value());
  EXPECT_EQ(edit<OdDbAssocVariable>(variables.value())->setExpression(L"9"), eOk);
  EXPECT_EQ(std::get<double>(valuesOf(*open<Sheet>(pair.value())).at("Thickness")), 9);
  EXPECT_EQ(thickness(), 2);
  edit<Sheet>(pair.value())->optionForWriteThickness().setValue(4);
  EXPECT_EQ(driven(), 2);
}

TEST_F(VdmDbSheetMetalVariable, ACloneWithoutTheVariableIsDrivenByNone) {
  link();
  const OdDbObjectId block = addBlock(m_drawing, L"B");
  edit<OdDbBlockTableRecord>(block)->createExtensionDictionary();
  const OdDbObjectId managers = open<OdDbObject>(sheet()->featureManager())->ownerId();
  const OdDbIdMappingPtr mapping = OdDbIdMapping::createObject(OdDb::kDcObjects);
  ASSERT_EQ(m_drawing->deepCloneObjects({managers}, open<OdDbObject>(block)->extensionDictionary(),
                                        *mapping),
            eOk);
  OdDbIdPair pair(m_context);
  ASSERT_TRUE(mapping->compute(pair));
  const SheetPtr clone = edit<Sheet>(pair.value());
  EXPECT_TRUE(std::as_const(*clone).getThicknessParameter().isNull());
  EXPECT_EQ(clone->optionForWriteThickness().setValue(9), eOk);
  EXPECT_EQ(driven(), 2);
  EXPECT_NE(clone->getThicknessParameter(/*create=*/true), variable());
  // Nor is a copy of the variable alone linked.
  const OdDbIdMappingPtr variables = OdDbIdMapping::createObject(OdDb::kDcObjects);
  ASSERT_EQ(m_drawing->deepCloneObjects({variable()}, block, *variables), eOk);
  OdDbIdPair copy(variable());
  ASSERT_TRUE(variables->compute(copy));
  EXPECT_FALSE(open<OdDbObject>(copy.value())->hasPersistentReactor(m_context));
}

// Into an empty block, one that has a context with a variable, and one of another drawing.
TEST_F(VdmDbSheetMetalVariable, CopiedModelsHaveOneVariableThatDrivesTheirThickness) {
  link();
  setOption(3);
  const OdDbDatabasePtr other = m_host.createDatabase();
  const OdDbObjectId full = addBlock(m_drawing, L"Full");
  const OdDbObjectId present = Sheet::getInstance(full, true);
  edit<Sheet>(present)->optionForWriteThickness().setValue(3);
  const OdDbObjectId driving = edit<Sheet>(present)->getThicknessParameter(true);
  const OdDbObjectId targets[] = {addBlock(m_drawing, L"Empty"), full, addBlock(other, L"Far")};
  for (const OdDbObjectId& target : targets) {
    SCOPED_TRACE(open<OdDbBlockTableRecord>(target)->getName().utf8());
    OdDbIdMappingPtr mapping;
    ASSERT_EQ(vdmu::cloneBlockWithModel(m_modelSpace, target, mapping), eOk);
    const SheetPtr copy = edit<Sheet>(Sheet::getInstance(target, false));
    const OdDbObjectId id = std::as_const(*copy).getThicknessParameter();
    if (target == full) {
      EXPECT_EQ(copy->objectId(), present);
      EXPECT_EQ(id, driving);
    }
    ASSERT_FALSE(id.isNull());
    EXPECT_NE(id, variable());
    EXPECT_EQ(copy->optionForWriteThickness().setValue(4), eOk);
    EXPECT_EQ(vdmu::getValueAsDouble(open<OdDbAssocVariable>(id).get()), 4);
    EXPECT_EQ(edit<OdDbAssocVariable>(id)->setExpression(L"5"), eOk);
    EXPECT_EQ(std::get<double>(valuesOf(*copy).at("Thickness")), 5);
    std::set<OdString> names;
    vdmu::getVariableNames(target, names);
    EXPECT_EQ(names, std::set<OdString>{L"_SM_THICKNESS"});
    EXPECT_EQ(thickness(), 3);
    EXPECT_EQ(driven(), 3);
  }
}

TEST_F(VdmDbSheetMetalVariable, EditsOfBothSidesAtRandom) {
  struct State {
    double thickness;
    bool isLinked;
  };
  std::mt19937 random{freshSeed()};
  std::vector<State> steps{{2.0, false}};
  std::size_t undone = 0;
  const auto check = [&] {
    const State& state = steps[steps.size() - 1 - undone];
    ASSERT_EQ(thickness(), state.thickness);
    ASSERT_EQ(!variable().isNull(), state.isLinked);
    if (state.isLinked) {
      ASSERT_EQ(driven(), state.thickness);
    }
  };
  for (int round = 0; round < 300; ++round) {
    const int choice = static_cast<int>(random() % 7);
    State next = steps[steps.size() - 1 - undone];
    const double value = static_cast<double>(1 + random() % 9) * 0.5;
    if (choice == 0 && steps.size() - undone > 1) {
      ASSERT_EQ(m_drawing->undo(), eOk);
      ++undone;
    } else if (choice == 1 && undone > 0) {
      ASSERT_EQ(m_drawing->redo(), eOk);
      --undone;
    } else if (choice == 2 && round % 20 == 0) {
      reopenSheet();
      steps = {next};
      undone = 0;
    } else if (value != next.thickness) {
      m_drawing->startUndoRecord();
      if (choice == 3 && next.isLinked) {
        edit<OdDbAssocVariable>(variable())->erase();
        next.isLinked = false;
      } else if (choice >= 5 && next.isLinked) {
        ASSERT_EQ(setVariable(vdmu::getConstExpression(value)), eOk);
        next.thickness = value;
      } else if (choice == 4 && !next.isLinked) {
        link();
        next.isLinked = true;
      } else {
        ASSERT_EQ(setOption(value), eOk);
        next.thickness = value;
      }
      steps.resize(steps.size() - undone);
      undone = 0;
      steps.push_back(next);
    }
    check();
    if (HasFatalFailure()) return;
  }
}

}  // namespace
