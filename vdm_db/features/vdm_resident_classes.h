// VdmResidentClasses: the features of a list by class, without opening or reading them.
#pragma once

#include <cstddef>
#include <initializer_list>
#include <optional>
#include <vector>

#include "platform/base/string.h"
#include "platform/filer/object_id.h"
#include "vdm_db/model/vdm_reference_notes.h"

class OdDbDatabase;
class OdDbObject;
class OdRxClass;
class VdmIndexedIds;

/// Remembers of which class the feature at each place of the list is. The record of an id, its
/// carrier, the carrier's feature and the feature's class are four places in memory, far from those
/// of the next one, and a walk over many features does little but wait for them; what is remembered
/// lies in one piece.
///
/// A place is settled when its carrier is in memory, not erased, not open for write and has a
/// feature. What can change that afterwards is heard of: carriers note when they are read, edited,
/// erased, brought back or exchanged, and count when they leave the memory; the list has a stamp.
/// All other places are looked at each time. In memory only; belongs to the manager of the list,
/// and ends before the drawing.
class VdmResidentClasses {
 public:
  /// Appends the ids of the carriers that are in memory, not erased, and whose features are of one
  /// of the classes or below one. `database` is the drawing of the list.
  void find(const OdDbDatabase* database, const VdmIndexedIds& features,
            std::initializer_list<OdRxClass*> classes, OdDbObjectIdArray& found);
  [[nodiscard]] std::size_t approximateSize() const {
    return m_rowAt.capacity() * sizeof(OdUInt16);
  }

 private:
  struct Row {
    OdString name;
    const OdRxClass* cls;
    bool isWanted = false;
    OdUInt32 numSettled = 0;  // at most: places that became unsettled still count
  };
  using Classes = std::initializer_list<OdRxClass*>;

  static constexpr OdUInt16 kUnsettled = 0xFFFF;

  void forgetWhatEnded(const OdDbDatabase* database, const VdmIndexedIds& features);
  void unsettleWhatChanged(const VdmIndexedIds& features);
  bool isWanted(OdDbObjectId id, OdUInt16& row, Classes classes);
  OdUInt16 rowOf(const OdRxClass* cls, Classes classes);

  std::optional<VdmReferenceNotesReader> m_notes;
  const OdDbDatabase* m_database = nullptr;
  OdUInt64 m_stamp = 0;           // of the list
  OdUInt64 m_numEnded = 0;        // carriers
  std::vector<OdUInt16> m_rowAt;  // in m_rows, by place in the list
  std::vector<Row> m_rows;
};
