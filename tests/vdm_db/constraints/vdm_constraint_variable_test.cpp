// Variables that carry the names and values of constraints.
#include "platform/assoc/assoc_network.h"
#include "tests/vdm_db/constraints/constraint_testing.h"
#include "vdm_db/constraints/vdm_constraint_manager_services.h"
#include "vdm_db/constraints/vdm_constraint_properties_utils.h"
#include "vdm_db/constraints/vdm_constraint_utils.h"
#include "vdm_db/constraints/vdm_db_variable_reactor.h"
#include "vdm_db/parameters/vdm_assoc_variable_ext.h"
#include "vdm_db/parameters/vdm_variable_evaluation.h"
#include "vdm_db/parameters/vdm_variable_names.h"
#include "vdm_db/parameters/vdm_variable_values.h"

namespace {

class VdmConstraintVariables : public ConstraintTest {
 protected:
  /// A parametric constraint.
  VdmConstraintPtr addDimension(const wchar_t* name, double value) {
    const VdmConstraintPtr constraint = addConstraint(10, {newLine()}, name);
    editManager()->setConstraintValue(constraint, value);
    return constraint;
  }
  static OdSmartPtr<OdDbAssocVariable> variable(const VdmConstraintPtr& constraint,
                                                OdDb::OpenMode mode = OdDb::kForRead) {
    return open<OdDbAssocVariable>(constraint->userVariable(), mode);
  }
  OdResult define(const VdmConstraintPtr& constraint, const wchar_t* text) {
    return editManager()->setConstraintExpression(constraint, text);
  }
  OdDbObjectId named(const wchar_t* name) {
    return vdmu::getAssocVariable(m_modelSpace, name, /*create=*/false, L"");
  }
};

TEST_F(VdmConstraintVariables, CarryNameAndValue) {
  const VdmConstraintPtr width = addDimension(L"width", 12.5);
  EXPECT_EQ(variable(width)->name(), L"width");
  EXPECT_EQ(width->userExpression(), L"12.5");
  EXPECT_EQ(ConstraintRecord(*width).name(), L"") << "the variable has the name";

  const VdmConstraintPtr height = addDimension(L"height", 1.0);
  EXPECT_EQ(define(height, L"2 * width"), eOk);
  EXPECT_EQ(height->userValue(), 25.0);
  EXPECT_EQ(width->setName(L"breadth"), eOk);
  EXPECT_EQ(width->name(), L"breadth");
  EXPECT_EQ(height->userExpression(), L"2 * breadth");
  EXPECT_EQ(width->setName(L"HEIGHT"), eDuplicateKey);
  EXPECT_EQ(define(width, L"height"), eCircularReference);
  EXPECT_EQ(define(width, L"1 +"), eInvalidInput);
  EXPECT_EQ(width->userExpression(), L"12.5");
  EXPECT_EQ(manager()->variables(),
            (OdDbObjectIdArray{width->userVariable(), height->userVariable()}));

  EXPECT_EQ(ConstraintRecord(*width).name(), L"breadth") << "noted when they were listed";
  width->setType(3);
  EXPECT_EQ(editManager()->setConstraintValue(width, 8.0), eOk);
  EXPECT_EQ(width->userExpression(), L"8") << "it has a variable";
  EXPECT_EQ(width->userValue(), 12.5) << "and no value of its own";

  EXPECT_EQ(editManager()->checkConstraintExpression(L"Breadth + 2"), Manager::kExpressionOk);
  EXPECT_EQ(editManager()->checkConstraintExpression(L"depth"), Manager::kExpressionUnknownName);
  EXPECT_EQ(editManager()->checkConstraintExpression(L"2 +"), Manager::kExpressionSyntaxError);

  // None without a name, and for what has no value. A name that no expression could use is lost.
  EXPECT_TRUE(addConstraint(10, {newLine()}, L"")->userVariable().isNull());
  EXPECT_TRUE(addConstraint(3, {newLine()}, L"C")->userVariable().isNull());
  const VdmConstraintPtr odd = addConstraint(10, {newLine()}, L"a + b");
  EXPECT_TRUE(variable(odd)->isAnonymous());
  EXPECT_TRUE(odd->name().isEmpty());
  EXPECT_EQ(addConstraint(10, {newLine()}, L"Breadth")->name(), L"Breadth_1") << "taken";
}

TEST_F(VdmConstraintVariables, ChangesReachTheConstraint) {
  const VdmConstraintPtr width = addDimension(L"width", 4.0);
  const VdmConstraintPtr height = addDimension(L"height", 1.0);
  define(height, L"width / 2");
  setStatus(Manager::kUpToDate);
  vdmu::setConstExpression(variable(width, OdDb::kForWrite).get(), 10.0);
  EXPECT_EQ(width->userValue(), 10.0);
  vdmu::evaluateVariables(m_modelSpace);
  EXPECT_EQ(height->userValue(), 5.0);
  EXPECT_EQ(status(), Manager::kPartlyModified);
  EXPECT_EQ(manager()->getModifiedObjects().size(), 2u);

  setStatus(Manager::kUpToDate);
  const OdDbObjectId id = width->userVariable();
  EXPECT_FALSE(editManager()->variableModified(id, 10.0 + 1e-13));
  EXPECT_FALSE(editManager()->variableModified(m_carrier, 3.0));
  EXPECT_EQ(status(), Manager::kUpToDate);
  EXPECT_TRUE(editManager()->variableModified(id, 11.0));
  EXPECT_EQ(VdmConstraint::getDimConstraint(variable(width).get()), width.get());
  EXPECT_EQ(VdmConstraint::getDimConstraint(nullptr), nullptr);
  EXPECT_EQ(
      VdmConstraint::getDimConstraint(
          open<OdDbAssocVariable>(vdmu::getAssocVariable(m_modelSpace, L"x", true, L"1")).get()),
      nullptr);
}

TEST_F(VdmConstraintVariables, KnowWhatTheyMeasure) {
  const VdmConstraintPtr width = addDimension(L"width", 4.0);
  const VdmConstraintPtr angle = addConstraint(13, {newLine()}, L"angle");
  const auto isLinear = [](const VdmConstraintPtr& constraint) {
    return VdmAssocVariableExt::cast(variable(constraint))->isLinearDimension();
  };
  m_solver.angularType = 13;
  EXPECT_TRUE(isLinear(width));
  EXPECT_FALSE(isLinear(angle));
  EXPECT_TRUE(VdmAssocVariableExt::cast(variable(angle))->isAngularDimension());
  EXPECT_FALSE(VdmConstraintPropertiesUtils::getGeometryDriven(width.get()));
  EXPECT_TRUE(VdmConstraintPropertiesUtils::setGeometryDriven(width, true));
  EXPECT_TRUE(VdmConstraintPropertiesUtils::getGeometryDriven(width.get()));
  const VdmConstraintPtr plain = addConstraint(3, {newLine()});
  EXPECT_FALSE(VdmConstraintPropertiesUtils::getGeometryDriven(plain.get()));
  EXPECT_FALSE(VdmConstraintPropertiesUtils::setGeometryDriven(nullptr, true));
  EXPECT_TRUE(m_assertions.empty());
  EXPECT_FALSE(VdmConstraintPropertiesUtils::setGeometryDriven(plain, true));
  EXPECT_EQ(m_assertions, std::vector<std::string>{"VDMC_FAIL"});
}

TEST_F(VdmConstraintVariables, EndTogether) {
  const VdmConstraintPtr width = addDimension(L"width", 4.0);
  const VdmConstraintPtr height = addDimension(L"height", 1.0);
  const OdDbObjectId ofWidth = width->userVariable();
  const OdDbObjectId ofHeight = height->userVariable();
  define(height, L"width");
  editManager()->removeConstraint(width);
  EXPECT_EQ(named(L"width"), ofWidth) << "the height depends on it";
  EXPECT_FALSE(open<OdDbAssocVariable>(ofWidth)->hasPersistentReactor(
      editManager()->variableReactor(/*create=*/false)));
  m_drawing->disableUndoRecording(false);
  m_drawing->startUndoRecord();
  editManager()->removeConstraint(height);
  EXPECT_TRUE(ofHeight.isErased());
  ASSERT_EQ(m_drawing->undo(), eOk);
  ASSERT_EQ(nodeIds(), std::vector<OdULong>{2});
  EXPECT_EQ(open<OdDbAssocVariable>(ofHeight)->expression(), L"width");
  m_drawing->startUndoRecord();
  vdmu::removeVariable(ofHeight);
  EXPECT_TRUE(nodeIds().empty()) << "a constraint ends with its variable";
  ASSERT_EQ(m_drawing->undo(), eOk);
  EXPECT_EQ(nodeIds(), std::vector<OdULong>{2});
  EXPECT_EQ(manager()->constraints()[0]->name(), L"height");

  reopen();
  EXPECT_EQ(manager()->constraints()[0]->userExpression(), L"width");
  vdmu::setConstExpression(edit<OdDbAssocVariable>(named(L"width")).get(), 7.0);
  vdmu::evaluateVariables(m_modelSpace);
  EXPECT_EQ(manager()->constraints()[0]->userValue(), 7.0) << "the reactor is still attached";
}

TEST_F(VdmConstraintVariables, OfABatch) {
  VdmConstraintManagerServices batch;
  EXPECT_EQ(batch.changeExpressions({{OdString(L"x"), OdString(L"1")}}), eOk) << "nothing to do";
  batch.appendConstraint(10, {argument(m_carrier)}, 3.0, L"a", false);
  batch.appendConstraint(10, {argument(m_other)}, 4.0, L"b", false);
  batch.createConstraints();
  EXPECT_EQ(batch.changeExpressions({{L"a", L"b + 1"}, {L"b", L"6"}}), eOk);
  EXPECT_EQ(manager()->constraints()[0]->userExpression(), L"b + 1");
  vdmu::evaluateVariables(m_modelSpace);
  EXPECT_EQ(manager()->constraints()[0]->userValue(), 7.0);
  EXPECT_EQ(raisedBy([&] { batch.changeExpressions({{L"b", L"1"}}); }), eInvalidKey);
  batch.removeConstraints();
  EXPECT_TRUE(named(L"b").isNull() && nodeIds().empty());
}

TEST_F(VdmConstraintVariables, ValuesOfABlockBecomeVariables) {
  vdmu::createVariablesForConstraintValues(addBlock(m_drawing, L"B"), 0.1);
  for (const double value : {2.0, 5.0, 2.05}) addDimension(L"d", value);
  vdmu::createVariablesForConstraintValues(m_modelSpace, 0.1);
  std::vector<OdString> expressions;
  for (const VdmConstraintPtr& constraint : manager()->constraints()) {
    expressions.push_back(constraint->userExpression());
  }
  EXPECT_EQ(expressions, (std::vector<OdString>{L"value", L"value_1", L"value"}));
  EXPECT_EQ(manager()->constraints()[2]->userValue(), 2.0);
}

}  // namespace
