// Classes of a drawing.
#include "platform/db/class_table.h"

#include "platform/base/error.h"
#include "platform/filer/file_filer.h"
#include "platform/rx/rx_class.h"

namespace {

constexpr OdUInt32 kMaxClasses = 65536;  // a bound for hostile files

}  // namespace

// Class record: name, DXF name, application text (strings), drawing version, maintenance version,
// proxy flags (int32 each), in the form of a record without references.
std::string OdDbClassTable::encode(const OdDbClassEntry& entry) {
  OdDbFileWriter writer(nullptr);
  writer.wrString(entry.name);
  writer.wrString(entry.dxfName);
  writer.wrString(entry.appName);
  writer.wrInt32(entry.dwgVersion);
  writer.wrInt32(entry.maintVersion);
  writer.wrInt32(entry.proxyFlags);
  std::vector<OdUInt8> bytes;
  writer.assemble(bytes);
  return std::string(bytes.begin(), bytes.end());
}

bool OdDbClassTable::read(const OdDbStoredClass& stored) {
  if (stored.id == 0 || stored.id > kMaxClasses || find(stored.id) != nullptr) return false;
  try {
    OdDbFileReader reader(reinterpret_cast<const OdUInt8*>(stored.value.data()),
                          stored.value.size(), nullptr, nullptr, nullptr);
    OdDbClassEntry entry;
    entry.name = reader.rdString();
    entry.dxfName = reader.rdString();
    entry.appName = reader.rdString();
    entry.dwgVersion = reader.rdInt32();
    entry.maintVersion = reader.rdInt32();
    entry.proxyFlags = reader.rdInt32();
    if (entry.name.isEmpty() || m_byName.contains(std::string(entry.name.utf8()))) return false;
    entry.id = stored.id;
    entry.inFile = true;
    OdDbClassEntry& added = add(stored.id);
    added = entry;
    m_byName.emplace(entry.name.utf8(), &added);
    return true;
  } catch (const OdError&) {
    return false;
  }
}

OdDbClassEntry* OdDbClassTable::find(OdUInt32 id) {
  return id < m_byId.size() ? m_byId[id] : nullptr;
}

OdDbClassEntry& OdDbClassTable::add(OdUInt32 id) {
  OdDbClassEntry& entry = m_entries.emplace_back();
  entry.id = id;
  if (m_byId.size() <= id) m_byId.resize(id + 1);
  m_byId[id] = &entry;
  return entry;
}

OdDbClassEntry& OdDbClassTable::entryOf(OdRxClass* rxClass) {
  if (rxClass == m_lastClass && m_lastGeneration == odrxClassGeneration()) return *m_lastEntry;
  const std::string name(rxClass->name().utf8());
  const auto found = m_byName.find(name);
  OdDbClassEntry* entry = nullptr;
  if (found != m_byName.end()) {
    entry = found->second;
  } else {
    entry = &add(m_byId.empty() ? 1 : static_cast<OdUInt32>(m_byId.size()));
    entry->name = rxClass->name();
    entry->dxfName = rxClass->dxfName();
    entry->appName = rxClass->appName();
    entry->dwgVersion = rxClass->dwgVer();
    entry->maintVersion = rxClass->maintVer();
    entry->proxyFlags = static_cast<OdInt32>(rxClass->proxyFlags());
    m_byName.emplace(name, entry);
  }
  m_lastClass = rxClass;
  m_lastGeneration = odrxClassGeneration();
  m_lastEntry = entry;
  return *entry;
}

OdDbClassEntry& OdDbClassTable::adopt(const OdDbClassEntry& foreign) {
  const std::string name(foreign.name.utf8());
  const auto found = m_byName.find(name);
  if (found != m_byName.end()) return *found->second;
  const OdUInt32 id = m_byId.empty() ? 1 : static_cast<OdUInt32>(m_byId.size());
  OdDbClassEntry& entry = add(id);
  entry = foreign;
  entry.id = id;
  entry.inFile = false;
  m_byName.emplace(name, &entry);
  return entry;
}

OdRxClass* OdDbClassTable::resolve(OdDbClassEntry& entry) {
  const OdUInt64 generation = odrxClassGeneration();
  if (entry.generation != generation) {
    entry.rxClass = odrxClassDictionary()->getAt(entry.name);
    entry.generation = generation;
  }
  return entry.rxClass;
}
