// Random edits of a configured model against a plain one, each undone and redone, with saves and
// reloads between.
#include <cmath>
#include <functional>

#include "tests/support/test_seed.h"
#include "tests/vdm_db/configurations/configuration_testing.h"

namespace {

using namespace configuration_testing;

bool same(const std::string& a, const std::string& b) {
  return OdString(a).iCompare(OdString(b)) == 0;
}

/// Two columns of numbers and one of texts.
struct Model {
  struct Values {
    double numbers[2];
    std::string text;
  };
  struct Row {
    std::string key;
    Values values;
  };
  std::vector<Row> rows;
  Values present{};
  std::string shown, selected;

  [[nodiscard]] const Row* find(const std::string& key) const {
    for (const Row& row : rows) {
      if (same(row.key, key)) return &row;
    }
    return nullptr;
  }
  [[nodiscard]] bool agrees(const Row& row, int column) const {
    return column == 2 ? same(row.values.text, present.text)
                       : std::abs(row.values.numbers[column] - present.numbers[column]) < 1e-9;
  }
  void take(const Row& row, int except) {
    for (int i = 0; i < 2; ++i) {
      if (i != except) present.numbers[i] = row.values.numbers[i];
    }
    if (except != 2) present.text = row.values.text;
    if (except != 3) shown = row.key;
    selected = row.key;
  }
  /// A column was changed; 3 is the key.
  void follow(int column) {
    const Row* best = column == 3 ? find(shown) : nullptr;
    int fewest = 4;
    for (const Row& row : rows) {
      if (column == 3 || !agrees(row, column)) continue;
      int disagreements = 0;
      for (int i = 0; i < 3; ++i) disagreements += agrees(row, i) ? 0 : 1;
      if (disagreements >= fewest) continue;
      best = &row;
      fewest = disagreements;
    }
    if (best != nullptr) return take(Row(*best), column);
    if (selected == "Custom") return;
    selected = "Custom";
    if (column != 3) shown = "Custom";
  }
  [[nodiscard]] std::string state() const {
    const auto number = [](double value) {
      return std::string(OdString().format(L"%.12g", value).utf8());
    };
    return selected + ": Config=" + shown + " A=" + number(present.numbers[0]) +
           " B=" + number(present.numbers[1]) + " M=" + present.text;
  }
};

class ConfigurationModelTest : public ConfigurationTest {
 protected:
  std::size_t pick(std::size_t count) { return m_random() % count; }
  double number() { return static_cast<double>(pick(4)) * 2.5 - 2.5; }
  std::string text() { return std::vector<std::string>{"x", "X", "Y z", "17"}[pick(4)]; }
  std::string key() { return std::vector<std::string>{"r", "R", "s", "T"}[pick(4)] + digit(); }
  std::string digit() { return std::to_string(pick(4)); }

  void start() {
    Rows sheet{{"Config", "A", "B", "M"}, {"first", "1", "2", "text"}};
    m_model.rows.push_back({"first", {{1, 2}, "text"}});
    for (int i = 0; i < 6; ++i) {
      const Model::Row row{key() + "_" + std::to_string(i), {{number(), number()}, text()}};
      m_model.rows.push_back(row);
      sheet.push_back({row.key, std::to_string(row.values.numbers[0]),
                       std::to_string(row.values.numbers[1]), row.values.text});
    }
    ASSERT_EQ(loadSheet(sheet), eOk);
    m_model.take(m_model.rows[0], -1);
  }

  /// One edit of both.
  void editOnce() {
    switch (pick(7)) {
      case 0:
      case 1: {
        const int column = static_cast<int>(pick(2));
        const double value = number();
        const bool changes = value != m_model.present.numbers[column];
        ASSERT_EQ(setNumber(variable(column == 0 ? L"A" : L"B"), value), eOk);
        m_model.present.numbers[column] = value;
        if (changes) m_model.follow(column);
        return;
      }
      case 2: {
        m_model.present.text = text();
        type(L"M", m_model.present.text);
        return m_model.follow(2);
      }
      case 3: {
        const std::size_t row = pick(m_model.rows.size() + 1);
        m_model.shown = row < m_model.rows.size() ? m_model.rows[row].key : key();
        type(L"Config", m_model.shown);
        return m_model.follow(3);
      }
      case 4: {
        const std::string name = pick(2) != 0 ? key() : m_model.rows[pick(m_model.rows.size())].key;
        const Model::Row* row = m_model.find(name);
        ASSERT_EQ(edit()->setConfiguration(OdString(name)), row == nullptr ? 5 : 0);
        if (row != nullptr) m_model.take(Model::Row(*row), -1);
        return;
      }
      case 5: {
        const std::string name = pick(5) == 0 ? "CUSTOM" : key();
        const int expected = name == "CUSTOM" ? 5 : m_model.find(name) != nullptr ? 27 : 0;
        ASSERT_EQ(edit()->saveConfiguration(OdString(name)), expected);
        if (expected != 0) return;
        m_model.rows.push_back({name, m_model.present});
        m_model.selected = m_model.shown = name;
        return;
      }
      default: {
        if (m_model.rows.size() < 3) return;
        const std::string name = m_model.rows[pick(m_model.rows.size())].key;
        ASSERT_EQ(edit()->removeConfiguration(OdString(name)), eOk);
        std::erase_if(m_model.rows, [&](const Model::Row& row) { return row.key == name; });
        if (same(m_model.selected, name)) m_model.selected = m_model.shown = "Custom";
      }
    }
  }
  void type(const wchar_t* name, const std::string& text) {
    ASSERT_EQ(VdmConfigurationFeature::setStringValue(change<OdDbAssocVariable>(variable(name)),
                                                      OdString(text), /*select=*/true),
              eOk);
  }

  std::mt19937 m_random{freshSeed()};
  Model m_model;
};

TEST_F(ConfigurationModelTest, EditsAgreeWithAPlainModel) {
  start();
  for (int round = 0; round < 200; ++round) {
    const std::string before = wholeState();
    m_drawing->startUndoRecord();
    ASSERT_NO_FATAL_FAILURE(editOnce()) << round;
    ASSERT_EQ(state(), m_model.state()) << round;
    const std::string after = wholeState();
    if (before != after) {
      ASSERT_EQ(m_drawing->undo(), eOk);
      ASSERT_EQ(wholeState(), before) << round;
      ASSERT_EQ(m_drawing->redo(), eOk);
      ASSERT_EQ(wholeState(), after) << round;
    }
    if (round % 60 == 59) reopen();
  }
}

}  // namespace
