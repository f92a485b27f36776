// Signatures of the subentities of a body.
#pragma once

#include <span>
#include <vector>

#include "host/naming/subent_signature.h"
#include "platform/modeler/body.h"

namespace vdm_host {

/// Signature of one subentity; a null one for a subentity that the body does not have.
[[nodiscard]] SubentSignature signatureOf(const OdModelerBody& body, OdModelerSubent subent);
/// Of all subentities of a type, by index - 1.
[[nodiscard]] std::vector<SubentSignature> signaturesOf(const OdModelerBody& body,
                                                        OdModelerSubentType type);

/// SubentSignature::bounds of a subentity that has this many.
[[nodiscard]] OdUInt16 boundsOf(std::size_t count);
/// SubentSignature::neighbours of a face with these edges.
[[nodiscard]] OdUInt32 kindsAround(const OdModelerBody& body, OdUInt32 face,
                                   std::span<const OdUInt32> edges);

/// Faces that meet at an edge or vertex, faces that share an edge with a face; rising, each once.
[[nodiscard]] std::vector<OdUInt32> facesAround(const OdModelerBody& body, OdModelerSubent subent);

}  // namespace vdm_host
