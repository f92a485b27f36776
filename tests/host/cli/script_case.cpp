// Scripts that drive the command.
#include "tests/host/cli/script_case.h"

#include <sys/wait.h>

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string_view>

namespace cli_testing {

namespace fs = std::filesystem;

namespace {

std::vector<std::string> linesOf(const fs::path& path) {
  std::vector<std::string> lines;
  std::ifstream in(path);
  for (std::string line; std::getline(in, line);) lines.push_back(line);
  return lines;
}

std::string contentOf(const fs::path& path) {
  std::ifstream in(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

bool isWordCharacter(char c) {
  return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '_' || c == '.' || c == '-';
}

/// The name in @name@ at the start of a pattern; empty when there is something else.
std::string_view nameAt(std::string_view pattern) {
  const std::size_t end = pattern.find('@', 1);
  if (pattern.empty() || pattern[0] != '@' || end == std::string_view::npos) return {};
  const std::string_view name = pattern.substr(1, end - 1);
  return std::all_of(name.begin(), name.end(), isWordCharacter) ? name : std::string_view();
}

/// Tries the ways in which `*` and new words can take text; words are kept only with a match.
bool matches(std::string_view pattern, std::string_view line, Words& words) {
  if (pattern.empty()) return line.empty();
  if (pattern[0] == '*') {
    for (std::size_t taken = 0; taken <= line.size(); ++taken) {
      if (matches(pattern.substr(1), line.substr(taken), words)) return true;
    }
    return false;
  }
  const std::string name(nameAt(pattern));
  if (name.empty()) {
    return !line.empty() && line[0] == pattern[0] &&
           matches(pattern.substr(1), line.substr(1), words);
  }
  const std::string_view rest = pattern.substr(name.size() + 2);
  if (const auto known = words.find(name); known != words.end()) {
    return line.starts_with(known->second) &&
           matches(rest, line.substr(known->second.size()), words);
  }
  std::size_t taken = 0;
  while (taken < line.size() && isWordCharacter(line[taken])) ++taken;
  for (; taken > 0; --taken) {
    words[name] = line.substr(0, taken);
    if (matches(rest, line.substr(taken), words)) return true;
  }
  words.erase(name);
  return false;
}

std::string shownLines(const std::vector<std::string>& lines) {
  std::string text;
  for (const std::string& line : lines) text += "    " + line + "\n";
  return text;
}

void addLine(std::vector<Step>& steps, const std::string& text, std::size_t number) {
  const char mark = text[0];
  const std::string rest = text.size() > 2 ? text.substr(2) : "";
  if (mark == '$') {
    steps.push_back({number, rest, {}, {}, 0});
    return;
  }
  if (steps.empty() || (mark != '>' && mark != '!' && mark != '=')) {
    throw std::runtime_error("line " + std::to_string(number) + " cannot be read: " + text);
  }
  if (mark == '>') steps.back().output.push_back(rest);
  if (mark == '!') steps.back().errors.push_back(rest);
  if (mark == '=') steps.back().exitCode = std::stoi(rest);
}

}  // namespace

std::vector<Step> readScript(const fs::path& path) {
  std::vector<Step> steps;
  std::size_t number = 0;
  for (const std::string& text : linesOf(path)) {
    ++number;
    if (!text.empty() && text[0] != '#') addLine(steps, text, number);
  }
  if (steps.empty()) throw std::runtime_error(path.string() + " has no commands");
  return steps;
}

Shell::Shell(fs::path folder) : m_folder(std::move(folder)) {
  fs::remove_all(m_folder);
  fs::create_directories(m_folder);
}

Outcome Shell::run(const std::string& command) const {
  // Beside the folder, so that they do not count among its files.
  const fs::path out = m_folder.string() + ".stdout";
  const fs::path err = m_folder.string() + ".stderr";
  const std::string whole = "cd '" + m_folder.string() + "' && { " + command + "\n} > '" +
                            out.string() + "' 2> '" + err.string() + "'";
  const int status = std::system(whole.c_str());
  return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, linesOf(out), linesOf(err)};
}

std::map<std::string, std::string> Shell::files() const {
  std::map<std::string, std::string> contents;
  for (const fs::directory_entry& entry : fs::recursive_directory_iterator(m_folder)) {
    if (entry.is_regular_file()) contents[entry.path().string()] = contentOf(entry.path());
  }
  return contents;
}

std::string withWords(const std::string& command, const Words& words) {
  std::string text = command;
  for (const auto& [name, value] : words) {
    const std::string mark = "@" + name + "@";
    for (std::size_t at = text.find(mark); at != std::string::npos; at = text.find(mark, at)) {
      text.replace(at, mark.size(), value);
    }
  }
  return text;
}

std::string compareLines(const std::vector<std::string>& patterns,
                         const std::vector<std::string>& lines, Words& words) {
  std::size_t at = 0;
  bool skipping = false;
  for (const std::string& pattern : patterns) {
    if (pattern == "...") {
      skipping = true;
      continue;
    }
    while (skipping && at < lines.size() && !matches(pattern, lines[at], words)) ++at;
    if (at == lines.size() || !matches(pattern, lines[at], words)) {
      return "  expected: " + pattern + "\n  got:\n" + shownLines(lines);
    }
    skipping = false;
    ++at;
  }
  if (at < lines.size() && !skipping) {
    return "  more than expected, from: " + lines[at] + "\n  got:\n" + shownLines(lines);
  }
  return {};
}

}  // namespace cli_testing
