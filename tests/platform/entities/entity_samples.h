// One or more of each drawn entity, in a plane that is not a world plane.
#pragma once

#include <string>
#include <vector>

#include "platform/db/entity.h"
#include "platform/ge/matrix3d.h"

struct EntitySample {
  std::string name;
  OdDbEntityPtr (*make)();
  enum Kind : unsigned {
    kPlain = 0,
    kAffine = 1,     ///< takes every regular transform to what it draws
    kRigid = 2,      ///< what it draws follows turns and moves, not scales
    kReadable = 4,   ///< its characters are not mirrored
    kUnordered = 8,  ///< its points come in another order after a transform
    kInner = 16,     ///< what it draws need not reach its extents
  };
  unsigned kind = kPlain;

  [[nodiscard]] bool is(Kind wanted) const { return (kind & wanted) != 0; }
};

/// Samples of all instantiable drawn entities; each has values other than its first ones in every
/// field.
[[nodiscard]] const std::vector<EntitySample>& entitySamples();

/// The points of everything an entity draws, in the coordinates of its block.
[[nodiscard]] std::vector<OdGePoint3d> drawnPoints(const OdDbEntity& entity,
                                                   double deviation = 0.0);
