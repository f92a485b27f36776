// OdDbBlockTableRecord: its place among other blocks: references to it, layouts, external drawings.
#include <algorithm>
#include <string>
#include <unordered_set>
#include <vector>

#include "platform/base/error.h"
#include "platform/db/block_table.h"
#include "platform/db/block_table_record.h"
#include "platform/db/database_impl.h"

namespace {

bool startsWith(const OdString& name, const OdString& prefix) {
  return name.left(prefix.getLength()).iEquals(prefix);
}

bool isModelSpaceName(const OdString& name) {
  return name.iEquals(OdDbBlockTable::kModelSpaceName);
}

bool isLayoutName(const OdString& name) {
  return isModelSpaceName(name) || startsWith(name, OdDbBlockTable::kPaperSpaceName);
}

bool showsBlock(const OdDbObjectId& reference, const OdDbObjectId& block) {
  const OdDbEntityPtr entity = reference.openAs<OdDbEntity>();
  return !entity.isNull() && entity->insertedBlock() == block;
}

}  // namespace

// ---- What the name says

bool OdDbBlockTableRecord::isModelSpace() const { return isModelSpaceName(getName()); }

bool OdDbBlockTableRecord::isLayout() const { return isLayoutName(getName()); }

bool OdDbBlockTableRecord::isAnonymous() const {
  const OdString name = getName();
  return name.find(L'*') == 0 && !isLayoutName(name);
}

// ---- References to this block

void OdDbBlockTableRecord::collectReferences(OdDbObjectIdArray& ids, bool forceValidity) const {
  m_references.forEach([&](const OdDbObjectId& id) {
    if (id.isErased() || (forceValidity && !showsBlock(id, objectId()))) return;
    ids.append(id);
  });
}

OdResult OdDbBlockTableRecord::getBlockReferenceIds(OdDbObjectIdArray& ids, bool directOnly,
                                                    bool forceValidity) const {
  ids.append(getBlockReferenceIds(directOnly, forceValidity));
  return eOk;
}

OdDbObjectIdArray OdDbBlockTableRecord::getBlockReferenceIds(bool directOnly,
                                                             bool forceValidity) const {
  assertReadEnabled();
  OdDbObjectIdArray ids;
  collectReferences(ids, forceValidity);
  if (directOnly) return ids;

  // Outwards from block to block: each block that holds a reference is looked at once.
  std::unordered_set<OdDbObjectId> visited{objectId()};
  for (OdUInt32 next = 0; next < ids.size(); ++next) {
    const OdDbObjectId owner = std::as_const(ids)[next].ownerId();
    if (!visited.insert(owner).second) continue;
    const OdDbBlockTableRecordPtr block = owner.openAs<OdDbBlockTableRecord>();
    if (!block.isNull() && !block->isLayout()) block->collectReferences(ids, forceValidity);
  }
  std::sort(ids.begin(), ids.end(), [](const OdDbObjectId& a, const OdDbObjectId& b) {
    return ByHandle::compare(a, b) < 0;
  });
  return ids;
}

bool OdDbBlockTableRecord::hasBlockReferences() const {
  assertReadEnabled();
  return m_references.anyOf([](const OdDbObjectId& id) { return !id.isErased(); });
}

bool OdDbBlockTableRecord::wouldContainItselfWith(const OdDbObjectId& block) const {
  assertReadEnabled();
  // Outwards from this block to all that contain it.
  std::vector<OdDbObjectId> containers{objectId()};
  std::unordered_set<OdDbObjectId> visited{objectId()};
  while (!containers.empty()) {
    const OdDbObjectId container = containers.back();
    containers.pop_back();
    if (container == block) return true;
    const OdDbBlockTableRecordPtr record = container.openAs<OdDbBlockTableRecord>();
    if (record.isNull()) continue;
    record->m_references.forEach([&](const OdDbObjectId& reference) {
      const OdDbObjectId owner = reference.ownerId();
      if (!reference.isErased() && visited.insert(owner).second) containers.push_back(owner);
    });
  }
  return false;
}

// ---- External drawing

bool OdDbBlockTableRecord::isFromExternalReference() const {
  assertReadEnabled();
  return !m_path.isEmpty();
}

bool OdDbBlockTableRecord::isFromOverlayReference() const {
  assertReadEnabled();
  return !m_path.isEmpty() && m_overlay;
}

OdString OdDbBlockTableRecord::pathName() const { return read(m_path); }

void OdDbBlockTableRecord::setPathName(const OdString& path) {
  if (path == m_path) return;
  assertWriteEnabled();
  const bool wasExternal = !m_path.isEmpty();
  m_path = path;
  if (path.isEmpty()) {
    m_xrefStatus = OdDb::kXrfNotAnXref;
    m_overlay = false;
  } else if (!wasExternal) {
    m_xrefStatus = OdDb::kXrfUnresolved;
  }
}

void OdDbBlockTableRecord::setIsFromOverlayReference(bool overlay) { assign(m_overlay, overlay); }

// Whether a drawing is loaded is known by the drawing itself, whatever a record from a file says.
OdDb::XrefStatus OdDbBlockTableRecord::xrefStatus() const {
  assertReadEnabled();
  if (m_path.isEmpty()) return OdDb::kXrfNotAnXref;
  if (xrefDatabase() != nullptr) return OdDb::kXrfResolved;
  if (m_xrefStatus == OdDb::kXrfUnreferenced && !hasBlockReferences()) return m_xrefStatus;
  const bool isStored =
      m_xrefStatus == OdDb::kXrfUnloaded || m_xrefStatus == OdDb::kXrfFileNotFound;
  return isStored ? m_xrefStatus : OdDb::kXrfUnresolved;
}

void OdDbBlockTableRecord::setXrefStatus(OdDb::XrefStatus status) {
  if (status < OdDb::kXrfNotAnXref || status > OdDb::kXrfUnresolved) {
    throw OdError(eInvalidInput,
                  OdString("status " + std::to_string(status) + " of an external reference"));
  }
  if (status == m_xrefStatus) return;
  // What the user unloaded stays so; the rest is found out again, and looking changes no drawing.
  const bool isUserChoice = status == OdDb::kXrfUnloaded || m_xrefStatus == OdDb::kXrfUnloaded;
  if (isUserChoice) assertWriteEnabled(/*autoUndo=*/false, /*recordModified=*/false);
  m_xrefStatus = status;
}

OdDbDatabase* OdDbBlockTableRecord::xrefDatabase(bool) const {
  assertReadEnabled();
  if (m_path.isEmpty() || m_xrefDatabase != nullptr || database() == nullptr) {
    return m_xrefDatabase;
  }
  // The record may have left memory and come back since the drawing was loaded.
  return database()->impl().xrefs.find(objectId()).get();
}
