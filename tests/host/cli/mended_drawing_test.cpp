// `vdm audit --fix` on files: what it finds, mends and saves, for each code that a file can be made
// to have and the page lists, and what it does when it cannot save.
#include <gtest/gtest.h>

#include <unistd.h>

#include <fstream>
#include <functional>
#include <nlohmann/json.hpp>
#include <set>
#include <string>

#include "platform/assoc/assoc_network.h"
#include "platform/assoc/assoc_variable.h"
#include "platform/base/handle.h"
#include "platform/db/database.h"
#include "tests/host/cli/sample_drawing.h"
#include "tests/host/cli/sarif_check.h"
#include "tests/support/drawing_testing.h"

namespace {

using namespace cli_testing;
using nlohmann::json;
using storetest::Content;

class MendedDrawing : public SampleDrawingTest {
 protected:
  MendedDrawing() : SampleDrawingTest("mended") {
    addVariables(path("sound.vdm"), {L"width", L"depth"});
    m_sound = contentOf("sound.vdm");
    EXPECT_EQ(audit("", "sound.vdm").exitCode, 0);
  }

  struct Audit {
    int exitCode = -1;
    json report;
    /// Each finding is there once and says, where its code is that one, whether it can be mended.
    void expectSaid(const std::string& code, bool isMendable) const {
      std::set<std::string> texts;
      for (const json& finding : report["list"]) {
        EXPECT_TRUE(texts.insert(finding["code"].dump() + finding["text"].dump()).second)
            << finding;
        if (finding["code"] == code) {
          EXPECT_EQ(finding["fix"] != "", isMendable) << finding;
        }
      }
    }
    [[nodiscard]] bool has(const std::string& code) const {
      return std::ranges::any_of(report["list"],
                                 [&](const json& finding) { return finding["code"] == code; });
    }
  };
  [[nodiscard]] Audit audit(const std::string& options, const std::string& name = "a.vdm") const {
    const Outcome outcome = m_shell.run("vdm audit " + name + " --json " + options);
    EXPECT_TRUE(outcome.errors.empty()) << testing::PrintToString(outcome.errors);
    std::string text;
    for (const std::string& line : outcome.output) text += line + '\n';
    return {outcome.exitCode, json::parse(text, nullptr, /*allow_exceptions=*/false)};
  }

  /// Saves the sound drawing with other records, under right checksums.
  void damage(const std::function<void(Content&)>& change) const {
    begin("sound.vdm");
    Content after = m_sound;
    change(after);
    EXPECT_TRUE(succeeded(saveChanges(*open("a.vdm"), m_sound, after)));
  }
  static void addCopy(Content& file, std::uint64_t handle) {
    const storetest::Record copy = file.records.at(handle);
    file.records.emplace(file.records.rbegin()->first + 1, copy);
  }
  /// Into a drawing with solids and features, by a program without their classes.
  static void addVariables(const std::string& path, const std::vector<OdString>& names) {
    const Runtime runtime;
    FilingHost host;
    OdStatus status;
    const OdDbDatabasePtr drawing = host.readFile(OdString(path), status);
    ASSERT_TRUE(succeeded(status));
    const OdDbObjectId network = OdDbAssocNetwork::getInstanceFromObject(
        drawing->getModelSpaceId(), /*createIfDoesNotExist=*/true);
    for (const OdString& name : names) {
      const OdDbAssocVariablePtr variable = OdDbAssocVariable::createObject();
      const OdDbObjectId id = drawing->addOdDbObject(variable, network);
      const auto opened = network.safeOpenAs<OdDbAssocNetwork>(OdDb::kForWrite);
      ASSERT_EQ(opened->addAction(id, /*setThisNetworkAsOwner=*/true), eOk);
      ASSERT_EQ(variable->setName(name, /*updateReferencingExpressions=*/false), eOk);
    }
    ASSERT_TRUE(succeeded(drawing->save()));
  }
  /// Lets the references of a record that are meant lead to another object. A record begins with
  /// its references: their number, and for each the handle and two bits for its type.
  static void relink(std::string& data, const std::function<bool(std::uint64_t)>& isMeant,
                     std::uint64_t to) {
    std::size_t at = 0;
    const auto next = [&] {
      std::uint64_t value = 0;
      for (unsigned shift = 0;; shift += 7) {
        const auto byte = static_cast<unsigned char>(data.at(at++));
        value |= std::uint64_t{byte & 0x7FU} << shift;
        if (byte < 0x80) return value;
      }
    };
    std::string relinked;
    const auto put = [&](std::uint64_t value) {
      for (; value >= 0x80; value >>= 7U) relinked += static_cast<char>(value | 0x80U);
      relinked += static_cast<char>(value);
    };
    const std::uint64_t count = next();
    put(count);
    for (std::uint64_t i = 0; i < count; ++i) {
      const std::uint64_t reference = next();
      put(isMeant(reference >> 2U) ? to << 2U | (reference & 3U) : reference);
    }
    data.replace(0, at, relinked);
  }
  /// The handle that a list of the command shows for a name.
  [[nodiscard]] std::uint64_t handleOf(const std::string& command) const {
    const Outcome outcome = m_shell.run(command);
    EXPECT_EQ(outcome.output.size(), 1U) << command;
    return outcome.output.empty() ? 0 : std::stoull(outcome.output[0], nullptr, 16);
  }
  /// A class is stored with its name first.
  [[nodiscard]] bool isOf(const storetest::Record& record, const std::string& className) const {
    const std::string& text = m_sound.classes.at(record.classId);
    return text.substr(1, className.size() + 1) == static_cast<char>(className.size()) + className;
  }
  [[nodiscard]] std::function<bool(std::uint64_t)> ofClass(const std::string& className) const {
    return [this, className](std::uint64_t handle) {
      const auto found = m_sound.records.find(handle);
      return found != m_sound.records.end() && isOf(found->second, className);
    };
  }
  /// The first object of a class in the sound drawing.
  [[nodiscard]] std::uint64_t firstOf(const std::string& className) const {
    const auto found = std::ranges::find_if(
        m_sound.records, [&](const auto& item) { return isOf(item.second, className); });
    EXPECT_TRUE(found != m_sound.records.end()) << className;
    return found == m_sound.records.end() ? 0 : found->first;
  }
  /// The command ends with 1 and one such line, and the file is as before.
  void expectUnsaved(const std::string& command, const std::string& line) const {
    SCOPED_TRACE(command);
    const std::string before = readBytes(path("a.vdm"));
    const Outcome outcome = m_shell.run(command);
    Words words;
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_EQ(compareLines({"vdm: " + line}, outcome.errors, words), "");
    EXPECT_TRUE(readBytes(path("a.vdm")) == before);
  }
};

TEST_F(MendedDrawing, EachCodeIsFoundMendedAndSaved) {
  constexpr std::uint64_t kSolid = 0x21;
  constexpr std::uint64_t kNowhere = 0x7777;
  const auto top = handleOf("vdm refs list sound.vdm | awk '$2 == \"top\" { print $1 }'");
  const auto insert = handleOf("vdm feature list sound.vdm | awk '$2 == \"left\" { print $5 }'");
  const auto bore = handleOf("vdm refs list sound.vdm | grep cylinder | awk '{ print $1; exit }'");
  const auto block = handleOf("vdm component list sound.vdm | awk '$2 == \"h\" { print $1 }'");
  const std::uint64_t modelSpace = OdDbRootHandles::kModelSpace;
  struct Row {
    const char* code;
    bool isMendable;
    std::function<void(Content&)> change;
    const char* sql = nullptr;
    const char* command = nullptr;
  };
  const Row rows[] = {
      {"no-objects", true, [](Content& file) { file.records.clear(); }},
      {"root-missing", true, [&](Content& file) { file.records.erase(modelSpace); }},
      {"root-missing", true,
       [](Content& file) { file.records.erase(OdDbRootHandles::kTextStyleStandard); }},
      {"root-wrong", false,
       [](Content& file) {
         file.records.at(OdDbRootHandles::kPaperSpace) =
             file.records.at(OdDbRootHandles::kLayerZero);
       }},
      {"handle-seed", true,
       [](Content& file) { file.variables["HANDSEED"] = std::string("\x22\0\0\0\0\0\0\0", 8); }},
      {"handle-seed", true,
       [](Content& file) { file.variables["HANDSEED"] = std::string(8, '\x7f'); }},
      {"record-unreadable", false, nullptr, "UPDATE objects SET sum=sum+1 WHERE handle=8"},
      {"file-damaged", false, nullptr,
       "DELETE FROM objects WHERE handle=(SELECT max(handle) FROM objects)"},
      {"body-unsound", false,
       [&](Content& file) {
         std::string& data = file.records.at(kSolid).data;
         data[data.size() / 2] ^= 1;
       }},
      {"dangling-reference", true, [&](Content& file) { file.records.erase(block); }},
      {"dangling-reactor", true,
       [&](Content& file) { file.records.erase(firstOf("VdmDbInsertReactor")); }},
      {"owner-cycle", true,
       [&](Content& file) {
         file.records.at(block).owner = insert;
         file.records.at(insert).owner = block;
       }},
      {"owner-missing", true, [&](Content& file) { file.records.at(insert).owner = kNowhere; }},
      {"owner-wrong", true, [&](Content& file) { file.records.at(insert).owner = block; }},
      // Copies under other handles: of a solid, of a reference to a
      // block, and of a dictionary, which comes with what it owns.
      {"owner-lists-not", true, [&](Content& file) { addCopy(file, kSolid); }},
      {"owner-lists-not", true, [&](Content& file) { addCopy(file, OdDbRootHandles::kLayerZero); }},
      {"block-reference-unlisted", true, [&](Content& file) { addCopy(file, insert); }},
      {"owner-twice", true,
       [](Content& file) { addCopy(file, OdDbRootHandles::kNamedObjectsDictionary); }},
      {"block-reference-stranger", true,
       [&](Content& file) { file.records.at(insert) = file.records.at(kSolid); }},
      {"feature-incomplete", true, [&](Content& file) { file.records.erase(top); }},
      {"feature-references", true, [&](Content& file) { file.records.erase(bore); }},
      {"component-incomplete", false, [&](Content& file) { file.records.erase(kSolid); }},
      {"reactor-of-another", true,
       [&](Content& file) {
         relink(file.records.at(insert).data, ofClass("VdmDbInsertReactor"),
                firstOf("VdmDbObject"));
       }},
      {"reference-unneeded", true,
       [&](Content& file) {
         for (auto& [handle, record] : file.records) {
           if (!isOf(record, "VdmDbPersIdReactor")) continue;
           relink(
               record.data, [bore](std::uint64_t target) { return target == bore; }, top);
         }
         relink(file.records.at(bore).data, ofClass("VdmDbPersIdReactor"), kNowhere);
       }},
      {"object", true,
       [&](Content& file) {
         std::string& data = file.records.at(firstOf("OdDbAssocVariable")).data;
         data.replace(data.find("width"), 5, "depth");
       }},
      {"reference-unresolved", false, nullptr, nullptr, "vdm move a.vdm left --by 0,900,0"},
  };
  damage([](Content& file) {  // of the time before the styles
    for (const OdUInt64 handle :
         {OdDbRootHandles::kTextStyleTable, OdDbRootHandles::kDimStyleTable,
          OdDbRootHandles::kTextStyleStandard, OdDbRootHandles::kDimStyleStandard}) {
      file.records.erase(handle);
    }
  });
  EXPECT_EQ(audit("").report["findings"], 0);
  std::set<std::string> tested;
  for (const Row& row : rows) {
    tested.insert(row.code);
    SCOPED_TRACE(row.code);
    damage(row.change ? row.change : [](Content&) {});
    if (row.sql != nullptr) storetest::executeSql(path("a.vdm"), row.sql);
    if (row.command != nullptr) {
      EXPECT_EQ(m_shell.run(row.command).exitCode, 3);
    }
    const std::string before = readBytes(path("a.vdm"));
    const Audit found = audit("");
    EXPECT_EQ(found.exitCode, 3);
    EXPECT_TRUE(found.has(row.code)) << found.report["list"].dump(1);
    found.expectSaid(row.code, row.isMendable);
    EXPECT_TRUE(readBytes(path("a.vdm")) == before) << "looking changed the file";

    const Outcome log = m_shell.run("vdm audit a.vdm --sarif > log.sarif");
    EXPECT_EQ(log.exitCode, 3);
    const json sarif = json::parse(readBytes(path("log.sarif")), nullptr, false);
    EXPECT_EQ(sarifFaults(sarif), std::vector<std::string>());
    EXPECT_EQ(sarif["runs"][0]["results"].size(), found.report["list"].size());

    const Audit fixed = audit("--fix");
    const Audit left = audit("");
    EXPECT_EQ(left.has(row.code), !row.isMendable) << left.report["list"].dump(1);
    EXPECT_EQ(fixed.report["remaining"], left.report["findings"]);
    EXPECT_EQ(fixed.exitCode, left.report["findings"] == 0 ? 0 : 3);
    EXPECT_EQ(left.exitCode, fixed.exitCode);
    const bool isChanged = readBytes(path("a.vdm")) != before;
    EXPECT_EQ(isChanged, fixed.report["mended"] != 0);
    if (row.isMendable) {
      EXPECT_GT(fixed.report["mended"], 0);
    }
  }
  std::set<std::string> listed;
  std::ifstream page(VDM_AUDIT_PAGE);
  for (std::string line; std::getline(page, line);) {
    if (line.starts_with("| `")) listed.insert(line.substr(3, line.find('`', 3) - 3));
  }
  EXPECT_EQ(listed, tested);
}

TEST_F(MendedDrawing, AFixThatCannotBeSavedChangesNothing) {
  damage([](Content& file) { file.records.erase(OdDbRootHandles::kModelSpace); });
  expectUnsaved("trap '' XFSZ; ulimit -f 8; vdm audit a.vdm --fix", "*a.vdm*");
  // Nobody's process may not write it; of the superuser alone it is a right to do so.
  run("chmod 444 a.vdm");
  const std::string asNobody = geteuid() == 0 ? "setpriv --reuid=65534 --clear-groups " : "";
  expectUnsaved(asNobody + "vdm audit a.vdm --fix", "*a.vdm*");
  run("chmod 644 a.vdm");
  EXPECT_EQ(audit("--fix").exitCode, 0);
  EXPECT_EQ(audit("").report["findings"], 0);
}

}  // namespace
