// The result of a command as named values, for people and for machines.
#pragma once

#include <cstdint>
#include <string>
#include <variant>
#include <vector>

namespace cli {

/// Ordered rows of key and value; the keys are those of the JSON object, and the labels of the
/// text, where empty values are left out.
class Report {
 public:
  using Value = std::variant<std::string, std::int64_t, std::vector<std::string>>;

  /// Headline of the text; not part of the JSON.
  explicit Report(std::string headline) : m_headline(std::move(headline)) {}

  Report& add(std::string key, std::string value) { return put(std::move(key), std::move(value)); }
  Report& add(std::string key, std::uint64_t value) {
    return put(std::move(key), static_cast<std::int64_t>(value));
  }
  /// The text shows the lines below its rows, indented, each after `lead`.
  Report& addLines(std::string key, std::vector<std::string> lines, std::string lead = {}) {
    put(std::move(key), std::move(lines));
    m_rows.back().lead = std::move(lead);
    return *this;
  }

  [[nodiscard]] std::string text() const;
  [[nodiscard]] std::string json() const;
  /// To standard output, in the form asked for.
  void print(bool asJson) const;

 private:
  struct Row {
    std::string key;
    Value value;
    std::string lead;
  };
  Report& put(std::string key, Value value) {
    m_rows.push_back({std::move(key), std::move(value), {}});
    return *this;
  }

  std::string m_headline;
  std::vector<Row> m_rows;
};

}  // namespace cli
