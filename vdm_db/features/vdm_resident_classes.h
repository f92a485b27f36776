// VdmResidentClasses: the features of a list by class, without opening or reading them.
#pragma once

#include <cstddef>
#include <initializer_list>
#include <vector>

#include "platform/base/string.h"
#include "platform/filer/object_id.h"

class OdDbObject;
class OdRxClass;
class VdmIndexedIds;

/// Remembers of which class the feature of each carrier in memory is. A carrier, its feature and
/// the feature's class are three places in memory, far from those of the next one, and a walk over
/// many features does little but wait for them; what is remembered lies in one piece. A carrier
/// keeps its feature as long as it is in memory, so a carrier at the same address is of the same
/// class unless one has ended since. In memory only; belongs to the manager of the list.
class VdmResidentClasses {
 public:
  /// Appends the ids of the carriers that are in memory, not erased, and whose features are of one
  /// of the classes or below one.
  void find(const VdmIndexedIds& features, std::initializer_list<OdRxClass*> classes,
            OdDbObjectIdArray& found);
  [[nodiscard]] std::size_t approximateSize() const { return m_seen.capacity() * sizeof(Seen); }

 private:
  struct Seen {
    const OdDbObject* carrier = nullptr;  ///< compared, never used
    OdUInt32 row = 0;                     ///< in m_rows
  };
  struct Row {
    OdString name;
    const OdRxClass* cls;
    bool isWanted = false;
    OdUInt32 numSeen = 0;
  };

  using Classes = std::initializer_list<OdRxClass*>;

  void forgetWhatEnded(const VdmIndexedIds& features);
  bool isWanted(const OdDbObject* object, Seen& seen, Classes classes);
  OdUInt32 rowOf(const OdRxClass* cls, Classes classes);

  OdUInt64 m_stamp = 0;      // of the list
  OdUInt64 m_numEnded = 0;   // carriers
  std::vector<Seen> m_seen;  // by place in the list
  std::vector<Row> m_rows;
};
