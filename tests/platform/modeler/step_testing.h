// STEP files for tests: made by the modeller, changed as text.
#pragma once

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "platform/modeler/step_drawing.h"
#include "tests/support/solid_drawing_testing.h"
#include "tests/support/test_folder.h"

/// Writes and reads STEP files in a folder of the test.
class OdModelerStep : public DrawingTest {
 protected:
  OdString path(const char* name) const { return m_folder.odFile(name); }
  OdString write(const char* name, const std::string& content) const {
    writeBytes(m_folder.file(name), content);
    return path(name);
  }
  static std::string read(const OdString& file) {
    std::ifstream stream(std::string(file.utf8()), std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
  }

  // cart -> wheel (left, turned right), cart -> load; the load has two solids in two colours.
  static OdModelerAssembly cart() {
    OdModelerBodyAttributes style;
    const OdModelerBodyPtr wheel = cylinder(10.0, 4.0);
    style.color = OdModelerColor{20, 40, 60};
    style.faceColors[faceTowards(*wheel, OdGeVector3d::kZAxis)] = {250, 128, 3};
    const OdModelerBodyPtr crate = colored(box(5.0, 5.0, 5.0), {255, 0, 0}, L"crate");
    const OdModelerBodyPtr chest =
        colored(box(5.0, 5.0, 5.0, {20.0, 0.0, 0.0}), {0, 255, 0}, L"chest");
    const OdGeMatrix3d right =
        OdGeMatrix3d::translation({0.0, 50.0, 0.0}) * OdGeMatrix3d::rotation(0.5, {1.0, 1.0, 0.0});
    OdModelerAssembly a;
    a.products = {{L"cart: no/1",
                   L"c",
                   {},
                   {{1, {}, L"left", {}}, {1, right, L"right", {}}, {2, {}, L"top", {}}}},
                  {L"wheel", L"w", {wheel->withAttributes(style)}, {}},
                  {L"load", L"l", {crate, chest}, {}}};
    a.roots = {{0, {}, L"", {}}};
    return a;
  }
  static OdModelerAssembly part(const OdModelerBodyPtr& body) {
    OdModelerAssembly a;
    a.products = {{L"part", L"part", {body}, {}}};
    a.roots = {{0, {}, L"", {}}};
    return a;
  }
  [[nodiscard]] OdString writeStep(const OdModelerAssembly& assembly) const {
    EXPECT_TRUE(succeeded(odModeler().exportStep(path("made.stp"), assembly)));
    return path("made.stp");
  }
  static OdModelerAssembly readStep(const OdString& file) {
    OdModelerAssembly result;
    EXPECT_TRUE(succeeded(odModeler().importStep(file, result)));
    return result;
  }
  OdDbObjectId blockId(const wchar_t* name) const {
    return m_database->getBlockTableId().safeOpenAs<OdDbBlockTable>()->getAt(name);
  }

  /// The text with each `from` replaced; at least one has to be there.
  static std::string replaced(std::string text, const std::string& from, const std::string& to) {
    std::size_t count = 0;
    for (std::size_t at = text.find(from); at != std::string::npos; at = text.find(from, at)) {
      text.replace(at, from.size(), to);
      at += to.size();
      ++count;
    }
    EXPECT_GT(count, 0u) << from;
    return text;
  }
  /// The text with more instances.
  static std::string extended(const std::string& text, const std::string& instances) {
    return replaced(text, "ENDSEC;\nEND-ISO", instances + "ENDSEC;\nEND-ISO");
  }
  static bool mentions(const OdStringArray& lines, const OdString& text) {
    return std::ranges::any_of(lines, [&](const OdString& line) { return line.find(text) >= 0; });
  }

  TestFolder m_folder;
};
