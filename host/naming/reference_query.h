// Questions about persistent references: where they lead, how sure that is, who needs them.
#pragma once

#include <span>
#include <vector>

#include "host/naming/reference_record.h"
#include "platform/base/string.h"
#include "platform/db/subent.h"

class OdDbDatabase;

namespace vdm_host {

/// Where a reference leads at present.
struct ResolvedReference {
  OdDbObjectId dependency;
  OdDbObjectId solid;       ///< leaf of the path; null when that cannot be resolved
  OdDbFullSubentPath path;  ///< as stored; the subentity is one of the body's only when resolved
  ReferenceGrade grade = ReferenceGrade::kLost;
  OdString note;  ///< why there is no subentity; empty when resolved

  [[nodiscard]] bool resolved() const { return isResolved(grade); }
};

/// A reference whose solid was changed without an update (stamp and body differ) is graded lost
/// with a note that says so: an update finds it again or not. A path that ends in a whole entity is
/// exact. Opens the drawing's objects for read only.
[[nodiscard]] ResolvedReference resolveReference(const OdDbObjectId& dependency);

/// Many of them, in order: each solid that they lead into is looked at once.
[[nodiscard]] std::vector<ResolvedReference> resolveReferences(
    std::span<const OdDbObjectId> dependencies);

/// The same with what it remembers.
struct ReferenceStory {
  ResolvedReference now;
  bool hasRecord = false;
  ReferenceRecord record;
  std::vector<OdString> lines;  ///< the birth, each kept step and the present state in words
};
[[nodiscard]] ReferenceStory explainReference(const OdDbObjectId& dependency);

/// One reference of a drawing and what is attached to it.
struct ReferenceEntry {
  ResolvedReference now;
  OdDbObjectIdArray watchers;  ///< live persistent reactors
};
/// All references of the drawing, block by block, in the managers' order.
[[nodiscard]] std::vector<ReferenceEntry> listReferences(OdDbDatabase* database);

}  // namespace vdm_host
