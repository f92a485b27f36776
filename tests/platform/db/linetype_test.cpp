// Tests of line types: their files, their patterns as drawn, styles of new entities.
#include <gtest/gtest.h>

#include <fstream>

#include "platform/base/error.h"
#include "platform/db/dash_drawing.h"
#include "platform/db/dictionary.h"
#include "platform/db/linetype_file.h"
#include "platform/db/mline_style.h"
#include "platform/db/visual_style.h"
#include "platform/gi/extents_draw.h"
#include "tests/support/drawing_testing.h"
#include "tests/support/test_folder.h"

namespace {

class LinetypeTest : public DrawingVerbs, public testing::Test {
 protected:
  static OdStatus parse(std::string_view text) {
    std::vector<OdDbLinetypeDefinition> linetypes;
    return oddbParseLinetypes(text, linetypes);
  }
  OdDbLinetypeTableRecordPtr linetype(const wchar_t* name) const {
    const auto table = open<OdDbLinetypeTable>(m_drawing->getLinetypeTableId());
    return OdDbLinetypeTableRecord::cast(table->getAt(name, OdDb::kForRead));
  }

  OdDbHostAppServices m_host;
  OdDbDatabasePtr m_drawing = m_host.createDatabase();
};

TEST_F(LinetypeTest, TheStandardFileLoadsWholeOrByName) {
  const OdString path = oddbStandardLinetypeFile();
  ASSERT_FALSE(path.isEmpty());
  ASSERT_TRUE(m_drawing->loadLineTypeFile(L"hidden2", path).ok());
  EXPECT_EQ(linetype(L"HIDDEN2")->dashLengthAt(1), -1.5);
  EXPECT_EQ(m_drawing->loadLineTypeFile(L"HIDDEN2", path).code, eDuplicateRecordName);
  EXPECT_EQ(m_drawing->loadLineTypeFile(L"NOT_THERE", path).code, eKeyNotFound);
  edit<OdDbLinetypeTableRecord>(linetype(L"HIDDEN2")->objectId())->setComments(L"mine");
  ASSERT_TRUE(m_drawing->loadLineTypeFile(L"*", path, OdDb::kDltIgnore).ok());
  EXPECT_EQ(linetype(L"HIDDEN2")->comments(), OdString(L"mine"));
  for (const wchar_t* name : {L"DASHED", L"DASHED2", L"DASHEDX2", L"HIDDEN", L"HIDDENX2", L"DOTX2",
                              L"CENTER", L"PHANTOM", L"DEMO"}) {
    ASSERT_FALSE(linetype(name).isNull()) << OdString(name).utf8();
    EXPECT_GT(linetype(name)->patternLength(), 0.0);
  }
  ASSERT_TRUE(m_drawing->loadLineTypeFile(L"HIDDEN2", path, OdDb::kDltReplace).ok());
  EXPECT_NE(linetype(L"HIDDEN2")->comments(), OdString(L"mine"));
}

TEST_F(LinetypeTest, DefinitionsCarryTextsAndShapesThroughAFile) {
  std::vector<OdDbLinetypeDefinition> found;
  ASSERT_TRUE(oddbParseLinetypes("\xEF\xBB\xBF;; comment\r\n*Gas, a main ,x\r\n"
                                 "A, +.5, -.25, [\"G,S\",Text 1,S=.1,U=90,x=-.1,Y=2], -.25, "
                                 "[CIRC,signs.shx,A=1r], 0\n",
                                 found)
                  .ok());
  ASSERT_EQ(found.size(), 1u);
  EXPECT_EQ(found[0].description, OdString(L"a main ,x"));
  EXPECT_EQ(found[0].dashes.size(), 4u);
  ASSERT_EQ(found[0].texts.size(), 2u);
  const OdDbDashText& text = found[0].texts[0];
  EXPECT_EQ(text.text, OdString(L"G,S"));
  EXPECT_EQ(text.dash, 1);
  EXPECT_TRUE(text.isUpright);
  EXPECT_NEAR(text.rotation, 1.5707963267948966, 1e-15);
  EXPECT_TRUE(found[0].texts[1].isShape && found[0].texts[1].isAbsolute);

  const auto table = edit<OdDbLinetypeTable>(m_drawing->getLinetypeTableId());
  const OdDbLinetypeTableRecordPtr record = OdDbLinetypeTableRecord::createObject();
  record->setName(L"Gas");
  record->setDashes(found[0].dashes);
  record->setTexts(found[0].texts);
  const OdDbObjectId id = table->add(record);
  const OdDbLinetypeTableRecordPtr copy = OdDbLinetypeTableRecord::createObject();
  copy->copyFrom(open<OdDbLinetypeTableRecord>(id));
  EXPECT_EQ(copy->texts(), found[0].texts);
  expectUndoable(
      *m_drawing, [&] { return stateOf(id); },
      [&] { edit<OdDbLinetypeTableRecord>(id)->setDashes({}); });
}

TEST_F(LinetypeTest, FaultsNameTheirPlace) {
  struct Row {
    const char* text;
    const char* message;
  };
  constexpr Row kRows[] = {
      {"A,1,-1", "line 1, column 1: expected * and a name"},
      {"*X\n*Y\nA,1,-1", "line 2, column 1: expected a pattern that begins with A"},
      {"*X", "line type 'X' has no pattern"},
      {"*a<b\nA,1,-1", "the name is not one"},
      {"*X\nA,1,-1\n*x\nA,1,-1", "line type 'x' comes twice"},
      {"*X\nA,1,", "column 5: expected a length, found the end of the line"},
      {"*X\nA,1,nan", "expected a length, found 'nan'"},
      {"*X\nA,1;2", "expected a comma, found ';2'"},
      {"*X\nA,0,0", "two lengths or more, not all of them 0"},
      {"*X\nA,1,-1,[\"T,S]", "expected a closing quote"},
      {"*X\nA,1,[\"T\",S,Q=1],-1", "unknown attribute Q"},
      {"*X\nA,[\"T\",S],-1", "a length before the first text"},
      {"*X\nA,1,-1,1,-1,1,-1,1,-1,1,-1,1,-1,1", "more than 12 lengths"},
  };
  for (const Row& row : kRows) {
    const OdStatus status = parse(row.text);
    EXPECT_NE(status.code, eOk) << row.text;
    EXPECT_GE(status.text.find(OdString(row.message)), 0) << row.text << "\n"
                                                          << std::string(status.text.utf8());
  }
  const TestFolder folder;
  const OdString path = folder.odFile("bad.lin");
  std::ofstream(std::string(path.utf8())) << "*GOOD\nA,1,-1\n*BAD\nB\n";
  EXPECT_EQ(m_drawing->loadLineTypeFile(L"*", path).code, eCorruptData);
  EXPECT_TRUE(linetype(L"GOOD").isNull()) << "nothing of a damaged file is taken";
  EXPECT_EQ(m_drawing->loadLineTypeFile(L"*", L"/no/such.lin").code, eFileNotFound);
}

/// Keeps the lengths of the polylines and what they cover.
class DashCollector : public OdGiExtentsDraw {
 public:
  std::vector<std::vector<OdGePoint3d>> runs;
  void polyline(std::span<const OdGePoint3d> points) override {
    runs.emplace_back(points.begin(), points.end());
  }
  [[nodiscard]] double drawn() const {
    double sum = 0.0;
    for (const auto& run : runs) {
      for (std::size_t i = 1; i < run.size(); ++i) sum += run[i].distanceTo(run[i - 1]);
    }
    return sum;
  }
};

// The line of the pattern 6, -3 is 32 long around a corner: three periods and a dash are 33, so two
// periods and a dash are 24, and each end gets 4 more.
TEST_F(LinetypeTest, PatternsBeginAndEndWithADashAndRunOverCorners) {
  ASSERT_TRUE(m_drawing->loadLineTypeFile(L"*", oddbStandardLinetypeFile()).ok());
  const std::vector<OdGePoint3d> corner{{0, 0, 0}, {12, 0, 0}, {12, 20, 0}};
  OdStaticRxObject<DashCollector> draw;
  oddbDrawDashed(draw, corner, *linetype(L"HIDDEN"), 1.0);
  ASSERT_EQ(draw.runs.size(), 3u);
  EXPECT_EQ(draw.runs.front().front(), corner.front());
  EXPECT_EQ(draw.runs.back().back(), corner.back());
  EXPECT_NEAR(draw.drawn(), 10 + 6 + 10, 1e-9);
  EXPECT_EQ(draw.runs[1].size(), 2u);
  EXPECT_TRUE(draw.runs[1].front().isEqualTo({12, 1, 0}));

  const auto runsAt = [&](const wchar_t* name, double scale) {
    OdStaticRxObject<DashCollector> other;
    oddbDrawDashed(other, corner, *linetype(name), scale);
    return other.runs.size();
  };
  EXPECT_EQ(runsAt(L"HIDDEN", 10.0), 1u) << "too short for a period";
  EXPECT_EQ(runsAt(L"HIDDEN", 1e-9), 1u) << "too many periods";
  EXPECT_EQ(runsAt(L"Continuous", 1.0), 1u);
  EXPECT_GT(runsAt(L"GAS_LINE", 0.2), runsAt(L"GAS_LINE", 0.6)) << "texts draw strokes, too";
}

TEST_F(LinetypeTest, NewEntitiesTakeTheDrawingsSettings) {
  ASSERT_TRUE(m_drawing->loadLineTypeFile(L"CENTER", oddbStandardLinetypeFile()).ok());
  const OdDbObjectId axes = addLayer(m_drawing, L"AXES");
  m_drawing->setCLAYER(axes);
  m_drawing->setCECOLOR(3);
  m_drawing->setCELTYPE(linetype(L"CENTER")->objectId());
  m_drawing->setCELTSCALE(0.5);
  const OdDbLinePtr line = OdDbLine::createObject();
  line->setDatabaseDefaults(m_drawing);
  const OdDbObjectId id = addTo(m_drawing->getModelSpaceId(), line);
  EXPECT_EQ(line->layer(), OdString(L"AXES"));
  EXPECT_EQ(line->colorIndex(), 3);
  EXPECT_EQ(line->linetype(), OdString(L"CENTER"));
  EXPECT_EQ(line->linetypeScale(), 0.5);
  expectUndoable(
      *m_drawing, [&] { return stateOf(id); }, [&] { edit<OdDbLine>(id)->setLinetypeScale(1.0); });
  EXPECT_THROW(line->setLinetypeScale(0.0), OdError);
  EXPECT_THROW(line->setLinetype(L"NONE"), OdError);
  EXPECT_THROW(m_drawing->setCLAYER(line->linetypeId()), OdError);
  edit<OdDbLayerTableRecord>(axes)->erase();
  EXPECT_EQ(m_drawing->getCLAYER(), m_drawing->getLayerZeroId())
      << "an erased layer is not current";
}

TEST_F(LinetypeTest, StylesOfEdgesAndMultiLinesAreKeptAndChecked) {
  const auto styles = edit<OdDbDictionary>(m_drawing->getVisualStyleDictionaryId());
  const OdDbVisualStylePtr style = OdDbVisualStyle::createObject();
  OdGiEdgeStyle edges;
  edges.obscuredLinetype = OdGiEdgeStyle::kDoubleLongDash;
  edges.obscuredColor = OdCmEntityColor::fromRGB(1, 2, 3);
  style->setEdgeStyle(edges);
  const OdDbObjectId id = styles->setAt(L"VIEW", style);
  const OdDbVisualStylePtr copy = OdDbVisualStyle::createObject();
  copy->copyFrom(style);
  EXPECT_EQ(copy->edgeStyle(), edges);
  edges.creaseAngle = 181;
  EXPECT_THROW(style->setEdgeStyle(edges), OdError);
  EXPECT_EQ(m_drawing->getVisualStyleDictionaryId(false), open<OdDbVisualStyle>(id)->ownerId());

  const OdDbMlineStylePtr lines = OdDbMlineStyle::createObject();
  OdArray<OdDbMlineElement> elements;
  elements.append({-2.0, OdCmColor::fromIndex(3), {}});
  elements.append({1.0, {}, {}});
  lines->setElements(elements);
  EXPECT_EQ(lines->elements()[0].offset, 1.0) << "the topmost one comes first";
  EXPECT_EQ(lines->elements()[1].color.colorIndex(), 3);
  EXPECT_THROW(lines->setElements({}), OdError);
}

}  // namespace
