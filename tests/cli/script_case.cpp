// Scripts that drive the command.
#include "tests/cli/script_case.h"

#include <sys/wait.h>

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <regex>
#include <stdexcept>

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

std::string escaped(const std::string& text) {
  static const std::regex special(R"([.^$|()\[\]{}*+?\\])");
  return std::regex_replace(text, special, R"(\$&)");
}

/// A pattern as a regular expression; `names` gets the words that it captures.
std::regex expressionOf(const std::string& pattern, const Words& words,
                        std::vector<std::string>& names) {
  static const std::regex part(R"(\*|@([a-z]+)@)");
  std::string expression;
  auto from = pattern.cbegin();
  for (std::sregex_iterator it(pattern.begin(), pattern.end(), part), end; it != end; ++it) {
    expression += escaped(std::string(from, (*it)[0].first));
    from = (*it)[0].second;
    const std::string name = (*it)[1].str();
    if (name.empty()) {
      expression += ".*";
    } else if (const auto known = words.find(name); known != words.end()) {
      expression += escaped(known->second);
    } else {
      names.push_back(name);
      expression += "([0-9A-Za-z_.-]+)";
    }
  }
  return std::regex(expression + escaped(std::string(from, pattern.cend())));
}

bool matches(const std::string& pattern, const std::string& line, Words& words) {
  std::vector<std::string> names;
  const std::regex expression = expressionOf(pattern, words, names);
  std::smatch found;
  if (!std::regex_match(line, found, expression)) return false;
  for (std::size_t i = 0; i < names.size(); ++i) words[names[i]] = found[i + 1].str();
  return true;
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
    text = std::regex_replace(text, std::regex("@" + name + "@"), value);
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

const fs::path& sampleFolder() {
  static const fs::path folder = [] {
    const Shell shell(fs::current_path() / "samples");
    if (shell.run("make_samples .").exitCode != 0) throw std::runtime_error("no samples");
    return shell.folder();
  }();
  return folder;
}

}  // namespace cli_testing
