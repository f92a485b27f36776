// Tables in files: what is read, what is refused, and units of columns.
#include "host/parameters/table_file.h"

#include <gtest/gtest.h>

#include "host/parameters/table_units.h"

namespace {

using namespace vdm_host;

/// "a|b/c|d": cells and rows; the message of a refusal.
std::string read(const std::string& bytes) {
  TableSheet sheet;
  const OdStatus status = readTable(bytes, sheet);
  if (!status.ok()) return std::string(status.text.utf8());
  std::string text;
  for (unsigned row = 0; row < sheet.rows; ++row) {
    for (unsigned column = 0; column < sheet.columns; ++column) {
      text += (column > 0 ? "|" : row > 0 ? "/" : "") + std::string(sheet.at(row, column).utf8());
    }
  }
  return text;
}

TEST(TableFile, ReadsWhatSpreadsheetsWrite) {
  const std::pair<std::string, const char*> cases[] = {
      {"k,w\r\nA,1\r\nB,2\r\n", "k|w/A|1/B|2"},
      {"k;w;h\nA;1,5;2", "k|w|h/A|1,5|2"},
      {"k\tw\nA\t1", "k|w/A|1"},
      {"\xEF\xBB\xBFk,w\nÄ,1", "k|w/Ä|1"},
      {std::string("\xFF\xFEk\0,\0w\0\n\0A\0,\0001\0", 16), "k|w/A|1"},
      {"\"a,b\",\"say \"\"hi\"\"\"\n\"two\nlines\",1", "a,b|say \"hi\"/two\nlines|1"},
      {"k,w\n\nA\n,\n", "k|w/A|"},
      {"\"k;x\",w\nA,1", "k;x|w/A|1"},
      {"k,w\rA,1\rB,2", "k|w/A|1/B|2"},
      {"", ""},
      {"k,w\nA \"1\",2", "line 2: a quote is inside a cell that is not quoted, or not doubled"},
      {"k,w\n\"A\"1,2", "line 2: a quote is inside a cell that is not quoted, or not doubled"},
      {"k,w\nA,2\n\"B,3\n4", "line 3: a quoted cell that begins in this row has no end"},
      {"k,\xFF\n", "line 1: the file is no text in UTF-8 or UTF-16"},
  };
  for (const auto& [bytes, expected] : cases) EXPECT_EQ(read(bytes), expected) << bytes;
  TableSheet sheet;
  ASSERT_TRUE(readTable("k,w\n\"a\nb\",1\n\nc,2\n", sheet).ok());
  EXPECT_EQ(sheet.lines, (std::vector<unsigned>{1, 2, 5})) << "where a row begins";
}

TEST(TableFile, WhatIsWrittenReadsBack) {
  TableSheet sheet;
  ASSERT_TRUE(readTable("\"a,b\",\" c \"\n\"x\"\"y\",\"1\n2\"\n", sheet).ok());
  EXPECT_EQ(writeTable(sheet), "\"a,b\",\" c \"\r\n\"x\"\"y\",\"1\n2\"\r\n");
  EXPECT_EQ(read(writeTable(sheet)), "a,b| c /x\"y|1\n2");
  ASSERT_TRUE(readTable("\"a;b;c\"\nd\n", sheet).ok());
  EXPECT_EQ(read(writeTable(sheet)), "a;b;c/d") << "whatever separator a reader takes it for";
}

/// The cells after conversion to millimetres, or the problems.
std::string converted(const std::string& bytes) {
  TableSheet sheet;
  EXPECT_TRUE(readTable(bytes, sheet).ok());
  VdmStringArray cells;
  TableUnits units;
  std::vector<OdString> problems;
  std::string text;
  if (!toBaseUnits(sheet, OdDb::kUnitsMillimeters, cells, units, problems).ok()) {
    for (const OdString& line : problems) text += std::string(line.utf8()) + ";";
    return text;
  }
  for (const OdString& cell : cells) text += std::string(cell.utf8()) + "|";
  return text;
}

TEST(TableUnits, NumbersAreReadInTheUnitOfTheirColumn) {
  const std::pair<const char*, const char*> cases[] = {
      {"k,w [cm]\nA,1.5\nB,2 in", "k|w|A|15|B|50.8|"},
      {"k,w\nA,1/2 in\nB,3", "k|w|A|12.7|B|3|"},
      {"k,w\nA,M8\nB,3", "k|w|A|M8|B|3|"},
      {"k,w\nA,e\nB,3", "k|w|A|e|B|3|"},
      {"k,w\nA,10-20\nB,3/4", "k|w|A|10-20|B|3/4|"},
      {"k,w\nA,-1 1/2 in\nB,2e1mm", "k|w|A|-38.1|B|20|"},
      {"k,w [mm]\nA,0.10\nB,1e1", "k|w|A|0.10|B|1e1|"},
      {"k;w [mm]\nA;12,5\nB;2,50 cm", "k|w|A|12.5|B|25|"},
      {"w [cm]\n1\n2", "w|10|20|"},
      {"k;w\nA;plate 1,250\nB;3", "k|w|A|plate 1,250|B|3|"},
      {"k;w [mm]\nA;1,250",
       "line 2, column 2: 1,250 may be a fraction or thousands: write a point, or no comma;"},
      {"k,w [mm]\nA,wide", "line 2, column 2: \"wide\" is no value in mm;"},
  };
  for (const auto& [bytes, expected] : cases) EXPECT_EQ(converted(bytes), expected) << bytes;
  EXPECT_EQ(converted("k,w [flurb]\nA,1").find("line 1, column 2: unit [flurb]: "), 0u);
}

}  // namespace
