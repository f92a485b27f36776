#include "tests/attack/attack.h"

#include <algorithm>
#include <array>
#include <csignal>
#include <fstream>
#include <map>
#include <sstream>
#include <stdexcept>

namespace attack {

namespace {

constexpr double kMostSeconds = 5.0;
constexpr double kMostMegabytes = 512.0;
constexpr std::size_t kMostErrorLines = 12;

std::string bytesOf(const fs::path& path) {
  std::ifstream in(path, std::ios::binary);
  std::ostringstream out;
  out << in.rdbuf();
  return std::move(out).str();
}

std::string firstLines(const std::string& text) {
  constexpr std::size_t kShown = 400;
  return text.size() <= kShown ? text : text.substr(0, kShown) + " ...";
}

}  // namespace

// ---- The stage

Stage::Stage(fs::path program, const fs::path& folder)
    : m_program(std::move(program)), m_originals(folder / "originals"), m_folder(folder / "case") {
  fs::remove_all(folder);
  fs::create_directories(m_originals);
  prepare();
}

void Stage::make(const std::vector<std::string>& words) const {
  Command command = vdm(words);
  command.folder = m_originals;
  const Outcome outcome = run(command);
  if (outcome.exitCode != 0) {
    throw std::runtime_error("the stage: " + textOf(command) + ": " + outcome.errors);
  }
}

void Stage::prepare() {
  const std::string samples = (m_program / "make_samples").string();
  if (run({{samples, "."}, m_originals}).exitCode != 0) throw std::runtime_error("no samples");
  make({"import", "plate.step", "-o", "part.vdm"});
  make({"import", "assembly.step", "-o", "assembly.vdm"});
  Command list = vdm({"info", "part.vdm", "--json"});
  list.folder = m_originals;
  const std::string info = run(list).output;
  const std::string key = "\"handle\": \"";
  const std::size_t at = info.find(key, info.find("\"solids\": ["));
  if (at == std::string::npos) throw std::runtime_error("part.vdm has no solid");
  m_solid = info.substr(at + key.size(), info.find('"', at + key.size()) - at - key.size());
  make({"refs", "add", "part.vdm", m_solid, "--at", "60,40,10", "--face", "--name", "top"});
  make({"component", "add", "part.vdm", "hole", "hole", "--diameter", "6"});
  make({"insert", "part.vdm", "hole", "--on", "top", "--at", "60,40,10", "--name", "first"});
  make({"props", "set", "part.vdm", m_solid, "material", "S235JR"});
}

void Stage::clear() const {
  fs::remove_all(m_folder);
  fs::create_directories(m_folder);
}

const std::string& Stage::original(const std::string& name) const {
  static std::map<std::string, std::string> known;
  std::string& bytes = known[name];
  if (bytes.empty()) bytes = bytesOf(m_originals / name);
  if (bytes.empty()) throw std::runtime_error("no original " + name);
  return bytes;
}

void Stage::put(const std::string& name, const std::string& bytes) const {
  std::ofstream(m_folder / name, std::ios::binary) << bytes;
}

std::string Stage::read(const std::string& name) const { return bytesOf(m_folder / name); }

Command Stage::vdm(std::vector<std::string> words) const {
  words.insert(words.begin(), (m_program / "vdm").string());
  return {std::move(words), m_folder};
}

std::string Stage::contentOf(const std::string& drawing) const {
  const Outcome outcome = run(vdm({"dump", drawing}));
  if (outcome.exitCode != 0)
    throw std::runtime_error(drawing + " cannot be read: " + outcome.errors);
  return outcome.output;
}

// ---- Laws of all commands

Finding bad(Verdict verdict, const Command& command, const Outcome& outcome,
            const std::string& why) {
  std::ostringstream text;
  text << textOf(command) << "\n    " << why << "; exit code " << outcome.exitCode;
  if (outcome.signal != 0) text << ", signal " << outcome.signal;
  text << ", " << outcome.seconds << " s, " << outcome.megabytes << " MB\n    "
       << firstLines(outcome.errors);
  return {verdict, text.str()};
}

Finding judged(const Command& command, const Outcome& outcome) {
  const bool isKilled = command.killAfterMicroseconds >= 0;
  if (outcome.isLate || outcome.seconds > kMostSeconds) {
    return bad(Verdict::kHang, command, outcome, "it takes too long");
  }
  if (outcome.megabytes > kMostMegabytes) {
    return bad(Verdict::kMemory, command, outcome, "it takes too much memory");
  }
  if (isKilled) return {};
  const bool isPipe = command.closedOutput && outcome.signal == SIGPIPE;
  if (isPipe) return {};
  if (outcome.exitCode < 0 || outcome.exitCode > 4) {
    return bad(Verdict::kCrash, command, outcome, "it did not end as a command ends");
  }
  const auto lines = std::ranges::count(outcome.errors, '\n');
  const bool isError = outcome.exitCode == 1 || outcome.exitCode == 2;
  if (isError && !outcome.errors.starts_with("vdm: ")) {
    return bad(Verdict::kRude, command, outcome, "an error without a message");
  }
  if (static_cast<std::size_t>(lines) > kMostErrorLines) {
    return bad(Verdict::kRude, command, outcome, "too many lines of errors");
  }
  constexpr std::array kDeaths{"it crashed (", "it gave up (", "it did not end within",
                               "it was killed", "it ended by signal"};
  const bool isDeath = std::ranges::any_of(kDeaths, [&outcome](const char* words) {
    return outcome.errors.find(words) != std::string::npos;
  });
  return {isDeath ? Verdict::kContained : Verdict::kHeld, outcome.errors};
}

// ---- Damage

std::string damaged(std::string bytes, Random& random) {
  if (bytes.empty()) return bytes;
  const auto place = [&] { return static_cast<std::size_t>(random() % bytes.size()); };
  const std::size_t rounds = 1 + random() % 3;
  for (std::size_t round = 0; round < rounds && !bytes.empty(); ++round) {
    const std::size_t at = place();
    const std::size_t length = std::min<std::size_t>(1 + random() % 600, bytes.size() - at);
    switch (random() % 6) {
      case 0:
        bytes[at] =
            static_cast<char>(static_cast<unsigned char>(bytes[at]) ^ (1U << (random() % 8)));
        break;
      case 1:
        bytes[at] = static_cast<char>(random());
        break;
      case 2:
        std::fill_n(bytes.begin() + static_cast<std::ptrdiff_t>(at), length, '\0');
        break;
      case 3:
        bytes.resize(at);
        break;
      case 4:
        bytes.replace(at, length, bytes.substr(place(), length));
        break;
      default:
        bytes.erase(at, length);
    }
  }
  return bytes;
}

}  // namespace attack
