// The signature of a planar face from its edges, without the modeller's integrals.
#pragma once

#include <optional>

#include "host/naming/subent_signature.h"
#include "platform/modeler/body.h"

namespace vdm_host {

/// The signature of a planar face between lines and circles that lies in the plane of `known`, with
/// the same side out: area and centroid in closed form, the rest as signatureOf() has it. None for
/// any other face, and for one whose edges do not form simple loops. `known` is the signature of a
/// planar face, of any outline, where the body lies.
[[nodiscard]] std::optional<SubentSignature> signatureOfPlane(const OdModelerBody& body,
                                                              OdUInt32 face,
                                                              const SubentSignature& known);

}  // namespace vdm_host
