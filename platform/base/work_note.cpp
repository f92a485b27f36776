// Notes of what a process is at. Limits are those of the system (setrlimit): the kernel keeps them
// also while foreign code loops or allocates, and the supervisor need not watch.
#include "platform/base/work_note.h"

#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define OD_SHADOW_MEMORY 1  // the sanitizer reserves terabytes, so that memory cannot be limited
#else
#define OD_SHADOW_MEMORY 0
#endif

namespace {

thread_local OdWorkBoard* t_board = nullptr;

/// Cuts at the start of a character, so that the note stays UTF-8.
std::size_t append(char* note, std::size_t used, std::string_view text) noexcept {
  std::size_t size = std::min(text.size(), OdWorkBoard::kNoteSize - 1 - used);
  while (size > 0 && size < text.size() && (static_cast<unsigned char>(text[size]) & 0xC0) == 0x80)
    --size;
  text.copy(note + used, size);
  note[used + size] = '\0';
  return used + size;
}

void write(OdWorkBoard& board, std::uint32_t index, std::string_view what,
           std::string_view subject) noexcept {
  if (index >= OdWorkBoard::kMaxNotes) return;
  char* note = board.notes[index];
  append(note, append(note, 0, what), subject);
}

// ---- Limits

/// Rounded up, so that a budget is never shorter than it says.
std::uint64_t usedSeconds() noexcept {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  const auto whole = static_cast<std::uint64_t>(usage.ru_utime.tv_sec + usage.ru_stime.tv_sec);
  const auto parts = static_cast<std::uint64_t>(usage.ru_utime.tv_usec + usage.ru_stime.tv_usec);
  constexpr std::uint64_t kMicroseconds = 1'000'000;
  return whole + (parts + kMicroseconds - 1) / kMicroseconds;
}

/// Bytes of data that the process has mapped: what RLIMIT_DATA counts.
std::uint64_t usedBytes() noexcept {
  std::FILE* file = std::fopen("/proc/self/statm", "re");
  if (file == nullptr) return 0;
  unsigned long pages[6] = {};
  const int numRead = std::fscanf(file, "%lu %lu %lu %lu %lu %lu", &pages[0], &pages[1], &pages[2],
                                  &pages[3], &pages[4], &pages[5]);
  std::fclose(file);
  return numRead == 6 ? pages[5] * static_cast<std::uint64_t>(sysconf(_SC_PAGESIZE)) : 0;
}

using Resource = decltype(RLIMIT_CPU);

std::uint64_t softLimit(Resource resource) noexcept {
  rlimit limit{};
  getrlimit(resource, &limit);
  return limit.rlim_cur;
}

void setSoftLimit(Resource resource, std::uint64_t value) noexcept {
  rlimit limit{};
  if (getrlimit(resource, &limit) != 0) return;
  limit.rlim_cur = std::min<std::uint64_t>(value, limit.rlim_max);
  setrlimit(resource, &limit);
}

}  // namespace

void odInstallWorkBoard(OdWorkBoard* board) noexcept { t_board = board; }
OdWorkBoard* odWorkBoard() noexcept { return t_board; }

void odNoteFileWritten() noexcept {
  if (t_board != nullptr) t_board->written = true;
}

OdWorkNote::OdWorkNote(std::string_view text) noexcept : OdWorkNote(text, {}) {}

OdWorkNote::OdWorkNote(std::string_view what, std::string_view subject) noexcept
    : m_board(t_board) {
  if (m_board == nullptr) return;
  write(*m_board, m_board->count, what, subject);
  ++m_board->count;
}

OdWorkNote::~OdWorkNote() {
  if (m_board != nullptr) --m_board->count;
}

void OdWorkNote::change(std::string_view what, std::string_view subject) noexcept {
  if (t_board != nullptr && t_board->count > 0) write(*t_board, t_board->count - 1, what, subject);
}

OdWorkLimit::OdWorkLimit(const OdWorkBudget& budget) noexcept : m_board(t_board) {
  if (m_board == nullptr) return;
  m_outerSeconds = m_board->seconds;
  m_outerBytes = m_board->bytes;
  m_outerTimeLimit = softLimit(RLIMIT_CPU);
  m_outerMemoryLimit = softLimit(RLIMIT_DATA);
  if (budget.seconds != 0) {
    const std::uint64_t limit = usedSeconds() + budget.seconds;
    if (limit < m_outerTimeLimit) {
      setSoftLimit(RLIMIT_CPU, limit);
      m_board->seconds = budget.seconds;
    }
  }
  if (budget.bytes != 0 && OD_SHADOW_MEMORY == 0) {
    const std::uint64_t limit = usedBytes() + budget.bytes;
    if (limit < m_outerMemoryLimit) {
      setSoftLimit(RLIMIT_DATA, limit);
      m_board->bytes = budget.bytes;
    }
  }
}

OdWorkLimit::~OdWorkLimit() {
  if (m_board == nullptr) return;
  setSoftLimit(RLIMIT_CPU, m_outerTimeLimit);
  setSoftLimit(RLIMIT_DATA, m_outerMemoryLimit);
  m_board->seconds = m_outerSeconds;
  m_board->bytes = m_outerBytes;
}
