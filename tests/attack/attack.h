// Attacks on the command: families of cases, and the laws that each case is judged by.
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <random>
#include <span>
#include <string>
#include <vector>

#include "tests/attack/process.h"

namespace attack {

namespace fs = std::filesystem;
using Random = std::mt19937_64;

/// How a case ended, from good to bad. Each bad one breaks a law.
enum class Verdict {
  kHeld,
  kContained,  ///< a child died of it; one line says so, exit code 1, nothing changed
  kCrash,      ///< the command itself died, or ended with a code that it does not have
  kHang,       ///< more than 5 s of processor time
  kMemory,     ///< more than 512 MB
  kSilent,     ///< exit code 0 with another content than there was
  kLost,       ///< content or files are not as before, although it says that nothing was changed
  kRude,       ///< no message, or more than the few lines that an error has
};
inline constexpr std::size_t kVerdicts = 8;

struct Finding {
  Verdict verdict = Verdict::kHeld;
  std::string text;  ///< of a bad one: what was run and what was seen
};

/// Where a case runs: the programs, sound files to start from, and an empty folder of its own.
class Stage {
 public:
  Stage(fs::path program, const fs::path& folder);

  /// Empties the folder for the next case.
  void clear() const;
  [[nodiscard]] const fs::path& folder() const { return m_folder; }
  /// A file that the stage made at its beginning: "part.vdm", "plate.step", ...
  [[nodiscard]] const std::string& original(const std::string& name) const;
  /// Puts a file into the folder.
  void put(const std::string& name, const std::string& bytes) const;
  [[nodiscard]] std::string read(const std::string& name) const;
  /// The command `vdm` with these words, in the folder.
  [[nodiscard]] Command vdm(std::vector<std::string> words) const;
  /// The objects of a drawing as text; throws when it is not sound.
  [[nodiscard]] std::string contentOf(const std::string& drawing) const;
  /// The handle of the solid of "part.vdm".
  [[nodiscard]] const std::string& solid() const { return m_solid; }

 private:
  void make(const std::vector<std::string>& words) const;
  void prepare();

  fs::path m_program;
  fs::path m_originals;
  fs::path m_folder;
  std::string m_solid;
};

/// What every command keeps: it ends by itself with one of its codes, within time and memory, and
/// an error has a message of few lines. kContained when the message says that a child died.
[[nodiscard]] Finding judged(const Command& command, const Outcome& outcome);
/// The finding with the command and what it printed.
[[nodiscard]] Finding bad(Verdict verdict, const Command& command, const Outcome& outcome,
                          const std::string& why);

struct Family {
  const char* name;
  const char* law;
  unsigned cases;  ///< of an everyday run; a long one takes twenty times as many
  Finding (*run)(const Stage& stage, Random& random);
};

[[nodiscard]] std::span<const Family> stepFamilies();
[[nodiscard]] std::span<const Family> drawingFamilies();
[[nodiscard]] std::span<const Family> textFamilies();
[[nodiscard]] std::span<const Family> fileFamilies();

/// One of them.
template <class List>
const auto& anyOf(const List& list, Random& random) {
  return list[random() % std::size(list)];
}

/// Damages bytes in one of many ways: flips, runs of zeros, cuts, copies of other places.
[[nodiscard]] std::string damaged(std::string bytes, Random& random);

}  // namespace attack
