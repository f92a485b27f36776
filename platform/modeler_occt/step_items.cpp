// Representation items of a STEP file, by their common arguments.
#include "platform/modeler_occt/step_items.h"

#include <algorithm>

namespace od_occt {

OdString itemName(const StepText& file, const StepStrings& strings, const StepInstance& instance) {
  const bool isComplex = file.text()[instance.at] == '(';
  const std::vector<std::string_view> arguments =
      isComplex ? file.arguments(instance, "REPRESENTATION_ITEM") : file.arguments(instance);
  return arguments.empty() ? OdString() : strings.decodeArgument(arguments.front());
}

// Name, styles, item; in parts, the part of styled items has no name.
std::optional<OdUInt64> styledItem(const StepText& file, const StepInstance& instance) {
  const std::vector<std::string_view> types = file.types(instance);
  const auto isStyled = [](std::string_view type) {
    return type.ends_with("STYLED_ITEM") || type.ends_with("_OCCURRENCE") ||
           type == "ANNOTATION_PLANE";
  };
  if (std::ranges::none_of(types, isStyled)) return std::nullopt;
  const bool inParts = types.size() > 1;
  const std::vector<std::string_view> arguments =
      inParts ? file.arguments(instance, "STYLED_ITEM") : file.arguments(instance);
  const std::size_t place = inParts ? 1 : 2;
  return arguments.size() > place ? StepText::reference(arguments[place]) : std::nullopt;
}

}  // namespace od_occt
