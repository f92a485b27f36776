// What the faces and edges of a part with components come from, by the construction alone.
#pragma once

#include <set>
#include <string>
#include <utility>
#include <vector>

#include "bench/naming/component_part.h"
#include "bench/naming/truth.h"

namespace naming_bench {

/// Where something of a part was born: sources of a face, pairs of sources of an edge.
struct Birth {
  OdModelerSubentType type = OdModelerSubentType::kFace;
  std::set<Source> sources;
  std::set<std::pair<Source, Source>> pairs;  ///< each with its lesser source first
};

/// The sources of one body of a plan. Laws:
///   1. a face comes from a patch when a point inside of both is on the boundary of the plan's
///      material, with the patch's side out;
///   2. an edge comes from two patches when a point on it lies in both, and the faces at it come
///      from one each;
///   3. a point belongs to the face that the body says holds it. Nothing else is asked of the body.
class SourcedBody {
 public:
  /// Raises std::logic_error when the plan does not know a face of the body.
  SourcedBody(const PartPlan& plan, OdModelerBodyPtr body);

  [[nodiscard]] Birth birthOf(OdModelerSubent subent) const;
  /// Every face, and every edge between two faces, which nothing else of the body shares a source
  /// with: what can be named as a whole.
  [[nodiscard]] std::vector<OdModelerSubent> wholes() const;
  /// What it is now: all that comes from one of its sources. Undecided where pairs of patches meet
  /// in several curves.
  [[nodiscard]] Truth truthOf(const Birth& birth) const;
  [[nodiscard]] std::string nameOf(const Birth& birth) const;

 private:
  void findSources(const PartPlan& plan);
  void offer(const PartPlan& plan, std::size_t patch, const OdGePoint3d& point,
             const std::vector<OdUInt32>& candidates);
  [[nodiscard]] bool liesOnSurface(OdUInt32 face, const Patch& patch) const;
  [[nodiscard]] std::vector<std::size_t> patchesAt(OdUInt32 face, const OdGePoint3d& point) const;
  void findPairs(OdUInt32 edge);
  [[nodiscard]] std::vector<OdModelerSubent> meeting(const Birth& birth) const;

  OdModelerBodyPtr m_body;
  std::vector<Patch> m_patches;
  std::vector<std::set<std::size_t>> m_faces;  // patches by face - 1
  std::vector<std::set<std::pair<Source, Source>>> m_edges;
  std::vector<bool> m_isCurved;  // by edge - 1: where a wall meets a wall of another maker
};

}  // namespace naming_bench
