// Configuration tables: loading and its report, rows, finding, the stored form.
#include <cmath>
#include <cstring>

#include "tests/support/dxf_testing.h"
#include "tests/vdm_db/configurations/configuration_testing.h"
#include "vdm_db/properties/vdm_flat_filer.h"

namespace {

using namespace configuration_testing;
using Lines = std::vector<std::string>;

class VdmDbConfigurationTableTest : public virtual VdmModule, public ReferenceTest {
 protected:
  VdmDbConfigurationTableTest() : m_table(VdmDbConfigurationTable::createObject()) {}

  /// The rows that determineConfigIndex gives, or the result as a negative number.
  [[nodiscard]] std::vector<int> find(const RowMap& required, const RowMap& optional = {}) const {
    OdArray<unsigned> rows;
    const OdResult result = m_table->determineConfigIndex(required, optional, rows);
    if (result != eOk) return {-static_cast<int>(result)};
    return std::vector<int>(rows.begin(), rows.end());
  }

  VdmDbConfigurationTablePtr m_table;
};

// ---- Loading

TEST_F(VdmDbConfigurationTableTest, LoadReportsEveryProblemAndThenChangesNothing) {
  const Rows good{{"Name", "Width", "Material"}, {"A", " 1e3 ", " Steel"}, {"B", "0x10", "Iron 2"}};
  const Rows stored{{"Name", "Width", "Material"}, {"A", "1e3", "Steel"}, {"B", "0x10", "Iron 2"}};
  Lines lines;
  ASSERT_EQ(loadSheet(*m_table, good, false, &lines), eOk);
  EXPECT_EQ(lines, Lines());
  EXPECT_EQ(exported(*m_table), stored);
  EXPECT_EQ(m_table->cells().numbers, (VdmDoubleArray{1000, 0, 16, 0}));
  EXPECT_EQ(m_table->cells().columnTypes, (VdmLongArray{0, 1}));

  const Rows bad{{" ", "Width", "*x", "", "WIDTH", "a b"},
                 {"k", "1", "2", "3", "4", ""},
                 {"", "1", "2", "3", "4", "5"},
                 {"K", "1", "2", "3", "4", "5"}};
  EXPECT_EQ(loadSheet(*m_table, bad, false, &lines), 5);
  EXPECT_EQ(
      lines,
      (Lines{"2: row 1, column 1: the cell is empty",
             "3: row 1, column 3: \"*x\" begins with the reserved character \"*\"",
             "5: column 4 has no name",
             ("4: column 6: \"a b\" is no name that a variable can have: column 2: found ' ', "
              "expected a letter, a digit or '_'"),
             "6: columns 2, 5 have the same name \"Width\"",
             "2: row 2, column 6: the cell is empty", "2: row 3, column 1: the cell is empty",
             "7: rows 2, 4 have the same key \"k\""}));
  EXPECT_EQ(exported(*m_table), stored);

  lines.clear();
  EXPECT_EQ(loadSheet(*m_table, {{"*Name", "name", "NAME"}}, false, &lines), 5);
  EXPECT_EQ(lines, (Lines{"3: row 1, column 1: \"*Name\" begins with the reserved character \"*\"",
                          "6: columns 2, 3 have the same name \"name\""}));
  EXPECT_NE(loadSheet(*m_table, {{"a b"}}), eOk);
  VdmuMessageCollector messages;
  EXPECT_EQ(m_table->load(sheetOf({{"1", "2", "3", "4", "5"}}), 2, 3, messages, false), 5);
  EXPECT_EQ(messages.messages().at(0).id, eRpt_InvalidTableSize);
  EXPECT_EQ(exported(*m_table), stored);
  EXPECT_EQ(loadSheet(*m_table, {}), eOk);
  EXPECT_EQ(m_table->getRowCount(), 0U);
}

// Of n rows with the header, n * 0.05 texts in a column of numbers are worth a warning.
TEST_F(VdmDbConfigurationTableTest, LoadWarnsOfFewTextsAmongNumbers) {
  struct Case {
    std::size_t rows, texts;
    const char* warned;
  };
  for (const auto& [rows, texts, warned] : {Case{101, 5, "2, 3, 4, 5, 6"}, Case{101, 6, nullptr},
                                            Case{20, 1, "2"}, Case{19, 1, nullptr}}) {
    Rows sheet{{"Name", "Width"}};
    for (std::size_t row = 1; row < rows; ++row) {
      sheet.push_back({"k" + std::to_string(row), row <= texts ? "wide" : "7"});
    }
    Lines lines;
    ASSERT_EQ(loadSheet(*m_table, sheet, false, &lines), eOk);
    EXPECT_EQ(m_table->getColumnType(L"WIDTH"), 1);
    EXPECT_EQ(lines.size(), warned == nullptr ? 0U : 1U) << rows << " rows, " << texts << " texts";
    if (warned == nullptr || lines.empty()) continue;
    EXPECT_EQ(lines[0],
              std::string("8: column 2: \"Width\" has numbers except for texts in rows ") + warned +
                  ", such as \"wide\"; it is a column of texts");
  }
}

TEST_F(VdmDbConfigurationTableTest, LoneColumnOfNumbersBecomesAColumnOfValues) {
  ASSERT_EQ(loadSheet(*m_table, {{"Width"}, {"10"}, {"2e1"}}, /*promote=*/true), eOk);
  EXPECT_EQ(m_table->keyColumnName(), L"*Width");
  EXPECT_EQ(m_table->cells().numbers, (VdmDoubleArray{10, 20}));
  EXPECT_EQ(exported(*m_table), (Rows{{"Width"}, {"10"}, {"2e1"}}));
  EXPECT_EQ(find({}, {{L"width", {L"", 20}}}), (std::vector{1, 0}));
  for (const Rows& kept :
       {Rows{{"Width"}, {"10"}, {"x"}}, Rows{{"Width"}}, Rows{{"Width", "B"}, {"1", "2"}}}) {
    ASSERT_EQ(loadSheet(*m_table, kept, /*promote=*/true), eOk);
    EXPECT_EQ(m_table->keyColumnName(), L"Width");
    EXPECT_EQ(exported(*m_table), kept);
  }
}

// What a cell may hold and still be a number, and words that are none.
TEST_F(VdmDbConfigurationTableTest, CellsAreNumbersAsTheCLibraryReadsThem) {
  for (const char* text : {"12", "-0.5", "+.5", "5.", "1e3", "1E-3", "0x1F", "-0X1.8p1", "\t7\n",
                           "inf", "-Infinity", "-nan"}) {
    ASSERT_EQ(loadSheet(*m_table, {{"K", "V"}, {"k", text}}), eOk);
    EXPECT_EQ(m_table->getColumnType(L"V"), 0) << text;
    const double read = m_table->cells().numbers[0], expected = std::strtod(text, nullptr);
    EXPECT_TRUE(read == expected || (std::isnan(read) && std::isnan(expected))) << text;
  }
  for (const char* text : {"12 mm", "1 000", "1,5", "--1", "+-1", "- 1", ".", "e3", "0x", "0x1g",
                           "1e999", "-inf-", "infinit", "0xinf", "1e", "\xD9\xA1"}) {
    ASSERT_EQ(loadSheet(*m_table, {{"K", "V"}, {"k", text}}), eOk);
    EXPECT_EQ(m_table->getColumnType(L"V"), 1) << text;
  }
}

// ---- Rows and columns

TEST_F(VdmDbConfigurationTableTest, RowsTakeWhatSuitsTheirColumns) {
  ASSERT_EQ(loadSheet(*m_table, {{"Name", "W", "M"}, {"A", "1", "Steel"}}), eOk);
  EXPECT_EQ(m_table->setRow(1, {}), 5);
  RowMap row;
  EXPECT_EQ(m_table->getRow(1, row), eOk);
  EXPECT_TRUE(row.empty());
  EXPECT_EQ(m_table->getRow(L"b", row), 5);

  EXPECT_EQ(m_table->setRow(0, {{L"w", {L"12 mm", 3}}, {L"m", {L" Iron ", 4}}}), 5);
  EXPECT_EQ(m_table->setRow(0, {{L"x", {L"1", 1}}}), eOk);
  EXPECT_EQ(exported(*m_table), (Rows{{"Name", "W", "M"}, {"A", "1", "Iron"}}));
  EXPECT_EQ(m_table->setRow(0, {{L"W", {L" 1e1 ", 3}}, {L"M", {L"", 1.0 / 3}}}), eOk);
  EXPECT_EQ(exported(*m_table), (Rows{{"Name", "W", "M"}, {"A", "1e1", "0.333333333333"}}));
  ASSERT_EQ(m_table->getRow(L"a", row), eOk);
  EXPECT_EQ(row, (RowMap{{L"W", {L"", 3}}, {L"M", {L"0.333333333333", 1.0 / 3}}}));

  EXPECT_EQ(m_table->insertRow(1, L"a", {}), 27);
  EXPECT_EQ(m_table->insertRow(2, L"B", {}), 5);
  EXPECT_EQ(m_table->insertRow(0, L"B", {}), eOk);
  EXPECT_EQ(exported(*m_table)[1], (Lines{"B", "0", "0"}));
  EXPECT_EQ(m_table->removeRow(L"c"), 5);
  EXPECT_EQ(m_table->removeRow(L"b"), eOk);
  EXPECT_EQ(m_table->removeRow(1), 5);
  EXPECT_EQ(m_table->removeRow(0U), eOk);
  EXPECT_EQ(m_table->removeRow(0U), 4);
  EXPECT_EQ(m_table->getRow(0U, row), 5);
}

TEST_F(VdmDbConfigurationTableTest, ANewNameGoesToTheFirstColumnOfTheOldOne) {
  ASSERT_EQ(loadSheet(*m_table, {{"Name", "W", "M"}, {"A", "1", "Steel"}}), eOk);
  m_table->setColumnName(L"w", L"Wide");
  m_table->setColumnName(L"none", L"M");
  m_table->setColumnName(L"NAME", L"Key");
  m_table->setColumnName(L"Key", L"KEY");
  EXPECT_EQ(exported(*m_table)[0], (Lines{"KEY", "Wide", "M"}));
  m_table->setColumnName(L"M", L"wide");
  m_table->setColumnName(L"WIDE", L"First");
  EXPECT_EQ(exported(*m_table)[0], (Lines{"KEY", "First", "wide"}));
  m_table->setKeyColumnName(L"first");
  m_table->setColumnName(L"First", L"*Key");
  EXPECT_EQ(exported(*m_table), (Rows{{"First", "wide"}, {"1", "Steel"}}));
}

// ---- Finding

TEST_F(VdmDbConfigurationTableTest, FindsRowsByRequiredAndOptionalValues) {
  EXPECT_EQ(find({}), (std::vector{-4}));
  ASSERT_EQ(loadSheet(*m_table, {{"Name"}, {"A"}, {"B"}}), eOk);
  EXPECT_EQ(find({{L"NAME", {L"b", 0}}}), (std::vector{1}));
  EXPECT_EQ(find({{L"name", {L"b", 0}}, {L"x", {L"", 1}}}), (std::vector{-4}));

  ASSERT_EQ(
      loadSheet(
          *m_table,
          {{"Name", "W", "M"}, {"A", "10", "Steel"}, {"B", "20", "iron"}, {"C", "20", "steel"}}),
      eOk);
  const auto width = [](double value) { return RowMap{{L"W", {L"", value}}}; };
  const RowMap steel{{L"m", {L"STEEL", 0}}};
  EXPECT_EQ(find({}), (std::vector{0, 1, 2}));
  EXPECT_EQ(find(steel), (std::vector{0, 2}));
  EXPECT_EQ(find(width(20), steel), (std::vector{2, 1}));
  EXPECT_EQ(find({}, {{L"W", {L"", 20}}, {L"M", {L"none", 0}}}), (std::vector{1, 2, 0}));
  for (const double near : {10.0000000001, 9.9999999999}) EXPECT_EQ(find(width(near)).size(), 1U);
  for (const double far : {10.00000000011, -10.0, HUGE_VAL}) {
    EXPECT_EQ(find(width(far)), (std::vector{-5})) << far;
  }
  // Their difference from anything is neither above the bound nor below it.
  EXPECT_EQ(find(width(std::nan(""))), (std::vector{0, 1, 2}));
  EXPECT_EQ(find({{L"Name", {L"c", 0}}, {L"W", {L"", 20}}}), (std::vector{2}));
  EXPECT_EQ(find({{L"Name", {L"c", 0}}, {L"W", {L"", 10}}}), (std::vector{-5}));
  EXPECT_EQ(find({{L"Name", {L"c", 0}}}, width(10)), (std::vector{2}));
  EXPECT_EQ(find({{L"Name", {L"d", 0}}}), (std::vector{-5}));
}

// ---- Stored form: the base's byte, then the bag

void put(std::string& bytes, const char* text) {
  bytes += {static_cast<char>(std::strlen(text)), 0};
  bytes += text;
}

void put(std::string& bytes, std::initializer_list<int> numbers) {
  for (const int number : numbers) bytes += static_cast<char>(number);
}

/// A table with key column "K", one row "k" and one column of numbers "V" with the cell 2, as the
/// flat form has it. `version` is written when it is not negative.
std::string bytesOfTable(int version, int rowCount, int columnType) {
  std::string bytes;
  put(bytes, {0, version < 0 ? 8 : 9, 0, 0, 0});
  if (version >= 0) {
    put(bytes, "_ver");
    put(bytes, {6, version});
  }
  put(bytes, "ColNames"), put(bytes, {9, 2, 1, 0, 0, 0}), put(bytes, "V");
  put(bytes, "ColNum"), put(bytes, {3, 1, 0, 0, 0});
  put(bytes, "ColTypes"), put(bytes, {9, 3, 1, 0, 0, 0, columnType, 0, 0, 0});
  put(bytes, "DblValues"), put(bytes, {9, 4, 1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0x40});
  put(bytes, "KeyName"), put(bytes, {2}), put(bytes, "K");
  put(bytes, "KeyValues"), put(bytes, {9, 2, 1, 0, 0, 0}), put(bytes, "k");
  put(bytes, "RowNum"), put(bytes, {3, rowCount, 0, 0, 0});
  put(bytes, "Values"), put(bytes, {9, 2, 1, 0, 0, 0}), put(bytes, "2");
  return bytes;
}

OdResult readFlat(OdDbObject& object, const std::string& bytes) {
  VdmFlatFiler filer;
  filer.setBinaryData(bytes.data(), static_cast<unsigned>(bytes.size()));
  try {
    return object.dwgInFields(&filer);
  } catch (const OdError& error) {
    return error.code();
  }
}

TEST_F(VdmDbConfigurationTableTest, ReadsEveryVersionItAcceptsAndRefusesDamage) {
  const std::string present = bytesOfTable(-1, 1, 0);
  for (const int version : {-1, 0, 1}) {
    const VdmDbConfigurationTablePtr table = VdmDbConfigurationTable::createObject();
    ASSERT_EQ(readFlat(*table, bytesOfTable(version, 1, 0)), eOk) << version;
    EXPECT_EQ(exported(*table), (Rows{{"K", "V"}, {"k", "2"}}));
    EXPECT_EQ(table->cells().numbers, VdmDoubleArray{2});
    VdmFlatFiler filer;
    table->dwgOutFields(filer.clear());
    const std::vector<char> written = filer.getBinaryData();
    EXPECT_EQ(std::string(written.begin(), written.end()), present) << version;
  }
  EXPECT_EQ(readFlat(*m_table, bytesOfTable(2, 1, 0)), 1);
  EXPECT_EQ(readFlat(*m_table, bytesOfTable(-1, 2, 0)), eCorruptData);
  EXPECT_EQ(readFlat(*m_table, bytesOfTable(-1, 0, 0)), eCorruptData);
  for (std::size_t length = 0; length < present.size(); ++length) {
    EXPECT_NE(readFlat(*m_table, present.substr(0, length)), eOk) << length;
  }
  // A type of a later system: its cells are kept and agree with nothing.
  ASSERT_EQ(readFlat(*m_table, bytesOfTable(-1, 1, 7)), eOk);
  EXPECT_EQ(find({{L"V", {L"2", 2}}}), (std::vector{-5}));
  EXPECT_EQ(find({}), (std::vector{0}));
}

TEST_F(VdmDbConfigurationTableTest, GroupsCarryTheContent) {
  const Rows rows{{"Name", "Width", "Material"}, {"A", "10", "Steel"}, {"B", "20", "Iron"}};
  ASSERT_EQ(loadSheet(*m_table, rows), eOk);
  const std::string groups = groupsOf(*m_table);
  const VdmDbConfigurationTablePtr copy = VdmDbConfigurationTable::createObject();
  EXPECT_EQ(readGroups(*copy, groups, nullptr), eNotApplicable);
  // Bags are written with a mark (255) that only other readers take.
  const std::string readable = replaced(groups, "255", "1");
  ASSERT_EQ(readGroups(*copy, readable, nullptr), eOk);
  EXPECT_EQ(exported(*copy), rows);
  EXPECT_EQ(copy->findKey(L"B"), 1u);
  EXPECT_EQ(groupsOf(*copy), groups);
  const std::string damaged = replaced(readable, "RowNum\n280\n3\n90\n2", "RowNum\n280\n3\n90\n3");
  EXPECT_EQ(readGroups(*copy, damaged, nullptr), eCorruptData);
}

/// The link of the column "M" to a variable "Mat", with the text "Steel".
std::string bytesOfLink(int version) {
  std::string bytes;
  put(bytes, {0, version < 0 ? 9 : 10, 0, 0, 0});
  if (version >= 0) put(bytes, "_ver"), put(bytes, {6, version});
  put(bytes, "DeleteVarOnErase"), put(bytes, {5, 1});
  put(bytes, "IsEnabled"), put(bytes, {5, 0});
  put(bytes, "IsKeyVar"), put(bytes, {5, 0});
  put(bytes, "IsString"), put(bytes, {5, 1});
  put(bytes, "Name"), put(bytes, {2}), put(bytes, "M");
  put(bytes, "String"), put(bytes, {2}), put(bytes, "Steel");
  put(bytes, "Value"), put(bytes, {4, 0, 0, 0, 0, 0, 0, 0xF0, 0x3F});
  put(bytes, "VarId"), put(bytes, {8, 0});
  put(bytes, "VarName"), put(bytes, {2}), put(bytes, "Mat");
  return bytes;
}

TEST_F(VdmDbConfigurationTableTest, LinksReadEveryVersionTheyAccept) {
  for (const int version : {-1, 0, 1, 2}) {
    const VdmDbConfigVarReactorPtr link = VdmDbConfigVarReactor::createObject();
    ASSERT_EQ(readFlat(*link, bytesOfLink(version)), version == 2 ? 1 : 0) << version;
    if (version == 2) continue;
    EXPECT_TRUE(link->isStringType() && !link->isEnabled() && !link->isKey());
    EXPECT_EQ(link->name() + L" " + link->variableName() + L" " + link->stringValue(),
              L"M Mat Steel");
    VdmFlatFiler filer;
    link->dwgOutFields(filer.clear());
    const std::vector<char> written = filer.getBinaryData();
    EXPECT_EQ(std::string(written.begin(), written.end()), bytesOfLink(-1)) << version;
  }
}

}  // namespace
