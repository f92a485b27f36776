// Variables of one network: names, expressions, values, statuses, undo.
#include <map>

#include "platform/assoc/expression_parser.h"
#include "platform/db/open_upgrade.h"
#include "tests/platform/assoc/network_testing.h"

/// A persistent reactor that notes what it hears, and may write another variable.
class Listener : public OdDbObject {
 public:
  OD_RX_DECLARE_MEMBERS(Listener)

  void modified(const OdDbObject* object) override {
    const OdDbAssocVariablePtr variable = OdDbAssocVariable::cast(object);
    heard.push_back(std::string(variable->name().utf8()) + "=" +
                    std::to_string(static_cast<int>(variable->numericValue())));
    if (written.isNull()) return;
    written.openAs<OdDbAssocVariable>(OdDb::kForWrite)
        ->setValue(OdDbEvalVariant::init(variable->numericValue()));
  }

  static std::vector<std::string> heard;
  static OdDbObjectId written;
};
std::vector<std::string> Listener::heard;
OdDbObjectId Listener::written;
OD_RX_DEFINE_DB(Listener, OdDbObject, L"NetworkListener", 33, 0, 0, L"NETWORKLISTENER", OdString())

/// An action that adds up what it reads.
class Summing : public OdDbAssocAction {
 public:
  OD_RX_DECLARE_MEMBERS(Summing)
  static std::vector<double> sums;

 protected:
  OdResult subEvaluate(OdDbAssocEvaluationCallback*) override {
    OdDbObjectIdArray ids;
    double sum = 0.0;
    getDependencies(true, true, ids);
    for (const OdDbObjectId& id : ids) {
      const OdDbObjectId read = id.openAs<OdDbAssocDependency>()->dependentOnObject();
      sum += read.openAs<OdDbAssocVariable>()->numericValue();
    }
    sums.push_back(sum);
    return eOk;
  }
};
std::vector<double> Summing::sums;
OD_RX_DEFINE_DB(Summing, OdDbAssocAction, L"NetworkSumming", 33, 0, 0, L"NETWORKSUMMING",
                OdString())

namespace {

class Counting : public OdDbAssocEvaluationCallback {
 public:
  void actionEvaluated(const OdDbObjectId& action, OdDbAssocStatus) override { ++count[action]; }
  std::map<OdDbObjectId, int> count;
};

class Network : public RegisteredClass<Listener>,
                public RegisteredClass<Summing>,
                public NetworkTest {
 protected:
  Network() {
    Listener::heard.clear();
    Listener::written = OdDbObjectId::kNull;
    Summing::sums.clear();
  }
  OdDbObjectId addSumming(const std::vector<OdDbObjectId>& variables) {
    const OdSmartPtr<Summing> action = Summing::createObject();
    const OdDbObjectId id = drawing->addOdDbObject(action, network);
    EXPECT_EQ(edit<OdDbAssocNetwork>(network)->addAction(id), eOk);
    for (const OdDbObjectId read : variables) {
      const OdDbAssocValueDependencyPtr dependency = OdDbAssocValueDependency::createObject();
      EXPECT_EQ(action->addDependency(drawing->addOdDbObject(dependency, id)), eOk);
      EXPECT_EQ(dependency->attachToObject(read), eOk);
    }
    return id;
  }
  void listenTo(OdDbObjectId variable) {
    const OdSmartPtr<Listener> listener = Listener::createObject();
    const OdDbObjectId id = drawing->addOdDbObject(listener, network);
    edit<OdDbAssocVariable>(variable)->addPersistentReactor(id);
    Listener::heard.clear();
  }
};

TEST_F(Network, EvaluatesWhatChangedOnceAfterItsDefinitions) {
  const OdDbObjectId b = add(L"b", L"2");
  const OdDbObjectId a = add(L"a", L"b + 1");
  const OdDbObjectId c = add(L"c", L"a * B + 1 in");
  EXPECT_DOUBLE_EQ(value(c), 31.4);
  EXPECT_EQ(evaluatedStatus(network), kAssocUpToDate);
  EXPECT_EQ(used(c), (std::vector{a, b}));
  EXPECT_EQ(users(b), (std::vector{a, c}));
  EXPECT_EQ(OdDbAssocDependency::getFirstDependencyOnObject(b), dependencies(a)[0]);
  EXPECT_EQ(open<OdDbAssocDependency>(dependencies(a)[0])->nextDependencyOnObject(),
            dependencies(c)[1]);

  EXPECT_EQ(setValue(b, 3), eOk);
  EXPECT_EQ(status(network), kAssocChangedDirectly);
  EXPECT_EQ(status(b), kAssocChangedDirectly);
  EXPECT_EQ(status(c), kAssocChangedTransitively);
  EXPECT_DOUBLE_EQ(value(c), 31.4) << "nothing is computed before it is asked for";
  Counting counting;
  ASSERT_EQ(evaluate(network, &counting), eOk);
  EXPECT_DOUBLE_EQ(value(c), 37.4);
  EXPECT_EQ(counting.count, (std::map<OdDbObjectId, int>{{a, 1}, {b, 1}, {c, 1}}));
  EXPECT_EQ(status(c), kAssocUpToDate);

  // One action brings along what it depends on; the others wait.
  const OdDbObjectId d = add(L"d", L"a");
  ASSERT_EQ(evaluate(), eOk);
  EXPECT_EQ(setValue(b, 4), eOk);
  ASSERT_EQ(edit<OdDbAssocVariable>(d)->evaluate(nullptr), eOk);
  EXPECT_DOUBLE_EQ(value(d), 5.0);
  EXPECT_EQ(status(a), kAssocUpToDate);
  EXPECT_EQ(status(c), kAssocChangedTransitively);
  EXPECT_DOUBLE_EQ(evaluated(c), 45.4);
}

TEST_F(Network, RefusesCyclesNamingThemAndChangesNothing) {
  const OdDbObjectId a = add(L"a", L"1");
  const OdDbObjectId b = add(L"b", L"a + 1");
  add(L"c", L"b + 1");
  ASSERT_EQ(evaluate(), eOk);
  const auto before = statesOf(*drawing);
  EXPECT_EQ(set(a, L"c * 2"), "expression refers to itself: a -> c -> b -> a");
  EXPECT_EQ(set(a, L"A"), "expression refers to itself: a -> a");
  EXPECT_NE(set(b, L"a + + nothing"), "");
  EXPECT_NE(set(b, L"a + nothing").find("nothing"), std::string::npos);
  EXPECT_EQ(statesOf(*drawing), before);
  EXPECT_EQ(set(b, L"7"), "");
  EXPECT_EQ(set(a, L"c * 2"), "") << "without the old edge there is no cycle";
  EXPECT_DOUBLE_EQ(evaluated(a), 16.0);
  EXPECT_EQ(used(b).size(), 0U);
}

TEST_F(Network, ChecksDimensionsOfReadersToo) {
  const OdDbObjectId w = add(L"w", L"1 in");
  const OdDbObjectId area = add(L"area", L"w * w");
  const OdDbObjectId sum = add(L"total", L"area + 1 cm^2");
  EXPECT_DOUBLE_EQ(value(sum), 745.16);
  EXPECT_NE(set(area, L"w + area"), "");
  const std::string error = set(w, L"90 deg");
  EXPECT_NE(error.find("total = area + 1 cm^2"), std::string::npos) << error;
  EXPECT_EQ(set(w, L"10"), "") << "a plain number takes any dimension";
  EXPECT_DOUBLE_EQ(evaluated(sum), 200.0);
  drawing->setINSUNITS(OdDb::kUnitsCentimeters);
  EXPECT_DOUBLE_EQ(evaluated(sum), 101.0) << "lengths are in the units of the block";
}

TEST_F(Network, NewNamesAreFreeAndValid) {
  const OdDbObjectId a = add(L"a", L"5");
  const OdDbObjectId b = add(L"b", L"a + A * 2");
  const auto rename = [&](const wchar_t* name) {
    return edit<OdDbAssocVariable>(a)->setName(name, /*updateReferencingExpressions=*/true);
  };
  EXPECT_EQ(rename(L"length"), eOk);
  EXPECT_EQ(expression(b), "length + length * 2");
  EXPECT_EQ(rename(L"B"), eDuplicateKey);
  EXPECT_EQ(rename(L"a b"), eInvalidKey);
  EXPECT_EQ(rename(L"*x"), eInvalidKey) << "it is in use";
  EXPECT_EQ(edit<OdDbAssocVariable>(a)->setName(L"other", false), eOk);
  EXPECT_EQ(status(b), kAssocUnresolved);
}

TEST_F(Network, ReactorsHearOfNewValuesOnly) {
  const OdDbObjectId a = add(L"a", L"5");
  const OdDbObjectId b = add(L"b", L"a * 0 + 1");
  const OdDbObjectId c = add(L"c", L"a + 1");
  const OdDbObjectId d = add(L"d", L"1");
  const OdDbObjectId f = add(L"f", L"d + 1");
  ASSERT_EQ(evaluate(), eOk);
  for (const OdDbObjectId id : {a, b, c}) listenTo(id);
  EXPECT_EQ(setValue(a, 6), eOk);
  EXPECT_EQ(Listener::heard, (std::vector<std::string>{"a=6"}));
  ASSERT_EQ(evaluate(), eOk);
  EXPECT_EQ(Listener::heard, (std::vector<std::string>{"a=6", "c=7"}));
  EXPECT_EQ(setValue(a, 6), eOk);
  EXPECT_EQ(set(c, L"a + 1"), "");
  EXPECT_EQ(Listener::heard.size(), 2U) << "an equal value sends nothing";

  // What a reactor writes in its reaction is evaluated as well.
  Listener::written = d;
  EXPECT_EQ(setValue(a, 10), eOk);
  EXPECT_DOUBLE_EQ(evaluated(f), 12.0);
  EXPECT_EQ(status(network), kAssocUpToDate);
}

TEST_F(Network, OtherActionsRunAfterTheVariables) {
  const OdDbObjectId a = add(L"a", L"1");
  const OdDbObjectId b = add(L"b", L"a + 1");
  const OdDbObjectId id = addSumming({a, b});
  ASSERT_EQ(evaluate(), eOk);
  EXPECT_EQ(setValue(a, 4), eOk);
  EXPECT_EQ(status(id), kAssocChangedTransitively);
  ASSERT_EQ(evaluate(), eOk);
  ASSERT_EQ(evaluate(), eOk);
  EXPECT_EQ(Summing::sums, (std::vector{3.0, 9.0}));
}

TEST_F(Network, ActionsOutsideAnEvaluationKeepWaiting) {
  const OdDbObjectId a = add(L"a", L"1");
  const OdDbObjectId b = add(L"b", L"a + 1");
  const OdDbObjectId reader = addSumming({b});
  const OdDbObjectId alone = addSumming({});
  ASSERT_EQ(evaluate(), eOk);
  Summing::sums.clear();
  EXPECT_EQ(edit<OdDbAssocAction>(alone)->setStatus(kAssocChangedDirectly), eOk);
  EXPECT_EQ(setValue(a, 4), eOk);

  EXPECT_EQ(edit<OdDbAssocNetwork>(network)->evaluateVariablesFrom(a, nullptr), eOk);
  EXPECT_EQ(value(b), 5.0);
  EXPECT_TRUE(Summing::sums.empty());
  EXPECT_EQ(status(reader), kAssocChangedTransitively);

  EXPECT_EQ(edit<OdDbAssocNetwork>(network)->evaluateValues(nullptr), eOk);
  EXPECT_EQ(Summing::sums, std::vector{5.0});
  EXPECT_EQ(status(alone), kAssocChangedDirectly);
  EXPECT_EQ(status(network), kAssocChangedDirectly);

  ASSERT_EQ(evaluate(), eOk);
  EXPECT_EQ(Summing::sums, (std::vector{5.0, 0.0}));
  EXPECT_EQ(status(network), kAssocUpToDate);
}

TEST_F(Network, ValuesHaveThreeTypes) {
  const OdDbObjectId a = add(L"a", L"2.5");
  EXPECT_EQ(open<OdDbAssocVariable>(a)->value()->getType(), OdDb::kDwgReal);
  EXPECT_EQ(edit<OdDbAssocVariable>(a)->setValue(OdDbEvalVariant::init(OdInt32{-3})), eOk);
  EXPECT_EQ(open<OdDbAssocVariable>(a)->value()->getInt32(), -3);
  EXPECT_EQ(expression(a), "");
  EXPECT_EQ(edit<OdDbAssocVariable>(a)->setValue(OdDbEvalVariant::init(L"M6")), eOk);
  EXPECT_EQ(open<OdDbAssocVariable>(a)->value()->getString(), L"M6");
  const OdDbObjectId b = add(L"b");
  EXPECT_TRUE(open<OdDbAssocVariable>(b)->value().isNull());
  EXPECT_NE(set(b, L"a + 1").find("a holds a text"), std::string::npos);
  EXPECT_EQ(setValue(a, 1), eOk);
  EXPECT_EQ(set(b, L"a + 1"), "");
  EXPECT_EQ(setValue(b, 3), eInvalidInput) << "its expression defines it";
  EXPECT_EQ(edit<OdDbAssocVariable>(a)->setValue(OdDbEvalVariant::init(L"x")), eInvalidInput);
  EXPECT_EQ(edit<OdDbAssocVariable>(a)->setValue(nullptr), eInvalidInput);
}

TEST_F(Network, UndoTakesAPassBackToTheByte) {
  const OdDbObjectId a = add(L"a", L"1");
  OdDbObjectId last = a;
  for (int i = 0; i < 50; ++i) {
    last = add(OdString().format(L"v%d", i), open<OdDbAssocVariable>(last)->name() + L" + 1");
  }
  ASSERT_EQ(evaluate(), eOk);
  const auto state = [this] {
    std::string all;
    for (const auto& [handle, bytes] : statesOf(*drawing)) all += bytes;
    return all;
  };
  expectUndoable(*drawing, state, [&] {
    EXPECT_EQ(setValue(a, 2), eOk);
    EXPECT_EQ(evaluate(), eOk);
  });
  expectUndoable(*drawing, state, [&] { EXPECT_EQ(set(a, L"3 + 4"), ""); });
  EXPECT_EQ(status(last), kAssocChangedTransitively) << "marks follow undo and redo";
  ASSERT_EQ(drawing->undo(), eOk);
  EXPECT_EQ(status(last), kAssocUpToDate);
  ASSERT_EQ(drawing->redo(), eOk);
  EXPECT_EQ(status(last), kAssocChangedTransitively);
  expectUndoable(*drawing, state, [&] {
    edit<OdDbAssocNetwork>(network)->assertWriteEnabled();
    EXPECT_EQ(evaluate(), eOk);
  });
  expectUndoable(*drawing, state, [&] {
    EXPECT_EQ(edit<OdDbAssocVariable>(a)->setName(L"first", true), eOk);
    add(L"new", L"first + v3");
    EXPECT_EQ(edit<OdDbAssocNetwork>(network)->removeAction(last), eOk);
  });
}

TEST(ExpressionParser, TellsConstantsFromFormulas) {
  const Runtime runtime;
  OdExpression::Parser parser;
  EXPECT_EQ(parser.setExpression(L"2 * (3 + 4)"), eOk);
  ASSERT_TRUE(parser.isConstExpression());
  EXPECT_DOUBLE_EQ(parser.evaluate()->getAsDouble(), 14.0);
  EXPECT_EQ(parser.setExpression(L"a + b * A"), eOk);
  EXPECT_FALSE(parser.isConstExpression());
  EXPECT_TRUE(parser.evaluate().isNull());
  OdStringArray names;
  parser.getVariables(names);
  ASSERT_EQ(names.size(), 2U);
  EXPECT_EQ(names[1], L"b");
  EXPECT_TRUE(parser.usesName(L"B"));
  // Names may measure anything, and are no reason to doubt a unit.
  EXPECT_EQ(parser.setExpression(L"a * 5 mm + 2 mm^2"), eOk);
  EXPECT_EQ(parser.setExpression(L"6 mm/s"), eOk);
  EXPECT_TRUE(parser.isConstExpression());
  EXPECT_EQ(parser.setExpression(L"5 mm + 2 mm^2"), eInvalidInput);
  EXPECT_EQ(parser.setExpression(L"a +"), eInvalidInput);
  EXPECT_FALSE(parser.isConstExpression());
  EXPECT_EQ(parser.setName(L"_width2"), eOk);
  EXPECT_EQ(parser.setName(L"2width"), eInvalidKey);
  EXPECT_FALSE(parser.errorMessage().isEmpty());
}

TEST_F(Network, TopLevelNetworksAreEvaluatedTogether) {
  const OdDbObjectId block = addBlock(drawing, L"part");
  const auto made = [](OdDbObjectId owner, bool isTopLevel, const wchar_t* key) {
    return OdDbAssocNetwork::getInstanceFromObject(owner, /*createIfDoesNotExist=*/true, isTopLevel,
                                                   key);
  };
  const OdDbObjectId erased = addBlock(drawing, L"erased");
  const OdDbObjectId networks[] = {network, networkOf(block), made(block, true, L"SECOND"),
                                   made(block, false, L"APART"), networkOf(erased)};
  std::vector<OdDbObjectId> readers;
  for (const OdDbObjectId of : networks) {
    const OdDbObjectId a = add(of, L"a", L"1");
    readers.push_back(add(of, L"b", L"a + 1"));
    ASSERT_EQ(evaluate(of), eOk);
    EXPECT_EQ(setValue(a, 4), eOk);
  }
  EXPECT_FALSE(open<OdDbAssocNetwork>(networks[3])->isTopLevel());
  EXPECT_EQ(edit<OdDbBlockTableRecord>(erased)->erase(), eOk);
  ASSERT_EQ(OdDbAssocNetwork::evaluateTopLevel(drawing), eOk);
  for (std::size_t i = 0; i < 4; ++i) EXPECT_EQ(value(readers[i]), i < 3 ? 5.0 : 2.0) << i;
  EXPECT_EQ(OdDbAssocNetwork::evaluateTopLevel(nullptr), eInvalidInput);
}

}  // namespace
