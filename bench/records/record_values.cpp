// Values of the measured records.
#include "bench/records/record_values.h"

namespace {

std::string padded(const char* text, std::size_t index, std::size_t size) {
  std::string result = text + std::to_string(index);
  result.resize(size, '.');
  return result;
}

}  // namespace

RecordValues::RecordValues(std::size_t index)
    : description(padded("bracket, milled, position ", index, 40)),
      material(padded("EN AW-6082 T6 ", index % 97, 20)),
      name(padded("bracket ", index, 26)),
      partNumber(padded("PN-", index, 16)),
      height(static_cast<double>(index) * 0.25 + 1),
      length(static_cast<double>(index) * 0.5 + 2),
      mass(static_cast<double>(index) * 0.125 + 3),
      width(static_cast<double>(index) * 0.75 + 4),
      quantity(static_cast<int>(index % 1000)),
      revision(static_cast<int>(index % 17)),
      visible(index % 2 == 0) {
  for (std::size_t i = 0; i < profile.size(); ++i) {
    profile[i] = static_cast<double>(index + i) * 0.0625;
  }
}
