// Property values as plain trees.
#include "host/cli/property_node.h"

#include <algorithm>
#include <tuple>

namespace cli {

namespace {

/// Calls `visit.operator()<T>()` for the types of a list until one gives true.
template <class List, class Visit>
bool anyType(Visit&& visit) {
  return []<class... T>(std::type_identity<std::tuple<T...>>, Visit& visitor) {
    return (visitor.template operator()<T>() || ...);
  }(std::type_identity<List>(), visit);
}

// From values to trees.

template <class T>
PropertyNode nodeOf(const T& value) {
  PropertyNode node;
  node.kind.type = vdmElementType<T>();
  node.scalar = value;
  return node;
}
PropertyNode nodeOf(const VdmPropertyDataPtr& value) { return toNode(value.get()); }

template <class T>
bool scalarToNode(const VdmPropertyData* data, PropertyNode& node) {
  const auto* concrete = vdmPropertyCast<T>(data);
  if (concrete == nullptr) return false;
  node.scalar = concrete->value();
  return true;
}

template <class E>
bool arrayToNode(const VdmPropertyData* data, PropertyNode& node) {
  const auto* concrete = vdmPropertyCast<VdmArray<E>>(data);
  if (concrete == nullptr) return false;
  node.kind.element = vdmElementType<E>();
  for (const E& element : concrete->value()) node.items.push_back(nodeOf(element));
  return true;
}

template <class K, class V>
bool mapToNode(const VdmPropertyData* data, PropertyNode& node) {
  const auto* concrete = vdmPropertyCast<std::map<K, V>>(data);
  if (concrete == nullptr) return false;
  node.kind.key = vdmElementType<K>();
  node.kind.element = vdmElementType<V>();
  for (const auto& [key, value] : concrete->value()) {
    node.keys.push_back(nodeOf(key));
    node.items.push_back(nodeOf(value));
  }
  return true;
}

// From trees to values.

template <class T>
T valueOf(const PropertyNode& node) {
  if constexpr (std::is_same_v<T, VdmPropertyDataPtr>) {
    return toProperty(node);
  } else {
    return std::get<T>(node.scalar);
  }
}

template <class E>
VdmPropertyDataPtr arrayFromNode(const PropertyNode& node) {
  VdmArray<E> array;
  array.reserve(static_cast<OdUInt32>(node.items.size()));
  for (const PropertyNode& item : node.items) array.append(valueOf<E>(item));
  return VdmPropertyData::create(array);
}

template <class K, class V>
VdmPropertyDataPtr mapFromNode(const PropertyNode& node) {
  std::map<K, V> map;
  for (std::size_t i = 0; i < node.items.size(); ++i) {
    map.insert_or_assign(valueOf<K>(node.keys[i]), valueOf<V>(node.items[i]));
  }
  return VdmPropertyData::create(map);
}

VdmPropertyDataPtr scalarFromNode(const PropertyNode& node) {
  return std::visit(
      [](const auto& value) {
        using T = std::decay_t<decltype(value)>;
        if constexpr (std::is_same_v<T, std::monostate>) {
          return VdmPropertyDataPtr();
        } else {
          return VdmPropertyData::create(value);
        }
      },
      node.scalar);
}

}  // namespace

PropertyNode toNode(const VdmPropertyData* data) {
  PropertyNode node;
  if (data == nullptr) return node;
  node.kind.type = data->type();
  if (data->type() == VdmPropertyType::kArray) {
    anyType<VdmElementTypes>([&]<class E>() { return arrayToNode<E>(data, node); });
  } else if (data->type() == VdmPropertyType::kMap) {
    anyType<VdmPlainTypes>([&]<class K>() {
      return anyType<VdmElementTypes>([&]<class V>() { return mapToNode<K, V>(data, node); });
    });
  } else if (!scalarToNode<VdmBlob>(data, node)) {
    anyType<VdmPlainTypes>([&]<class T>() { return scalarToNode<T>(data, node); });
  }
  return node;
}

VdmPropertyDataPtr toProperty(const PropertyNode& node) {
  VdmPropertyDataPtr made;
  if (node.kind.type == VdmPropertyType::kArray) {
    anyType<VdmElementTypes>([&]<class E>() {
      if (vdmElementType<E>() != node.kind.element) return false;
      made = arrayFromNode<E>(node);
      return true;
    });
  } else if (node.kind.type == VdmPropertyType::kMap) {
    anyType<VdmPlainTypes>([&]<class K>() {
      if (vdmElementType<K>() != node.kind.key) return false;
      return anyType<VdmElementTypes>([&]<class V>() {
        if (vdmElementType<V>() != node.kind.element) return false;
        made = mapFromNode<K, V>(node);
        return true;
      });
    });
  } else {
    made = scalarFromNode(node);
  }
  return made;
}

bool holdsIds(const PropertyNode& node) {
  if (node.kind.type == VdmPropertyType::kTypedId ||
      node.kind.element == VdmPropertyType::kTypedId ||
      node.kind.key == VdmPropertyType::kTypedId) {
    return true;
  }
  return std::ranges::any_of(node.items, holdsIds);
}

}  // namespace cli
