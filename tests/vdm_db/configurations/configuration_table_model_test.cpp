// Random tables against a plain model: edits with undo, redo, save and reload, and questions that
// the model answers by comparing every cell of every row.
#include <algorithm>
#include <cctype>
#include <cmath>
#include <optional>

#include "tests/support/test_seed.h"
#include "tests/vdm_db/configurations/configuration_testing.h"

namespace {

using namespace configuration_testing;

std::string lower(std::string text) {
  std::ranges::transform(text, text.begin(),
                         [](char ch) { return static_cast<char>(std::tolower(ch)); });
  return text;
}

struct Cell {
  std::string text;
  double number;
};

/// A table as rows of cells; texts are ASCII.
struct Model {
  struct Row {
    std::string key;
    std::vector<Cell> cells;
  };
  std::vector<std::string> names;
  std::vector<bool> isText;
  std::vector<Row> rows;

  [[nodiscard]] std::optional<std::size_t> find(const std::string& key) const {
    for (std::size_t i = 0; i < rows.size(); ++i) {
      if (lower(rows[i].key) == lower(key)) return i;
    }
    return {};
  }
  [[nodiscard]] Rows sheet() const {
    Rows sheet{{"Key"}};
    for (const std::string& name : names) sheet[0].push_back(name);
    for (const Row& row : rows) {
      sheet.push_back({row.key});
      for (const Cell& cell : row.cells) sheet.back().push_back(cell.text);
    }
    return sheet;
  }
  [[nodiscard]] bool agrees(std::size_t row, std::size_t column, const Cell& sought) const {
    const Cell& cell = rows[row].cells[column];
    if (isText[column]) return lower(cell.text) == lower(sought.text);
    return std::abs(cell.number - sought.number) < 1.05e-10;
  }
};

class ConfigurationTableModelTest : public virtual VdmModule, public ReferenceTest {
 protected:
  std::size_t pick(std::size_t count) { return m_random() % count; }
  std::string word() {
    static const char* const kWords[] = {"steel", "Iron", "STEEL", "a b", "12 mm", "x", "X", "nan"};
    return kWords[pick(std::size(kWords))];
  }
  std::string number() {
    static const char* const kNumbers[] = {"1", "2", "10", "-3.5", "1e3", "0x10", "2.0", "0"};
    return kNumbers[pick(std::size(kNumbers))];
  }
  Cell cell(bool isText) {
    const std::string text = isText && pick(8) != 0 ? word() : number();
    char* end = nullptr;
    const double value = std::strtod(text.c_str(), &end);
    return {text, *end == '\0' && text != "nan" ? value : 0.0};
  }
  [[nodiscard]] std::string newKey() {
    std::string key(1, static_cast<char>("abAB"[pick(4)]));
    return key + std::to_string(pick(3 * m_model.rows.size() + 9));
  }

  void makeModel(std::size_t columns, std::size_t rows) {
    for (std::size_t column = 0; column < columns; ++column) {
      m_model.names.push_back("C" + std::to_string(column));
      m_model.isText.push_back(pick(3) == 0);
    }
    while (m_model.rows.size() < rows) {
      const std::string key = newKey();
      if (!m_model.find(key)) m_model.rows.push_back({key, cells()});
    }
    // A column of texts has one in its first row.
    for (std::size_t column = 0; column < columns; ++column) {
      if (m_model.isText[column]) m_model.rows[0].cells[column] = {"first", 0};
    }
  }
  std::vector<Cell> cells() {
    std::vector<Cell> made;
    for (const bool isText : m_model.isText) made.push_back(cell(isText));
    return made;
  }
  [[nodiscard]] RowMap mapOf(const std::vector<Cell>& cells, unsigned few = 1) {
    RowMap map;
    for (std::size_t i = 0; i < cells.size(); ++i) {
      const OdString name(pick(2) != 0 ? lower(m_model.names[i]) : m_model.names[i]);
      if (pick(few) == 0) map[name] = {OdString(cells[i].text), cells[i].number};
    }
    return map;
  }

  /// One edit, of the table and of the model.
  void editOnce(VdmDbConfigurationTable& table) {
    const std::size_t row = pick(m_model.rows.size() + 1);
    switch (pick(4)) {
      case 0: {
        const std::string key = newKey();
        const std::vector<Cell> made = cells();
        const bool isNew = !m_model.find(key);
        const auto at = static_cast<unsigned>(row);
        ASSERT_EQ(table.insertRow(at, OdString(key), mapOf(made)), isNew ? 0 : 27);
        if (isNew) m_model.rows.insert(m_model.rows.begin() + at, {key, made});
        return;
      }
      case 1: {
        if (m_model.rows.size() < 2) return;
        const std::string key = newKey();
        const auto known = m_model.find(key);
        ASSERT_EQ(table.removeRow(OdString(key)), known ? 0 : 5);
        if (known) m_model.rows.erase(m_model.rows.begin() + static_cast<std::ptrdiff_t>(*known));
        return;
      }
      case 2: {
        const std::vector<Cell> made = cells();
        const bool isThere = row < m_model.rows.size();
        ASSERT_EQ(table.setRow(static_cast<unsigned>(row), mapOf(made)), isThere ? 0 : 5);
        if (isThere) m_model.rows[row].cells = made;
        return;
      }
      default: {
        const std::size_t column = pick(m_model.names.size());
        const std::string name = "N" + std::to_string(m_random());
        table.setColumnName(OdString(m_model.names[column]), OdString(name));
        m_model.names[column] = name;
      }
    }
  }

  void ask(const VdmDbConfigurationTable& table) {
    std::vector<Cell> sought = cells();
    const RowMap optional = mapOf(sought);
    const RowMap required = pick(2) != 0 ? mapOf(sought, 6) : RowMap();
    std::vector<std::pair<std::size_t, std::size_t>> expected;  // disagreements, row
    for (std::size_t row = 0; row < m_model.rows.size(); ++row) {
      std::size_t disagreements = 0;
      bool isOut = false;
      for (std::size_t column = 0; column < sought.size(); ++column) {
        if (m_model.agrees(row, column, sought[column])) continue;
        ++disagreements;
        isOut |= required.contains(OdString(m_model.names[column]));
      }
      if (!isOut) expected.emplace_back(disagreements, row);
    }
    std::ranges::sort(expected);
    OdArray<unsigned> rows;
    ASSERT_EQ(table.determineConfigIndex(required, optional, rows), expected.empty() ? 5 : 0);
    ASSERT_EQ(rows.size(), expected.size());
    for (OdUInt32 i = 0; i < rows.size(); ++i) ASSERT_EQ(rows[i], expected[i].second);
  }

  std::mt19937 m_random{freshSeed()};
  Model m_model;
};

TEST_F(ConfigurationTableModelTest, EditsAndQuestionsAgreeWithAPlainModel) {
  makeModel(7, 40);
  OdDbObjectId id = m_drawing->addOdDbObject(VdmDbConfigurationTable::createObject(), m_modelSpace);
  ASSERT_EQ(loadSheet(*edit<VdmDbConfigurationTable>(id), m_model.sheet()), eOk);
  for (int round = 0; round < 60; ++round) {
    const Model before = m_model;
    m_drawing->startUndoRecord();
    for (std::size_t edits = 1 + pick(4); edits > 0; --edits) {
      editOnce(*edit<VdmDbConfigurationTable>(id));
      if (pick(2) == 0) ask(*open<VdmDbConfigurationTable>(id));
    }
    const Model after = m_model;
    for (int step = 0; step < 3 && !(before.sheet() == after.sheet()); ++step) {
      const bool isUndo = step % 2 == 0;
      ASSERT_EQ(isUndo ? m_drawing->undo() : m_drawing->redo(), eOk);
      m_model = isUndo ? before : after;
      ASSERT_EQ(exported(*open<VdmDbConfigurationTable>(id)), m_model.sheet()) << round;
      ask(*open<VdmDbConfigurationTable>(id));
    }
    ASSERT_EQ(exported(*open<VdmDbConfigurationTable>(id)), m_model.sheet()) << round;
    if (round % 20 != 19) continue;
    const OdDbHandle handle = id.getHandle();
    const std::string file = "table" + std::to_string(round) + ".vdm";
    saveAs(m_drawing, path(file.c_str()));
    m_drawing.release();
    m_drawing = read(file.c_str());
    id = m_drawing->getOdDbObjectId(handle);
  }
}

TEST_F(ConfigurationTableModelTest, AsksTensOfThousandsOfCells) {
  makeModel(12, 3000);
  const VdmDbConfigurationTablePtr table = VdmDbConfigurationTable::createObject();
  ASSERT_EQ(loadSheet(*table, m_model.sheet()), eOk);
  for (int round = 0; round < 20; ++round) ask(*table);
  ASSERT_EQ(exported(*table), m_model.sheet());
}

}  // namespace
