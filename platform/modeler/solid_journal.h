// The changes of the bodies of solids within a scope.
#pragma once

#include <memory>
#include <span>
#include <vector>

#include "platform/base/non_copyable.h"
#include "platform/base/types.h"
#include "platform/filer/object_id.h"
#include "platform/ge/matrix3d.h"
#include "platform/modeler/body.h"
#include "platform/modeler/history.h"

/// How a body came out of another one.
enum class OdSolidChangeKind : OdUInt8 {
  kBoolean = 0,   ///< `history` has every fate; `tools` are its other inputs
  kBlend = 1,     ///< fillet, chamfer or removed faces: `history` has every fate
  kMoved = 2,     ///< the numbers stay; `transform` is the motion, which may be the identity
  kReplaced = 3,  ///< how the old body and the new one relate is not known
};

/// One change of one solid's body. Bodies are immutable and shared between solids, so what a body
/// became, also within another solid, is traced by the body pointers of successive changes.
struct OdSolidChange {
  OdDbObjectId solid;  ///< null for a solid in no drawing
  OdSolidChangeKind kind = OdSolidChangeKind::kReplaced;
  OdModelerBodyPtr before;              ///< null when the solid was empty
  std::vector<OdModelerBodyPtr> tools;  ///< kBoolean only
  OdModelerBodyPtr after;               ///< null when the solid was emptied
  /// Inputs are `before` and then `tools`; null for kMoved and kReplaced.
  std::shared_ptr<const OdModelerHistory> history;
  OdGeMatrix3d transform;  ///< kMoved: takes `before` to `after`
};

/// A scope that records every change of an OdDb3dSolid's body on this thread, in the order in which
/// they happen. Journals nest: the innermost one records, and appends its changes to the journal
/// around it when it ends. Undo, an aborted transaction and reading change bodies without a record:
/// the code that rolls back also drops the records since then (`mark`, `dropSince`).
///
/// A solid finds the journal through its thread and not through its database, because tools are
/// made and united as solids in no drawing, and their changes must be recorded too: a face of the
/// result is traced back to the component it came from. A drawing is used by one thread at a time,
/// so the scope of the thread and the edit of the drawing are the same.
///
/// Lives on the stack of one thread; journals end in reverse order of their beginning. A journal
/// keeps alive the bodies that it names.
class OdSolidJournal : OdNonCopyable {
 public:
  OdSolidJournal();
  ~OdSolidJournal();

  /// The innermost journal of this thread; null when there is none.
  static OdSolidJournal* current();

  [[nodiscard]] std::span<const OdSolidChange> changes() const { return m_changes; }
  void note(OdSolidChange change) { m_changes.push_back(std::move(change)); }

  /// The present end of the journal, for dropSince.
  [[nodiscard]] std::size_t mark() const { return m_changes.size(); }
  /// Drops the changes after `mark`.
  void dropSince(std::size_t mark);

 private:
  OdSolidJournal* m_outer;
  std::vector<OdSolidChange> m_changes;
};
