// Damaged STEP files against the commands that read them.
#include <algorithm>
#include <array>

#include "tests/attack/attack.h"

namespace attack {

namespace {

/// Line starts of the entities of a STEP file.
std::vector<std::size_t> entityLines(const std::string& text) {
  std::vector<std::size_t> starts;
  for (std::size_t at = text.find("\n#"); at != std::string::npos; at = text.find("\n#", at + 1)) {
    starts.push_back(at + 1);
  }
  return starts;
}

std::size_t lineEnd(const std::string& text, std::size_t at) {
  return std::min(text.find('\n', at), text.size());
}

/// Replaces the n-th match of a pattern of a kind.
void replaceNumber(std::string& text, std::size_t from, Random& random) {
  constexpr std::array kNumbers{"1e308", "-1e308", "1e-308", "0.",   "NaN", "1.E+400",
                                "-0.",   "1e200",  "$",      "'no'", "*",   ".T."};
  const std::size_t at = text.find_first_of("0123456789", from);
  if (at == std::string::npos || text[at - 1] == '#') return;
  const std::size_t end = text.find_first_not_of("0123456789.eE+-", at);
  text.replace(at, end - at, anyOf(kNumbers, random));
}

void renameType(std::string& text, std::size_t line, Random& random) {
  constexpr std::array kTypes{
      "CARTESIAN_POINT", "PLANE",        "CIRCLE",  "ADVANCED_FACE", "CLOSED_SHELL",
      "EDGE_CURVE",      "VERTEX_POINT", "PRODUCT", "NIX",           ""};
  const std::size_t equals = text.find('=', line);
  const std::size_t open = text.find('(', line);
  if (equals == std::string::npos || open == std::string::npos || open < equals) return;
  text.replace(equals + 1, open - equals - 1, anyOf(kTypes, random));
}

void redirect(std::string& text, std::size_t line, std::size_t target, Random& random) {
  const std::size_t reference = text.find('#', line + 1);
  if (reference == std::string::npos || reference > lineEnd(text, line)) return;
  const std::size_t end = text.find_first_not_of("0123456789", reference + 1);
  std::string to = text.substr(target, text.find_first_not_of("0123456789", target + 1) - target);
  if (random() % 4 == 0) to = "#999999999";
  if (random() % 8 == 0) to = text.substr(line, text.find('=', line) - line);  // itself
  text.replace(reference, end - reference, to);
}

/// One change of an entity that keeps the file readable as text.
void changeEntity(std::string& text, Random& random) {
  const std::vector<std::size_t> lines = entityLines(text);
  if (lines.empty()) return;
  const std::size_t line = anyOf(lines, random);
  const std::size_t end = lineEnd(text, line);
  switch (random() % 6) {
    case 0:
      text.erase(line, end - line);
      break;
    case 1:
      text.insert(end, "\n" + text.substr(line, end - line));
      break;
    case 2:
      renameType(text, line, random);
      break;
    case 3:
      redirect(text, line, anyOf(lines, random), random);
      break;
    case 4:
      replaceNumber(text, text.find('(', line), random);
      break;
    default:
      text.insert(text.find('(', line), std::string(1U << (random() % 18), '('));
  }
}

std::string damagedStep(const Stage& stage, Random& random) {
  constexpr std::array kFiles{"plate.step", "blank.step", "assembly.step"};
  std::string text = stage.original(anyOf(kFiles, random));
  if (random() % 3 == 0) return damaged(std::move(text), random);
  const std::size_t changes = 1 + random() % 4;
  for (std::size_t i = 0; i < changes; ++i) changeEntity(text, random);
  return text;
}

Finding importDamaged(const Stage& stage, Random& random) {
  stage.put("bad.step", damagedStep(stage, random));
  const Command command = stage.vdm({"import", "bad.step", "-o", "out.vdm"});
  const Outcome outcome = run(command);
  const Finding finding = judged(command, outcome);
  if (finding.verdict > Verdict::kContained) return finding;
  const auto files = std::distance(fs::directory_iterator(stage.folder()), {});
  const bool isMade = outcome.exitCode == 0 || outcome.exitCode == 3;
  if (files != (isMade ? 2 : 1)) {
    return bad(Verdict::kLost, command, outcome, "there are " + std::to_string(files) + " files");
  }
  if (!isMade) return finding;
  const Command audit = stage.vdm({"audit", "out.vdm"});
  const Outcome audited = run(audit);
  const Finding second = judged(audit, audited);
  if (second.verdict != Verdict::kHeld) return second;
  if (audited.exitCode == 1) return bad(Verdict::kSilent, audit, audited, "it made no drawing");
  return finding;
}

/// A command that reads the file into part.vdm: done, or nothing is changed.
Finding changeByDamaged(const Stage& stage, Random& random) {
  stage.put("bad.step", damagedStep(stage, random));
  stage.put("part.vdm", stage.original("part.vdm"));
  const bool isReplace = random() % 2 == 0;
  const Command command =
      isReplace ? stage.vdm({"replace", "part.vdm", stage.solid(), "bad.step"})
                : stage.vdm({"component", "add", "part.vdm", "c", "step", "bad.step"});
  const Outcome outcome = run(command);
  const Finding finding = judged(command, outcome);
  if (finding.verdict > Verdict::kContained) return finding;
  const bool isDone = outcome.exitCode == 0 || outcome.exitCode == 3;
  if (!isDone && stage.read("part.vdm") != stage.original("part.vdm")) {
    return bad(Verdict::kLost, command, outcome, "the drawing is changed");
  }
  if (isDone) (void)stage.contentOf("part.vdm");
  return finding;
}

constexpr Family kFamilies[] = {
    {"STEP files, import", "a drawing that can be read, or no file", 60, importDamaged},
    {"STEP files, replace and component", "done, or the drawing as before", 30, changeByDamaged},
};

}  // namespace

std::span<const Family> stepFamilies() { return kFamilies; }

}  // namespace attack
