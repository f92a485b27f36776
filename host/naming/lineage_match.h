// Which subentities of a body are those of another one, by the history of what was done.
#pragma once

#include <array>
#include <map>
#include <optional>
#include <span>
#include <utility>
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

  /// The number of a subentity that nothing touched; 0 when there is more to tell about it.
  [[nodiscard]] OdUInt32 untouched(OdModelerSubent subent);
  /// Exact, by lineage, split (all images), ambiguous or lost.
  [[nodiscard]] SubentMatch match(OdModelerSubent subent);
  /// The one subentity that comes from no old one and is identical to `wanted`, which lies where
  /// the new body does; exact, ambiguous or lost.
  [[nodiscard]] SubentMatch findNew(const SubentSignature& wanted);

 private:
  /// New subentities of one type and kind that come from no old one.
  struct Orphans {
    std::vector<OdUInt32> indices;
    std::vector<SubentSignature> items;
    std::optional<PlaceGrid> grid;
  };
  [[nodiscard]] SubentMatch partsOf(OdModelerSubent subent, std::span<const OdUInt32> images);
  const std::vector<OdUInt32>& sources(OdModelerSubentType type);
  const Orphans& orphans(OdModelerSubentType type, OdUInt8 kind);
  [[nodiscard]] SubentMatch rebuilt(OdModelerSubent subent);
  [[nodiscard]] SubentMatch grownEdge(OdModelerSubent subent, const SubentSignature& wanted);
  const MatchTolerance& tolerance();

  OdModelerBodyPtr m_before;
  OdModelerBodyPtr m_now;
  const BodyTrace& m_trace;
  std::optional<MatchTolerance> m_tolerance;
  SubentFate m_fate;                                                     // of what was asked last
  std::map<std::pair<OdModelerSubentType, OdUInt8>, Orphans> m_orphans;  // by type and kind
  std::array<std::optional<std::vector<OdUInt32>>, 3> m_sources;  // old ones each new one is of
};

}  // namespace vdm_host
