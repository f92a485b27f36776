// Reports of commands as text and as JSON.
#include "host/cli/report.h"

#include <algorithm>
#include <nlohmann/json.hpp>

#include "host/cli/json_text.h"
#include "host/cli/text_output.h"

namespace cli {

namespace {

struct TextOf {
  std::string operator()(const std::string& value) const { return oneLine(value); }
  std::string operator()(std::int64_t value) const { return std::to_string(value); }
  std::string operator()(const std::vector<std::string>&) const { return {}; }
};

}  // namespace

std::string Report::text() const {
  std::string out = wrapped(oneLine(m_headline), "");
  std::size_t widest = 0;
  for (const Row& row : m_rows) widest = std::max(widest, row.key.size());
  for (const Row& row : m_rows) {
    if (const auto* lines = std::get_if<std::vector<std::string>>(&row.value)) {
      for (const std::string& line : *lines) out += wrapped(oneLine(row.lead + line), "  ");
      continue;
    }
    if (const auto* value = std::get_if<std::string>(&row.value); value && value->empty()) continue;
    std::string label = row.key;
    std::ranges::replace(label, '_', ' ');
    out += "  " + label + std::string(widest - label.size() + 2, ' ') +
           std::visit(TextOf(), row.value) + "\n";
  }
  return out;
}

std::string Report::json() const {
  nlohmann::ordered_json object = nlohmann::ordered_json::object();
  for (const Row& row : m_rows) {
    std::visit([&](const auto& value) { object[row.key] = value; }, row.value);
  }
  return jsonText(object);
}

void Report::print(bool asJson) const { printOut(asJson ? json() : text()); }

}  // namespace cli
