// What a component or an insert takes from numbers and expressions. Each edit is to run within
// ModelEditor::edit(), which rolls back what fails and runs the pass.
#pragma once

#include <vector>

#include "host/parameters/unit_text.h"
#include "platform/base/status.h"
#include "platform/base/string.h"
#include "platform/filer/object_id.h"

namespace vdm_host {

/// One property of an insert or a component as it is.
struct PropertyInfo {
  OdString name;
  bool hasValue = true;  ///< false for a depth through everything
  ShownValue shown;
  OdString expression;  ///< empty for a number
  bool isOwn = true;    ///< false for a size that an insert has from its component
};

/// Gives an insert, by its component feature, a property: a size of its component, which then is
/// its own, "X", "Y", "Z" (of its point in the block), "Angle" (about its axis; a plain number is
/// in degrees) or "Suppress" (not 0). Names are compared without regard to case. `text` is a
/// constant, or an expression over the variables of the block, which the property follows from now
/// on. Empty: the property keeps its value and follows nothing, and a size is again that of the
/// component. Refused: other names, texts that do not compile, and values that measure something
/// else.
[[nodiscard]] OdStatus setInsertProperty(const OdDbObjectId& feature, const OdString& name,
                                         const OdString& text);
/// The same for a size of a component; expressions are over the variables of model space.
[[nodiscard]] OdStatus setComponentSize(const OdDbObjectId& block, const OdString& name,
                                        const OdString& text);

[[nodiscard]] std::vector<PropertyInfo> insertProperties(const OdDbObjectId& feature);
[[nodiscard]] std::vector<PropertyInfo> componentProperties(const OdDbObjectId& block);

}  // namespace vdm_host
