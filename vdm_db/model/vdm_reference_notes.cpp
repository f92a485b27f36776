// Notes of changed references, by drawing.
#include "vdm_db/model/vdm_reference_notes.h"

#include <atomic>
#include <mutex>
#include <unordered_map>

#include "platform/db/db_object.h"

namespace {

// More than that is half a megabyte of ids, and mostly means that a drawing was loaded.
constexpr std::size_t kMaxNotes = 1 << 16;

/// The notes of the drawings that have readers. Entries stay where they are in memory.
struct Registry {
  std::mutex mutex;
  std::unordered_map<const OdDbDatabase*, VdmReferenceNotes> notes;
  std::atomic<OdUInt32> numReaders{0};
};

Registry& registry() {
  static Registry instance;
  return instance;
}

}  // namespace

void VdmReferenceNotes::note(const OdDbObject* object) {
  Registry& all = registry();
  if (all.numReaders.load(std::memory_order_relaxed) == 0) return;
  const OdDbDatabase* database = object->database();
  if (database == nullptr) return;
  VdmReferenceNotes* notes = nullptr;
  {
    const std::lock_guard lock(all.mutex);
    const auto found = all.notes.find(database);
    if (found != all.notes.end()) notes = &found->second;
  }
  if (notes != nullptr) notes->add(object->objectId());
}

// An object that changes several times in a row is noted once, unless its note was read meanwhile.
void VdmReferenceNotes::add(OdDbObjectId id) {
  if (!m_ids.empty() && m_ids.back() == id && m_numRead < m_numDropped + m_ids.size()) return;
  if (m_ids.size() == kMaxNotes) {
    m_numDropped += m_ids.size();
    m_ids.clear();
  }
  m_ids.push_back(id);
}

VdmReferenceNotesReader::VdmReferenceNotesReader(const OdDbDatabase* database)
    : m_database(database) {
  Registry& all = registry();
  const std::lock_guard lock(all.mutex);
  m_notes = &all.notes[database];
  ++m_notes->m_numReaders;
  ++all.numReaders;
  m_place = m_notes->m_numDropped + m_notes->m_ids.size();
}

VdmReferenceNotesReader::~VdmReferenceNotesReader() {
  Registry& all = registry();
  const std::lock_guard lock(all.mutex);
  --all.numReaders;
  if (--m_notes->m_numReaders == 0) all.notes.erase(m_database);
}
