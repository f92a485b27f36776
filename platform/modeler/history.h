// What became of the faces, edges and vertices of the bodies that an operation took.
#pragma once

#include <map>
#include <vector>

#include "platform/base/string.h"
#include "platform/base/types.h"
#include "platform/modeler/subentity.h"

/// The fate of one old subentity. Laws:
///   1. `images` are the new subentities of the same type that are what is left of it, in rising
///      order; one image that is untouched geometry has `changed` false;
///   2. `generated` are the new subentities that it gave rise to (a section edge from a face, a
///      blend face from an edge), in rising order;
///   3. it is deleted exactly when it has no image.
struct OdModelerFate {
  std::vector<OdUInt32> images;
  std::vector<OdModelerSubent> generated;
  bool changed = false;

  [[nodiscard]] bool deleted() const { return images.empty(); }
};

/// The fates of one input body; element i - 1 is that of index i.
struct OdModelerInputHistory {
  std::vector<OdModelerFate> faces;
  std::vector<OdModelerFate> edges;
  std::vector<OdModelerFate> vertices;

  /// The fates of one type; an empty list for the null type.
  [[nodiscard]] const std::vector<OdModelerFate>& fates(OdModelerSubentType type) const;
  /// The fate of one subentity; null when the input does not have it.
  [[nodiscard]] const OdModelerFate* find(OdModelerSubent subent) const;
};

/// How much of its first input an operation looked at, for reports.
struct OdModelerEffort {
  OdUInt32 numFaces = 0;  ///< faces that took part; 0 where that was not counted
  OdString wholeBecause;  ///< why it looked at the whole bodies; empty where it need not
};

/// History of one operation: inputs[0] is the body that was changed, the others are its tools in
/// the order in which they were given.
struct OdModelerHistory {
  std::vector<OdModelerInputHistory> inputs;
  OdModelerEffort effort;

  /// Marker of each old face of an input, with the markers of its images; deleted faces are there
  /// with no image. An input that does not exist gives an empty table.
  [[nodiscard]] std::map<OdUInt32, std::vector<OdUInt32>> faceMarkers(std::size_t input) const;
};
