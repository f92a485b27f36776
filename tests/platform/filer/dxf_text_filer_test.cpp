// Groups as text: texts and extreme values, values and their codes, bad text.
#include "platform/filer/dxf_text_filer.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "tests/support/status_testing.h"

namespace {

TEST(OdDbTextDxfFilerTest, TextsAndExtremeValuesReadBack) {
  OdDbTextDxfFiler filer;
  const OdString text(L"tab\tline\nnull\u0000 caret^^M \u00E4\U0001F600 ");
  const double numbers[] = {0.1, -0.0, 1e-310, 1.7976931348623157e308};
  filer.wrString(1, text);
  for (const double number : numbers) filer.wrDouble(40, number);
  filer.wrInt64(160, std::numeric_limits<OdInt64>::min());
  filer.wrHandle(5, OdDbHandle(0xFFFFFFFFFFFFFFFF));
  filer.rewind();
  EXPECT_EQ(filer.nextItem(), 1);
  EXPECT_EQ(filer.rdString(), text);
  EXPECT_EQ(filer.rdString(), text) << "a value may be read again";
  for (const double number : numbers) {
    filer.nextItem();
    const double read = filer.rdDouble();
    EXPECT_EQ(read, number);
    EXPECT_EQ(std::signbit(read), std::signbit(number));
  }
  filer.nextItem();
  EXPECT_EQ(filer.rdInt64(), std::numeric_limits<OdInt64>::min());
  filer.pushBackItem();
  EXPECT_EQ(filer.nextItem(), 160);
  filer.nextItem();
  EXPECT_EQ(filer.rdHandle(), OdDbHandle(0xFFFFFFFFFFFFFFFF));
  EXPECT_TRUE(filer.atEOF());
  EXPECT_EQ(raisedBy([&] { filer.nextItem(); }), eEndOfStream);
}

TEST(OdDbTextDxfFilerTest, ValuesFitTheirCodes) {
  OdDbTextDxfFiler filer;
  EXPECT_EQ(raisedBy([&] { filer.wrString(70, "x"); }), eInvalidInput);
  EXPECT_EQ(raisedBy([&] { filer.wrDouble(1, 1.0); }), eInvalidInput);
  EXPECT_EQ(raisedBy([&] { filer.wrInt32(40, 1); }), eInvalidInput);
  EXPECT_EQ(raisedBy([&] { filer.wrString(85, "x"); }), eInvalidInput);
  EXPECT_EQ(filer.text(), "");
}

TEST(OdDbTextDxfFilerTest, BadTextNamesItsLine) {
  const struct {
    const char* text;
    const char* line;
    void (*read)(OdDbTextDxfFiler&);
  } kRows[] = {
      {"x\n1\n", "line 1", [](OdDbTextDxfFiler& f) { f.nextItem(); }},
      {"70\n1\n 70 \n1\n", "line 3", [](OdDbTextDxfFiler& f) { f.nextItem(), f.nextItem(); }},
      {"70\n1.5\n", "line 2", [](OdDbTextDxfFiler& f) { f.nextItem(), f.rdInt16(); }},
      {"70\n40000\n", "line 2", [](OdDbTextDxfFiler& f) { f.nextItem(), f.rdInt16(); }},
      {"290\n2\n", "line 2", [](OdDbTextDxfFiler& f) { f.nextItem(), (void)f.rdBool(); }},
      {"40\n1,5\n", "line 2", [](OdDbTextDxfFiler& f) { f.nextItem(), (void)f.rdDouble(); }},
      {"1\na^\n", "line 2", [](OdDbTextDxfFiler& f) { f.nextItem(), (void)f.rdString(); }},
      {"1\na\n", "line 2", [](OdDbTextDxfFiler& f) { f.nextItem(), (void)f.rdDouble(); }},
      {"5\nXYZ\n", "line 2", [](OdDbTextDxfFiler& f) { f.nextItem(), (void)f.rdHandle(); }},
      {"310\n0G\n", "line 2",
       [](OdDbTextDxfFiler& f) {
         OdBinaryData data;
         f.nextItem();
         f.rdBinaryChunk(data);
       }},
  };
  for (const auto& row : kRows) {
    OdDbTextDxfFiler filer(row.text, nullptr);
    std::string message;
    EXPECT_EQ(raisedBy([&] { row.read(filer); }, &message), eCorruptData) << row.text;
    EXPECT_NE(message.find(row.line), std::string::npos) << message;
  }
  OdDbTextDxfFiler cut("70", nullptr);
  EXPECT_EQ(raisedBy([&] { cut.nextItem(); }), eEndOfStream);
}

}  // namespace
