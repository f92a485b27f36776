// Tests of texts, leaders and dimensions.
#include <gtest/gtest.h>

#include <numbers>

#include "platform/base/error.h"
#include "platform/cloning/id_mapping.h"
#include "platform/db/dim_style_table.h"
#include "platform/db/text_style_table.h"
#include "platform/entities/angular_dimension.h"
#include "platform/entities/linear_dimension.h"
#include "platform/entities/mtext.h"
#include "platform/entities/ordinate_dimension.h"
#include "platform/entities/round_dimension.h"
#include "platform/entities/text.h"
#include "tests/platform/entities/entity_samples.h"
#include "tests/support/drawing_testing.h"

namespace {

using std::numbers::pi;

class NoteTest : public DrawingVerbs, public testing::Test {
 protected:
  template <class T>
  static OdGeExtents3d boxOf(const OdSmartPtr<T>& entity) {
    OdGeExtents3d box;
    EXPECT_EQ(entity->getGeomExtents(box), eOk);
    return box;
  }
  OdDbHostAppServices m_host;
  OdDbDatabasePtr m_drawing = m_host.createDatabase();
};

TEST_F(NoteTest, TextsHangOnTheirPoint) {
  struct Row {
    OdDb::TextHorzMode horizontal;
    OdDb::TextVertMode vertical;
    double x, y;  // of the alignment point, as shares of the box
  };
  constexpr Row kRows[] = {
      {OdDb::kTextRight, OdDb::kTextBase, 1.0, 0.0},
      {OdDb::kTextCenter, OdDb::kTextVertMid, 0.5, 0.5},
      {OdDb::kTextLeft, OdDb::kTextTop, 0.0, 1.0},
      {OdDb::kTextMid, OdDb::kTextBase, 0.5, 0.5},
  };
  for (const Row& row : kRows) {
    const OdDbTextPtr text = OdDbText::createObject();
    text->setTextString(L"HEX");  // from the base line to the height, without side bearings
    text->setAlignmentPoint({10, 20, 0});
    text->setHorizontalMode(row.horizontal);
    text->setVerticalMode(row.vertical);
    const OdGeExtents3d box = boxOf(text);
    const OdGeVector3d size = box.diagonal();
    EXPECT_NEAR(box.minPoint().x + size.x * row.x, 10.0, 1e-9);
    EXPECT_NEAR(box.minPoint().y + size.y * row.y, 20.0, 1e-9);
    EXPECT_NEAR(size.y, 2.5, 1e-9);
  }
  const OdDbTextPtr fitted = OdDbText::createObject();
  fitted->setTextString(L"HEX");
  fitted->setAlignmentPoint({40, 0, 0});
  fitted->setHorizontalMode(OdDb::kTextFit);
  EXPECT_NEAR(boxOf(fitted).diagonal().x, 40.0, 1e-9);
  EXPECT_NEAR(boxOf(fitted).diagonal().y, 2.5, 1e-9);
}

// Seen from behind, a text that is turned to the front reads backwards at the same place.
TEST_F(NoteTest, MirroredTextsReadBackwardsAndBlocksStayReadable) {
  const OdDbTextPtr text = OdDbText::createObject();
  text->setTextString(L"FRONT");
  text->setNormal(-OdGeVector3d::kZAxis);
  const std::vector<OdGePoint3d> before = drawnPoints(*text);
  ASSERT_EQ(text->transformBy(OdGeMatrix3d::mirroring(OdGePlane::kXYPlane)), eOk);
  EXPECT_EQ(text->normal(), OdGeVector3d::kZAxis);
  EXPECT_TRUE(text->isMirroredInX());
  const std::vector<OdGePoint3d> after = drawnPoints(*text);
  ASSERT_EQ(before.size(), after.size());
  for (std::size_t i = 0; i < before.size(); ++i) EXPECT_TRUE(before[i].isEqualTo(after[i]));

  const OdDbMTextPtr block = OdDbMText::createObject();
  block->setContents(L"HEHEH");
  const OdGeExtents3d box = boxOf(block);
  ASSERT_EQ(block->transformBy(OdGeMatrix3d::mirroring(OdGePlane::kYZPlane)), eOk);
  EXPECT_EQ(block->direction(), OdGeVector3d::kXAxis);
  EXPECT_EQ(block->attachment(), OdDb::kTopRight);
  EXPECT_NEAR(boxOf(block).minPoint().x, -box.maxPoint().x, 1e-9);
}

// Whichever line of its plane the mirror goes through, what was upright stays upright.
TEST_F(NoteTest, NotesStayUprightInEveryMirror) {
  for (const OdGePlane& mirror : {OdGePlane::kYZPlane, OdGePlane::kZXPlane, OdGePlane::kXYPlane}) {
    const OdGeMatrix3d transform = OdGeMatrix3d::mirroring(mirror);
    const OdDbMTextPtr block = OdDbMText::createObject();
    block->setContents(L"HEHEH");
    const OdGeExtents3d image = boxOf(block).transformBy(transform);
    ASSERT_EQ(block->transformBy(transform), eOk);
    const OdDbAlignedDimensionPtr dimension = OdDbAlignedDimension::createObject();
    dimension->setXLine2Point({30, 0, 0});
    dimension->setDimLinePoint({0, 10, 0});
    dimension->setTextRotation(pi);
    ASSERT_EQ(dimension->transformBy(transform), eOk);
    EXPECT_NE(dimension->textRotation(), 0.0) << "0 has a meaning of its own";
    const OdDbPlaneFrame frame(dimension->normal());
    EXPECT_TRUE(frame.direction(dimension->horizontalRotation()).isEqualTo(frame.xAxis()));
    EXPECT_TRUE(block->direction().isEqualTo(OdDbPlaneFrame(block->normal()).xAxis()));
    EXPECT_TRUE(boxOf(block).isEqualTo(image, OdGeTol(1e-9)));
  }
}

TEST_F(NoteTest, CodesAndFormatsBecomeText) {
  EXPECT_EQ(oddbPlainText(L"%%c5 %%d %%P %%65 %%065 100%%% \\U+00B5 \\U+12").text,
            OdString(L"\u23005 \u00B0 \u00B1 %%65 A 100% \u00B5 \\U+12"));
  const OdDbPlainText ruled = oddbPlainText(L"a%%ubc%%ud%%oe");
  ASSERT_EQ(ruled.underlines.size(), 1u);
  EXPECT_EQ(ruled.underlines[0].begin, 1);
  EXPECT_EQ(ruled.underlines[0].end, 3);
  ASSERT_EQ(ruled.overlines.size(), 1u);
  EXPECT_EQ(ruled.overlines[0].end, 5);

  const OdDbMTextPtr block = OdDbMText::createObject();
  block->setContents(L"{\\fArial|b0;one} \\{two\\}\\P\\H2x;three\\~four \\\\");
  EXPECT_EQ(block->text(), OdString(L"one {two}\nthree\u00A0four \\"));
  const double height = block->textHeight();
  EXPECT_NEAR(block->actualHeight(), height + 2 * height * 5.0 / 3, 1e-9);
  block->setContents(L"aaaa bbbb cccc");
  block->setWidth(block->actualWidth() * 0.7);
  EXPECT_EQ(block->text(), OdString(L"aaaa bbbb\ncccc"));
  EXPECT_LE(block->actualWidth(), block->width());
  // Absurd contents end, too.
  block->setContents(OdString(L"\\H1e300x;\\S;\\W;{{{}}}}\\Q999;\\") + OdString(L'{', 1000));
  EXPECT_GE(block->text().getLength(), 0);
}

TEST_F(NoteTest, DimensionsMeasureAndShowWhatTheirStyleSays) {
  const OdDbRotatedDimensionPtr across = OdDbRotatedDimension::createObject();
  across->setXLine2Point({30, 40, 0});
  across->setDimLinePoint({0, 60, 0});
  EXPECT_DOUBLE_EQ(across->measurement(), 30.0);
  across->setRotation(pi / 2);
  EXPECT_DOUBLE_EQ(across->measurement(), 40.0);
  EXPECT_EQ(across->formatMeasurement(), OdString(L"40"));
  const OdDbAlignedDimensionPtr along = OdDbAlignedDimension::createObject();
  along->setXLine2Point({30, 40, 0});
  EXPECT_DOUBLE_EQ(along->measurement(), 50.0);
  const OdDbRadialDimensionPtr radius = OdDbRadialDimension::createObject();
  radius->setChordPoint({3, 4, 0});
  EXPECT_EQ(radius->formatMeasurement(), OdString(L"R5"));
  const OdDb3PointAngularDimensionPtr angle = OdDb3PointAngularDimension::createObject();
  angle->setXLine1Point({5, 0, 0});
  angle->setXLine2Point({0, 5, 0});
  angle->setArcPoint({3, 3, 0});
  EXPECT_EQ(angle->formatMeasurement(), OdString(L"90%%d"));
  angle->setArcPoint({-3, 3, 0});
  EXPECT_EQ(angle->formatMeasurement(), OdString(L"270%%d"));
  const OdDbOrdinateDimensionPtr ordinate = OdDbOrdinateDimension::createObject();
  ordinate->setDefiningPoint({7, 9, 0});
  ordinate->useYAxis();
  EXPECT_DOUBLE_EQ(ordinate->measurement(), 9.0);

  const auto styles = open<OdDbDimStyleTable>(m_drawing->getDimStyleTableId(), OdDb::kForWrite);
  const OdDbDimStyleTableRecordPtr style = OdDbDimStyleTableRecord::createObject();
  style->setName(L"FITS");
  style->setDimlfac(0.1);
  style->setDimpost(L"<> cm");
  style->setDimtol(true);
  style->setDimtp(0.1);
  style->setDimtm(0.25);
  EXPECT_THROW(style->setDimdec(9), OdError);
  EXPECT_THROW(style->setDimtxt(0.0), OdError);
  const OdDbObjectId id = styles->add(style);
  addTo(m_drawing->getModelSpaceId(), along);
  const OdDbObjectId standard = styles->getAt(L"Standard");
  edit<OdDbDimStyleTableRecord>(standard)->setDimpost(L" mm");
  EXPECT_EQ(along->formatMeasurement(), OdString(L"50 mm")) << "no style is the standard one";
  along->setDimensionStyle(id);
  EXPECT_EQ(along->formatMeasurement(), OdString(L"5\\S+0,1^-0,25; cm"));
}

// Copies in another drawing use a style of their own there, or that drawing's of the same name.
TEST_F(NoteTest, StylesComeAlongIntoOtherDrawings) {
  const auto table = edit<OdDbTextStyleTable>(m_drawing->getTextStyleTableId());
  const OdDbTextStyleTableRecordPtr style = OdDbTextStyleTableRecord::createObject();
  style->setName(L"NARROW");
  style->setXScale(0.5);
  const OdDbObjectId narrow = table->add(style);
  OdDbObjectIdArray ids;
  for (const OdDbObjectId& used : {narrow, table->getAt(L"Standard")}) {
    const OdDbTextPtr text = OdDbText::createObject();
    text->setTextString(L"T");
    text->setTextStyle(used);
    ids.append(addTo(m_drawing->getModelSpaceId(), text));
  }
  const OdDbDatabasePtr other = m_host.createDatabase();
  const OdDbIdMappingPtr mapping = OdDbIdMapping::createObject();
  ASSERT_EQ(
      m_drawing->wblockCloneObjects(ids, other->getModelSpaceId(), *mapping, OdDb::kDrcIgnore),
      eOk);
  const auto styleOf = [&](OdUInt32 index) {
    OdDbIdPair pair(ids[index]);
    EXPECT_TRUE(mapping->compute(pair));
    return open<OdDbText>(pair.value())->textStyle();
  };
  const auto there = open<OdDbTextStyleTable>(other->getTextStyleTableId());
  EXPECT_EQ(styleOf(0), there->getAt(L"NARROW"));
  EXPECT_EQ(open<OdDbTextStyleTableRecord>(styleOf(0))->xScale(), 0.5);
  EXPECT_EQ(styleOf(1), there->getAt(L"Standard"));
}

// The parts of a dimension cover what it draws, its arrowheads as widening segments.
TEST_F(NoteTest, DimensionsComeApart) {
  const OdDbAlignedDimensionPtr dimension = OdDbAlignedDimension::createObject();
  dimension->setXLine2Point({30, 0, 0});
  dimension->setDimLinePoint({0, 10, 0});
  OdRxObjectPtrArray parts;
  ASSERT_EQ(dimension->explode(parts), eOk);
  OdGeExtents3d sum;
  for (const OdRxObjectPtr& part : parts) sum.addExt(boxOf(OdDbEntity::cast(part)));
  EXPECT_TRUE(sum.isEqualTo(boxOf(dimension), OdGeTol(1e-9)));
  const OdDbMTextPtr note = OdDbMText::cast(parts.last());
  ASSERT_FALSE(note.isNull());
  EXPECT_EQ(note->contents(), OdString(L"30"));
  EXPECT_NEAR(note->location().x, 15.0, 1e-9);
  EXPECT_GT(note->location().y, 10.0) << "over the line";
}

}  // namespace
