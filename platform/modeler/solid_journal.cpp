// The changes of the bodies of solids within a scope.
#include "platform/modeler/solid_journal.h"

#include <iterator>
#include <utility>

namespace {

// Through the thread: see the class.
thread_local OdSolidJournal* t_current = nullptr;

}  // namespace

OdSolidJournal::OdSolidJournal() : m_outer(std::exchange(t_current, this)) {}

OdSolidJournal::~OdSolidJournal() {
  t_current = m_outer;
  if (m_outer == nullptr) return;
  std::vector<OdSolidChange>& outer = m_outer->m_changes;
  outer.insert(outer.end(), std::make_move_iterator(m_changes.begin()),
               std::make_move_iterator(m_changes.end()));
}

OdSolidJournal* OdSolidJournal::current() { return t_current; }

void OdSolidJournal::dropSince(std::size_t mark) {
  if (mark < m_changes.size()) m_changes.resize(mark);
}
