// A change of a variable reaches features: property reactors, expression reactors.
#include "tests/support/stored_page.h"
#include "tests/vdm_db/features/feature_testing.h"
#include "vdm_db/features/vdm_db_expression_reactor.h"
#include "vdm_db/features/vdm_db_property_reactor.h"
#include "vdm_db/parameters/vdm_assoc_variable_ext.h"
#include "vdm_db/parameters/vdm_variable_evaluation.h"
#include "vdm_db/parameters/vdm_variable_names.h"
#include "vdm_db/parameters/vdm_variable_values.h"

/// Handles the property "Depth" itself, and notes what it hears.
class DrivenFeature : public VdmFeature {
 public:
  VDM_DECLARE_FEATURE_MEMBERS(DrivenFeature)
  static std::vector<std::pair<OdString, double>> heard;

  OdResult onPropertyModified(const OdString& key, double value) override {
    heard.emplace_back(key, value);
    return key == L"Depth" ? eOk : static_cast<OdResult>(3);
  }
  bool isRequiredDependency(int, int) override { return false; }
};
VDM_DEFINE_FEATURE_CLASS(DrivenFeature, VdmFeature, L"DrivenFeature")
std::vector<std::pair<OdString, double>> DrivenFeature::heard;

namespace {

using Heard = std::vector<std::pair<OdString, double>>;

class VdmVariableReactors : public RegisteredClass<DrivenFeature>, public FeatureTest {
 protected:
  VdmVariableReactors() {
    DrivenFeature::heard.clear();
    m_feature = manager()->createFeatureData(DrivenFeature::desc(), L"F", false, false);
    VdmProperties& bag = edit<VdmDbFeatureData>(m_feature)->getWriteProperties();
    bag.setProperty(L"Depth", 5.0);
    bag.setProperty(L"Width", 7.0);
    bag.setProperty(L"Label", OdString(L"M8"));
  }
  template <class T>
  OdDbObjectId addReactor() {
    return m_feature.openAs<VdmFeature>(OdDb::kForWrite)->addReactor(T::desc(), -1);
  }
  OdDbObjectId named(const wchar_t* name, const wchar_t* expression = L"1") {
    return vdmu::getAssocVariable(m_modelSpace, name, /*create=*/true, expression);
  }
  static void set(OdDbObjectId variable, double value) {
    EXPECT_EQ(vdmu::setConstExpression(edit<OdDbAssocVariable>(variable).get(), value), eOk);
  }
  [[nodiscard]] double number(const wchar_t* key) const {
    double value = -1;
    open<VdmDbFeatureData>(m_feature)->getReadProperties().getProperty(key, value);
    return value;
  }
  OdResult bind(OdDbObjectId reactor, const wchar_t* property, const wchar_t* variable) {
    const auto carrier = edit<VdmDbFeatureData>(m_feature);
    return edit<VdmDbPropertyReactor>(reactor)->setProperty(carrier.get(), property, variable);
  }
  static Heard heard() { return std::exchange(DrivenFeature::heard, {}); }

  OdDbObjectId m_feature;
};

TEST_F(VdmVariableReactors, PropertiesFollowVariables) {
  const OdDbObjectId id = addReactor<VdmDbPropertyReactor>();
  EXPECT_EQ(bind(id, L"Depth", L"depth"), eOk);
  EXPECT_EQ(bind(id, L"Width", L"width"), eOk);
  EXPECT_EQ(bind(id, L"Label", L"label"), eKeyNotFound);
  const OdDbObjectId depth = named(L"depth");
  const OdDbObjectId width = named(L"WIDTH");
  EXPECT_EQ(vdmu::getValueAsDouble(open<OdDbAssocVariable>(width).get()), 7.0);
  EXPECT_EQ(open<VdmDbPropertyReactor>(id)->getProperties(), (OdStringArray{L"Depth", L"Width"}));
  EXPECT_TRUE(heard().empty()) << "the variables took the numbers";

  set(width, 9.0);
  EXPECT_EQ(heard(), (Heard{{L"Width", 9.0}}));
  EXPECT_EQ(number(L"Width"), 9.0) << "the feature left it to the reactor";
  EXPECT_EQ(open<VdmDbFeatureData>(m_feature)->adapterClass(), DrivenFeature::desc());
  EXPECT_EQ(m_feature.openAs<VdmFeature>()->getStatus(), VdmFeature::StatusNotifyEntities);
  set(depth, 6.0);
  EXPECT_EQ(heard(), (Heard{{L"Depth", 6.0}}));
  EXPECT_EQ(number(L"Depth"), 5.0) << "the feature handled it";
  set(width, 9.0 + 1e-11);
  EXPECT_EQ(heard(), (Heard{{L"Depth", 6.0}})) << "it differs still; the width does not";

  // Undo calls no reactor, and the next change is heard.
  m_drawing->disableUndoRecording(false);
  m_drawing->startUndoRecord();
  set(width, 11.0);
  EXPECT_EQ(heard().size(), 2u);
  ASSERT_EQ(m_drawing->undo(), eOk);
  EXPECT_TRUE(heard().empty());
  EXPECT_EQ(number(L"Width"), 9.0);
  set(width, 11.0);
  EXPECT_EQ(heard().back(), (std::pair<OdString, double>{L"Width", 11.0}));

  vdmu::removeVariable(width);
  EXPECT_EQ(open<VdmDbPropertyReactor>(id)->getProperties(), OdStringArray{L"Depth"});
  EXPECT_EQ(m_feature.openAs<VdmFeature>()->getVariables(), OdDbObjectIdArray{depth});
  EXPECT_EQ(bind(id, L"Depth", L"other"), eOk);
  EXPECT_TRUE(open<OdDbAssocVariable>(depth)->getPersistentReactors().isEmpty());
  edit<OdDbObject>(id)->erase();
  EXPECT_TRUE(open<OdDbAssocVariable>(named(L"other"))->getPersistentReactors().isEmpty());
}

/// A host's reactor that sets another variable as soon as something is undone.
class SetsOnUndo : public OdDbObjectReactor {
 public:
  explicit SetsOnUndo(OdDbObjectId variable) : m_variable(variable) {}
  void modifyUndone(const OdDbObject*) override {
    vdmu::setConstExpression(m_variable.openAs<OdDbAssocVariable>(OdDb::kForWrite).get(),
                             ++m_value);
  }

 private:
  OdDbObjectId m_variable;
  double m_value = 50;
};

TEST_F(VdmVariableReactors, NothingReactsWhileUndoing) {
  const OdDbObjectId property = addReactor<VdmDbPropertyReactor>();
  const OdDbObjectId expression = addReactor<VdmDbExpressionReactor>();
  EXPECT_EQ(bind(property, L"Width", L"width"), eOk);
  edit<VdmDbExpressionReactor>(expression)->setPropertyName(L"Depth");
  EXPECT_EQ(edit<VdmDbExpressionReactor>(expression)->setExpression(L"5", true), eOk);
  const OdDbObjectId own = open<VdmDbExpressionReactor>(expression)->assocVariable();
  const OdDbObjectId other = named(L"other");
  heard();
  m_drawing->disableUndoRecording(false);
  for (const OdDbObjectId& variable : {named(L"width"), own}) {
    m_drawing->startUndoRecord();
    set(other, vdmu::getValueAsDouble(open<OdDbAssocVariable>(other).get()) + 1);
    SetsOnUndo host(variable);
    const OdDbObjectPtr watched = other.openObject();
    watched->addReactor(&host);
    ASSERT_EQ(m_drawing->undo(), eOk);
    watched->removeReactor(&host);
    EXPECT_EQ(vdmu::getValueAsDouble(open<OdDbAssocVariable>(variable).get()), 51);
    EXPECT_TRUE(heard().empty());
  }
  EXPECT_EQ(number(L"Width"), 7.0);
}

TEST_F(VdmVariableReactors, ExpressionsGiveProperties) {
  const OdDbObjectId base = named(L"base", L"4");
  OdDbObjectId id = addReactor<VdmDbExpressionReactor>();
  const auto reactor = [&] { return edit<VdmDbExpressionReactor>(id); };
  reactor()->setPropertyName(L"Depth");
  reactor()->setInitialValue(5.0);
  OdString message;
  EXPECT_EQ(reactor()->setExpression(L"base +", true, &message), eInvalidInput);
  EXPECT_FALSE(message.isEmpty());
  const OdDbObjectId own = reactor()->assocVariable();
  EXPECT_EQ(open<OdDbAssocVariable>(own)->name(), L"*" + own.getHandle().ascii());
  EXPECT_EQ(reactor()->setExpression(L"base + 1", true), eOk);
  EXPECT_EQ(reactor()->assocVariable(), own) << "made once, also for what was refused";
  EXPECT_TRUE(open<OdDbAssocVariable>(own)->isAnonymous());
  EXPECT_EQ(heard(), (Heard{{L"Depth", -1.0}, {L"Depth", 5.0}})) << "first without a value";

  set(base, 7.0);
  vdmu::evaluateVariables(m_modelSpace);
  EXPECT_EQ(heard(), (Heard{{L"Depth", 8.0}}));
  EXPECT_EQ(reactor()->value(), 8.0);
  EXPECT_EQ(std::get<0>(reactor()->getLastState())->getAsDouble(), 8.0);
  EXPECT_EQ(std::get<1>(reactor()->getLastState()), L"base + 1");
  EXPECT_EQ(reactor()->setExpression(L"8 * base / 7", true), eOk);
  vdmu::evaluateVariables(m_modelSpace);
  EXPECT_EQ(reactor()->expression(), L"8 * base / 7");
  EXPECT_EQ(reactor()->setExpression(L"base * 2", true), eOk);
  EXPECT_EQ(heard(), (Heard{{L"Depth", 14.0}}));
  EXPECT_EQ(reactor()->setExpression(L"base * 3", false), eOk);
  set(base, 1.0);
  vdmu::evaluateVariables(m_modelSpace);
  EXPECT_TRUE(heard().empty());
  EXPECT_EQ(reactor()->value(), 3.0) << "kept up to date all the same";

  EXPECT_TRUE(reactor()->findVariable(L"BASE"));
  EXPECT_FALSE(reactor()->findVariable(L"width"));
  EXPECT_EQ(reactor()->renameVariable(L"result"), eOk);
  EXPECT_TRUE(reactor()->findVariable(L"Result"));
  EXPECT_EQ(named(L"result"), own);

  reopenWith({&id, &m_feature});
  EXPECT_EQ(reactor()->propertyName(), L"Depth");
  EXPECT_EQ(reactor()->value(), 3.0);
  EXPECT_EQ(reactor()->setExpression(L"base * 4", true), eOk);
  EXPECT_EQ(heard(), (Heard{{L"Depth", 4.0}})) << "after loading, too";
}

TEST_F(VdmVariableReactors, TheVariableOfAnExpressionEndsWithIt) {
  const OdDbObjectId first = addReactor<VdmDbExpressionReactor>();
  const OdDbObjectId second = addReactor<VdmDbExpressionReactor>();
  const auto make = [](OdDbObjectId id, const wchar_t* name) {
    edit<VdmDbExpressionReactor>(id)->setExpression(L"2", false);
    edit<VdmDbExpressionReactor>(id)->renameVariable(name);
    return open<VdmDbExpressionReactor>(id)->assocVariable();
  };
  const OdDbObjectId used = make(first, L"used");
  const OdDbObjectId unused = make(second, L"unused");
  const OdDbObjectId user = named(L"user", L"used * 2");
  m_drawing->disableUndoRecording(false);
  m_drawing->startUndoRecord();
  edit<OdDbObject>(m_feature)->erase();
  EXPECT_TRUE(first.isErased() && second.isErased());
  EXPECT_TRUE(unused.isErased());
  EXPECT_TRUE(used.isErased()) << "also where another variable is defined by it";
  ASSERT_EQ(m_drawing->undo(), eOk);
  EXPECT_FALSE(unused.isErased());
  EXPECT_TRUE(open<OdDbAssocVariable>(unused)->hasPersistentReactor(second));
  EXPECT_EQ(open<OdDbAssocVariable>(user)->expression(), L"used * 2");

  // The other way round, where that is asked for.
  const OdDbObjectId third = addReactor<VdmDbExpressionReactor>();
  edit<VdmDbExpressionReactor>(third)->setExpression(L"2", false);
  edit<VdmDbExpressionReactor>(third)->setDeleteOnErase(true);
  vdmu::removeVariable(open<VdmDbExpressionReactor>(third)->assocVariable());
  EXPECT_TRUE(third.isErased());
  EXPECT_FALSE(m_feature.isErased());
}

TEST_F(VdmVariableReactors, TheirPageHasTheBytesThatAreWritten) {
  const OdDbDatabasePtr drawing = m_host.createDatabase();
  m_modelSpace = drawing->getModelSpaceId();
  const OdDbObjectId width = named(L"width", L"10");
  VdmAssocVariableExt::cast(edit<OdDbAssocVariable>(width))->setExposed(true);
  m_feature = edit<VdmDbFeatureManager>(VdmDbFeatureManager::getInstance(m_modelSpace, true))
                  ->createFeatureData(DrivenFeature::desc(), L"F", false, false);
  edit<VdmDbFeatureData>(m_feature)->getWriteProperties().setProperty(L"Depth", 5.0);
  edit<VdmDbFeatureData>(m_feature)->getWriteProperties().setProperty(L"Width", 7.0);
  const OdDbObjectId property = addReactor<VdmDbPropertyReactor>();
  EXPECT_EQ(bind(property, L"Width", L"width"), eOk);
  const OdDbObjectId expression = addReactor<VdmDbExpressionReactor>();
  edit<VdmDbExpressionReactor>(expression)->setPropertyName(L"Depth");
  EXPECT_EQ(edit<VdmDbExpressionReactor>(expression)->setExpression(L"2 * width", true), eOk);
  vdmu::evaluateVariables(m_modelSpace);
  std::vector<std::string> records;
  for (const OdDbObjectId id : {width, property, expression}) {
    records.push_back(storedRecordOf(*id.safeOpenObject()));
  }
  EXPECT_EQ(storedRecordsOf(VDM_PARAMETERS_PAGE, "In bytes"), records);
}

}  // namespace
