// Which subentities of a body are those of another one, by the history of what was done.
#pragma once

#include <array>
#include <optional>
#include <span>
#include <vector>

#include "host/naming/body_lineage.h"
#include "host/naming/body_match.h"
#include "host/naming/place_grid.h"

namespace vdm_host {

/// Reads the fates of a trace. A subentity that the history calls deleted is looked for where it
/// was: modellers build parts anew that did not change. Work beyond reading is done only for those.
/// The trace outlives this.
class LineageMatcher {
 public:
  /// Neither body is null.
  LineageMatcher(OdModelerBodyPtr before, OdModelerBodyPtr now, const BodyTrace& trace);

  /// Exact, by lineage, split (all images), ambiguous or lost.
  [[nodiscard]] SubentMatch match(OdModelerSubent subent);
  /// The one subentity that comes from no old one and is identical to `wanted`, which lies where
  /// the new body does; exact, ambiguous or lost.
  [[nodiscard]] SubentMatch findNew(const SubentSignature& wanted);

 private:
  struct Orphans {
    std::vector<OdUInt32> indices;
    std::vector<SubentSignature> items;
    std::optional<PlaceGrid> grid;
  };
  [[nodiscard]] SubentMatch partsOf(OdModelerSubent subent, std::span<const OdUInt32> images);
  const Orphans& orphans(OdModelerSubentType type);
  [[nodiscard]] SubentMatch rebuilt(OdModelerSubent subent);
  [[nodiscard]] SubentMatch grownEdge(OdModelerSubent subent, const SubentSignature& wanted);

  OdModelerBodyPtr m_before;
  OdModelerBodyPtr m_now;
  const BodyTrace& m_trace;
  std::optional<MatchTolerance> m_tolerance;
  std::array<Orphans, 3> m_orphans;
  std::array<std::vector<OdUInt32>, 3> m_sources;  // how many old ones each new one comes from
};

}  // namespace vdm_host
