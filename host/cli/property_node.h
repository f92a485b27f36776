// Property values as plain trees, so that texts and JSON need not know the value templates.
#pragma once

#include <string>
#include <variant>
#include <vector>

#include "vdm_db/properties/vdm_property_data.h"

namespace cli {

/// Kind of a value: its type, and what arrays and maps hold.
struct PropertyKind {
  VdmPropertyType type{};
  VdmPropertyType element{};  ///< of arrays; value type of maps
  VdmPropertyType key{};      ///< of maps

  friend bool operator==(const PropertyKind&, const PropertyKind&) = default;
};

/// One value. A nested value (element type kProperty) has a kind of its own; one whose type is 0 is
/// a null pointer, which a damaged stream can leave behind.
struct PropertyNode {
  using Scalar = std::variant<std::monostate, OdString, OdLong, double, bool, signed char,
                              OdDbHandle, OdDbTypedId, VdmBlob>;

  PropertyKind kind;
  Scalar scalar;                    ///< of everything but arrays and maps
  std::vector<PropertyNode> items;  ///< elements of an array, values of a map
  std::vector<PropertyNode> keys;   ///< of a map, one for each item
};

/// The value as a tree; `data` may be null.
[[nodiscard]] PropertyNode toNode(const VdmPropertyData* data);
/// A new value. The tree is well formed: scalars have the types that their kinds name.
[[nodiscard]] VdmPropertyDataPtr toProperty(const PropertyNode& node);

/// True when the value holds an object id at any depth.
[[nodiscard]] bool holdsIds(const PropertyNode& node);

}  // namespace cli
