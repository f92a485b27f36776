// Which rows of a table are meant.
#include "host/batch/row_choice.h"

#include <algorithm>
#include <optional>

#include "platform/base/case_compare.h"

namespace batch {
namespace {

std::optional<std::size_t> findRow(const std::vector<std::string>& names, std::string_view name) {
  const OdString wanted{std::string(name)};
  for (std::size_t i = 0; i < names.size(); ++i) {
    if (odStrICmp(OdString(names[i]), wanted) == 0) return i;
  }
  return std::nullopt;
}

OdStatus refuse(const std::vector<std::string>& names, std::string_view name) {
  constexpr std::size_t kMostShown = 8;
  std::string known;
  for (std::size_t i = 0; i < std::min(names.size(), kMostShown); ++i) {
    known += (i == 0 ? "" : ", ") + names[i];
  }
  if (names.size() > kMostShown) known += ", ...";
  return {eKeyNotFound,
          OdString("there is no configuration " + std::string(name) + ", there are " + known)};
}

void add(std::size_t row, std::vector<std::size_t>& chosen, std::vector<bool>& isChosen) {
  if (!isChosen[row]) chosen.push_back(row);
  isChosen[row] = true;
}

}  // namespace

OdStatus chooseRows(const std::vector<std::string>& names, std::string_view text,
                    std::vector<std::size_t>& chosen) {
  std::vector<bool> isChosen(names.size(), false);
  for (const std::size_t row : chosen) isChosen[row] = true;
  if (const auto row = findRow(names, text)) {
    add(*row, chosen, isChosen);
    return {};
  }
  while (true) {
    const std::size_t comma = text.find(',');
    const std::string_view part = text.substr(0, comma);
    const std::size_t dots = part.find("..");
    auto first = findRow(names, part);
    auto last = first;
    if (part == "all" && !names.empty()) {
      first = 0;
      last = names.size() - 1;
    } else if (!first && dots != std::string_view::npos) {
      first = findRow(names, part.substr(0, dots));
      last = findRow(names, part.substr(dots + 2));
      if (!first) return refuse(names, part.substr(0, dots));
      if (!last) return refuse(names, part.substr(dots + 2));
    }
    if (!first) return refuse(names, part);
    for (std::size_t row = *first; row < *last; ++row) add(row, chosen, isChosen);
    for (std::size_t row = *first; row > *last; --row) add(row, chosen, isChosen);
    add(*last, chosen, isChosen);
    if (comma == std::string_view::npos) return {};
    text.remove_prefix(comma + 1);
  }
}

}  // namespace batch
