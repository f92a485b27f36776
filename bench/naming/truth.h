// What every reference must be after an edit, known from the construction of both parts.
#pragma once

#include <map>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <vector>

#include "bench/naming/stage.h"

namespace naming_bench {

enum class TruthKind {
  kAnswer,     ///< these subentities, one or several
  kGone,       ///< nothing is left of it
  kAmbiguous,  ///< built so that there is no way to tell
  kUndecided,  ///< the construction does not tell either; not judged
};

struct Truth {
  TruthKind kind = TruthKind::kUndecided;
  std::vector<OdModelerSubent> subents;  ///< rising
};

/// What the edit means for the names.
struct EditMeaning {
  /// Names that go on under another name; an empty text for one that ends.
  std::map<std::string, std::string> successors;
  /// Surfaces that two others replace, none of which is nearer to it.
  std::set<std::string> twins;
  /// The place of the part is unknown, so its symmetries cannot be distinguished.
  bool anywhere = false;
  /// Sizes changed, so that pieces of one surface are paired by their order of distance only.
  bool resized = false;
};

/// Subentities of a body that can be referred to: no degenerate edges.
[[nodiscard]] std::vector<OdModelerSubent> referable(const OdModelerBody& body);

/// Names of faces from the plan; edges and vertices are known by the faces that meet in them.
class NamedBody {
 public:
  NamedBody(const Plan& plan, OdModelerBodyPtr body);

  [[nodiscard]] const OdModelerBody& body() const { return *m_body; }
  [[nodiscard]] const std::vector<Carrier>& carriers() const { return m_carriers; }
  /// Position of a face's carrier; -1 for a face that the plan does not have.
  [[nodiscard]] int carrierOfFace(OdUInt32 face) const { return m_faces[face - 1]; }
  /// The carriers that meet in a subentity, rising; a seam has its carrier twice.
  [[nodiscard]] const std::vector<int>& meeting(OdModelerSubent subent) const;
  /// Faces without a carrier.
  [[nodiscard]] std::size_t unnamed() const;

 private:
  OdModelerBodyPtr m_body;
  std::vector<Carrier> m_carriers;
  std::vector<int> m_faces;
  std::vector<std::vector<int>> m_faceKeys;
  std::vector<std::vector<int>> m_edgeKeys;
  std::vector<std::vector<int>> m_vertexKeys;
};

/// Truths for `subents` of the old part, in their order. Laws:
///   1. a face is its carrier; an edge or vertex is the set of carriers that meet in it;
///   2. one old subentity of a set is all new ones of the same set: split if there are several;
///   3. several old ones of a set are distinguished by lying on each other, after the motion of the
///      feature that they belong to; where sizes changed, by distance, when that pairs them all;
///   4. a set that does not exist any more was removed;
///   5. with the place unknown, what a symmetry of the part maps elsewhere is ambiguous.
[[nodiscard]] std::vector<Truth> truthsOf(const Plan& oldPlan, const NamedBody& before,
                                          const Plan& newPlan, const NamedBody& now,
                                          const EditMeaning& meaning,
                                          std::span<const OdModelerSubent> subents);

/// Truths where the only knowledge is that everything away from `touched` went by `motion` as it
/// was: identical geometry, found once. All else is undecided. An empty box touches nothing.
[[nodiscard]] std::vector<Truth> truthsByGeometry(const OdModelerBody& before,
                                                  const OdModelerBody& now,
                                                  const OdGeMatrix3d& motion,
                                                  const OdGeExtents3d& touched,
                                                  std::span<const OdModelerSubent> subents);

}  // namespace naming_bench
