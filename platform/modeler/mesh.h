// Triangles and polylines that approximate a body.
#pragma once

#include <array>
#include <vector>

#include "platform/base/types.h"
#include "platform/ge/point3d.h"
#include "platform/ge/vector3d.h"

/// How close an approximation keeps to the body.
struct OdModelerMeshOptions {
  double deflection = 0.0;  ///< largest distance, drawing units; 0: 1/1000 of the body's diagonal
  double angle = 0.35;      ///< largest turn between neighbours, radians (about 20 degrees)
};

/// The triangles of one face, wound counter-clockwise seen from outside. Normals are the surface's
/// own at the points, unit length.
struct OdModelerFaceMesh {
  std::vector<OdGePoint3d> points;
  std::vector<OdGeVector3d> normals;               ///< one per point
  std::vector<std::array<OdUInt32, 3>> triangles;  ///< indices into points
};

/// faces[i - 1] belongs to face i, edges[i - 1] to edge i; a face that could not be meshed is
/// empty.
struct OdModelerMesh {
  std::vector<OdModelerFaceMesh> faces;
  std::vector<std::vector<OdGePoint3d>> edges;
};
