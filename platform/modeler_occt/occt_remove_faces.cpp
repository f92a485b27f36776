// Taking faces off a body and closing it again, with the history.
//
// Faces that end in holes of others are a matter of dropping loops (occt_drop_loops.h). Else the
// modeller extends the neighbours of the faces and trims them where they meet. Where they do
// not meet it leaves the faces in place and only warns; a warning is a failure here, so that a
// success always means that the faces are off.
#include <BRepAlgoAPI_Defeaturing.hxx>

#include "platform/modeler_occt/occt_body.h"
#include "platform/modeler_occt/occt_drop_loops.h"
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
  for (const OdUInt32 face : faces) {
    operation.AddFaceToRemove(own.topology().faces(static_cast<int>(face)));
  }
  operation.SetRunParallel(Standard_False);
  operation.SetToFillHistory(Standard_True);
  operation.Build();
  if (!operation.IsDone() || operation.HasErrors() || operation.HasWarnings()) {
    return failure(eModelerError, kName, "the neighbours of the faces do not close the body");
  }
  return takeOutcome(kName, operation, body, result, history);
}

}  // namespace

OdStatus removeFaces(const OdModelerBodyPtr& body, std::span<const OdUInt32> faces,
                     const Options& options, OdModelerBodyPtr& result, OdModelerHistory* history) {
  if (OdStatus status = checkFaces(body, faces); !status.ok()) return status;
  OdString whyWhole;
  if (options.reach == OdOcctReach::kLocal) {
    OdStatus local = guarded(kName, [&] { return dropLoops(body, faces, result, history); });
    if (local.ok()) return local;
    whyWhole = local.text;
  }
  OdStatus status = guarded(kName, [&] { return defeature(body, faces, result, history); });
  if (status.ok() && history != nullptr) history->effort.wholeBecause = whyWhole;
  return status;
}

}  // namespace od_occt
