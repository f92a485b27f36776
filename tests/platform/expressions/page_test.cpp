// The examples of the page on expressions hold.
#include <gtest/gtest.h>

#include <fstream>
#include <set>
#include <string>
#include <vector>

#include "platform/expressions/compile.h"
#include "platform/expressions/names.h"
#include "platform/expressions/number_text.h"

namespace {

using namespace OdExpression;

/// The cells of the tables whose second column has the given heading, without code marks.
std::vector<std::vector<std::string>> tableRows(const std::string& heading) {
  std::ifstream page(VDM_EXPRESSIONS_PAGE);
  std::vector<std::vector<std::string>> rows;
  bool isInTable = false;
  for (std::string line; std::getline(page, line);) {
    if (!line.starts_with("| ")) {
      isInTable = isInTable && line.starts_with("|---");
      continue;
    }
    std::vector<std::string> cells;
    for (std::size_t at = 2; at < line.size();) {
      const std::size_t end = line.find(" |", at);
      cells.push_back(line.substr(at, end - at));
      at = end + 3;
    }
    if (isInTable) rows.push_back(cells);
    if (cells[0] + " " + cells[1] == heading) isInTable = true;
  }
  return rows;
}

OdString codeOf(const std::string& cell) { return OdString(cell.substr(1, cell.size() - 2)); }

class PageScope : public NameScope {
 public:
  static constexpr double kValues[] = {120, 80, 400, 0.5, 8, 3};

  std::optional<Binding> find(const OdString& name) override {
    const std::pair<const wchar_t*, Dimension> known[] = {{L"width", Dimension::length()},
                                                          {L"height", Dimension::length()},
                                                          {L"face", Dimension::length(2)},
                                                          {L"tilt", Dimension::angle()},
                                                          {L"count", {}},
                                                          {L"gr\u00f6\u00dfe", {}}};
    for (OdUInt32 slot = 0; slot < std::size(known); ++slot) {
      if (name.iEquals(known[slot].first)) return Binding{slot, known[slot].second};
    }
    return std::nullopt;
  }
};

TEST(ExpressionPage, VariablesAreThoseOfTheTest) {
  const auto rows = tableRows("Variable Value");
  ASSERT_EQ(rows.size(), std::size(PageScope::kValues));
  PageScope scope;
  for (std::size_t i = 0; i < rows.size(); ++i) {
    EXPECT_EQ(OdString(rows[i][1]), numberText(PageScope::kValues[i]));
    EXPECT_EQ(scope.find(codeOf(rows[i][0]))->dimension.text(), rows[i][2].c_str());
  }
}

/// The expression in a cell of the page.
struct CompiledCell {
  explicit CompiledCell(const std::string& cell)
      : compiles(compile(codeOf(cell), scope, {4, {}}, program, diagnostic)) {}

  PageScope scope;
  Program program;
  Diagnostic diagnostic;
  bool compiles;
};

TEST(ExpressionPage, ExamplesHaveTheirValues) {
  const auto rows = tableRows("Expression Value");
  EXPECT_GT(rows.size(), 35U);
  for (const std::vector<std::string>& row : rows) {
    SCOPED_TRACE(row[0]);
    CompiledCell cell(row[0]);
    ASSERT_TRUE(cell.compiles) << cell.diagnostic.text();
    double value = 0.0;
    ASSERT_TRUE(cell.program.evaluate(PageScope::kValues, value));
    EXPECT_EQ(numberText(value), row[1].c_str());
    EXPECT_EQ(cell.program.dimension().text(), row[2].c_str());
  }
}

TEST(ExpressionPage, RefusalsHaveTheirWords) {
  const auto rows = tableRows("Expression Refusal");
  EXPECT_GT(rows.size(), 10U);
  for (const std::vector<std::string>& row : rows) {
    CompiledCell cell(row[0]);
    if (cell.compiles) cell.diagnostic = cell.program.explain(PageScope::kValues);
    EXPECT_EQ(cell.diagnostic.text(), row[1].c_str()) << row[0];
  }
}

TEST(ExpressionPage, ListsTheFunctions) {
  std::set<OdString> listed;
  for (const std::vector<std::string>& row : tableRows("Function Value")) {
    for (std::size_t at = 0; at < row[0].size();) {
      const std::size_t end = row[0].find('`', at + 1);
      listed.insert(OdString(row[0].substr(at + 1, end - at - 1)));
      at = end + 2;
    }
  }
  const std::vector<OdString> names = functionNames();
  EXPECT_EQ(listed, std::set<OdString>(names.begin(), names.end()));
}

}  // namespace
