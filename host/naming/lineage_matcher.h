// Which subentities of a body are those of another one, by the history of what was done.
#pragma once

#include <array>
#include <map>
#include <optional>
#include <span>
#include <utility>
#include <vector>

#include "host/naming/body_trace.h"
#include "host/naming/place_grid.h"
#include "host/naming/subent_match.h"

namespace vdm_host {

/// Reads the fates of a trace. Laws:
///   1. one image: it is exact when nothing touched it, by lineage otherwise;
///   2. several images: split. Where another old subentity shares one of them, each is the part on
///      its own side, the one whose boundary is its own;
///   3. no image: the one new subentity that comes from no old one and is identical is it, exactly,
///      because modellers build parts anew that did not change; several are ambiguous;
///   4. an edge without an image by law 3 is the new edge of the same faces on the same curve that
///      runs over its middle, by lineage; else it is lost.
/// The trace outlives this.
class LineageMatcher {
 public:
  /// Neither body is null.
  LineageMatcher(OdModelerBodyPtr before, OdModelerBodyPtr now, const BodyTrace& trace);

  /// The number of a subentity that nothing touched; 0 when match() has more to decide.
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
  [[nodiscard]] std::vector<OdUInt32> newEdgesAtImages(OdModelerSubent subent, OdUInt8 kind);
  const MatchTolerance& tolerance();

  OdModelerBodyPtr m_before;
  OdModelerBodyPtr m_now;
  const BodyTrace& m_trace;
  std::optional<MatchTolerance> m_tolerance;
  SubentFate m_fate;  // memory for follow(), used again and again
  std::map<std::pair<OdModelerSubentType, OdUInt8>, Orphans> m_orphans;  // by type and kind
  std::array<std::optional<std::vector<OdUInt32>>, 3> m_sources;  // old ones each new one is of
};

}  // namespace vdm_host
