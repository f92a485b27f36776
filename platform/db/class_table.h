// OdDbClassTable: the classes whose objects a drawing holds, by the numbers its file gives them.
#pragma once

#include <deque>
#include <unordered_map>
#include <vector>

#include "platform/base/string.h"
#include "platform/base/types.h"
#include "platform/db/record_store.h"

class OdRxClass;

/// What a drawing knows of one class, whether it is registered or not.
struct OdDbClassEntry {
  OdUInt32 id = 0;  ///< 1.. ; never reused within one drawing
  OdString name;
  OdString dxfName;
  OdString appName;
  OdInt32 dwgVersion = 0;
  OdInt32 maintVersion = 0;
  OdInt32 proxyFlags = 0;
  bool inFile = false;
  OdRxClass* rxClass = nullptr;        ///< null while no such class is registered
  OdUInt64 generation = ~OdUInt64{0};  ///< class generation at which rxClass was looked up
};

/// Entries never move. A class that is registered later is found without reopening the drawing.
class OdDbClassTable {
 public:
  /// Adds what the file says; false when the record is damaged or the number is taken.
  bool read(const OdDbStoredClass& stored);
  [[nodiscard]] static std::string encode(const OdDbClassEntry& entry);

  /// Entry of a number, null when unknown.
  [[nodiscard]] OdDbClassEntry* find(OdUInt32 id);
  /// Entry of a registered class; made when it is new to the drawing.
  OdDbClassEntry& entryOf(OdRxClass* rxClass);
  /// Entry of the class that another drawing's entry describes; made when it is new here.
  OdDbClassEntry& adopt(const OdDbClassEntry& foreign);
  /// The class that is registered for an entry now; null without one.
  OdRxClass* resolve(OdDbClassEntry& entry);
  [[nodiscard]] const std::deque<OdDbClassEntry>& entries() const { return m_entries; }
  std::deque<OdDbClassEntry>& entries() { return m_entries; }

 private:
  OdDbClassEntry& add(OdUInt32 id);

  std::deque<OdDbClassEntry> m_entries;
  std::vector<OdDbClassEntry*> m_byId;
  std::unordered_map<std::string, OdDbClassEntry*> m_byName;
  OdRxClass* m_lastClass = nullptr;
  OdUInt64 m_lastGeneration = 0;
  OdDbClassEntry* m_lastEntry = nullptr;
};
