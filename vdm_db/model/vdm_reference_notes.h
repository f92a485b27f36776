// VdmReferenceNotes: which carriers of features, reactors and dependencies of a drawing may have
// changed.
#pragma once

#include <cstddef>
#include <vector>

#include "platform/base/types.h"
#include "platform/filer/object_id.h"
#include "vdm_db/common/vdm_db_export.h"

class OdDbDatabase;
class OdDbObject;

/// The notes of one drawing: a list of ids to which these objects add themselves whenever their
/// state may become another one, by an edit, undo, redo or reading, and when they are erased, come
/// back or exchange their ids. Whoever keeps what follows from that state reads the notes
/// through a VdmReferenceNotesReader; while a drawing has no reader nothing is noted.
///
/// The list is dropped when it has grown long, and its readers learn that they missed something.
/// Used from the thread of the drawing; drawings on different threads do not disturb each other.
class VDM_DB_EXPORT VdmReferenceNotes {
 public:
  /// Adds an object that is in a drawing; others are ignored.
  static void note(const OdDbObject* object);

 private:
  friend class VdmReferenceNotesReader;

  void add(OdDbObjectId id);

  std::vector<OdDbObjectId> m_ids;
  OdUInt64 m_numDropped = 0;  // of the ids before the first one
  OdUInt64 m_numRead = 0;     // by the reader that is furthest
  OdUInt32 m_numReaders = 0;
};

/// One reader of a drawing's notes. The drawing outlives it.
class VDM_DB_EXPORT VdmReferenceNotesReader {
 public:
  explicit VdmReferenceNotesReader(const OdDbDatabase* database);
  ~VdmReferenceNotesReader();
  VdmReferenceNotesReader(const VdmReferenceNotesReader&) = delete;
  VdmReferenceNotesReader& operator=(const VdmReferenceNotesReader&) = delete;

  [[nodiscard]] bool hasNews() const {
    return m_place != m_notes->m_numDropped + m_notes->m_ids.size();
  }
  /// Calls visit(id) for what was noted since the last call. False, with nothing visited, when some
  /// of that was dropped: everything may have changed. `visit` must not change the drawing.
  template <class Visit>
  bool readNews(const Visit& visit);

  /// Passes over what was noted since.
  void skipNews() {
    readNews([](OdDbObjectId) {});
  }

 private:
  const OdDbDatabase* m_database;
  VdmReferenceNotes* m_notes;
  OdUInt64 m_place = 0;
};

template <class Visit>
bool VdmReferenceNotesReader::readNews(const Visit& visit) {
  const OdUInt64 first = m_notes->m_numDropped;
  const OdUInt64 from = m_place;
  m_place = m_notes->m_numRead = first + m_notes->m_ids.size();
  if (from < first) return false;
  for (auto i = static_cast<std::size_t>(from - first); i < m_notes->m_ids.size(); ++i) {
    visit(m_notes->m_ids[i]);
  }
  return true;
}
