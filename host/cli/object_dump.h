// One object of any class as text lines: everything that it files.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "host/cli/property_node.h"
#include "platform/db/db_object.h"

namespace cli {

/// An object as its record in the file has it.
struct ObjectDump {
  OdDbHandle handle;
  OdDbHandle owner;
  std::string className;
  bool proxy = false;
  /// Reference type and handle of every id that is filed, in the order of filing.
  std::vector<std::pair<std::string, OdDbHandle>> references;
  /// Kind and value of every primitive that is filed, in the order of filing.
  std::vector<std::pair<std::string, std::string>> fields;
  /// The property bag that the object carries, by key.
  std::vector<std::pair<std::string, PropertyNode>> properties;
  std::string fault;  ///< why there is no more than this
};

/// Never raises for an object that cannot be read: its `fault` says why.
[[nodiscard]] ObjectDump dumpObject(const OdDbObjectId& id);

}  // namespace cli
