// Joins curved faces by building the joined face anew.
#pragma once

namespace od_occt {

struct Simplified;

/// Joins adjacent faces of one cylinder, cone, sphere or torus, whichever parts of its seam are in
/// or between them. The modeller's own way of joining fails where parts of the seam are in both
/// faces: it skips them, raises, does not end, or moves the traces of edges that other bodies
/// share. So it never gets faces that cannot be joined here: the edges between them are kept from
/// now on, and `leftApart` is set. Faces are not joined across an edge of `outcome.kept`. The
/// shape's parts stay unchanged.
void joinCurved(Simplified& outcome);

}  // namespace od_occt
