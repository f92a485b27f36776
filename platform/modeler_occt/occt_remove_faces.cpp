// Taking faces off a body and closing it again, with the history.
#include <BRepAlgoAPI_Defeaturing.hxx>

#include "platform/modeler_occt/occt_body.h"
#include "platform/modeler_occt/occt_bridge.h"
#include "platform/modeler_occt/occt_guard.h"
#include "platform/modeler_occt/occt_history.h"
#include "platform/modeler_occt/occt_operations.h"

namespace od_occt {
namespace {

constexpr const char* kName = "remove faces";

OdStatus checkFaces(const OdModelerBodyPtr& body, std::span<const OdUInt32> faces) {
  if (!body || faces.empty()) return failure(eInvalidInput, kName, "there is no body or no face");
  for (const OdUInt32 face : faces) {
    if (body->hasSubent({OdModelerSubentType::kFace, face})) continue;
    OdString text;
    text.format(L"remove faces: face %u is not there, the body has %u", face, body->numFaces());
    return {eInvalidInput, text};
  }
  return {};
}

OdStatus defeature(const OdModelerBodyPtr& body, std::span<const OdUInt32> faces,
                   OdModelerBodyPtr& result, OdModelerHistory* history) {
  const Body& own = asOcct(*body);
  BRepAlgoAPI_Defeaturing operation;
  operation.SetShape(own.shape());
  for (const OdUInt32 face : faces)
    operation.AddFaceToRemove(own.topology().faces(static_cast<int>(face)));
  operation.SetRunParallel(Standard_False);
  operation.SetToFillHistory(Standard_True);
  operation.Build();
  // Faces whose neighbours do not meet are left in place with a warning.
  if (!operation.IsDone() || operation.HasErrors() || operation.HasWarnings())
    return failure(eModelerError, kName, "the neighbours of the faces do not close the body");
  const OdModelerBodyPtr plain = odBodyFromOcct(operation.Shape());
  if (!plain) return failure(eModelerError, kName, "nothing came out");
  if (OdStatus sound = checkShape(asOcct(*plain).shape()); !sound.ok())
    return {eModelerInvalidBody, OdString(kName) + L": " + sound.text};
  OdModelerHistory fates = collectHistory(operation, {&body, 1}, asOcct(*plain));
  result = plain->withAttributes(inheritAttributes({&body, 1}, fates));
  if (history != nullptr) *history = std::move(fates);
  return {};
}

}  // namespace

OdStatus removeFaces(const OdModelerBodyPtr& body, std::span<const OdUInt32> faces,
                     OdModelerBodyPtr& result, OdModelerHistory* history) {
  if (OdStatus status = checkFaces(body, faces); !status.ok()) return status;
  return guarded(kName, [&] { return defeature(body, faces, result, history); });
}

}  // namespace od_occt
