// Attaching, loading, unloading, detaching and binding of external drawings.
//
// A drawing must not lead back to one that shows it. The search for such a cycle keeps the chain of
// files from the outermost host to the present drawing and walks the external references below it
// in depth. A file of the chain that is met again closes a cycle, and the chain is then its text.
// Files that were searched without a result are remembered: each is opened once, so the search
// ends, and costs one opening for each drawing that can be reached. Paths are compared in their
// canonical form, as one file has many spellings.
#include "platform/cloning/xref_man.h"

#include <filesystem>
#include <set>
#include <string>
#include <vector>

#include "platform/base/error.h"
#include "platform/cloning/cloner.h"
#include "platform/cloning/id_mapping.h"
#include "platform/db/block_table.h"
#include "platform/db/block_table_record.h"
#include "platform/db/database.h"
#include "platform/db/database_impl.h"
#include "platform/db/host_app_services.h"
#include "platform/db/locked_layers.h"
#include "platform/db/open_upgrade.h"

namespace {

// One spelling per file, links and dots resolved.
std::string canonicalPath(const OdString& path) {
  std::error_code failure;
  const std::filesystem::path plain(std::string(path.utf8()));
  const std::filesystem::path canonical = std::filesystem::weakly_canonical(plain, failure);
  return failure ? plain.string() : canonical.string();
}

OdResult tell(const OdDbDatabase* host, OdResult result, const OdString& text, OdString* reason) {
  if (reason != nullptr) *reason = text;
  host->appServices()->message(text);
  return result;
}

OdString described(const OdDbBlockTableRecord* block) {
  return L"external reference " + block->getName() + L" (" + block->pathName() + L")";
}

OdDbDatabasePtr openReadOnly(OdDbHostAppServices* services, const OdString& path,
                             OdStatus& status) {
  OdDbReadOptions options;
  options.mode = OdDbStoreOpenMode::kReadOnly;
  options.withUndo = false;
  return services->readFile(path, status, options);
}

std::vector<OdDbObjectId> xrefBlocksOf(const OdDbDatabase* database) {
  std::vector<OdDbObjectId> blocks;
  const OdDbBlockTablePtr table = database->getBlockTableId().openAs<OdDbBlockTable>();
  if (table.isNull()) return blocks;
  for (const OdDbSymbolTableIteratorPtr it = table->newIterator(); !it->done(); it->step()) {
    const OdDbBlockTableRecordPtr block = OdDbBlockTableRecord::cast(it->getRecord());
    if (!block.isNull() && block->isFromExternalReference()) blocks.push_back(block->objectId());
  }
  return blocks;
}

/// Looks for a way from a drawing back to one of the files of a chain, through the drawings that it
/// refers to. Overlays end a way: they are not seen through another drawing.
class CycleSearch {
 public:
  explicit CycleSearch(OdDbHostAppServices* services) : m_services(services) {}

  /// The host, the drawing that it is attached to, and so on.
  void addHosts(const OdDbDatabase* host) {
    while (host != nullptr && !host->getFilename().isEmpty()) {
      m_chain.insert(m_chain.begin(), canonicalPath(host->getFilename()));
      host = host->xrefBlockId().originalDatabase();
    }
  }
  [[nodiscard]] bool closes(const OdString& path) {
    const std::string file = canonicalPath(path);
    for (const std::string& passed : m_chain) {
      if (passed != file) continue;
      m_chain.push_back(file);
      return true;
    }
    return false;
  }
  [[nodiscard]] bool closesBehind(const OdString& path, const OdDbDatabase* drawing) {
    m_chain.push_back(canonicalPath(path));
    for (const OdDbObjectId id : xrefBlocksOf(drawing)) {
      const OdDbBlockTableRecordPtr block = id.openAs<OdDbBlockTableRecord>();
      if (block->isFromOverlayReference()) continue;
      const OdString nested = m_services->findFile(block->pathName(), drawing);
      if (nested.isEmpty()) continue;
      if (closes(nested)) return true;
      if (!m_searched.emplace(canonicalPath(nested)).second) continue;
      OdStatus status;
      const OdDbDatabasePtr opened = openReadOnly(m_services, nested, status);
      if (!opened.isNull() && closesBehind(nested, opened)) return true;
    }
    m_chain.pop_back();
    return false;
  }
  [[nodiscard]] OdString text() const {
    OdString text(L"external references form a cycle: ");
    for (std::size_t i = 0; i < m_chain.size(); ++i) {
      if (i > 0) text += L" -> ";
      text += OdString(m_chain[i].c_str());
    }
    return text;
  }

 private:
  OdDbHostAppServices* m_services;
  std::vector<std::string> m_chain;
  std::set<std::string> m_searched;
};

OdResult checkXref(const OdDbBlockTableRecord* block) {
  if (block == nullptr || block->database() == nullptr) return eNullPointer;
  return block->isFromExternalReference() ? eOk : eNotApplicable;
}

// Opens the drawing of a block and leaves its status as it turns out.
OdResult openDrawing(OdDbBlockTableRecord* block, OdString* reason) {
  OdDbDatabase* host = block->database();
  OdDbDatabaseImpl& impl = host->impl();
  if (const OdDbDatabasePtr open = impl.xrefs.find(block->objectId()); !open.isNull()) {
    block->setXrefDatabase(open);
    return eOk;
  }
  block->setXrefDatabase(nullptr);
  const OdString path = host->appServices()->findFile(block->pathName(), host);
  if (path.isEmpty()) {
    block->setXrefStatus(OdDb::kXrfFileNotFound);
    return tell(host, eFileNotFound, described(block) + L": file not found", reason);
  }
  block->setXrefStatus(OdDb::kXrfUnresolved);
  CycleSearch search(host->appServices());
  search.addHosts(host);
  if (search.closes(path)) return tell(host, eCircularReference, search.text(), reason);
  OdStatus status;
  const OdDbDatabasePtr drawing = openReadOnly(host->appServices(), path, status);
  if (drawing.isNull()) {
    return tell(host, status.code, described(block) + L": " + status.text, reason);
  }
  drawing->impl().xrefBlock = block->objectId();
  impl.xrefs.add(block->objectId(), drawing);
  block->setXrefDatabase(drawing);
  block->setXrefStatus(OdDb::kXrfResolved);
  return eOk;
}

void closeDrawing(OdDbBlockTableRecord* block, OdDb::XrefStatus status) {
  block->setXrefDatabase(nullptr);
  block->setXrefStatus(status);
  block->database()->impl().xrefs.remove(block->objectId());
}

OdResult refuseCycle(OdDbDatabase* host, const OdString& path, OdString* reason) {
  const OdString file = host->appServices()->findFile(path, host);
  if (file.isEmpty()) return eOk;
  CycleSearch search(host->appServices());
  search.addHosts(host);
  bool closes = search.closes(file);
  if (!closes) {
    OdStatus status;
    const OdDbDatabasePtr drawing = openReadOnly(host->appServices(), file, status);
    closes = !drawing.isNull() && search.closesBehind(file, drawing);
  }
  return closes ? tell(host, eCircularReference, search.text(), reason) : eOk;
}

template <class Operation>
OdResult forEachBlock(const OdDbObjectIdArray& ids, Operation&& operation) {
  OdResult first = eOk;
  for (const OdDbObjectId& id : ids) {
    const OdDbBlockTableRecordPtr block = id.openAs<OdDbBlockTableRecord>(OdDb::kForWrite);
    const OdResult result = block.isNull() ? eWrongObjectType : operation(block.get());
    if (first == eOk) first = result;
  }
  return first;
}

// Blocks of the bound drawing that are external references themselves are found from there.
void keepNestedPaths(OdDbDatabase* host, const OdDbDatabase* drawing, OdDbIdMapping& mapping) {
  OdDbIdPair pair;
  for (const OdDbIdMappingIterPtr it = mapping.newIterator(); !it->done(); it->next()) {
    if (!it->getMap(pair) || !pair.isCloned()) continue;
    const OdDbBlockTableRecordPtr clone = pair.value().openAs<OdDbBlockTableRecord>();
    if (clone.isNull() || !clone->isFromExternalReference()) continue;
    const OdString path = host->appServices()->findFile(clone->pathName(), drawing);
    if (path.isEmpty()) continue;
    const OdDbOpenUpgrade upgrade(clone);
    clone->setPathName(path);
  }
}

// All or nothing: the block becomes an ordinary one with the drawing's contents.
OdResult takeOver(OdDbBlockTableRecord* block, const OdDbDatabasePtr& drawing, bool insert) {
  const OdDbIdMappingPtr mapping =
      OdDbIdMapping::createObject(insert ? OdDb::kDcXrefInsert : OdDb::kDcXrefBind);
  mapping->setInsertingXrefBlockId(block->objectId());
  OdDbTransaction transaction(block->database());
  block->setPathName(OdString::kEmpty);
  block->setBlockInsertUnits(drawing->getINSUNITS());
  const OdDbBlockTableRecordPtr modelSpace =
      drawing->getModelSpaceId().safeOpenAs<OdDbBlockTableRecord>();
  const OdResult result = OdDbCloner::cloneContents(
      modelSpace, block, *mapping, insert ? OdDb::kDrcIgnore : OdDb::kDrcXrefMangleName);
  if (result != eOk) return result;
  keepNestedPaths(block->database(), drawing, *mapping);
  return transaction.commit();
}

}  // namespace

OdResult OdDbXRefMan::attach(OdDbDatabase* host, const OdString& path, const OdString& name,
                             OdDbObjectId& block, bool overlay, OdString* reason) {
  if (host == nullptr) return eNullPointer;
  if (path.isEmpty()) {
    return tell(host, eInvalidInput, L"external reference without a path", reason);
  }
  if (host->isReadOnly()) return eReadOnlyDatabase;
  const OdDbBlockTablePtr table =
      host->getBlockTableId().safeOpenAs<OdDbBlockTable>(OdDb::kForWrite);
  if (table->has(name)) {
    return tell(host, eDuplicateRecordName, L"block " + name + L" exists already", reason);
  }
  const OdResult cycle = refuseCycle(host, path, reason);
  if (cycle != eOk) return cycle;
  const OdDbBlockTableRecordPtr record = OdDbBlockTableRecord::createObject();
  record->setName(name);
  record->setPathName(path);
  record->setIsFromOverlayReference(overlay);
  block = table->add(record);
  const OdDbBlockTableRecordPtr opened = block.safeOpenAs<OdDbBlockTableRecord>(OdDb::kForWrite);
  return openDrawing(opened, reason);
}

OdResult OdDbXRefMan::load(OdDbBlockTableRecord* block, OdString* reason) {
  const OdResult checked = checkXref(block);
  return checked == eOk ? openDrawing(block, reason) : checked;
}

OdResult OdDbXRefMan::load(const OdDbObjectIdArray& blocks) {
  return forEachBlock(blocks, [](OdDbBlockTableRecord* block) { return load(block); });
}

OdResult OdDbXRefMan::resolve(OdDbBlockTableRecord* block, OdString* reason) {
  const OdResult checked = checkXref(block);
  if (checked != eOk) return checked;
  if (block->xrefStatus() == OdDb::kXrfResolved && block->xrefDatabase() != nullptr) return eOk;
  if (block->xrefStatus() == OdDb::kXrfUnloaded) {
    if (reason != nullptr) *reason = described(block) + L" is unloaded";
    return eXrefUnresolved;
  }
  if (!block->hasBlockReferences()) {
    block->setXrefStatus(OdDb::kXrfUnreferenced);
    if (reason != nullptr) *reason = described(block) + L" is shown by no reference";
    return eXrefUnresolved;
  }
  return openDrawing(block, reason);
}

OdResult OdDbXRefMan::resolveAll(OdDbDatabase* host) {
  if (host == nullptr) return eNullPointer;
  OdResult first = eOk;
  for (const OdDbObjectId id : xrefBlocksOf(host)) {
    const OdDbBlockTableRecordPtr block = id.safeOpenAs<OdDbBlockTableRecord>();
    const OdResult result = resolve(block);
    if (first == eOk && result != eXrefUnresolved) first = result;
  }
  return first;
}

OdResult OdDbXRefMan::unload(OdDbBlockTableRecord* block) {
  const OdResult checked = checkXref(block);
  if (checked == eOk) closeDrawing(block, OdDb::kXrfUnloaded);
  return checked;
}

OdResult OdDbXRefMan::unload(const OdDbObjectIdArray& blocks) {
  return forEachBlock(blocks, [](OdDbBlockTableRecord* block) { return unload(block); });
}

OdResult OdDbXRefMan::reload(OdDbBlockTableRecord* block, OdString* reason) {
  const OdResult unloaded = unload(block);
  return unloaded == eOk ? load(block, reason) : unloaded;
}

OdResult OdDbXRefMan::detach(OdDbBlockTableRecord* block) {
  const OdResult checked = checkXref(block);
  if (checked != eOk) return checked;
  const OdDbLockedLayerAccess access(block->database());
  OdDbTransaction transaction(block->database());
  for (const OdDbObjectId& reference : block->getBlockReferenceIds()) {
    const OdResult result = reference.safeOpenObject(OdDb::kForWrite)->erase();
    if (result != eOk) return result;
  }
  const OdResult result = block->erase();
  if (result != eOk) return result;
  closeDrawing(block, OdDb::kXrfUnresolved);
  return transaction.commit();
}

OdResult OdDbXRefMan::bind(OdDbBlockTableRecord* block, bool insert, OdString* reason) {
  OdResult result = load(block, reason);
  if (result != eOk) return result;
  OdDbDatabase* host = block->database();
  const OdString what = described(block);
  const OdDbDatabasePtr drawing = host->impl().xrefs.find(block->objectId());
  result = takeOver(block, drawing, insert);
  if (result == eOk) {
    closeDrawing(block, OdDb::kXrfNotAnXref);
    return eOk;
  }
  block->setXrefStatus(OdDb::kXrfResolved);
  return tell(host, result, L"binding " + what + L": " + odResultText(result), reason);
}
