// OdDbNamedIds: entries, their filing, and walks over them.
#include "platform/db/named_ids.h"

#include <string>
#include <utility>

#include "platform/base/error.h"
#include "platform/db/list_filing.h"

namespace {

// Below this a scan by id is as fast as a table.
constexpr std::size_t kScanLimit = 32;

}  // namespace

// ---- Queries

const OdDbNamedId* OdDbNamedIds::findId(const OdDbObjectId& id) const {
  if (m_entries.size() > kScanLimit) {
    if (!m_byId) buildById();
    const auto found = m_byId->find(id);
    return found == m_byId->end() ? nullptr : find(found->second);
  }
  for (Cursor at = m_entries.first(); !m_entries.isEnd(at); m_entries.advance(at)) {
    if (m_entries.item(at).id == id) return &m_entries.item(at);
  }
  return nullptr;
}

void OdDbNamedIds::buildById() const {
  m_byId = std::make_unique<std::unordered_map<OdDbObjectId, OdString>>();
  m_byId->reserve(m_entries.size());
  m_entries.forEach(
      [this](const OdDbNamedId& entry) { m_byId->try_emplace(entry.id, entry.name); });
}

OdUInt32 OdDbNamedIds::numLive() const {
  OdUInt32 count = 0;
  m_entries.forEach([&count](const OdDbNamedId& entry) { count += entry.id.isErased() ? 0u : 1u; });
  return count;
}

bool OdDbNamedIds::hasLive() const {
  return m_entries.anyOf([](const OdDbNamedId& entry) { return !entry.id.isErased(); });
}

// ---- Edits

void OdDbNamedIds::put(const OdString& name, const OdDbObjectId& id) {
  OdDbNamedId* present = m_entries.find(name);
  if (m_byId) {
    if (present != nullptr) m_byId->erase(present->id);
    if (!id.isNull()) m_byId->insert_or_assign(id, name);
  }
  if (id.isNull()) {
    if (present != nullptr) m_entries.erase(name);
  } else if (present != nullptr) {
    *present = {name, id};
  } else {
    m_entries.insert({name, id});
  }
}

void OdDbNamedIds::clear() {
  m_entries.clear();
  m_byId.reset();
}

// ---- Filing

void OdDbNamedIds::dwgOut(OdDbDwgFiler* filer, OdDb::ReferenceType type) const {
  OdInt32 count = 0;
  m_entries.forEach(
      [&](const OdDbNamedId& entry) { count += oddbIsFiled(filer, entry.id) ? 1 : 0; });
  filer->wrInt32(count);
  m_entries.forEach([filer, type](const OdDbNamedId& entry) {
    if (!oddbIsFiled(filer, entry.id)) return;
    filer->wrString(entry.name);
    filer->wrId(type, entry.id);
  });
}

OdResult OdDbNamedIds::dwgIn(OdDbDwgFiler* filer, OdDb::ReferenceType type) {
  constexpr OdUInt32 kMinEntryBytes = 2;
  clear();
  for (OdUInt32 count = filer->rdCount(kMinEntryBytes); count > 0; --count) {
    OdString name = filer->rdString();
    const OdDbObjectId id = filer->rdId(type);
    if (name.isEmpty()) return eCorruptData;
    if (id.isNull()) continue;
    if (!m_entries.insert({std::move(name), id})) return eCorruptData;
  }
  return eOk;
}

void OdDbNamedIds::outStep(OdDbDwgFiler* filer, const OdString& name) const {
  const OdDbNamedId* present = find(name);
  filer->wrString(present == nullptr ? name : present->name);
  filer->wrSoftPointerId(present == nullptr ? OdDbObjectId::kNull : present->id);
}

OdDbNamedId OdDbNamedIds::inStep(OdDbDwgFiler* filer) {
  OdDbNamedId entry;
  entry.name = filer->rdString();
  entry.id = filer->rdSoftPointerId();
  return entry;
}

// ---- Walking

void OdDbNamedIdsWalker::take(OdDbNamedIds::Cursor at, bool forward) {
  const OdDbNamedIds::Entries& entries = m_ids->entries();
  bool inside = !entries.isEnd(at);
  while (inside && isSkipped(entries.item(at))) {
    if (forward) {
      entries.advance(at);
      inside = !entries.isEnd(at);
    } else {
      inside = entries.retreat(at);
    }
  }
  m_done = !inside;
  m_at = at;
  m_current = inside ? entries.item(at) : OdDbNamedId();
  m_generation = entries.generation();
}

void OdDbNamedIdsWalker::start(bool atBeginning) {
  const OdDbNamedIds::Entries& entries = m_ids->entries();
  take(atBeginning || entries.isEmpty() ? entries.first() : entries.last(), atBeginning);
}

void OdDbNamedIdsWalker::step(bool forward) {
  if (m_done) return;
  const OdDbNamedIds::Entries& entries = m_ids->entries();
  OdDbNamedIds::Cursor at = m_at;
  bool onCurrent = true;
  if (m_generation != entries.generation()) {
    at = entries.lowerBound(m_current.name);
    onCurrent = !entries.isEnd(at) && entries.item(at).name.iEquals(m_current.name);
  }
  if (forward) {
    if (onCurrent) entries.advance(at);
    take(at, true);
  } else if (entries.retreat(at)) {
    take(at, false);
  } else {
    m_done = true;
    m_current = OdDbNamedId();
  }
}

bool OdDbNamedIdsWalker::seek(const OdDbObjectId& id) {
  const OdDbNamedId* entry = m_ids->findId(id);
  if (entry == nullptr) return false;
  const OdDbNamedIds::Cursor at = m_ids->entries().lowerBound(entry->name);
  m_done = false;
  m_at = at;
  m_current = *entry;
  m_generation = m_ids->entries().generation();
  return true;
}
