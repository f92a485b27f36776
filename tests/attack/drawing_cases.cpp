// Damaged drawings against the commands that read and mend them.
#include <array>

#include "tests/attack/attack.h"

namespace attack {

namespace {

using Words = std::vector<std::string>;

std::vector<Words> readers(const Stage& stage) {
  return {{"tree", "d.vdm"},
          {"dump", "d.vdm"},
          {"refs", "list", "d.vdm", "--json"},
          {"feature", "list", "d.vdm", "--json"},
          {"component", "list", "d.vdm", "--json"},
          {"props", "list", "d.vdm", stage.solid(), "--json"}};
}

/// Exit code 0 with another answer than the sound drawing gives is the worst that can happen.
Finding readDamaged(const Stage& stage, Random& random) {
  const Words words = anyOf(readers(stage), random);
  stage.put("d.vdm", stage.original("part.vdm"));
  const Command command = stage.vdm(words);
  const std::string expected = run(command).output;
  const std::string bytes = damaged(stage.original("part.vdm"), random);
  stage.put("d.vdm", bytes);
  const Outcome outcome = run(command);
  const Finding finding = judged(command, outcome);
  if (finding.verdict > Verdict::kContained) return finding;
  if (outcome.exitCode == 0 && outcome.output != expected) {
    return bad(Verdict::kSilent, command, outcome, "another answer than the sound drawing's");
  }
  if (stage.read("d.vdm") != bytes) {
    return bad(Verdict::kLost, command, outcome, "reading changed the file");
  }
  return finding;
}

/// Pictures and exports of damaged drawings: made whole, or not at all.
Finding showDamaged(const Stage& stage, Random& random) {
  constexpr std::array kOutputs{"out.png", "out.svg", "out.glb", "out.step"};
  const std::string output = anyOf(kOutputs, random);
  const bool isExport = output == "out.step";
  const Command command = isExport ? stage.vdm({"export", "d.vdm", "-o", output})
                                   : stage.vdm({"render", "d.vdm", "-o", output, "--labels"});
  stage.put("d.vdm", damaged(stage.original("part.vdm"), random));
  const Outcome outcome = run(command);
  const Finding finding = judged(command, outcome);
  if (finding.verdict > Verdict::kContained) return finding;
  const bool isMade = outcome.exitCode == 0 || outcome.exitCode == 3;
  if (fs::exists(stage.folder() / output) != isMade) {
    return bad(Verdict::kLost, command, outcome, "the output does not fit the exit code");
  }
  return finding;
}

/// What the audit calls sound has the content that it had.
Finding auditDamaged(const Stage& stage, Random& random) {
  stage.put("d.vdm", stage.original("part.vdm"));
  const std::string content = stage.contentOf("d.vdm");
  stage.put("d.vdm", damaged(stage.original("part.vdm"), random));
  const Command command = stage.vdm({"audit", "d.vdm"});
  const Outcome outcome = run(command);
  const Finding finding = judged(command, outcome);
  if (finding.verdict > Verdict::kContained || outcome.exitCode != 0) return finding;
  if (run(stage.vdm({"dump", "d.vdm"})).output != content) {
    return bad(Verdict::kSilent, command, outcome, "sound, with other content");
  }
  return finding;
}

/// What is recovered can be read, and the damaged file stays.
Finding recoverDamaged(const Stage& stage, Random& random) {
  const std::string bytes = damaged(stage.original("part.vdm"), random);
  stage.put("d.vdm", bytes);
  const Command command = stage.vdm({"recover", "d.vdm", "-o", "r.vdm"});
  const Outcome outcome = run(command);
  const Finding finding = judged(command, outcome);
  if (finding.verdict > Verdict::kContained) return finding;
  if (stage.read("d.vdm") != bytes) {
    return bad(Verdict::kLost, command, outcome, "the damaged file is changed");
  }
  if (outcome.exitCode == 0 || outcome.exitCode == 3) (void)stage.contentOf("r.vdm");
  return finding;
}

constexpr Family kFamilies[] = {
    {"damaged drawings, readers", "the answer of the sound one, or an error", 120, readDamaged},
    {"damaged drawings, outputs", "a whole output, or none", 30, showDamaged},
    {"damaged drawings, audit", "nothing damaged is called sound", 40, auditDamaged},
    {"damaged drawings, recover", "a drawing that can be read, or none", 40, recoverDamaged},
};

}  // namespace

std::span<const Family> drawingFamilies() { return kFamilies; }

}  // namespace attack
