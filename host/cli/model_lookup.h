// What the command line names in a model: solids, references, components, features.
#pragma once

#include <string>
#include <vector>

#include "host/naming/reference_query.h"
#include "platform/db/database.h"
#include "platform/modeler/body.h"

namespace cli {

// All take a handle or, where things have names, a name, which is tried first. CliError names
// the text when nothing is found, when it is something else, or when several have the name.

/// A solid by its handle or by the name of its body; the handle is tried first, since names of
/// several bodies may have one name.
OdDbObjectId findSolid(OdDbDatabase& drawing, const std::string& text);
/// References by the handle of one or the name that was given to it: several where it was split.
std::vector<OdDbObjectId> findReferences(OdDbDatabase& drawing, const std::string& text);
/// The one reference; CliError when it was split.
OdDbObjectId findReference(OdDbDatabase& drawing, const std::string& text);
/// A feature by its handle or name, or by the handle of its insert.
OdDbObjectId findFeature(OdDbDatabase& drawing, const std::string& text);
/// An entity by its handle, or the insert of the component that has the handle or name.
OdDbObjectId findEntity(OdDbDatabase& drawing, const std::string& text);
/// A block by its name; model space for an empty one.
OdDbObjectId findBlock(const OdDbDatabase& drawing, const std::string& name);
/// The block of a component by its name.
OdDbObjectId findComponentBlock(OdDbDatabase& drawing, const std::string& text);

/// Features of all blocks that have a name, in order.
[[nodiscard]] std::vector<OdDbObjectId> featuresNamed(OdDbDatabase& drawing,
                                                      const std::string& name);
/// All features of all blocks, in order.
[[nodiscard]] std::vector<OdDbObjectId> allFeatures(OdDbDatabase& drawing);

/// The body of a solid; CliError when it is empty or cannot be read.
OdModelerBodyPtr bodyOfSolid(const OdDbObjectId& solid);
/// "21 'plate'": handle, and the name of the body when it has one.
[[nodiscard]] std::string solidText(const OdDbObjectId& solid);
/// "feature 'Hole_1' (52)", "insert 4F of 'hole9'", "solid 21 'plate'", "OdDbLine 33".
[[nodiscard]] std::string objectText(const OdDbObjectId& id);
[[nodiscard]] std::string handleOf(const OdDbObjectId& id);

/// A reference as lists show it.
struct ReferenceText {
  std::string handle;
  std::string solid;     ///< handle; empty when that is not there
  std::string subent;    ///< "f_12", "f_?" when unresolved, empty for a whole entity
  std::string geometry;  ///< "plane area 1200"; empty when unresolved
  std::string grade;
  std::string note;                   ///< why it leads nowhere
  std::string name;                   ///< that a user gave; empty for none
  std::vector<std::string> watchers;  ///< names of features, without the name itself
  /// It leads nowhere because all its watchers are suppressed or it has none: no loss.
  bool isExpected = false;
};
[[nodiscard]] ReferenceText referenceText(const vdm_host::ReferenceEntry& entry);
[[nodiscard]] ReferenceText referenceText(const OdDbObjectId& dependency);

}  // namespace cli
