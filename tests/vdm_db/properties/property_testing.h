// Small verbs of the property tests: bytes, bags and filers.
#pragma once

#include <string>
#include <vector>

#include "tests/support/module_testing.h"
#include "vdm_db/properties/vdm_flat_filer.h"
#include "vdm_db/properties/vdm_properties.h"

namespace property_testing {

// The flat form of a bag, and a bag read from flat bytes.
std::vector<char> flatOf(const VdmProperties& bag);
OdResult readFlat(VdmProperties& bag, const std::vector<char>& bytes);

// "03 00 5F": hexadecimal text of bytes and back.
std::string hexOf(const std::vector<char>& bytes);
std::vector<char> bytesOf(const std::string& hex);

// A value of every plain type, a blob, arrays and maps of all element types, and nested values.
VdmProperties fullBag();

// Collects failed assertions while it lives.
class AssertionLog {
 public:
  AssertionLog();
  // "expression@source:line" of each.
  [[nodiscard]] const std::vector<std::string>& lines() const { return m_lines; }

 private:
  std::vector<std::string> m_lines;
  AssertionSink m_sink;
};

}  // namespace property_testing
