// What became of the subentities of a body through any number of changes.
#pragma once

#include <optional>
#include <span>
#include <unordered_map>
#include <vector>

#include "platform/filer/object_id.h"
#include "platform/modeler/solid_journal.h"

namespace vdm_host {

/// Fates of all subentities of one type, in one piece of memory.
class FateList {
 public:
  /// Each of `count` subentities is what it was.
  static FateList identity(OdUInt32 count);

  [[nodiscard]] OdUInt32 size() const { return static_cast<OdUInt32>(m_begin.size()) - 1; }
  /// New indices of the old index (from 1), rising; empty when nothing is left or it is not there.
  [[nodiscard]] std::span<const OdUInt32> images(OdUInt32 index) const;
  /// Its geometry was touched on the way: another boundary, or part of another one.
  [[nodiscard]] bool changed(OdUInt32 index) const {
    return index >= 1 && index <= size() && m_changed[index - 1] != 0;
  }
  /// These fates and then those of a further operation.
  [[nodiscard]] FateList then(std::span<const OdModelerFate> next) const;
  /// These fates and, by another way to the same body, those of `other`.
  [[nodiscard]] FateList unitedWith(const FateList& other) const;
  /// How many old subentities each new one comes from, by new index - 1; at least `count` long.
  [[nodiscard]] std::vector<OdUInt32> sourceCounts(OdUInt32 count) const;

 private:
  void add(std::vector<OdUInt32>& images, bool isChanged);

  std::vector<OdUInt32> m_begin{0};  // where the images of index i + 1 begin; one more than entries
  std::vector<OdUInt32> m_images;
  std::vector<OdUInt8> m_changed;
};

/// What became of one body in another.
struct BodyTrace {
  FateList faces;
  FateList edges;
  FateList vertices;
  OdGeMatrix3d motion;      ///< what moved on the way, all of it together
  OdUInt32 operations = 0;  ///< booleans and blends on the way
  bool blends = false;      ///< a fillet or chamfer among them

  [[nodiscard]] const FateList& of(OdModelerSubentType type) const;
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
  };
  struct Use {
    std::size_t change = 0;
    std::size_t input = 0;
  };
  void linkRereadBody(const OdSolidChange& change, const Ends& ends);
  void noteUses(std::size_t change);
  [[nodiscard]] const OdModelerBody* same(const OdModelerBody* body) const;
  template <class State, class Step>
  std::optional<State> follow(const OdModelerBody* from, const OdModelerBody* to, State start,
                              const Step& step) const;

  std::vector<OdSolidChange> m_changes;
  std::vector<OdDbObjectId> m_solids;
  std::unordered_map<OdDbObjectId, Ends> m_ends;
  // Bodies that were read again stand for the one that was there before.
  std::unordered_map<const OdModelerBody*, const OdModelerBody*> m_same;
  // In which changes a body goes in, rising.
  std::unordered_map<const OdModelerBody*, std::vector<Use>> m_uses;
};

}  // namespace vdm_host
