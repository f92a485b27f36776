// What became of bodies and their subentities through any number of changes.
#pragma once

#include <optional>
#include <span>
#include <unordered_map>
#include <vector>

#include "host/naming/body_trace.h"
#include "platform/filer/object_id.h"
#include "platform/modeler/solid_journal.h"

namespace vdm_host {

/// A reading of a journal. Laws:
///   1. a body is itself in every change in which it takes part, as the body that is changed or as
///      a tool: so a tool is followed into the solid that it cut, also through a union of tools;
///   2. a body that was read again from its bytes between two changes of its solid is the body that
///      was there before (equal OdModelerBody::fingerprint);
///   3. a replacement ends all ways: nothing leads from the old body of a replaced solid to the new
///      one;
///   4. where several ways lead from one body to another, what came by each is united.
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
  /// All changes, in the order in which they happened.
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
  class Walk;
  void noteEnds(std::size_t change);
  void linkRereadBody(const OdSolidChange& change, const Ends& ends);
  void noteUses(std::size_t change);
  [[nodiscard]] const OdModelerBody* same(const OdModelerBody* body) const;

  std::vector<OdSolidChange> m_changes;
  std::vector<OdDbObjectId> m_solids;
  std::unordered_map<OdDbObjectId, Ends> m_ends;
  // From a body that was read again to the one that it equals.
  std::unordered_map<const OdModelerBody*, const OdModelerBody*> m_same;
  // The changes that a body is an input of, rising.
  std::unordered_map<const OdModelerBody*, std::vector<Use>> m_uses;
};

}  // namespace vdm_host
