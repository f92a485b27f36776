// What one body became in another one.
#pragma once

#include <vector>

#include "platform/ge/matrix3d.h"
#include "platform/modeler/body.h"
#include "platform/modeler/history.h"

namespace vdm_host {

/// What became of one subentity.
struct SubentFate {
  std::vector<OdUInt32> images;  ///< new indices, rising; empty when nothing is left
  bool changed = false;  ///< geometry was touched on the way: another boundary, or part of another
};

/// What became of one body in another. Subentities are followed one by one when they are asked for,
/// so that a few cost little in a large body. Made by BodyLineage::trace(); the lineage outlives
/// it.
class BodyTrace {
 public:
  OdGeMatrix3d motion;      ///< all motions on the way, composed
  OdUInt32 operations = 0;  ///< booleans and blends on the way
  bool blends = false;      ///< a fillet or chamfer among them

  /// Writes the fate of a subentity of the old body into `fate`, whose memory is used again. No
  /// images when the old body has no such subentity.
  void follow(OdModelerSubent subent, SubentFate& fate) const;
  /// How many old subentities each new one comes from, by new index - 1; at least `count` long.
  /// Follows all subentities of the type.
  [[nodiscard]] std::vector<OdUInt32> sourceCounts(OdModelerSubentType type, OdUInt32 count) const;

 private:
  friend class BodyLineage;
  /// One operation on one of the ways. Bodies on the way are counted from 0, the old one.
  struct Step {
    OdUInt32 from = 0;
    OdUInt32 to = 0;
    const OdModelerInputHistory* history = nullptr;  ///< null when all stays
  };
  void keepWaysTo(OdUInt32 body);
  void followChain(OdModelerSubent subent, SubentFate& fate) const;
  void followWays(OdModelerSubent subent, SubentFate& fate) const;

  OdModelerBodyPtr m_old;
  std::vector<Step> m_steps;  // in the order in which they happened
  OdUInt32 m_bodies = 1;
  OdUInt32 m_last = 0;
  bool m_isChain = true;  // one way, on which each step begins where the one before ended
};

}  // namespace vdm_host
