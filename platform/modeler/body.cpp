// A solid body as the drawing runtime sees it, whoever the modeller behind it is.
#include "platform/modeler/body.h"

OdUInt32 OdModelerBody::numSubents(OdModelerSubentType type) const {
  switch (type) {
    case OdModelerSubentType::kFace:
      return numFaces();
    case OdModelerSubentType::kEdge:
      return numEdges();
    case OdModelerSubentType::kVertex:
      return numVertices();
    case OdModelerSubentType::kNull:
      break;
  }
  return 0;
}

bool OdModelerBody::hasSubent(OdModelerSubent subent) const {
  return subent.index >= 1 && subent.index <= numSubents(subent.type);
}
