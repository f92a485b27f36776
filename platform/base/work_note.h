// Notes of what a process is at, for a supervisor that has to say what it died of.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "platform/base/export.h"
#include "platform/base/non_copyable.h"

/// The notes of one supervised process, outermost first, and what it may use up. Plain memory
/// without pointers: it lies in memory that the process shares with its supervisor, who reads it
/// after the process died. One thread of the process writes it, the one that installed it.
struct OdWorkBoard {
  static constexpr std::uint32_t kMaxNotes = 16;
  static constexpr std::size_t kNoteSize = 240;  ///< bytes, the closing zero included

  std::uint32_t count = 0;    ///< notes that are open; those beyond kMaxNotes have no text
  std::uint32_t seconds = 0;  ///< processor time that the innermost limit allows; 0 for none
  std::uint64_t bytes = 0;    ///< memory that the innermost limit allows; 0 for none
  bool outOfMemory = false;   ///< an allocation failed
  bool written = false;       ///< a file was written: not everything is as before
  char notes[kMaxNotes][kNoteSize] = {};
};

/// Notes and limits of the calling thread are entered in `board` from here on; null ends that.
/// The board is not owned.
OD_API void odInstallWorkBoard(OdWorkBoard* board) noexcept;
/// The board of the calling thread; null unless its process is supervised.
[[nodiscard]] OD_API OdWorkBoard* odWorkBoard() noexcept;

/// A file that users keep was written: from here on the process cannot say that nothing changed.
OD_API void odNoteFileWritten() noexcept;

/// One note, for a scope. Notes nest: the innermost says most exactly what is being done. Costs
/// nothing that matters without a board.
class OD_API OdWorkNote : OdNonCopyable {
 public:
  /// UTF-8, such as "reading step file 'a.stp'"; cut where it is too long.
  explicit OdWorkNote(std::string_view text) noexcept;
  /// The same in two pieces, which are joined only when there is a board.
  OdWorkNote(std::string_view what, std::string_view subject) noexcept;
  ~OdWorkNote();

  /// Replaces the text of the innermost note of this thread.
  static void change(std::string_view what, std::string_view subject) noexcept;

 private:
  OdWorkBoard* m_board;
};

/// What a piece of work may use beyond what its process has used up when it begins.
struct OdWorkBudget {
  std::uint32_t seconds = 0;  ///< of processor time, 0 for no limit
  std::uint64_t bytes = 0;    ///< of memory, 0 for no limit
};

/// Holds the process to a budget for a scope, if it is supervised: a process that exceeds its time
/// is ended by the system, and an allocation beyond its memory fails. Limits nest; an inner one
/// never allows more than an outer one.
class OD_API OdWorkLimit : OdNonCopyable {
 public:
  explicit OdWorkLimit(const OdWorkBudget& budget) noexcept;
  ~OdWorkLimit();

 private:
  OdWorkBoard* m_board;
  std::uint32_t m_outerSeconds = 0;
  std::uint64_t m_outerBytes = 0;
  std::uint64_t m_outerTimeLimit = 0;
  std::uint64_t m_outerMemoryLimit = 0;
};
