// Random edits of a network against a plain model.
//
// The model keeps for each variable a constant and a list of factors and names, knows nothing of
// graphs or programs, and computes values by recursion. Before each undo step it is copied; undo
// and redo move among the copies.
#include <algorithm>
#include <map>
#include <optional>
#include <random>

#include "platform/cloning/id_mapping.h"
#include "platform/db/audit_info.h"
#include "tests/platform/assoc/network_testing.h"
#include "tests/support/test_seed.h"

namespace {

struct Term {
  int factor;
  std::string name;
};
struct Formula {
  int constant = 0;
  std::vector<Term> terms;

  [[nodiscard]] OdString text() const {
    std::string all = std::to_string(constant);
    for (const Term& term : terms) all += " + " + std::to_string(term.factor) + "*" + term.name;
    return OdString(all);
  }
};
using Model = std::map<std::string, Formula>;

/// Nothing where a name is missing or a definition needs itself.
std::optional<double> computed(const Model& model, const std::string& name,
                               std::map<std::string, std::optional<double>>& known) {
  const auto seen = known.find(name);
  if (seen != known.end()) return seen->second;
  const auto formula = model.find(name);
  if (formula == model.end()) return {};
  known[name] = std::nullopt;
  std::optional<double> value = formula->second.constant;
  for (const Term& term : formula->second.terms) {
    const std::optional<double> read = computed(model, term.name, known);
    value = value && read ? std::optional(*value + term.factor * *read) : std::nullopt;
  }
  return known[name] = value;
}

bool reaches(const Model& model, const std::string& from, const std::string& to) {
  if (from == to) return true;
  const auto formula = model.find(from);
  if (formula == model.end()) return false;
  return std::any_of(formula->second.terms.begin(), formula->second.terms.end(),
                     [&](const Term& term) { return reaches(model, term.name, to); });
}

bool isWhole(const Model& model) {
  std::map<std::string, std::optional<double>> known;
  return std::all_of(model.begin(), model.end(), [&](const auto& entry) {
    return computed(model, entry.first, known).has_value();
  });
}

class Counting : public OdDbAssocEvaluationCallback {
 public:
  void actionEvaluated(const OdDbObjectId& action, OdDbAssocStatus) override { ++count[action]; }
  std::map<OdDbObjectId, int> count;
};

class RandomNetwork : public NetworkTest {
 protected:
  void play(int steps) {
    drawing->clearUndo();
    for (int step = 0; step < steps && !HasFailure(); ++step) {
      SCOPED_TRACE("step " + std::to_string(step));
      switch (pick(12)) {
        case 0:
          undoOrRedo(/*undoes=*/true);
          break;
        case 1:
          undoOrRedo(/*undoes=*/false);
          break;
        case 2:
          if (pick(6) == 0) reopen();
          break;
        case 3:
          if (pick(6) == 0) checkClone();
          break;
        default:
          edit();
      }
      if (pick(3) == 0) check();
    }
    check();
  }

  int pick(int count) { return std::uniform_int_distribution(0, count - 1)(engine); }
  OdDbObjectId idOf(const std::string& name) {
    return open<OdDbAssocNetwork>(network)->variableNamed(OdString(name));
  }
  std::string anyName() {
    auto at = model.begin();
    std::advance(at, pick(static_cast<int>(model.size())));
    return at->first;
  }
  std::string freeName() {
    std::string name;
    do {
      name = "n" + std::to_string(pick(40));
    } while (model.count(name) != 0);
    return name;
  }
  Formula randomFormula() {
    Formula formula{pick(9), {}};
    for (int i = pick(4); i > 0 && !model.empty(); --i) {
      formula.terms.push_back({pick(3) - 1, anyName()});
    }
    return formula;
  }

  void edit() {
    drawing->startUndoRecord();
    const OdUInt32 steps = drawing->numUndoSteps();
    const Model old = model;
    if (model.size() < 3 || (pick(5) == 0 && model.size() < 30)) {
      const std::string name = freeName();
      const Formula formula = randomFormula();
      model[name] = formula;
      add(OdString(name), formula.text());
    } else if (const int what = pick(8); what < 4) {
      redefine(anyName(), randomFormula());
    } else if (what == 4) {
      const std::string name = anyName();
      const bool isPlain = used(idOf(name)).empty() && model[name].terms.empty();
      const int value = pick(100);
      EXPECT_EQ(setValue(idOf(name), value), isPlain ? eOk : eInvalidInput);
      if (isPlain) model[name].constant = value;
    } else if (what == 5) {
      rename(anyName(), freeName(), /*follow=*/pick(4) != 0);
    } else if (what == 6 && pick(3) == 0) {
      erase(anyName());
    } else {
      EXPECT_EQ(evaluate(), eOk);
    }
    if (pick(3) == 0) {
      EXPECT_EQ(evaluate(), eOk);
    }
    noteStep(steps, old);
  }

  /// A step that changed something can be undone to `old`.
  void noteStep(OdUInt32 stepsBefore, const Model& old) {
    if (drawing->numUndoSteps() == stepsBefore) return;
    before.push_back(old);
    after.clear();
  }

  // While a name is missing, what uses it is no part of a cycle: then only the network knows.
  void redefine(const std::string& name, const Formula& formula) {
    if (!isWhole(model)) {
      if (set(idOf(name), formula.text()).empty()) model[name] = formula;
      return;
    }
    // Unresolved expressions find their names when something is evaluated.
    if (mayBeUnlinked) {
      EXPECT_EQ(evaluate(), eOk);
    }
    const bool isCyclic =
        std::any_of(formula.terms.begin(), formula.terms.end(),
                    [&](const Term& term) { return reaches(model, term.name, name); });
    const auto states = isCyclic ? statesOf(*drawing) : std::map<OdUInt64, std::string>();
    const std::string error = set(idOf(name), formula.text());
    EXPECT_EQ(!error.empty(), isCyclic) << name << " = " << formula.text().utf8();
    if (isCyclic) {
      EXPECT_NE(error.find(name + " -> "), std::string::npos) << error;
      EXPECT_EQ(statesOf(*drawing), states);
    } else {
      model[name] = formula;
    }
  }

  // Without following, what uses the variable is left with a name that is not there. So it is with
  // an expression that was unresolved before.
  void rename(const std::string& name, const std::string& newName, bool follow) {
    std::vector<std::string> readers;
    for (const OdDbObjectId user : users(idOf(name))) readers.push_back(NetworkTest::name(user));
    EXPECT_EQ(NetworkTest::edit<OdDbAssocVariable>(idOf(name))->setName(OdString(newName), follow),
              eOk);
    mayBeUnlinked = true;
    for (const std::string& reader : readers) {
      for (Term& term : model[reader].terms) {
        if (follow && term.name == name) term.name = newName;
      }
    }
    model[newName] = model[name];
    model.erase(name);
  }

  void erase(const std::string& name) {
    EXPECT_EQ(NetworkTest::edit<OdDbAssocNetwork>(network)->removeAction(idOf(name)), eOk);
    mayBeUnlinked = true;
    model.erase(name);
  }

  void undoOrRedo(bool undoes) {
    const OdUInt32 steps = drawing->numUndoSteps();
    if (undoes ? steps == 0 : !drawing->hasRedo()) return;
    ASSERT_EQ(undoes ? drawing->undo() : drawing->redo(), eOk);
    mayBeUnlinked = true;
    if (undoes) {
      after.push_back(model);
      model = before.back();
      before.pop_back();
    } else {
      before.push_back(model);
      model = after.back();
      after.pop_back();
    }
  }

  void reopen() {
    NetworkTest::reopen();
    drawing->clearUndo();
    before.clear();
    after.clear();
  }

  void checkClone() {
    const OdDbObjectId block = addBlock(drawing, L"copy");
    const OdDbIdMappingPtr mapping = OdDbIdMapping::createObject(OdDb::kDcObjects);
    const OdDbObjectIdArray actions = open<OdDbAssocNetwork>(network)->getActions();
    {
      OdDbTransaction trial(drawing);
      ASSERT_EQ(drawing->deepCloneObjects(actions, block, *mapping), eOk);
      const OdDbObjectId own = network;
      network = networkOf(block);
      check();
      network = own;
    }
    NetworkTest::edit<OdDbBlockTableRecord>(block)->erase();
    drawing->clearUndo();
    before.clear();
    after.clear();
  }

  void check() {
    Counting counting;
    drawing->startUndoRecord();
    const OdUInt32 steps = drawing->numUndoSteps();
    ASSERT_EQ(evaluate(network, &counting), eOk);
    noteStep(steps, model);
    for (const auto& [id, count] : counting.count) EXPECT_EQ(count, 1) << name(id);
    std::map<std::string, std::optional<double>> known;
    EXPECT_EQ(open<OdDbAssocNetwork>(network)->getActions().size(), model.size());
    for (const auto& [name, formula] : model) {
      const OdDbObjectId id = idOf(name);
      ASSERT_FALSE(id.isNull()) << name;
      const std::optional<double> expected = computed(model, name, known);
      if (!expected) {
        EXPECT_GE(status(id), kAssocFailedToEvaluate) << name << " = " << formula.text().utf8();
        continue;
      }
      EXPECT_DOUBLE_EQ(value(id), *expected) << name;
      EXPECT_EQ(status(id), kAssocUpToDate) << name;
      for (const OdDbObjectId read : used(id)) {
        const std::vector<OdDbObjectId> readers = users(read);
        EXPECT_EQ(std::count(readers.begin(), readers.end(), id), 1);
      }
    }
    OdDbAuditInfo info;
    drawing->audit(&info);
    if (!isWhole(model)) return;
    EXPECT_EQ(info.numErrors(), 0U) << (info.lines().isEmpty() ? "" : info.lines()[0].utf8());
  }

  std::mt19937 engine{freshSeed()};
  Model model;
  std::vector<Model> before;
  std::vector<Model> after;
  bool mayBeUnlinked = false;  ///< a name was missing, or came back, at some time
};

TEST_F(RandomNetwork, AgreesWithAPlainModel) { play(1500); }

}  // namespace
