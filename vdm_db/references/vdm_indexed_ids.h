// VdmIndexedIds: a list of ids with hashed look-up and undo records of its changes.
#pragma once

#include <unordered_set>

#include "platform/base/array.h"
#include "platform/filer/object_id.h"
#include "vdm_db/common/vdm_db_export.h"

class OdDbDwgFiler;

/// The list in a mapped or filed array of ids. It holds each id once as long as only the operations
/// below change it. The look-up table is made when it is first needed and kept until
/// the array is replaced.
///
/// An undo record names ids, never positions: between an edit and its undo the list may be read
/// from a file, which leaves out ids of objects that are gone for good. Where an id is listed
/// several times, the last places are meant. An owner files the record after a byte that names the
/// list; the filer is null when nothing records.
///
///   kind     bool    false: ids to take out; true: runs to put in
///   false    int32 count, soft pointer each
///   true     int32 count of runs, and for each the neighbours that it had in the list, two soft
///            pointers, null at the ends; int32 count, soft pointer each
///
/// A run goes between its neighbours. With one of them lost it goes beside the other, and without
/// both to the end.
class VDM_DB_EXPORT VdmIndexedIds {
 public:
  [[nodiscard]] const OdDbObjectIdArray& ids() const { return m_ids; }
  /// For mapping and reading; followed by replaced().
  [[nodiscard]] OdDbObjectIdArray& array() { return m_ids; }
  /// The array was filled from elsewhere: drops null ids.
  void replaced();
  /// Another number, never given out before in this process, after each change but an append: with
  /// the same stamp the list is what it was, and has at most more ids at its end.
  [[nodiscard]] OdUInt64 stamp() const { return m_stamp; }

  /// Of the array and the look-up table, in bytes.
  [[nodiscard]] std::size_t approximateSize() const {
    return m_ids.capacity() * sizeof(OdDbObjectId) + m_index.size() * (4 * sizeof(void*));
  }
  [[nodiscard]] bool isEmpty() const { return m_ids.isEmpty(); }
  [[nodiscard]] bool contains(OdDbObjectId id) const;
  /// Those of `ids` that are not listed, each once, without null ids.
  [[nodiscard]] OdDbObjectIdArray notListed(const OdDbObjectIdArray& ids) const;
  /// Rising positions of the listed ids for which `isWanted` is true.
  template <class Predicate>
  [[nodiscard]] OdArray<OdUInt32> positionsWhere(const Predicate& isWanted) const;
  /// Rising positions of those of `ids` that are listed. One walk, however many there are.
  [[nodiscard]] OdArray<OdUInt32> positionsOf(const OdDbObjectIdArray& ids) const;

  /// The same, and of each id only as many places as `ids` has it, the last ones.
  [[nodiscard]] OdArray<OdUInt32> lastPositionsOf(const OdDbObjectIdArray& ids) const;

  /// `ids` come from notListed().
  void append(const OdDbObjectIdArray& ids, OdDbDwgFiler* undo);
  void takeOut(const OdArray<OdUInt32>& positions, OdDbDwgFiler* undo);
  /// Takes back the recorded edit and records the opposite.
  void applyUndo(OdDbDwgFiler* record, OdDbDwgFiler* inverse);

 private:
  struct Run;

  [[nodiscard]] OdArray<Run> runsAt(const OdArray<OdUInt32>& positions) const;
  [[nodiscard]] OdArray<OdUInt32> placesOf(const OdArray<Run>& runs) const;
  void putIn(const OdArray<Run>& runs, OdDbDwgFiler* undo);
  void makeIndex() const;
  static OdUInt64 nextStamp();

  OdDbObjectIdArray m_ids;
  mutable std::unordered_set<OdDbObjectId> m_index;
  mutable bool m_isIndexed = false;
  OdUInt64 m_stamp = nextStamp();
};

template <class Predicate>
OdArray<OdUInt32> VdmIndexedIds::positionsWhere(const Predicate& isWanted) const {
  OdArray<OdUInt32> positions;
  for (OdUInt32 i = 0; i < m_ids.size(); ++i) {
    if (isWanted(m_ids[i])) positions.append(i);
  }
  return positions;
}
