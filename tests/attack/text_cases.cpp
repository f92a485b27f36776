// Absurd words on the command line, and absurd scripts.
#include <array>

#include "tests/attack/attack.h"

namespace attack {

namespace {

std::string hostileText(const Stage& stage, Random& random) {
  const std::array<std::string, 28> texts{"",
                                          " ",
                                          "-1",
                                          "--",
                                          "-o",
                                          "0",
                                          "nan",
                                          "inf,0,0",
                                          "1e308,1e308,1e308",
                                          "0,0,0",
                                          "1e-300",
                                          "9e99",
                                          "0x10",
                                          "1,2",
                                          "f_0",
                                          "f_99999999999999999999",
                                          "FFFFFFFFFFFFFFFF",
                                          stage.solid(),
                                          "$gone",
                                          "../../../etc/passwd",
                                          "*Model_Space",
                                          "a\nb\tc\x1b[2J",
                                          "\xff\xfe",
                                          "\xc3\x28",
                                          "\xf0\x9f\x92\x96",
                                          "%s%n%d",
                                          "'; drop table objects; --",
                                          std::string(1U << (random() % 17), 'x')};
  return anyOf(texts, random);
}

std::vector<std::string> hostileWords(const Stage& stage, Random& random) {
  const auto text = [&] { return hostileText(stage, random); };
  const std::vector<std::vector<std::string>> commands{
      {"move", "p.vdm", text(), "--by", text()},
      {"move", "p.vdm", stage.solid(), "--by", text()},
      {"rotate", "p.vdm", stage.solid(), "--angle", text(), "--axis", text()},
      {"insert", "p.vdm", "hole", "--on", "top", "--at", text(), "--name", text()},
      {"insert", "p.vdm", text(), "--on", stage.solid(), "--at", "20,20,10", "--direction", text()},
      {"component", "add", "p.vdm", text(), "hole", "--diameter", text()},
      {"component", "add", "p.vdm", "c", "hole", "--diameter", text(), "--depth", text()},
      {"component", "add", "p.vdm", "c", text(), "--width", text(), "--length", text()},
      {"refs", "add", "p.vdm", stage.solid(), text(), "--name", text()},
      {"refs", "add", "p.vdm", stage.solid(), "--at", text(), "--face"},
      {"refs", "explain", "p.vdm", text()},
      {"props", "set", "p.vdm", stage.solid(), text(), text()},
      {"props", "set", "p.vdm", stage.solid(), "k", text(), "--type", "array:double"},
      {"props", "set", "p.vdm", stage.solid(), "k", "--json-value", text()},
      {"props", "remove", "p.vdm", text(), text()},
      {"fillet", "p.vdm", "top", "--radius", text()},
      {"feature", "rename", "p.vdm", "first", text()},
      {"group", "p.vdm", text(), text()},
      {"clone", "p.vdm", text(), "--name", text()},
      {"replace", "p.vdm", stage.solid(), text()},
      {"render", "p.vdm", "-o", "o.png", "--view", text(), "--size", text()},
      {"import", text(), "-o", text()},
      {"new", "n.vdm", "--units", text()},
      {text(), text(), text()},
  };
  return anyOf(commands, random);
}

/// After any words the drawing is as before, or changed and sound.
Finding saySomething(const Stage& stage, Random& random) {
  stage.put("p.vdm", stage.original("part.vdm"));
  const Command command = stage.vdm(hostileWords(stage, random));
  const Outcome outcome = run(command);
  const Finding finding = judged(command, outcome);
  if (finding.verdict > Verdict::kContained) return finding;
  if (outcome.exitCode == 1 || outcome.exitCode == 2) {
    if (stage.read("p.vdm") == stage.original("part.vdm")) return finding;
    return bad(Verdict::kLost, command, outcome, "the drawing is changed");
  }
  const Outcome audit = run(stage.vdm({"audit", "p.vdm"}));
  if (audit.exitCode == 0) return finding;
  return bad(Verdict::kSilent, command, audit, "the drawing is not sound afterwards");
}

std::string hostileScript(const Stage& stage, Random& random) {
  const std::string step =
      R"({"op": "move", "entity": ")" + stage.solid() + R"(", "by": [1, 2, 3], "as": "m"})";
  std::string script = "[" + step + R"(, {"op": "insert", "component": "hole", "on": "top", )" +
                       R"("at": [20, 20, 10]}, {"op": "refs remove", "name": "top"}])";
  switch (random() % 4) {
    case 0:
      return std::string(1U << (random() % 20), anyOf(std::string("[{\"("), random));
    case 1: {
      script = "[";
      for (int i = 0; i < 3000; ++i) script += (i == 0 ? "" : ",") + step.substr(0, 54) + "}";
      return script + "]";
    }
    default:
      return damaged(std::move(script), random);
  }
}

Finding playScript(const Stage& stage, Random& random) {
  stage.put("p.vdm", stage.original("part.vdm"));
  Command command = stage.vdm({"edit", "p.vdm", "--script", "-"});
  command.input = hostileScript(stage, random);
  const Outcome outcome = run(command);
  Finding finding = judged(command, outcome);
  if (finding.verdict > Verdict::kContained) return finding;
  const bool isRefused = outcome.exitCode == 1 || outcome.exitCode == 2;
  if (isRefused && stage.read("p.vdm") != stage.original("part.vdm")) {
    return bad(Verdict::kLost, command, outcome, "the drawing is changed");
  }
  if (!isRefused) (void)stage.contentOf("p.vdm");
  return finding;
}

constexpr Family kFamilies[] = {
    {"words of the command line", "the drawing as before, or sound", 120, saySomething},
    {"scripts", "all steps, or the drawing as before", 40, playScript},
};

}  // namespace

std::span<const Family> textFamilies() { return kFamilies; }

}  // namespace attack
