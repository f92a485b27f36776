// Random edits of a constraint manager against a plain model of it: status, modified objects,
// names, soft versions, sides, and variables that define each other, with undo, redo, paging,
// saving and reading again.
#include <algorithm>
#include <iterator>
#include <map>
#include <set>

#include "tests/random/random_source.h"
#include "tests/support/test_seed.h"
#include "tests/vdm_db/constraints/constraint_testing.h"
#include "vdm_db/constraints/vdm_constraint_properties_utils.h"
#include "vdm_db/parameters/vdm_variable_evaluation.h"

namespace {

namespace utils = VdmConstraintPropertiesUtils;

constexpr int kEntities = 6;
constexpr int kNoEntity = -1;

/// What is known of a constraint.
struct Row {
  OdLong type = 0;
  std::string name;
  bool hasVariable = false;  ///< of that name
  double value = 0;
  bool enabled = true;
  std::vector<int> arguments;
  bool isFirstOrigin = false;  ///< the first argument is default geometry
  std::string sides;
  bool isAligned = false;
  bool isMeasured = false;
  bool operator==(const Row&) const = default;

  [[nodiscard]] OdLong softVersion() const {
    if (type > 16) return 0;
    if (isAligned || !sides.empty()) return 3;
    return isFirstOrigin ? 2 : OdLong{type >= 15 || isMeasured};
  }
};

/// A constant, or twice another variable.
struct Variable {
  double value = 0;
  std::string source;
};

struct Model {
  std::map<std::string, Variable> variables;
  int status = 3;
  std::set<int> modified;
  std::map<OdULong, Row> rows;
  int step = 0;

  void outdate(const std::vector<int>& entities) {
    if (status >= 3) return everything();
    status = 2;
    modified.insert(entities.begin(), entities.end());
  }
  void everything() {
    status = 4;
    modified.clear();
  }
  void setStatus(int next) {
    if (next != status && next != 1 && next != 2) modified.clear();
    status = next;
  }
  void finish(int entity) {
    if (status >= 3) return everything();
    modified.erase(entity);
    status = modified.empty() ? 0 : 2;
  }
  [[nodiscard]] bool isUsed(int entity) const {
    return std::any_of(rows.begin(), rows.end(), [entity](const auto& entry) {
      return std::ranges::count(entry.second.arguments, entity) > 0;
    });
  }
  [[nodiscard]] bool isSource(const std::string& name) const {
    return std::ranges::any_of(variables, [&](const auto& v) { return v.second.source == name; });
  }
  [[nodiscard]] std::string freeName(const std::string& base) const {
    std::string name = base;
    for (int i = 1; variables.contains(name); ++i) name = base + "_" + std::to_string(i);
    return name;
  }
  bool rename(Row& row, const std::string& name) {
    if (variables.contains(name)) return row.name == name;
    variables[name] = variables.extract(row.name).mapped();
    for (auto& [key, variable] : variables) {
      if (variable.source == row.name) variable.source = name;
    }
    row.name = name;
    return true;
  }
  /// False when `name` would depend on itself.
  bool define(const std::string& name, const std::string& source) {
    for (std::string at = source; !at.empty(); at = variables[at].source) {
      if (at == name) return false;
    }
    variables[name].source = source;
    return true;
  }
  [[nodiscard]] double valueOf(const std::string& name) {
    const Variable& variable = variables[name];
    return variable.source.empty() ? variable.value : 2 * valueOf(variable.source);
  }
  void evaluate() {
    for (auto& [nodeId, row] : rows) {
      if (!row.hasVariable || row.value == valueOf(row.name)) continue;
      row.value = valueOf(row.name);
      outdate(row.arguments);
    }
  }
  /// Entities that nothing refers to any more count as finished.
  void remove(std::map<OdULong, Row>::iterator row) {
    const std::set<int> left(row->second.arguments.begin(), row->second.arguments.end());
    if (row->second.hasVariable && !isSource(row->second.name)) variables.erase(row->second.name);
    rows.erase(row);
    if (status == 1) status = 2;
    for (const int entity : left) {
      if (!isUsed(entity)) finish(entity);
    }
  }
};

class RandomConstraints : public ConstraintTest {
 protected:
  RandomConstraints() {
    for (int i = 0; i < kEntities; ++i) m_entities.push_back(newLine().getHandle());
    m_counter = newLine().getHandle();
    m_drawing->disableUndoRecording(false);
  }

  [[nodiscard]] OdDbObjectId entity(int index) const {
    return index == kNoEntity
               ? OdDbObjectId::kNull
               : m_drawing->getOdDbObjectId(m_entities[static_cast<std::size_t>(index)]);
  }
  [[nodiscard]] Row observed(const VdmConstraint& constraint) const {
    Row row{constraint.type(),
            std::string(constraint.name().utf8()),
            !constraint.userVariable().isNull(),
            constraint.userValue(),
            constraint.isEnabled(),
            {},
            false,
            "",
            false,
            false};
    for (const VdmExtendedPath& path : constraint.getExtArguments()) {
      int index = kNoEntity;
      for (int i = 0; i < kEntities; ++i) {
        if (vdmu::getInsertId(path.path) == entity(i)) index = i;
      }
      row.arguments.push_back(index);
    }
    row.isFirstOrigin = constraint.dependencies()[0].isDefaultGeometry;
    OdString sides;
    constraint.properties().getProperty(L"HalfSpaceOrientation", sides);
    row.sides = sides.utf8();
    AlignmentOrientation alignment{};
    row.isAligned = utils::getAlignment(&constraint, alignment);
    utils::MeasurementMode mode{};
    row.isMeasured = utils::getMeasurementMode(&constraint, 1, mode);
    return row;
  }
  void check() const {
    ASSERT_EQ(status(), m_model.status);
    std::set<OdDbObjectId> modified;
    for (const int index : m_model.modified) modified.insert(entity(index));
    const OdDbObjectIdArray present = manager()->getModifiedObjects();
    ASSERT_EQ(std::set<OdDbObjectId>(present.begin(), present.end()), modified);
    for (const OdDbObjectId& object : registry()) {
      ASSERT_EQ(VdmDbObject::openVdmDbObject(open<VdmDbObject>(object)->attachedEntityId()),
                open<VdmDbObject>(object));
    }
    ASSERT_EQ(manager()->constraintsCount(), m_model.rows.size());
    for (const auto& [nodeId, row] : m_model.rows) {
      const VdmConstraintPtr constraint = manager()->getConstraintByNodeId(nodeId);
      ASSERT_FALSE(constraint.isNull()) << nodeId;
      ASSERT_EQ(observed(*constraint), row) << nodeId;
      ASSERT_EQ(constraint->owner(), m_constraints);
      OdLong softVersion = 0;
      constraint->properties().getProperty(L"softVersion", softVersion);
      ASSERT_EQ(softVersion, row.softVersion()) << "type " << row.type;
      ASSERT_EQ(ConstraintRecord(*constraint).storedType(), softVersion > 0 ? 0 : row.type);
    }
  }

  // ---- Edits, each in the drawing and in the model

  void add() {
    constexpr OdLong kTypes[] = {3, 7, 12, 14, 15, 16, 17};
    Row row;
    row.type = kTypes[m_random.below(std::size(kTypes))];
    row.name = "C" + std::to_string(m_random.below(5));
    std::vector<OdDbObjectId> entities;
    for (std::size_t count = 1 + m_random.below(3); count > 0; --count) {
      row.arguments.push_back(static_cast<int>(m_random.below(kEntities)));
      entities.push_back(entity(row.arguments.back()));
    }
    addConstraint(row.type, entities, OdString(row.name));
    row.hasVariable = row.type >= 10;
    if (row.hasVariable) m_model.variables[row.name = m_model.freeName(row.name)] = {};
    m_model.outdate(row.arguments);
    const OdULong last = m_model.rows.empty() ? 0 : m_model.rows.rbegin()->first;
    m_model.rows.emplace(last + 1, std::move(row));
  }
  void rename(VdmConstraint* constraint, Row& row) {
    const std::string name = "N" + std::to_string(m_random.below(9));
    const bool isTaken = constraint->setName(OdString(name)) == eOk;
    if (row.hasVariable) {
      EXPECT_EQ(isTaken, m_model.rename(row, name));
    } else {
      row.name = name;
    }
  }
  void define(VdmConstraint* constraint, const Row& row) {
    if (!row.hasVariable) return;
    auto source = std::next(m_model.variables.begin(),
                            static_cast<std::ptrdiff_t>(m_random.below(m_model.variables.size())));
    const OdResult result =
        editManager()->setConstraintExpression(constraint, OdString("2 * " + source->first));
    const bool isDefined = m_model.define(row.name, source->first);
    EXPECT_EQ(result, isDefined ? eOk : eCircularReference);
  }
  void edit(VdmConstraint* constraint, Row& row) {
    bool outdates = true;
    switch (m_random.below(10)) {
      case 0:
        constraint->setEnabled(row.enabled = m_random.chance(50));
        break;
      case 1:
        rename(constraint, row);
        outdates = false;
        break;
      case 2:
        editManager()->setConstraintValue(constraint, m_model.step);
        outdates = row.hasVariable;
        if (!outdates) break;
        row.value = m_model.step;
        m_model.variables[row.name] = {row.value, {}};
        break;
      case 7:
        define(constraint, row);
        outdates = false;
        break;
      case 3:
        utils::setAlignment(constraint, kAlignmentFirst);
        row.isAligned = true;
        break;
      case 4:
        utils::setHalfSpace(constraint, 0, kHalfSpaceNegative);
        row.sides.replace(0, row.sides.empty() ? 0 : 1, "-");
        break;
      case 5:
        utils::setMeasurementMode(constraint, 1, utils::kMeasureCentralPoint);
        row.isMeasured = true;
        break;
      case 6:
        constraint->removeProperty(L"AlignmentOrientation");
        constraint->removeProperty(L"HalfSpaceOrientation");
        constraint->removeProperty(L"MM1");
        row.isAligned = row.isMeasured = outdates = false;
        row.sides.clear();
        break;
      default: {
        std::vector<ExtendedDep> dependencies = constraint->dependencies();
        std::rotate(dependencies.begin(), dependencies.begin() + 1, dependencies.end());
        std::rotate(row.arguments.begin(), row.arguments.begin() + 1, row.arguments.end());
        for (ExtendedDep& dependency : dependencies) dependency.isDefaultGeometry = false;
        dependencies[0].isDefaultGeometry = row.isFirstOrigin = !row.isFirstOrigin;
        dependencies[0].defaultGeometry = vdmu::kDefaultOrigin;
        constraint->setDependencies(dependencies);
      }
    }
    if (outdates) m_model.outdate(row.arguments);
  }
  void editAny() {
    if (m_model.rows.empty()) return add();
    const auto place = std::next(m_model.rows.begin(),
                                 static_cast<std::ptrdiff_t>(m_random.below(m_model.rows.size())));
    const VdmConstraintPtr constraint = manager()->getConstraintByNodeId(place->first);
    if (m_random.chance(75)) return edit(constraint, place->second);
    editManager()->removeConstraint(constraint);
    m_model.remove(place);
  }
  void report() {
    const int index = static_cast<int>(m_random.below(kEntities));
    const bool isModified = m_random.chance(60);
    manager()->notifyAboutModifications(entity(index), isModified);
    isModified ? m_model.outdate({index}) : m_model.finish(index);
  }
  void solve() {
    const int next = static_cast<int>(m_random.below(4));
    ConstraintTest::setStatus(static_cast<Manager::ConstraintManagerStatus>(next));
    m_model.setStatus(next);
  }
  void change() {
    m_drawing->startUndoRecord();
    ++m_model.step;  // makes every step a change, beside the manager
    DrawingVerbs::edit<OdDbLine>(m_drawing->getOdDbObjectId(m_counter))
        ->setEndPoint({0, static_cast<double>(m_model.step), 0});
    const std::size_t kind = m_random.below(8);
    if (kind < 2) add();
    if (kind >= 2 && kind < 5) editAny();
    if (kind == 5 || kind == 6) report();
    if (kind == 7) solve();
    vdmu::evaluateVariables(m_modelSpace);
    m_model.evaluate();
    m_steps.resize(m_position + 1);
    m_steps.push_back(m_model);
    ++m_position;
  }

  // ---- Moves among the states

  void undo() {
    if (m_position == 0) return;
    ASSERT_EQ(m_drawing->undo(), eOk);
    m_model = m_steps[--m_position];
  }
  void redo() {
    if (m_position + 1 >= m_steps.size()) return;
    ASSERT_EQ(m_drawing->redo(), eOk);
    m_model = m_steps[++m_position];
  }
  void readAgain() {
    reopen();
    m_drawing->disableUndoRecording(false);
    m_model.status = 3;
    m_model.modified.clear();
    m_steps = {m_model};
    m_position = 0;
  }
  void play(int steps) {
    for (; steps > 0; --steps) {
      const std::size_t kind = m_random.below(20);
      if (kind < 12) change();
      if (kind >= 12 && kind < 16) undo();
      if (kind == 16 || kind == 17) redo();
      if (kind == 18 && m_drawing->save().ok()) m_drawing->pageOut(0);
      if (kind == 19) readAgain();
      ASSERT_NO_FATAL_FAILURE(check()) << steps << " steps before the end";
    }
  }

  std::vector<OdDbHandle> m_entities;
  OdDbHandle m_counter;
  RandomSource m_random{freshSeed()};
  Model m_model;
  std::vector<Model> m_steps{Model()};
  std::size_t m_position = 0;
};

TEST_F(RandomConstraints, AgreeWithAPlainModel) { play(600); }

}  // namespace
