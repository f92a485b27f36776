// OdDb3dSolid: drawing.
#include <memory>

#include "platform/gi/world_draw.h"
#include "platform/modeler/db_3d_solid.h"

namespace {

using MeshPtr = std::shared_ptr<const OdModelerMesh>;

OdCmEntityColor toEntityColor(const OdModelerColor& color) {
  return OdCmEntityColor::fromRGB(color.red, color.green, color.blue);
}

// The body's own mesh, or a finer or coarser one for a context that says how fine.
OdStatus meshFor(const OdGiWorldDraw& context, const OdModelerBody& body, MeshPtr& mesh) {
  if (!(context.deviation() > 0.0)) return body.displayMesh(mesh);
  auto made = std::make_shared<OdModelerMesh>();
  OdModelerMeshOptions options;
  options.deflection = context.deviation();
  OdStatus status = body.tessellate(options, *made);
  mesh = std::move(made);
  return status;
}

// Colours of the faces of one body.
class FaceColors {
 public:
  FaceColors(const OdModelerBodyAttributes& attributes, const OdCmEntityColor& entity)
      : m_faces(attributes.faceColors),
        m_body(attributes.color && entity.isByLayer() ? toEntityColor(*attributes.color) : entity) {
  }

  [[nodiscard]] OdCmEntityColor of(OdUInt32 face) const {
    const auto own = m_faces.find(face);
    return own == m_faces.end() ? m_body : toEntityColor(own->second);
  }

 private:
  const std::map<OdUInt32, OdModelerColor>& m_faces;
  OdCmEntityColor m_body;
};

void drawFaces(OdGiWorldDraw* context, const OdModelerMesh& mesh, const FaceColors& colors) {
  OdGiSubEntityTraits& traits = context->subEntityTraits();
  for (OdUInt32 i = 1; i <= mesh.faces.size() && !context->regenAbort(); ++i) {
    const OdModelerFaceMesh& face = mesh.faces[i - 1];
    if (face.triangles.empty()) continue;
    traits.setSelectionMarker(odSubentToMarker({OdModelerSubentType::kFace, i}));
    traits.setTrueColor(colors.of(i));
    context->geometry().shell({face.points, face.normals, face.triangles, {}});
  }
}

// Seams, where a closed surface meets itself, are no edges to the eye.
void drawEdges(OdGiWorldDraw* context, const OdModelerBody& body, const OdModelerMesh& mesh) {
  for (OdUInt32 i = 1; i <= mesh.edges.size() && !context->regenAbort(); ++i) {
    const std::vector<OdGePoint3d>& edge = mesh.edges[i - 1];
    if (edge.size() < 2 || body.edge(i).seam) continue;
    context->subEntityTraits().setSelectionMarker(
        odSubentToMarker({OdModelerSubentType::kEdge, i}));
    context->geometry().polyline(edge);
  }
}

}  // namespace

bool OdDb3dSolid::subWorldDraw(OdGiWorldDraw* context) const {
  OdModelerBodyPtr held;
  MeshPtr mesh;
  if (!getBody(held).ok()) return false;
  if (!held) return true;
  if (!meshFor(*context, *held, mesh).ok()) return false;
  OdGiSubEntityTraits& traits = context->subEntityTraits();
  const OdCmEntityColor color = traits.trueColor();
  drawFaces(context, *mesh, FaceColors(held->attributes(), color));
  traits.setSelectionMarker(0);
  traits.setTrueColor(color);
  drawEdges(context, *held, *mesh);
  traits.setSelectionMarker(0);
  return !context->regenAbort();
}
