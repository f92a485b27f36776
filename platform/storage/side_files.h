// The files beside a drawing that SQLite would take for a part of its state.
#pragma once

#include <string>

#include "platform/db/record_store.h"

namespace odstorage {

/// Looks at what lies beside the drawing `path` (absolute) before SQLite does, which would act on
/// it without asking. eCorruptData names the file and the reason:
///
///  - a journal that names a super-journal: undoing such a save deletes the file of that name, and
///    no save of a drawing writes one;
///  - a journal that is a link, a folder or a device: a save would write through it;
///  - a write-ahead log: SQLite would read its pages instead of the drawing's, and no save of a
///    drawing writes one.
///
/// Nothing is changed. A journal of an interrupted save passes.
[[nodiscard]] OdStatus checkSideFiles(const std::string& path);

}  // namespace odstorage
