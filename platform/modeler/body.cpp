// A solid body as the drawing runtime sees it.
#include "platform/modeler/body.h"

#include <type_traits>

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

OdStatus OdModelerBody::displayMesh(std::shared_ptr<const OdModelerMesh>& mesh) const {
  const std::lock_guard lock(m_displayMutex);
  if (!m_displayMesh) {
    auto made = std::make_shared<OdModelerMesh>();
    OdStatus status = tessellate(OdModelerMeshOptions(), *made);
    if (!status.ok()) return status;
    m_displayMesh = std::move(made);
  }
  mesh = m_displayMesh;
  return {};
}

std::size_t OdModelerBody::displayMeshSize() const {
  const std::lock_guard lock(m_displayMutex);
  if (!m_displayMesh) return 0;
  std::size_t bytes = sizeof(OdModelerMesh);
  for (const OdModelerFaceMesh& face : m_displayMesh->faces) {
    bytes += sizeof(face) + face.points.size() * (sizeof(OdGePoint3d) + sizeof(OdGeVector3d)) +
             face.triangles.size() * sizeof(face.triangles[0]);
  }
  for (const auto& edge : m_displayMesh->edges) {
    using Edge = std::remove_cvref_t<decltype(edge)>;
    bytes += sizeof(Edge) + edge.size() * sizeof(OdGePoint3d);
  }
  return bytes;
}
