// Groups as text: every kind of value, bad text, binary data in groups.
#include "platform/filer/dxf_text_filer.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "platform/base/error.h"
#include "platform/rx/rx_init.h"

namespace {

template <class Call>
OdResult raisedBy(const Call& call, std::string* text = nullptr) {
  try {
    call();
  } catch (const OdError& error) {
    if (text != nullptr) *text = error.what();
    return error.code();
  }
  return eOk;
}

TEST(OdDbTextDxfFilerTest, EveryKindReadsBack) {
  OdDbTextDxfFiler filer;
  const OdString text(L"tab\tline\nnull\u0000 caret^^M \u00E4\U0001F600 ");
  const double numbers[] = {0.1, -0.0, 1e-310, 1.7976931348623157e308};
  filer.wrString(1, text);
  for (const double number : numbers) filer.wrDouble(40, number);
  filer.wrDouble(40, 2.0 / 3, 3);
  filer.wrInt16(70, -32768);
  filer.wrInt32(90, std::numeric_limits<OdInt32>::min());
  filer.wrInt64(160, std::numeric_limits<OdInt64>::min());
  filer.wrBool(290, true);
  filer.wrUInt8(280, 255);
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
  EXPECT_EQ(filer.rdDouble(), 0.667);
  filer.nextItem();
  EXPECT_EQ(filer.rdInt16(), -32768);
  filer.nextItem();
  EXPECT_EQ(filer.rdInt32(), std::numeric_limits<OdInt32>::min());
  filer.nextItem();
  EXPECT_EQ(filer.rdInt64(), std::numeric_limits<OdInt64>::min());
  filer.pushBackItem();
  EXPECT_EQ(filer.nextItem(), 160);
  filer.nextItem();
  EXPECT_TRUE(filer.rdBool());
  filer.nextItem();
  EXPECT_EQ(filer.rdUInt8(), 255);
  filer.nextItem();
  EXPECT_EQ(filer.rdHandle(), OdDbHandle(0xFFFFFFFFFFFFFFFF));
  EXPECT_TRUE(filer.atEOF());
  EXPECT_EQ(raisedBy([&] { filer.nextItem(); }), eEndOfStream);
}

TEST(OdDbTextDxfFilerTest, BinaryDataOfEverySizeKeepsItsBorders) {
  OdDbTextDxfFiler filer;
  const OdUInt32 sizes[] = {0, 1, 126, 127, 128, 254, 255, 1000};
  OdBinaryData all;
  for (OdUInt32 i = 0; i < 1000; ++i) all.append(static_cast<OdUInt8>(i));
  for (const OdUInt32 size : sizes) {
    filer.wrBinaryChunk(310, std::as_const(all).asArrayPtr(), size);
  }
  filer.rewind();
  for (const OdUInt32 size : sizes) {
    ASSERT_EQ(filer.nextItem(), 310);
    OdBinaryData read;
    filer.rdBinaryChunk(read);
    ASSERT_EQ(read.size(), size);
    if (size > 0) {
      EXPECT_EQ(std::as_const(read).last(), static_cast<OdUInt8>(size - 1));
    }
  }
  EXPECT_TRUE(filer.atEOF());
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

TEST(OdDbTextDxfFilerTest, ReadsStreamsWithEitherLineEnd) {
  odrxInitialize();
  {
    OdDbTextDxfFiler out;
    out.wrInt16(70, 7);
    const OdMemoryStreamPtr stream = OdMemoryStream::createNew();
    out.copyTo(stream);
    const char more[] = "  1\r\nhello\r\n";
    stream->putBytes(more, sizeof more - 1);
    stream->rewind();
    OdDbTextDxfFiler in(stream, nullptr);
    in.nextItem();
    EXPECT_EQ(in.rdInt16(), 7);
    EXPECT_EQ(in.nextItem(), 1);
    EXPECT_EQ(in.rdString(), OdString("hello"));
    EXPECT_TRUE(in.atEOF());
  }
  odrxUninitialize();
}

}  // namespace
