// Messages between a wall and its worker. Both ends are one program, so that plain values travel as
// they lie in memory; what comes back from a worker is still read with bounds, since a fault may
// have spoilt it.
#pragma once

#include <array>
#include <concepts>
#include <cstring>
#include <span>
#include <type_traits>
#include <vector>

#include "platform/base/array.h"
#include "platform/base/status.h"
#include "platform/modeler/assembly.h"
#include "platform/modeler/body.h"
#include "platform/modeler/history.h"
#include "platform/modeler/mesh.h"
#include "platform/modeler/modeler.h"
#include "platform/modeler/profile.h"

namespace od_wall {

template <class T>
concept Plain = std::is_trivially_copyable_v<T> && !std::is_pointer_v<T>;

/// A T that a writer may only read and a reader fills.
template <class U, class T>
concept Maybe = std::same_as<std::remove_const_t<U>, T>;

// The fields of each structure, one list for both directions.
void fields(auto& message, Maybe<OdStatus> auto& status) { message(status.code, status.text); }
void fields(auto& message, Maybe<OdModelerProfile> auto& profile) {
  message(profile.plane, profile.outer, profile.holes);
}
void fields(auto& message, Maybe<OdModelerFate> auto& fate) {
  message(fate.images, fate.generated, fate.changed);
}
void fields(auto& message, Maybe<OdModelerInputHistory> auto& input) {
  message(input.faces, input.edges, input.vertices);
}
void fields(auto& message, Maybe<OdModelerEffort> auto& effort) {
  message(effort.numFaces, effort.wholeBecause);
}
void fields(auto& message, Maybe<OdModelerHistory> auto& history) {
  message(history.inputs, history.effort);
}
void fields(auto& message, Maybe<OdModelerFaceMesh> auto& mesh) {
  message(mesh.points, mesh.normals, mesh.triangles);
}
void fields(auto& message, Maybe<OdModelerMesh> auto& mesh) { message(mesh.faces, mesh.edges); }
void fields(auto& message, Maybe<OdModelerOccurrence> auto& occurrence) {
  message(occurrence.product, occurrence.placement, occurrence.name, occurrence.color);
}
void fields(auto& message, Maybe<OdModelerAnnotation> auto& annotation) {
  message(annotation.body, annotation.name);
}
void fields(auto& message, Maybe<OdModelerProduct> auto& product) {
  message(product.name, product.uniqueId, product.bodies, product.occurrences, product.layers,
          product.annotations);
}
void fields(auto& message, Maybe<OdModelerLengthUnit> auto& unit) {
  message(unit.name, unit.millimetres);
}
void fields(auto& message, Maybe<OdModelerFileHeader> auto& header) {
  message(header.name, header.timeStamp, header.author, header.organization,
          header.originatingSystem);
}
void fields(auto& message, Maybe<OdModelerReadNotes> auto& notes) {
  message(notes.leftOut, notes.lost, notes.remarks);
}
void fields(auto& message, Maybe<OdModelerAssembly> auto& assembly) {
  message(assembly.products, assembly.roots, assembly.sourceUnit, assembly.header, assembly.notes);
}
void fields(auto& message, Maybe<OdModelerReadOptions> auto& options) {
  message(options.encoding, options.annotations);
}

/// Appends values to a message. A body is put as its stored form; raises OdError when it has none.
class MessageWriter {
 public:
  template <class... T>
  void operator()(const T&... values) {
    (put(values), ...);
  }
  [[nodiscard]] std::span<const char> bytes() const { return m_bytes; }

 private:
  template <class T>
  void put(const T& value) {
    if constexpr (Plain<T>) {
      raw(&value, sizeof(T));
    } else {
      fields(*this, value);
    }
  }
  template <class T>
  void put(const std::vector<T>& values) {
    put(std::span<const T>(values));
  }
  template <class T>
  void put(std::span<const T> values) {
    put(static_cast<OdUInt64>(values.size()));
    if constexpr (Plain<T>) {
      raw(values.data(), values.size_bytes());
    } else {
      for (const T& value : values) put(value);
    }
  }
  void put(const OdString& text) { put(std::span<const char>(text.utf8())); }
  void put(const OdStringArray& lines) {
    put(std::span<const OdString>(lines.asArrayPtr(), lines.size()));
  }
  void put(const OdBinaryData& bytes) {
    put(std::span<const OdUInt8>(bytes.asArrayPtr(), bytes.size()));
  }
  void put(const OdModelerBodyPtr& body);
  void raw(const void* data, std::size_t size);

  std::vector<char> m_bytes;
};

/// Takes values from a message in the order in which they were put. Raises OdError eCorruptData
/// when a value is not there. Bodies become those of `modeler`.
class MessageReader {
 public:
  MessageReader(std::span<const char> bytes, OdModeler& modeler)
      : m_left(bytes), m_modeler(modeler) {}

  template <class... T>
  void operator()(T&... values) {
    (take(values), ...);
  }
  template <class T>
  T get() {
    T value{};
    take(value);
    return value;
  }

 private:
  template <class T>
  void take(T& value) {
    if constexpr (Plain<T>) {
      std::memcpy(&value, raw(sizeof(T)), sizeof(T));
    } else {
      fields(*this, value);
    }
  }
  template <class T>
  void take(std::vector<T>& values) {
    values.resize(takeCount(Plain<T> ? sizeof(T) : 1));
    if constexpr (Plain<T>) {
      const std::size_t size = values.size() * sizeof(T);
      if (size > 0) std::memcpy(values.data(), raw(size), size);
    } else {
      for (T& value : values) take(value);
    }
  }
  void take(OdString& text);
  void take(OdStringArray& lines);
  void take(OdBinaryData& bytes);
  void take(OdModelerBodyPtr& body);
  const char* raw(std::size_t size);
  /// A count of items of at least `size` bytes, all of which the message must hold.
  std::size_t takeCount(std::size_t size);

  std::span<const char> m_left;
  OdModeler& m_modeler;
};

}  // namespace od_wall
