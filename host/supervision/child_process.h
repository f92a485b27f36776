// What children that do supervised work have in common.
#pragma once

#include <sys/types.h>

#include "platform/base/work_note.h"

namespace supervision {

/// A board in memory that this process shares with its children; null where there is none to be
/// had. To be released with releaseBoard().
[[nodiscard]] OdWorkBoard* makeSharedBoard();
void releaseBoard(OdWorkBoard* board);

/// First call in a child of `parent`: it dies with the parent, its notes are entered in the board,
/// and an allocation that fails is noted there, too.
void enterChild(pid_t parent, OdWorkBoard* board);

/// The status of a child that has ended, as waitpid() gives it; waits for that.
[[nodiscard]] int waitForChild(pid_t child);

}  // namespace supervision
