// What became of the faces, edges and vertices of the bodies that an operation took.
#include "platform/modeler/history.h"

namespace {

OdUInt32 faceMarker(OdUInt32 index) {
  return static_cast<OdUInt32>(odSubentToMarker({OdModelerSubentType::kFace, index}));
}

}  // namespace

const std::vector<OdModelerFate>& OdModelerInputHistory::fates(OdModelerSubentType type) const {
  static const std::vector<OdModelerFate> kNone;
  switch (type) {
    case OdModelerSubentType::kFace:
      return faces;
    case OdModelerSubentType::kEdge:
      return edges;
    case OdModelerSubentType::kVertex:
      return vertices;
    case OdModelerSubentType::kNull:
      break;
  }
  return kNone;
}

const OdModelerFate* OdModelerInputHistory::find(OdModelerSubent subent) const {
  const std::vector<OdModelerFate>& list = fates(subent.type);
  const bool known = subent.index >= 1 && subent.index <= list.size();
  return known ? &list[subent.index - 1] : nullptr;
}

std::map<OdUInt32, std::vector<OdUInt32>> OdModelerHistory::faceMarkers(std::size_t input) const {
  std::map<OdUInt32, std::vector<OdUInt32>> table;
  if (input >= inputs.size()) return table;
  OdUInt32 index = 0;
  for (const OdModelerFate& fate : inputs[input].faces) {
    std::vector<OdUInt32>& images = table[faceMarker(++index)];
    for (const OdUInt32 image : fate.images) images.push_back(faceMarker(image));
  }
  return table;
}
