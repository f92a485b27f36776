// Joins curved faces by building the joined face anew.
#pragma once

namespace od_occt {

struct Simplified;

/// Joins adjacent faces of one cylinder, cone, sphere or torus, whichever parts of its seam are in
/// or between them. The modeller's own way of joining is at a loss where parts of the seam are in
/// both: it passes the faces over, fails, does not end, or moves the traces of edges that other
/// bodies share. So what cannot be joined here is not left to it: the edges between such faces are
/// kept from now on, and `leftApart` is set. No edge of `outcome.kept` is joined across. The
/// shape's parts stay unchanged.
void joinCurved(Simplified& outcome);

}  // namespace od_occt
