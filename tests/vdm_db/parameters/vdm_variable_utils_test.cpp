// Variables of a block: values, names, walks, evaluation.
#include <cmath>

#include "platform/assoc/assoc_dependency.h"
#include "platform/assoc/assoc_network.h"
#include "platform/base/case_compare.h"
#include "platform/db/xrecord.h"
#include "tests/random/random_source.h"
#include "tests/support/model_testing.h"
#include "tests/support/test_seed.h"
#include "vdm_db/parameters/vdm_variable_evaluation.h"
#include "vdm_db/parameters/vdm_variable_names.h"
#include "vdm_db/parameters/vdm_variable_roles.h"
#include "vdm_db/parameters/vdm_variable_values.h"
#include "vdm_db/parameters/vdm_variable_walks.h"

namespace {

class VdmVariableUtils : public ModelTest {
 protected:
  ~VdmVariableUtils() override { VdmVariableRoles::install(m_roles); }

  OdDbObjectId add(const wchar_t* name, const wchar_t* expression) {
    return vdmu::getAssocVariable(m_modelSpace, name, /*create=*/true, expression);
  }
  static double valueOf(OdDbObjectId variable) {
    return vdmu::getValueAsDouble(open<OdDbAssocVariable>(variable).get());
  }
  static void set(OdDbObjectId variable, double value) {
    EXPECT_EQ(vdmu::setConstExpression(edit<OdDbAssocVariable>(variable).get(), value), eOk);
  }

  const VdmVariableRoles m_roles = VdmVariableRoles::installed();
};

TEST_F(VdmVariableUtils, ValuesOfVariants) {
  const OdDbEvalVariantPtr real = OdDbEvalVariant::init(-2.75);
  const OdDbEvalVariantPtr whole = OdDbEvalVariant::init(OdInt32{7});
  const OdDbEvalVariantPtr text = OdDbEvalVariant::init(L"M8");
  EXPECT_EQ(vdmu::getValueAsDouble(real.get()), -2.75);
  EXPECT_EQ(vdmu::getValueAsInt(real.get()), -2);
  EXPECT_EQ(vdmu::getValueAsInt(OdDbEvalVariant::init(1e300).get()), 2147483647);
  EXPECT_EQ(vdmu::getValueAsDouble(whole.get()), 7.0);
  EXPECT_EQ(vdmu::getValueAsDouble(text.get()), -1.0);
  EXPECT_EQ(vdmu::getValueAsInt(text.get()), -1);
  EXPECT_EQ(vdmu::getValueAsInt(OdDbEvalVariant::init(std::nan("")).get()), -1);
  EXPECT_EQ(vdmu::getAsString(text.get()), L"M8");
  EXPECT_EQ(vdmu::getAsString(whole.get()), L"7");
  EXPECT_FALSE(vdmu::isStringType(whole.get()));
  EXPECT_TRUE(vdmu::isStringType(text.get()));
  const OdDbEvalVariant* none = nullptr;
  const OdDbAssocVariable* noVariable = nullptr;
  EXPECT_EQ(vdmu::getValueAsDouble(none), -1.0);
  EXPECT_EQ(vdmu::getValueAsInt(none), -1);
  EXPECT_EQ(vdmu::getValueAsDouble(noVariable), -1.0);
  EXPECT_EQ(vdmu::getAsString(none), L"");

  EXPECT_EQ(vdmu::getConstExpression(1.0 / 3.0), L"0.333333333333");
  EXPECT_EQ(vdmu::getConstExpression(4.0), L"4");
  EXPECT_EQ(vdmu::getConstExpression(1e20), L"1e+20");
  EXPECT_EQ(vdmu::setConstExpression(nullptr, 1.0), 417);
  EXPECT_EQ(vdmu::getValueAsDouble(vdmu::getConstValue(L"2 + 3").get()), 5.0);
  EXPECT_TRUE(vdmu::getConstValue(L"2 + width").isNull());
  EXPECT_TRUE(vdmu::getConstValue(L"2 +").isNull());
}

TEST_F(VdmVariableUtils, ConfigurationsBindTexts) {
  const OdDbObjectId size = add(L"size", L"3");
  const auto value = [&] { return vdmu::getEvalVariant(open<OdDbAssocVariable>(size).get()); };
  EXPECT_EQ(value()->getAsDouble(), 3.0);
  VdmVariableRoles roles;
  roles.isStringTyped = [](const OdDbAssocVariable*) { return true; };
  VdmVariableRoles::install(roles);
  EXPECT_TRUE(value().isNull());
  roles.hasStringValue = [](const OdDbObjectId&, OdString& text) {
    text = L"large";
    return true;
  };
  VdmVariableRoles::install(roles);
  EXPECT_EQ(vdmu::getAsString(value().get()), L"large");
  EXPECT_TRUE(vdmu::getEvalVariant(nullptr).isNull());
}

TEST_F(VdmVariableUtils, NamesAndLookUp) {
  EXPECT_TRUE(vdmu::isAnonymous(L"") && vdmu::isAnonymous(L"*A"));
  EXPECT_FALSE(vdmu::isAnonymous(L"A*"));
  EXPECT_EQ(vdmu::generateVariableNameStartingWith(m_modelSpace, L"d"), L"d_1");
  EXPECT_TRUE(vdmu::getAssocVariable(m_modelSpace, L"D", /*create=*/false, L"1").isNull());
  EXPECT_TRUE(OdDbAssocNetwork::getInstanceFromObject(m_modelSpace, false).isNull())
      << "looking makes nothing";

  const OdDbObjectId length = add(L"length", L"2");
  const OdDbObjectId hidden = add(L"*5", L"1");
  EXPECT_EQ(add(L"LENGTH", L"9"), length);
  EXPECT_EQ(add(L"*5", L"9"), hidden);
  EXPECT_EQ(valueOf(length), 2.0);
  EXPECT_EQ(vdmu::generateVariableName(m_modelSpace, L"Length"), L"Length_1");
  add(L"LENGTH_1", L"1");
  EXPECT_EQ(vdmu::generateVariableName(m_modelSpace, L"Length"), L"Length_2");
  EXPECT_EQ(vdmu::generateVariableName(m_modelSpace, L"e"), L"e");
  EXPECT_EQ(vdmu::generateVariableNameStartingWith(m_modelSpace, L"e"), L"e_1");
  std::set<OdString> names;
  vdmu::getVariableNames(m_modelSpace, names);
  EXPECT_EQ(names, (std::set<OdString>{L"*5", L"LENGTH", L"LENGTH_1"}));

  // Made and returned, whatever it takes of its name and its expression.
  const auto unnamed = open<OdDbAssocVariable>(add(L"2 + 2", L"4"));
  EXPECT_TRUE(unnamed->isAnonymous());
  EXPECT_EQ(unnamed->expression(), L"4");
  const auto undefined = open<OdDbAssocVariable>(add(L"bad", L"1 +"));
  EXPECT_EQ(undefined->name(), L"bad");
  EXPECT_TRUE(undefined->expression().isEmpty());
  EXPECT_TRUE(
      vdmu::getAssocVariable(m_carrier.database()->getLayerZeroId(), L"x", false, L"").isNull());
}

TEST_F(VdmVariableUtils, ConstantsDependOnNothing) {
  const OdDbObjectId b = add(L"b", L"2");
  const OdDbObjectId a = add(L"a", L"b + 1");
  const auto isConstant = [](OdDbObjectId id, bool checked) {
    return vdmu::hasConstExpression(open<OdDbAssocVariable>(id).get(), checked);
  };
  EXPECT_TRUE(isConstant(b, true));
  EXPECT_FALSE(isConstant(a, false));
  EXPECT_FALSE(vdmu::hasConstExpression(nullptr, false));
  edit<OdDbAssocVariable>(b)->setValue(OdDbEvalVariant::init(4.0).get());
  EXPECT_TRUE(isConstant(b, false));
}

TEST_F(VdmVariableUtils, WalksReachEverythingOnce) {
  const OdDbObjectId d = add(L"d", L"1");
  const OdDbObjectId c = add(L"c", L"d + 1");
  const OdDbObjectId b = add(L"b", L"c + d");
  const OdDbObjectId a = add(L"a", L"b + c");
  const OdDbObjectId alone = add(L"alone", L"7");
  const OdDbObjectIdArray all{a, b, c, d};
  EXPECT_EQ(vdmu::getUsedVariables({a}, 1), OdDbObjectIdArray{a});
  EXPECT_EQ(vdmu::getUsedVariables({a}, 2), all);
  EXPECT_EQ(vdmu::getUsedVariables({a}, 1000), all);
  EXPECT_EQ(vdmu::getDefiningVariables({a, m_carrier}), (OdDbObjectIdArray{a, m_carrier, b, c, d}));
  EXPECT_EQ(vdmu::getDefiningVariables({d}), OdDbObjectIdArray{d});
  const OdDbObjectIdArray users = vdmu::getDependentVariables({c, alone});
  EXPECT_EQ(std::set<OdDbObjectId>(users.begin(), users.end()),
            (std::set<OdDbObjectId>{a, b, c, alone}));
  EXPECT_EQ(vdmu::filterUnusedVariables({a, b, alone, m_carrier}),
            (OdDbObjectIdArray{a, {}, alone, m_carrier}));
  EXPECT_EQ(vdmu::filterIndependentVariables({a, d, alone}), (OdDbObjectIdArray{{}, d, alone}));
}

TEST_F(VdmVariableUtils, EvaluationFollowsDefinitions) {
  const OdDbObjectId b = add(L"b", L"2");
  const OdDbObjectId a = add(L"a", L"b + 1");
  const OdDbObjectId other = add(L"other", L"1");
  const OdDbObjectId onOther = add(L"onOther", L"other * 2");
  set(b, 5.0);
  set(other, 3.0);
  vdmu::propagateVariableModification(m_carrier);
  vdmu::propagateVariableModification(OdDbObjectId::kNull);
  vdmu::propagateVariableModification(b);
  EXPECT_EQ(valueOf(a), 6.0);
  vdmu::evaluateVariables(m_modelSpace);
  EXPECT_EQ(valueOf(onOther), 6.0);
  vdmu::evaluateVariables(m_carrier);  // no network
}

TEST_F(VdmVariableUtils, UsesOfVariables) {
  const OdDbObjectId b = add(L"b", L"2");
  const OdDbObjectId a = add(L"a", L"b + 1");
  OdDbObjectIdArray dependencies;
  open<OdDbAssocVariable>(a)->getDependencies(true, true, dependencies);
  const auto counts = [](OdDbObjectId id) {
    return vdmu::assocVariableReactorIsValid(id.openObject(OdDb::kForRead, true).get());
  };
  ASSERT_EQ(dependencies.size(), 1u);
  EXPECT_TRUE(counts(dependencies[0]));
  EXPECT_TRUE(counts(m_carrier));
  EXPECT_FALSE(counts(m_modelSpace.database()->getNamedObjectsDictionaryId()));
  EXPECT_FALSE(vdmu::assocVariableReactorIsValid(nullptr));
  const OdDbObjectId loose = m_drawing->addOdDbObject(OdDbXrecord::createObject(),
                                                      m_drawing->getNamedObjectsDictionaryId());
  EXPECT_FALSE(counts(loose)) << "it leads to no block";
  vdmu::removeVariable(a);
  EXPECT_TRUE(a.isErased());
  EXPECT_FALSE(counts(dependencies[0]));
  edit<OdDbObject>(m_carrier)->erase();
  EXPECT_FALSE(counts(m_carrier));
  EXPECT_FALSE(b.isErased());
}

}  // namespace
