// Objects of unknown classes.
#include "platform/db/proxy_object.h"

#include <algorithm>

#include "platform/base/error.h"
#include "platform/db/database.h"
#include "platform/db/database_impl.h"

OD_RX_DEFINE_DB(OdDbProxyObject, OdDbObject, L"OdDbProxyObject", 0, 0, 0, L"PROXY_OBJECT",
                OdString())

const OdDbClassEntry* OdDbProxyObject::classEntry() const {
  return database() == nullptr ? nullptr : database()->impl().classes.find(m_classId);
}

OdString OdDbProxyObject::originalClassName() const {
  const OdDbClassEntry* entry = classEntry();
  return entry == nullptr ? OdString() : entry->name;
}

OdString OdDbProxyObject::originalDxfName() const {
  const OdDbClassEntry* entry = classEntry();
  return entry == nullptr ? OdString() : entry->dxfName;
}

OdString OdDbProxyObject::applicationDescription() const {
  const OdDbClassEntry* entry = classEntry();
  return entry == nullptr ? OdString() : entry->appName;
}

OdInt32 OdDbProxyObject::proxyFlags() const {
  const OdDbClassEntry* entry = classEntry();
  return entry == nullptr ? 0 : entry->proxyFlags;
}

std::vector<OdDbFiledId> OdDbProxyObject::references() const {
  assertReadEnabled();
  return {m_references.begin() + m_baseReferences, m_references.end()};
}

void OdDbProxyObject::readRecord(OdUInt32 classId, OdDbFileReader& reader) {
  m_classId = classId;
  const OdResult result = OdDbObject::dwgInFields(&reader);
  if (result != eOk) throw OdError(result);
  m_references.clear();
  for (std::size_t i = 0; i < reader.references().size(); ++i) {
    m_references.push_back({reader.resolve(i), reader.references()[i].type});
  }
  m_baseReferences = reader.greatestReferenceRead();
  m_fields.assign(reader.fieldBytes(), reader.fieldBytes() + reader.fieldSize());
}

// The unknown fields name their references by number, so those keep their places; the places of the
// old base fields stay as null references when the base fields have become others.
void OdDbProxyObject::writeRecord(std::vector<OdUInt8>& record) const {
  OdDbFileWriter writer(database());
  OdDbObject::dwgOutFields(&writer);
  const auto sameAsRead = [this, &writer] {
    if (writer.references().size() != m_baseReferences) return false;
    for (OdUInt32 i = 0; i < m_baseReferences; ++i) {
      if (writer.references()[i].type != m_references[i].type ||
          writer.references()[i].handle != static_cast<OdUInt64>(m_references[i].id.getHandle())) {
        return false;
      }
    }
    return true;
  };
  const bool same = sameAsRead();
  if (!same) writer.clear();
  std::vector<OdDbFileReference> references;
  for (std::size_t i = 0; i < m_references.size(); ++i) {
    const bool dropped = !same && i < m_baseReferences;
    references.push_back({dropped ? OdDb::kSoftPointerRef : m_references[i].type,
                          dropped ? 0 : static_cast<OdUInt64>(m_references[i].id.getHandle())});
  }
  writer.presetReferences(std::move(references));
  if (!same) OdDbObject::dwgOutFields(&writer);
  writer.wrBytes(m_fields.data(), static_cast<OdUInt32>(m_fields.size()));
  writer.assemble(record);
}

// Fields in memory filers, after the base: class number (int32), count of base references (int32),
// count of references (int32), each its type (int8) and id, size of the rest (int32), the rest.
// The rest names references by number, so the base references are kept as they were read.
void OdDbProxyObject::dwgOutFields(OdDbDwgFiler* filer) const {
  OdDbObject::dwgOutFields(filer);
  filer->wrInt32(static_cast<OdInt32>(m_classId));
  filer->wrInt32(static_cast<OdInt32>(m_baseReferences));
  filer->wrInt32(static_cast<OdInt32>(m_references.size()));
  for (std::size_t i = 0; i < m_references.size(); ++i) {
    // Base references were filed by the base above; here they only hold their places.
    const OdDbObjectId id = i < m_baseReferences ? OdDbObjectId::kNull : m_references[i].id;
    filer->wrInt8(static_cast<OdInt8>(m_references[i].type));
    filer->wrId(m_references[i].type, id);
  }
  filer->wrInt32(static_cast<OdInt32>(m_fields.size()));
  filer->wrBytes(m_fields.data(), static_cast<OdUInt32>(m_fields.size()));
}

OdResult OdDbProxyObject::dwgInFields(OdDbDwgFiler* filer) {
  const OdResult result = OdDbObject::dwgInFields(filer);
  if (result != eOk) return result;
  m_classId = static_cast<OdUInt32>(filer->rdInt32());
  m_baseReferences = static_cast<OdUInt32>(filer->rdInt32());
  std::vector<OdDbFiledId> kept;
  kept.swap(m_references);
  const OdUInt32 count = filer->rdCount(2);
  if (m_baseReferences > count) return eCorruptData;
  m_references.reserve(count);
  for (OdUInt32 i = 0; i < count; ++i) {
    const auto type = static_cast<OdDb::ReferenceType>(filer->rdInt8() & 3);
    OdDbObjectId id = filer->rdId(type);
    if (i < m_baseReferences && i < kept.size()) id = kept[i].id;
    m_references.push_back({id, type});
  }
  const OdUInt32 size = filer->rdCount();
  m_fields.resize(size);
  filer->rdBytes(m_fields.data(), size);
  return eOk;
}

std::size_t OdDbProxyObject::approximateSize() const {
  return sizeof *this + m_fields.capacity() + m_references.capacity() * sizeof(OdDbFiledId);
}
