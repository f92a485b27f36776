// What references and features call the faces, edges and vertices of solids.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "platform/db/database.h"
#include "platform/modeler/subentity.h"

namespace cli {

/// Names of subentities by solid, from all references of a drawing, read once.
class SolidLabels {
 public:
  explicit SolidLabels(OdDbDatabase& drawing);

  /// Names of references to a subentity, then of the features that watch it; each once.
  [[nodiscard]] std::vector<std::string> of(const OdDbObjectId& solid,
                                            OdModelerSubent subent) const;
  /// The subentities of a solid that have a name: a reference's, or all that a feature watches;
  /// rising.
  [[nodiscard]] std::vector<OdModelerSubent> named(const OdDbObjectId& solid,
                                                   const std::string& name) const;

 private:
  void add(const OdDbObjectId& solid, OdModelerSubent subent, const std::string& name);

  using Names = std::map<OdModelerSubent, std::vector<std::string>>;
  std::map<OdDbObjectId, Names> m_names;
};

}  // namespace cli
