// Journals that lie, runs that are killed, and outputs that cannot be written.
#include <sys/stat.h>

#include <array>

#include "tests/attack/attack.h"

namespace attack {

namespace {

std::string bigEndian(std::uint32_t value) {
  std::string bytes;
  for (int shift = 24; shift >= 0; shift -= 8) bytes += static_cast<char>(value >> shift & 0xFF);
  return bytes;
}

/// A rollback journal, or what begins like one; some name a file that their reader would delete.
std::string journalFor(const fs::path& victim, Random& random) {
  const std::string magic("\xd9\xd5\x05\xf9\x20\xa1\x63\xd7", 8);
  const std::string name = victim.string();
  std::string journal = magic + bigEndian(0) + bigEndian(static_cast<std::uint32_t>(random())) +
                        bigEndian(4) + bigEndian(512) + bigEndian(4096);
  journal.resize(512);
  std::uint32_t sum = 0;
  for (const char byte : name) sum += static_cast<unsigned char>(byte);
  switch (random() % 4) {
    case 0:
      return damaged(journal + std::string(4096, 'j'), random);
    case 1:
      return std::string(random() % 5000, static_cast<char>(random()));
    default:
      return journal + bigEndian(0) + name + bigEndian(static_cast<std::uint32_t>(name.size())) +
             bigEndian(sum) + magic;
  }
}

Finding openBesideJournal(const Stage& stage, Random& random) {
  constexpr std::array kNames{"p.vdm-journal", "p.vdm-wal", "p.vdm-shm"};
  stage.put("p.vdm", stage.original("part.vdm"));
  const std::string content = stage.contentOf("p.vdm");
  stage.put("victim", "precious");
  stage.put(anyOf(kNames, random), journalFor(stage.folder() / "victim", random));
  const bool isEdit = random() % 2 == 0;
  const Command command = isEdit ? stage.vdm({"props", "set", "p.vdm", stage.solid(), "k", "v"})
                                 : stage.vdm({"dump", "p.vdm"});
  const Outcome outcome = run(command);
  const Finding finding = judged(command, outcome);
  if (finding.verdict > Verdict::kContained) return finding;
  if (stage.read("victim") != "precious") {
    return bad(Verdict::kLost, command, outcome, "a file that the journal names is gone");
  }
  if (!isEdit && outcome.exitCode == 0 && outcome.output != content) {
    return bad(Verdict::kSilent, command, outcome, "another content");
  }
  return finding;
}

/// The drawing after a kill is the one before or the one after, and nothing stays beside it once
/// the next command ran.
Finding killEdit(const Stage& stage, Random& random) {
  stage.put("p.vdm", stage.original("part.vdm"));
  const std::string before = stage.contentOf("p.vdm");
  const std::vector<std::string> edit{"move", "p.vdm", "first", "--by", "5,0,0"};
  (void)run(stage.vdm(edit));
  const std::string after = stage.contentOf("p.vdm");
  stage.put("p.vdm", stage.original("part.vdm"));
  Command command = stage.vdm(edit);
  command.killAfterMicroseconds = static_cast<int>(random() % 120'000);
  const Outcome outcome = run(command);
  const Finding finding = judged(command, outcome);
  if (finding.verdict > Verdict::kContained) return finding;
  const Outcome next = run(stage.vdm({"dump", "p.vdm"}));
  if (next.exitCode != 0 || (next.output != before && next.output != after)) {
    return bad(Verdict::kLost, command, next, "neither the old nor the new drawing");
  }
  return finding;
}

/// A new file after a kill is there whole or not at all, and the next run cleans up.
Finding killOutput(const Stage& stage, Random& random) {
  stage.put("p.vdm", stage.original("part.vdm"));
  stage.put("plate.step", stage.original("plate.step"));
  const std::vector<std::vector<std::string>> commands{
      {"import", "plate.step", "-o", "out.vdm"},
      {"export", "p.vdm", "-o", "out.step"},
      {"render", "p.vdm", "-o", "out.png"},
      {"clone", "p.vdm", stage.solid(), "-o", "out.vdm"},
  };
  const std::vector<std::string>& words = anyOf(commands, random);
  Command command = stage.vdm(words);
  command.killAfterMicroseconds = static_cast<int>(random() % 150'000);
  const Outcome outcome = run(command);
  const Finding finding = judged(command, outcome);
  if (finding.verdict > Verdict::kContained) return finding;
  if (fs::exists(stage.folder() / "out.vdm")) (void)stage.contentOf("out.vdm");
  std::vector<std::string> again = words;
  again.emplace_back("--force");
  const Command second = stage.vdm(again);
  const Outcome repeated = run(second);
  if (repeated.exitCode != 0) return bad(Verdict::kLost, second, repeated, "it cannot be repeated");
  const auto files = std::distance(fs::directory_iterator(stage.folder()), {});
  if (files != 3) {
    return bad(Verdict::kLost, command, outcome,
               std::to_string(files) + " files after the next run");
  }
  return finding;
}

/// An output that cannot be written is said, with a code that is not 0.
Finding writeNowhere(const Stage& stage, Random& random) {
  stage.put("p.vdm", stage.original("part.vdm"));
  const std::string before = stage.contentOf("p.vdm");
  const std::vector<std::vector<std::string>> commands{
      {"tree", "p.vdm"},
      {"dump", "p.vdm"},
      {"refs", "list", "p.vdm", "--json"},
      {"move", "p.vdm", "first", "--by", "5,0,0"},
      {"props", "set", "p.vdm", stage.solid(), "k", "v"},
  };
  Command command = stage.vdm(anyOf(commands, random));
  command.closedOutput = random() % 2 == 0;
  if (!command.closedOutput) command.outputFile = "/dev/full";
  const Outcome outcome = run(command);
  const Finding finding = judged(command, outcome);
  if (finding.verdict > Verdict::kContained) return finding;
  if (outcome.exitCode == 0) {
    return bad(Verdict::kSilent, command, outcome, "exit code 0 without its output");
  }
  const std::string now = run(stage.vdm({"dump", "p.vdm"})).output;
  if (outcome.exitCode == 1 && now != before) {
    return bad(Verdict::kLost, command, outcome, "exit code 1, and the drawing is changed");
  }
  return finding;
}

/// Targets that are no plain files stay what they are.
Finding writeOnto(const Stage& stage, Random& random) {
  stage.put("p.vdm", stage.original("part.vdm"));
  const fs::path target = stage.folder() / "target.step";
  const auto kind = random() % 3;
  if (kind == 0) fs::create_directory(target);
  if (kind == 1) mkfifo(target.c_str(), 0600);
  if (kind == 2) fs::create_symlink("/dev/null", target);
  const fs::file_type before = fs::symlink_status(target).type();
  const Command command = stage.vdm({"export", "p.vdm", "-o", "target.step", "--force"});
  const Outcome outcome = run(command);
  const Finding finding = judged(command, outcome);
  if (finding.verdict > Verdict::kContained) return finding;
  if (fs::symlink_status(target).type() != before || outcome.exitCode == 0) {
    return bad(Verdict::kLost, command, outcome, "the target is replaced");
  }
  return finding;
}

constexpr Family kFamilies[] = {
    {"journals beside a drawing", "no other file is touched", 40, openBesideJournal},
    {"killed edits", "the drawing before or after", 40, killEdit},
    {"killed outputs", "a whole file or none; the next run cleans up", 20, killOutput},
    {"outputs that cannot be written", "said, with a code of its own", 20, writeNowhere},
    {"targets that are no files", "refused", 6, writeOnto},
};

}  // namespace

std::span<const Family> fileFamilies() { return kFamilies; }

}  // namespace attack
