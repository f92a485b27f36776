// What became of the subentities of a body through any number of changes.
#pragma once

#include <optional>
#include <span>
#include <unordered_map>
#include <vector>

#include "platform/filer/object_id.h"
#include "platform/modeler/solid_journal.h"

namespace vdm_host {

/// What became of one subentity.
struct SubentFate {
  std::vector<OdUInt32> images;  ///< new indices, rising; empty when nothing is left
  bool changed = false;  ///< geometry was touched on the way: another boundary, or part of another
};

/// What became of one body in another. Subentities are followed one by one when they are asked for,
/// so that a few cost little in a large body. The lineage that it comes from outlives it.
class BodyTrace {
 public:
  OdGeMatrix3d motion;      ///< what moved on the way, all of it together
  OdUInt32 operations = 0;  ///< booleans and blends on the way
  bool blends = false;      ///< a fillet or chamfer among them

  /// The fate of a subentity of the old body, into a value that the caller uses again and again;
  /// without images when the old body has none such.
  void follow(OdModelerSubent subent, SubentFate& fate) const;
  /// How many old subentities each new one comes from, by new index - 1; at least `count` long.
  /// Follows all that there are.
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
  bool m_isChain = true;  // one way, each step going on where the one before ended
};

/// A reading of a journal. Bodies are followed from change to change by their identity, also from a
/// tool into the solid that it cut and through the union of tools that came first. A body that was
/// read again from its bytes in between counts as the same (OdModelerBody::fingerprint).
class BodyLineage {
 public:
  /// Copies what it needs of the changes; bodies stay alive with it.
  explicit BodyLineage(std::span<const OdSolidChange> changes);

  /// Solids in a drawing whose bodies changed, in the order of their first change.
  [[nodiscard]] std::span<const OdDbObjectId> solids() const { return m_solids; }
  /// The body before the first and after the last change of the solid; null when it was empty or is
  /// not among them.
  [[nodiscard]] OdModelerBodyPtr bodyBefore(const OdDbObjectId& solid) const;
  [[nodiscard]] OdModelerBodyPtr bodyAfter(const OdDbObjectId& solid) const;

  /// What `from` became in `to`: the union over all ways that lead there. None when no way does,
  /// because a body was replaced or emptied. The same body gives the identity.
  [[nodiscard]] std::optional<BodyTrace> trace(const OdModelerBodyPtr& from,
                                               const OdModelerBodyPtr& to) const;
  /// Which of changes() are those of the solid, rising.
  [[nodiscard]] std::span<const std::size_t> changesOf(const OdDbObjectId& solid) const;
  /// Faces of `to` that come from a face of `tool`, a body that was an input of some change:
  /// rising. Empty when it left none.
  [[nodiscard]] std::vector<OdUInt32> facesFrom(const OdModelerBodyPtr& tool, OdUInt32 face,
                                                const OdModelerBodyPtr& to) const;
  /// All changes, as told.
  [[nodiscard]] std::span<const OdSolidChange> changes() const { return m_changes; }

 private:
  struct Ends {
    OdModelerBodyPtr before;
    OdModelerBodyPtr after;
    std::vector<std::size_t> changes;
  };
  struct Use {
    std::size_t change = 0;
    std::size_t input = 0;
  };
  void linkRereadBody(const OdSolidChange& change, const Ends& ends);
  void noteUses(std::size_t change);
  [[nodiscard]] const OdModelerBody* same(const OdModelerBody* body) const;

  std::vector<OdSolidChange> m_changes;
  std::vector<OdDbObjectId> m_solids;
  std::unordered_map<OdDbObjectId, Ends> m_ends;
  // Bodies that were read again stand for the one that was there before.
  std::unordered_map<const OdModelerBody*, const OdModelerBody*> m_same;
  // In which changes a body goes in, rising.
  std::unordered_map<const OdModelerBody*, std::vector<Use>> m_uses;
};

}  // namespace vdm_host
