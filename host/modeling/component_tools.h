// ComponentTools: the tools of component blocks, read once in a pass.
#pragma once

#include <array>
#include <unordered_map>
#include <vector>

#include "host/modeling/component_feature.h"
#include "host/modeling/residues.h"
#include "host/modeling/tool_form.h"
#include "platform/filer/object_id.h"
#include "platform/ge/matrix3d.h"

namespace vdm_host {

/// The tools of one block, in its coordinates and the block's order.
struct BlockTools {
  std::array<std::vector<OdModelerBodyPtr>, kToolKindCount> bodies;
  OdUInt64 stamp = 0;  ///< tells these tools from others
  /// Of the only tool of a built-in component; one that cuts is made to fit at each cut.
  std::optional<ToolForm> form;

  [[nodiscard]] const std::vector<OdModelerBodyPtr>& of(ToolKind kind) const {
    return bodies[static_cast<std::size_t>(kind)];
  }
};

/// Raises the code of the failure when a body cannot be read.
class ComponentTools {
 public:
  /// A block without tools, and a null id, give none.
  const BlockTools& of(const OdDbObjectId& block);
  /// Those of an insert of the block, which may have sizes of its own. Raises eInvalidInput for
  /// sizes that no tool could have.
  const BlockTools& of(const OdDbObjectId& block, const VdmComponentFeature& component);

 private:
  std::unordered_map<OdDbObjectId, BlockTools> m_tools;     // by block
  std::unordered_map<OdDbObjectId, BlockTools> m_ownTools;  // by feature
};

}  // namespace vdm_host
