// What happened to the bodies of solids while somebody kept a journal.
#pragma once

#include <memory>
#include <span>
#include <vector>

#include "platform/base/types.h"
#include "platform/filer/object_id.h"
#include "platform/ge/matrix3d.h"
#include "platform/modeler/body.h"
#include "platform/modeler/history.h"

/// How a body came out of another one.
enum class OdSolidChangeKind : OdUInt8 {
  kBoolean = 0,   ///< a history tells every fate; `tools` are its other inputs
  kBlend = 1,     ///< fillet or chamfer: a history tells every fate
  kMoved = 2,     ///< the numbers stay; `transform` tells the motion, which may be the identity
  kReplaced = 3,  ///< nothing is known of how the old body and the new one relate
};

/// One change of one solid's body. Bodies are immutable and shared between solids, so what a body
/// became, also within another solid, is traced by the body pointers of successive changes.
struct OdSolidChange {
  OdDbObjectId solid;  ///< null for a solid that stands in no drawing
  OdSolidChangeKind kind = OdSolidChangeKind::kReplaced;
  OdModelerBodyPtr before;              ///< null when the solid was empty
  std::vector<OdModelerBodyPtr> tools;  ///< kBoolean only
  OdModelerBodyPtr after;               ///< null when the solid was emptied
  /// Inputs are `before` and then `tools`; null for kMoved and kReplaced.
  std::shared_ptr<const OdModelerHistory> history;
  OdGeMatrix3d transform;  ///< kMoved: takes `before` to `after`
};

/// A scope in which every change of an OdDb3dSolid's body on this thread is written down, in the
/// order in which they happen. Journals nest: the innermost one hears, and hands its changes to the
/// one around it when it ends. Changes that undo, an aborted transaction or reading make are not
/// reported: whoever rolls back drops what was written since (`mark`, `dropSince`).
///
/// Lives on the stack of one thread; ends in reverse order of beginning. The journal keeps the
/// bodies that it names alive.
class OdSolidJournal {
 public:
  OdSolidJournal();
  ~OdSolidJournal();
  OdSolidJournal(const OdSolidJournal&) = delete;
  OdSolidJournal& operator=(const OdSolidJournal&) = delete;

  /// The innermost journal of this thread, null when none is kept.
  static OdSolidJournal* current();

  [[nodiscard]] std::span<const OdSolidChange> changes() const { return m_changes; }
  void note(OdSolidChange change) { m_changes.push_back(std::move(change)); }

  /// A place in the journal, to come back to.
  [[nodiscard]] std::size_t mark() const { return m_changes.size(); }
  /// Forgets what was written after `mark`.
  void dropSince(std::size_t mark);
  /// All changes; the journal is empty afterwards and goes on.
  std::vector<OdSolidChange> take();

 private:
  OdSolidJournal* m_outer;
  std::vector<OdSolidChange> m_changes;
};
