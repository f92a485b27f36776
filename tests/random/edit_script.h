// EditScript: a random sequence of edits of one drawing, given by its seed.
#pragma once

#include <string>

#include "platform/db/database.h"
#include "tests/random/random_source.h"

/// Draws one edit after the other and applies it. What is drawn depends on the seed and on the
/// drawing's content only, objects being chosen by handle, so that a script can be played again up
/// to any step. Edits that the drawing may refuse (a block in itself, a name that is taken) are
/// drawn, too; a refusal is part of the play. The classes of the module are registered meanwhile.
///
/// The edits leave a drawing that an audit finds nothing in: what leaves its owner gets another one
/// or is erased, and ownership is never invented.
class EditScript {
 public:
  explicit EditScript(std::uint64_t seed) : m_random(seed) {}

  /// One edit, or several within transactions that are ended or aborted, nested up to three deep.
  /// Returns what was done, for messages. Raises what is no refusal.
  std::string edit(OdDbDatabase* database);

  RandomSource& random() { return m_random; }

 private:
  std::string editInTransactions(OdDbDatabase* database, int depth);
  std::string editOnce(OdDbDatabase* database);

  RandomSource m_random;
};
