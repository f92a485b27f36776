#include "platform/base/work_death.h"

#include <algorithm>
#include <csignal>
#include <cstring>
#include <iterator>
#include <new>

namespace {

struct Meaning {
  int signal;
  const char* text;
};

constexpr Meaning kMeanings[] = {
    {SIGSEGV, "it crashed (segmentation fault)"},
    {SIGBUS, "it crashed (bus error)"},
    {SIGILL, "it crashed (illegal instruction)"},
    {SIGFPE, "it crashed (arithmetic fault)"},
    {SIGABRT, "it gave up (abort)"},
    {SIGKILL, "it was killed"},
    {SIGXFSZ, "it wrote more than the limit on files allows"},
};

std::string causeOf(int signal, const OdWorkBoard& board) {
  if (signal == SIGXCPU)
    return "it did not end within " + std::to_string(board.seconds) + " s of processor time";
  const auto* found = std::ranges::find(kMeanings, signal, &Meaning::signal);
  std::string text =
      found != std::end(kMeanings) ? found->text : "it ended by signal " + std::to_string(signal);
  if (board.outOfMemory) text += ", out of memory";
  return text;
}

std::string operationOf(const OdWorkBoard& board) {
  std::string text;
  std::string last;
  for (std::uint32_t i = 0; i < std::min(board.count, OdWorkBoard::kMaxNotes); ++i) {
    const std::string note(board.notes[i], strnlen(board.notes[i], OdWorkBoard::kNoteSize));
    if (note == last) continue;
    text += (text.empty() ? "" : ": ") + note;
    last = note;
  }
  return text;
}

}  // namespace

OdWorkDeath odDescribeDeath(int signal, const OdWorkBoard& board) {
  return {signal, operationOf(board), causeOf(signal, board), board.written};
}

void odNoteOutOfMemory() {
  if (OdWorkBoard* board = odWorkBoard()) board->outOfMemory = true;
  throw std::bad_alloc();
}
