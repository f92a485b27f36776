// What the modeller's reader must not see of a STEP file.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/modeler_occt/step_text.h"

namespace od_occt {

/// A piece of the text and what takes its place.
struct StepEdit {
  std::size_t at = 0;
  std::size_t length = 0;
  std::string replacement;
};

/// Edits that leave a file in which every reference leads to an instance. The reader follows
/// references without a look at whether they lead anywhere, so one missing point ends the process.
///   1. Statements that are no instances, and instances whose number another one has, are dropped.
///   2. An instance that refers to what is missing or dropped is dropped as well.
///   3. Except those that are collections: a shell, a set or a representation loses the element.
///   4. Except product data whose context is missing: the reader does not use contexts.
///   5. Instances of `hiddenType` are dropped, and nothing follows from that.
/// A dropped instance keeps its number, as one of an unknown type. One pass, and one more over the
/// references when something is missing.
std::vector<StepEdit> stepRepairs(const StepText& file, std::string_view hiddenType);

/// The text with edits, in any order; of edits that overlap, the one that begins first.
std::string edited(std::string_view text, std::vector<StepEdit> edits);

}  // namespace od_occt
