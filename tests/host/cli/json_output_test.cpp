// Tests of the output for machines: every command's --json is one JSON document with its keys.
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "tests/host/cli/script_case.h"

namespace {

namespace fs = std::filesystem;
using namespace cli_testing;
using nlohmann::json;

class JsonOutput : public testing::Test {
 protected:
  JsonOutput() : m_shell(fs::current_path() / "json") {
    EXPECT_EQ(m_shell.run("vdm import $SAMPLES/assembly.step -o asm.vdm").exitCode, 0);
    EXPECT_EQ(m_shell.run("vdm import $SAMPLES/plate.step -o part.vdm").exitCode, 0);
    EXPECT_EQ(m_shell.run("vdm props set part.vdm 21 n 1 --type long").exitCode, 0);
  }

  json run(const std::string& command) {
    const Outcome outcome = m_shell.run(command + " --json");
    EXPECT_EQ(outcome.exitCode, 0) << command;
    EXPECT_TRUE(outcome.errors.empty()) << command;
    std::string text;
    for (const std::string& line : outcome.output) text += line + "\n";
    return json::parse(text, nullptr, /*allow_exceptions=*/false);
  }

  Shell m_shell;
};

TEST_F(JsonOutput, EveryCommandPrintsOneDocument) {
  struct Row {
    const char* command;
    std::vector<const char*> keys;
  };
  const Row rows[] = {
      {"vdm new n.vdm", {"file", "units", "objects"}},
      {"vdm import $SAMPLES/plate.step -o i.vdm",
       {"file", "solids", "sheets", "blocks", "inserts", "units", "source_units", "notes",
        "left_out", "not_read"}},
      {"vdm info part.vdm",
       {"file", "format", "bytes", "units", "objects", "proxies", "proxy_classes", "variables",
        "layers", "blocks", "inserts", "solids", "faults"}},
      {"vdm tree asm.vdm", {"file", "units", "tree"}},
      {"vdm dump part.vdm", {"variables", "objects"}},
      {"vdm props list part.vdm 21", {"handle", "class", "properties"}},
      {"vdm props get part.vdm 21 n", {"type", "value"}},
      {"vdm props set part.vdm 21 n 2", {"handle", "key", "before", "after"}},
      {"vdm props remove part.vdm 21 n", {"handle", "key", "before", "after"}},
      {"vdm export part.vdm -o e.step",
       {"file", "products", "solids", "occurrences", "notes", "left_out"}},
      {"vdm audit part.vdm", {"file", "objects", "findings", "mended", "remaining", "lines"}},
      {"vdm recover part.vdm -o r.vdm", {"file", "objects", "losses", "lines"}},
      {"vdm clone part.vdm 21", {"file", "handle", "name", "objects", "handles", "notes"}},
      {"vdm refs add part.vdm 21 --at 60,40,10 --name top",
       {"file", "op", "saved", "reference", "name", "solid", "subentity", "sound"}},
      {"vdm component add part.vdm h hole --diameter 9", {"file", "name", "kind", "block"}},
      {"vdm insert part.vdm h --on top --at 60,40,10", {"insert", "feature", "name", "update"}},
      {"vdm move part.vdm Hole_1 --by 5,0,0", {"file", "op", "handle", "sound", "update"}},
      {"vdm update part.vdm --force", {"file", "op", "sound", "update"}},
      {"echo '[{\"op\": \"update\"}]' | vdm edit part.vdm --script -",
       {"file", "saved", "sound", "steps"}},
      {"vdm refs list part.vdm", {"file", "references"}},
      {"vdm refs explain part.vdm top", {"file", "references"}},
      {"vdm refs audit part.vdm", {"references", "grades", "sound", "findings"}},
      {"vdm component list part.vdm", {"file", "components"}},
      {"vdm feature list part.vdm", {"file", "features"}},
      {"vdm group part.vdm --list", {"file", "groups"}},
      {"vdm render part.vdm -o p.png --size 64x64", {"file", "labels", "bytes", "warnings"}},
      {"vdm compact part.vdm", {"file", "bytes_before", "bytes_after"}},
  };
  for (const Row& row : rows) {
    const json document = run(row.command);
    ASSERT_TRUE(document.is_object()) << row.command;
    for (const char* key : row.keys) EXPECT_TRUE(document.contains(key)) << row.command << key;
  }
}

TEST_F(JsonOutput, DumpNamesEveryReferenceThatExists) {
  const json dump = run("vdm dump asm.vdm");
  std::map<std::string, std::string> owners;
  for (const json& object : dump["objects"]) owners[object["handle"]] = object["owner"];
  for (const json& object : dump["objects"]) {
    for (const json& reference : object["references"]) {
      EXPECT_TRUE(owners.contains(reference["handle"])) << object["handle"] << reference;
      const std::string type = reference["type"];
      if (type.ends_with("owner")) {
        EXPECT_EQ(owners[reference["handle"]], object["handle"]);
      }
    }
  }
  EXPECT_EQ(owners.size(), run("vdm info asm.vdm")["objects"]);
}

}  // namespace
