// Faces, edges and vertices as the command line chooses them: by number or by selector.
#pragma once

#include <string>
#include <vector>

#include "platform/db/database.h"
#include "platform/modeler/subentity.h"

namespace cli {

/// True for texts that choose in a solid: "f_12", "face: plane & highest", and the same after a
/// solid and a slash: "21/f_12", "plate/edge: of seat". A name that reads so needs its handle.
[[nodiscard]] bool isSubentChoice(const std::string& text);

struct SubentChoice {
  OdDbObjectId solid;
  std::vector<OdModelerSubent> subents;  ///< rising, one at least
};

/// Without a solid in the text the drawing must have one solid. CliError for a text that chooses
/// nothing: it names what comes nearest.
[[nodiscard]] SubentChoice chooseSubents(OdDbDatabase& drawing, const std::string& text);

/// The same in a solid that is known. `text` has no solid of its own.
[[nodiscard]] std::vector<OdModelerSubent> chooseSubents(OdDbDatabase& drawing,
                                                         const OdDbObjectId& solid,
                                                         const std::string& text);

/// CliError when there are several: it names the first two.
[[nodiscard]] OdModelerSubent onlyOne(const std::vector<OdModelerSubent>& subents,
                                      const std::string& text);

}  // namespace cli
