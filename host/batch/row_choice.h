// Which rows of a table are meant.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/base/status.h"

namespace batch {

/// Adds the positions of the rows that a text means: "all", the name of a row, "S..XL" (those from
/// one to the other, in the order of the table), or several of these with commas. A name that holds
/// a comma or dots is meant as a whole where a row has it. Names are compared whatever their case;
/// a position comes once. eKeyNotFound names what is not there, and what is.
[[nodiscard]] OdStatus chooseRows(const std::vector<std::string>& names, std::string_view text,
                                  std::vector<std::size_t>& chosen);

}  // namespace batch
