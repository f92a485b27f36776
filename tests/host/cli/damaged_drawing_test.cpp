// Unreadable is not absent: a command that meets damage says so.
//
// Every record of a drawing is damaged in every way in turn, and every reading command looks at it.
// Law: exit code 0 means that the answer is that of the sound drawing. Otherwise the exit code is 1
// or 3, and a line on standard error names a record.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <functional>
#include <string>

#include "platform/base/handle.h"
#include "tests/host/cli/sample_drawing.h"

namespace {

namespace fs = std::filesystem;
using namespace cli_testing;

/// A reading command; what it writes is a part of its answer.
constexpr const char* kCommands[] = {
    "vdm tree a.vdm",
    "vdm info a.vdm",
    "vdm dump a.vdm",
    "vdm refs list a.vdm",
    "vdm refs audit a.vdm",
    "vdm feature list a.vdm",
    "vdm component list a.vdm",
    "vdm group a.vdm --list",
    "vdm render a.vdm -o out.svg --labels --force && cat out.svg",
    "vdm export a.vdm -o out.step --force --reproducible && cat out.step",
};

/// Bytes in the file that are not those that were saved.
void flipByte(const std::string& path, const storetest::Record& record) {
  std::string bytes = readBytes(path);
  // The page may hold the beginning of a long record only.
  const std::size_t at = bytes.rfind(record.data.substr(0, 60));
  ASSERT_NE(at, std::string::npos);
  bytes[at + std::min<std::size_t>(record.data.size(), 60) / 2] ^= 0x10;
  writeBytes(path, bytes);
}

class DamagedDrawing : public SampleDrawingTest {
 protected:
  DamagedDrawing() : SampleDrawingTest("damaged") {
    begin("sound.vdm");
    for (const char* command : kCommands) {
      m_answers.push_back(m_shell.run(command));
      EXPECT_EQ(m_answers.back().exitCode, 0) << command;
    }
  }

  /// Changes the records as a program would that saves nonsense: checksums and digests are right.
  void save(const std::function<OdStatus(OdDbRecordStore&)>& change) const {
    const std::unique_ptr<OdDbRecordStore> store = open("a.vdm");
    ASSERT_TRUE(succeeded(store->beginSave()));
    ASSERT_TRUE(succeeded(change(*store)));
    ASSERT_TRUE(succeeded(store->commitSave()));
  }

  void expectHonest(std::size_t command) {
    SCOPED_TRACE(kCommands[command]);
    const Outcome outcome = m_shell.run(kCommands[command]);
    if (outcome.exitCode == 0) {
      EXPECT_EQ(outcome.output, m_answers[command].output) << "wrong, and nothing says so";
      return;
    }
    EXPECT_TRUE(outcome.exitCode == 1 || outcome.exitCode == 3) << outcome.exitCode;
    bool isNamed = false;
    for (const std::string& line : outcome.errors) {
      for (const char* word : {"record ", "records ", "object ", "solid "}) {
        isNamed = isNamed || line.find(word) != std::string::npos;
      }
    }
    EXPECT_TRUE(isNamed) << testing::PrintToString(outcome.errors);
    if (isNamed) ++m_reported;
  }

  std::vector<Outcome> m_answers;
  std::size_t m_reported = 0;
};

TEST_F(DamagedDrawing, NoCommandTakesUnreadableForAbsent) {
  const std::size_t step = std::getenv("VDM_LONG_TESTS") != nullptr ? 1 : 4;
  std::size_t number = 0;
  for (const auto& [handle, record] : m_sound.records) {
    const OdUInt64 damaged = handle;
    storetest::Record cut = record;
    cut.data.resize(cut.data.size() / 2);
    const std::pair<const char*, std::function<void()>> kDamages[] = {
        {"a flipped bit", [&] { flipByte(path("a.vdm"), m_sound.records.at(damaged)); }},
        {"a lost row",
         [&] {
           storetest::executeSql(path("a.vdm"),
                                 "DELETE FROM objects WHERE handle=" + std::to_string(damaged));
         }},
        {"half of the content",
         [&] {
           save([&](OdDbRecordStore& store) {
             return store.putRecord(storetest::viewOf(damaged, cut));
           });
         }},
    };
    for (const auto& [what, damage] : kDamages) {
      if (number++ % step != 0) continue;
      SCOPED_TRACE(std::string(what) + ", record " +
                   std::string(OdDbHandle(damaged).ascii().utf8()));
      begin("sound.vdm");
      damage();
      for (std::size_t i = 0; i < std::size(kCommands); ++i) expectHonest(i);
    }
  }
  EXPECT_GT(m_reported, number / step);
}

}  // namespace
