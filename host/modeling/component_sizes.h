// Dimensions of built-in components by name, and giving a component others.
#pragma once

#include <map>
#include <optional>
#include <vector>

#include "host/modeling/tool_form.h"
#include "platform/base/status.h"
#include "platform/base/string.h"
#include "platform/filer/object_id.h"

class OdDbDatabase;

namespace vdm_host {

/// Values by name, in the units of the component's block.
using ComponentSizes = std::map<OdString, double>;

/// "Diameter", "Depth", "Bore", "BoreDepth", "Width", "Length", "Height": what the shape has, in
/// the order in which users read it. Empty for components that were not made from dimensions.
[[nodiscard]] std::vector<OdString> sizeNames(const OdDbObjectId& block);
/// The name as sizeNames() writes it, for any case and for "bore-depth"; empty for no size.
[[nodiscard]] OdString sizeNamed(const OdDbObjectId& block, const OdString& name);
/// A size of a form; nothing for a depth through everything.
[[nodiscard]] std::optional<double> sizeOf(const ToolForm& form, const OdString& name);
/// The form of a component's block; nothing without one, or when its tool was edited.
[[nodiscard]] std::optional<ToolForm> formOf(const OdDbObjectId& block);

/// Whether a tool could have these dimensions; the text names both values.
[[nodiscard]] OdStatus checkForm(const ToolForm& form);
/// How far the tool that the block shows reaches below its face.
[[nodiscard]] double storedDepth(const OdDbDatabase* database, const ToolForm& form);

/// The form with other sizes; a name that the shape lacks is left out. checkForm() is
/// the result.
[[nodiscard]] OdStatus withSizes(const ToolForm& form, const ComponentSizes& sizes,
                                 ToolForm& result);
/// Makes the tool in the block anew. The features of its inserts are due in the next pass. Nothing
/// happens when the sizes are what it has.
[[nodiscard]] OdStatus resizeComponent(const OdDbObjectId& block, const ComponentSizes& sizes);

}  // namespace vdm_host
