// Names in STEP files: every encoding and escape that writers use, and none that fits.
#include "tests/platform/modeler/step_testing.h"

namespace {

using namespace std::string_literals;

class OdModelerStepNames : public OdModelerStep {
 protected:
  // A file whose product and face have the name as its writer put it.
  [[nodiscard]] OdString fileNamed(const std::string& bytes) const {
    OdModelerBodyAttributes attributes;
    attributes.faceNames[1] = L"THE-FACE";
    OdModelerAssembly made = part(box(1.0, 2.0, 3.0)->withAttributes(attributes));
    made.products[0].name = L"THE-NAME";
    const std::string text = OdModelerStep::read(writeStep(made));
    return write("named.stp", replaced(replaced(text, "THE-NAME", bytes), "THE-FACE", bytes));
  }
  static OdModelerAssembly imported(const OdString& file, const OdString& encoding = {}) {
    OdModelerAssembly result;
    EXPECT_TRUE(succeeded(odModeler().importStep(file, {encoding, false}, result)));
    return result;
  }
};

struct NameRow {
  std::string bytes;
  OdString encoding;  ///< asked for
  OdString name;
};

TEST_F(OdModelerStepNames, BytesAndEscapesAreDecoded) {
  const OdString part = L"\x96F6\x4EF6";
  const NameRow rows[] = {
      {"Geh\xC3\xA4use", L"", L"Geh\xE4use"},
      {"\xC1\xE3\xBC\xFE\xB5\xD7\xD7\xF9", L"", part + L"\x5E95\x5EA7"},
      {"\xC1\xE3\xBC\xFE", L"GBK", part},
      {"\xB9\x73\xA5\xF3", L"Big5", part},
      {"\x83\x7B\x83\x8B\x83\x67", L"", L"\x30DC\x30EB\x30C8"},
      // The second byte of this character is a backslash.
      {"\x95\x5C\x8E\xA6 \\X\\E4", L"Shift_JIS", L"\x8868\x793A \xE4"},
      {"Geh\xE4use", L"", L"Geh\xE4use"},
      {"Geh\xC3\xA4use", L"ISO-8859-1", L"Geh\xC3\xA4use"},
      {"\\X2\\96F64EF6\\X0\\ 1", L"", part + L" 1"},
      {"\\X2\\D83DDE00\\X0\\", L"", L"\x1F600"},
      {"\\X4\\0001F600\\X0\\", L"", L"\x1F600"},
      {"Geh\\X\\E4use", L"", L"Geh\xE4use"},
      {"Geh\\S\\duse", L"", L"Geh\xE4use"},
      {"\\PE\\\\S\\4\\S\\U", L"", L"\x0414\x0435"},
      {"it''s C:\\\\new", L"", L"it's C:\\new"},
      {"C:\\temp\\x", L"", L"C:\\temp\\x"},
      {"a\\N\\b", L"", L"a\nb"},
      {"broken\n over lines", L"", L"broken over lines"},
      {"@@text0@@ me@here", L"", L"@@text0@@ me@here"},
      {"\\X2\\00e4\\X0\\\xE4", L"windows-1252", L"\xE4\xE4"},
  };
  for (const NameRow& row : rows) {
    const OdModelerAssembly got = imported(fileNamed(row.bytes), row.encoding);
    ASSERT_EQ(got.products.size(), 1u);
    EXPECT_EQ(got.products[0].name, row.name) << row.bytes;
    const auto& faces = got.products[0].bodies.at(0)->attributes().faceNames;
    EXPECT_EQ(faces.at(1), row.name) << row.bytes;
    EXPECT_TRUE(got.notes.lost.isEmpty()) << row.bytes;
  }
}

TEST_F(OdModelerStepNames, WhatIsFoundOutIsSaidAndWhatWasAskedForIsNot) {
  const OdString file = fileNamed("\xB5\xD7\xD7\xF9\xD6\xE1\xB3\xD0");
  EXPECT_TRUE(mentions(imported(file).notes.remarks, L"GB18030"));
  EXPECT_TRUE(imported(file, L"GBK").notes.remarks.isEmpty());
  EXPECT_TRUE(imported(fileNamed("\xC3\xA4")).notes.remarks.isEmpty()) << "UTF-8 is no guess";
}

TEST_F(OdModelerStepNames, UnreadableNamesKeepTheirBytesAndAreReported) {
  const NameRow rows[] = {
      {"a\x83", L"Shift_JIS", L"a\\x83"}, {"a\xC3", L"UTF-8", L"a\\xC3"},
      {"a\xE4", L"US-ASCII", L"a\\xE4"},  {"\\X2\\D83D\\X0\\z", L"", L"\\xD83Dz"},
      {"\\X2\\00E4z", L"", L"\xE4z"},     {"\\X4\\00110000\\X0\\", L"", L"\\x110000"},
      {"\\X2\\00E\\X0\\", L"", L"00E"},
  };
  for (const NameRow& row : rows) {
    const OdModelerAssembly got = imported(fileNamed(row.bytes), row.encoding);
    EXPECT_EQ(got.products.at(0).name, row.name) << row.bytes;
    EXPECT_TRUE(mentions(got.notes.lost, L"'" + row.name + L"' in #")) << row.bytes;
    EXPECT_LT(got.products[0].name.find(L'\xFFFD'), 0);
  }
  OdModelerAssembly result;
  const OdStatus status = odModeler().importStep(fileNamed("a"), {L"Klingon", false}, result);
  EXPECT_EQ(status.code, eInvalidInput);
  EXPECT_GE(status.text.find(L"Klingon"), 0);
}

// The names of one file in the encodings of others: no byte may vanish in any of them.
TEST_F(OdModelerStepNames, AnyBytesComeBackAsTextOrAsAReport) {
  std::string every;
  for (int byte = 1; byte < 256; ++byte) {
    const char c = static_cast<char>(byte);
    if (c != '\'' && c != '\\' && (byte >= 0x20)) every += c;
  }
  for (const wchar_t* encoding : {L"", L"UTF-8", L"GBK", L"Shift_JIS", L"Big5", L"ISO-8859-1"}) {
    const OdModelerAssembly got = imported(fileNamed(every), encoding);
    const OdString& name = got.products.at(0).name;
    EXPECT_EQ(name.find(L'\xFFFD'), -1) << OdString(encoding).utf8();
    EXPECT_TRUE(name.length() >= 150 || !got.notes.lost.isEmpty()) << OdString(encoding).utf8();
  }
}

}  // namespace
