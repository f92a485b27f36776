// A body whose costly and risky queries are answered by the worker.
#pragma once

#include <memory>

#include "platform/modeler/body.h"

namespace od_wall {

class WallLink;

/// Holds the inner modeller's body and asks it for all that is cheap and safe. Once the wall is
/// taken down the body answers everything itself.
class WalledBody final : public OdModelerBody {
 public:
  WalledBody(OdModelerBodyPtr inner, std::weak_ptr<WallLink> link);

  [[nodiscard]] const OdModelerBodyPtr& inner() const { return m_inner; }

  OdModelerBodyKind kind() const override { return m_inner->kind(); }
  OdUInt32 numSolids() const override { return m_inner->numSolids(); }
  OdUInt32 numFaces() const override { return m_inner->numFaces(); }
  OdUInt32 numEdges() const override { return m_inner->numEdges(); }
  OdUInt32 numVertices() const override { return m_inner->numVertices(); }
  const OdModelerFace& face(OdUInt32 index) const override { return m_inner->face(index); }
  const OdModelerEdge& edge(OdUInt32 index) const override { return m_inner->edge(index); }
  const OdModelerVertex& vertex(OdUInt32 index) const override { return m_inner->vertex(index); }
  std::span<const OdUInt32> edgesOfFace(OdUInt32 face) const override {
    return m_inner->edgesOfFace(face);
  }
  std::span<const OdUInt32> facesOfEdge(OdUInt32 edge) const override {
    return m_inner->facesOfEdge(edge);
  }
  OdModelerSurfaceKind surfaceKind(OdUInt32 face) const override {
    return m_inner->surfaceKind(face);
  }
  OdModelerCurveKind curveKind(OdUInt32 edge) const override { return m_inner->curveKind(edge); }
  OdUInt64 fingerprint() const override { return m_inner->fingerprint(); }
  OdGeExtents3d extents() const override { return m_inner->extents(); }
  OdGeExtents3d subentExtents(OdModelerSubent subent) const override {
    return m_inner->subentExtents(subent);
  }
  double distanceTo(OdModelerSubent subent, const OdGePoint3d& point) const override {
    return m_inner->distanceTo(subent, point);
  }
  OdModelerFacePoint nearestOnFace(OdUInt32 face, const OdGePoint3d& point) const override {
    return m_inner->nearestOnFace(face, point);
  }
  /// Raises OdError when the worker died of it.
  OdModelerMassProperties massProperties() const override;
  OdStatus check() const override;
  OdStatus tessellate(const OdModelerMeshOptions& options, OdModelerMesh& mesh) const override;
  OdStatus transformed(const OdGeMatrix3d& matrix, OdModelerBodyPtr& result) const override;
  OdStatus subentBody(OdModelerSubent subent, OdModelerBodyPtr& result) const override;
  std::vector<OdModelerBodyPtr> solids() const override;
  const OdModelerBodyAttributes& attributes() const override { return m_inner->attributes(); }
  OdModelerBodyPtr withAttributes(OdModelerBodyAttributes attributes) const override;
  OdStatus serialise(OdBinaryData& bytes) const override { return m_inner->serialise(bytes); }
  std::size_t approximateSize() const override { return m_inner->approximateSize(); }

 private:
  [[nodiscard]] OdModelerBodyPtr wrap(const OdModelerBodyPtr& body) const;

  OdModelerBodyPtr m_inner;
  std::weak_ptr<WallLink> m_link;
};

}  // namespace od_wall
