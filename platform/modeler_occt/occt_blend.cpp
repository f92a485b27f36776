// Fillets and chamfers of edges, with their history.
#include <BRepFilletAPI_MakeChamfer.hxx>
#include <BRepFilletAPI_MakeFillet.hxx>
#include <Precision.hxx>
#include <TopoDS.hxx>
#include <cmath>

#include "platform/modeler_occt/occt_body.h"
#include "platform/modeler_occt/occt_bridge.h"
#include "platform/modeler_occt/occt_guard.h"
#include "platform/modeler_occt/occt_history.h"
#include "platform/modeler_occt/occt_operations.h"

namespace od_occt {
namespace {

OdStatus checkBlend(const char* name, const OdModelerBodyPtr& body, std::span<const OdUInt32> edges,
                    double size) {
  OdString text;
  const OdString label(name);
  if (!body || edges.empty()) return failure(eInvalidInput, name, "there is no body or no edge");
  if (!(std::isfinite(size) && size > Precision::Confusion())) {
    text.format(L"%ls: size is %g, it must be more than %g", label.c_str(), size,
                Precision::Confusion());
    return {eInvalidInput, text};
  }
  for (const OdUInt32 edge : edges) {
    if (!body->hasSubent({OdModelerSubentType::kEdge, edge})) {
      text.format(L"%ls: edge %u is not there, the body has %u", label.c_str(), edge,
                  body->numEdges());
      return {eInvalidInput, text};
    }
    const OdModelerEdge& info = body->edge(edge);
    if (info.degenerate || info.seam || info.faces.size() != 2) {
      text.format(L"%ls: edge %u lies between %u faces, it must lie between 2", label.c_str(), edge,
                  static_cast<unsigned>(info.degenerate ? 0 : info.faces.size()));
      return {eInvalidInput, text};
    }
  }
  return {};
}

// The modeller follows an edge along its smooth neighbours: one that is part of a line that was
// given already is left out.
template <class Blend>
void addEdge(Blend& blend, double size, const TopoDS_Edge& edge) {
  if (blend.Contour(edge) == 0) blend.Add(size, edge);
}

template <class Blend>
OdStatus blendEdges(const char* name, const OdModelerBodyPtr& body, std::span<const OdUInt32> edges,
                    double size, OdModelerBodyPtr& result, OdModelerHistory* history) {
  if (OdStatus status = checkBlend(name, body, edges, size); !status.ok()) return status;
  return guarded(name, [&]() -> OdStatus {
    const Body& own = asOcct(*body);
    Blend blend(own.shape());
    for (const OdUInt32 edge : edges) {
      addEdge(blend, size, TopoDS::Edge(own.topology().edges(static_cast<int>(edge))));
    }
    blend.Build();
    if (!blend.IsDone()) {
      OdString text;
      text.format(L"%ls: size %g does not fit on the edges", OdString(name).c_str(), size);
      return {eModelerError, text};
    }
    const OdModelerBodyPtr plain = odBodyFromOcct(blend.Shape());
    if (!plain) return failure(eModelerError, name, "nothing came out");
    if (OdStatus sound = checkShape(asOcct(*plain).shape()); !sound.ok()) {
      return {eModelerInvalidBody, OdString(name) + L": " + sound.text};
    }
    OdModelerHistory fates = collectHistory(blend, {&body, 1}, asOcct(*plain));
    result = plain->withAttributes(inheritAttributes({&body, 1}, fates));
    if (history != nullptr) *history = std::move(fates);
    return {};
  });
}

}  // namespace

OdStatus fillet(const OdModelerBodyPtr& body, std::span<const OdUInt32> edges, double radius,
                OdModelerBodyPtr& result, OdModelerHistory* history) {
  return blendEdges<BRepFilletAPI_MakeFillet>("fillet", body, edges, radius, result, history);
}

OdStatus chamfer(const OdModelerBodyPtr& body, std::span<const OdUInt32> edges, double distance,
                 OdModelerBodyPtr& result, OdModelerHistory* history) {
  return blendEdges<BRepFilletAPI_MakeChamfer>("chamfer", body, edges, distance, result, history);
}

}  // namespace od_occt
