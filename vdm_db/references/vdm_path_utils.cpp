// Testing and resolving of subentity paths.
//
// A path is walked from its outermost block reference inwards. The invariant of each step: the id
// at hand is a block reference, and the next object lies in the block that it shows, which for an
// external reference is the model space of the external drawing. Testing compares the owner of the
// next id with that block and loads nothing but the references; resolving looks the next handle up
// in the drawing that the block shows and may load that drawing. Both stop at the first step that
// fails and cost one open for each step.
#include "vdm_db/references/vdm_path_utils.h"

#include <optional>

#include "platform/db/block_reference.h"
#include "platform/db/block_table_record.h"
#include "platform/db/database.h"
#include "platform/db/entity.h"
#include "platform/db/xref_man.h"
#include "vdm_db/drawing_utils/vdm_open_upgrade.h"
#include "vdm_db/drawing_utils/vdm_xref_utils.h"
#include "vdm_utils/vdmc_assert.h"

namespace {

constexpr const char* kSource = "vdm_db/vdm_path_utils";

// Status of the block, after an attempt to load the external drawing that it represents.
OdDb::XrefStatus resolvedStatus(OdDbBlockTableRecord* block) {
  if (block->xrefStatus() != OdDb::kXrfUnresolved) return block->xrefStatus();
  // What is loaded is no part of the drawing, so that it may change in a read-only drawing, too.
  std::optional<VdmOpenUpgrade> upgrade;
  if (!block->database()->isReadOnly()) upgrade.emplace(block);
  OdDbXRefMan::resolve(block);  // the status is the result
  return block->xrefStatus();
}

// The drawing that holds what the block shows.
vdmu::EVdmPathRes databaseShown(OdDbBlockTableRecord* block, OdDbDatabase*& database) {
  const OdDb::XrefStatus status = resolvedStatus(block);
  switch (status) {
    case OdDb::kXrfNotAnXref:
      database = block->database();
      break;
    case OdDb::kXrfResolved:
      database = block->xrefDatabase(false);
      break;
    case OdDb::kXrfUnreferenced:
      return vdmu::ePathXrefUnreferenced;
    default:
      vdmcCallAssert("status == kXrfResolved", block->getName(), kSource, __LINE__);
      return vdmu::ePathInvalid;
  }
  return VDM_ASSERT_MSG(database != nullptr, block->getName(), kSource, __LINE__)
             ? vdmu::ePathOk
             : vdmu::ePathInvalid;
}

// One step of makeIdArray: from the block reference `id` to the object of `handle` behind it.
vdmu::EVdmPathRes resolveStep(const OdDbObjectId& id, const OdDbHandle& handle, bool openErased,
                              OdDbObjectId& next) {
  if (id.isNull()) return vdmu::ePathInvalid;
  OdDbBlockReferencePtr reference = id.openAs<OdDbBlockReference>(OdDb::kForRead, openErased);
  if (!VDM_ASSERT_MSG(!reference.isNull(), id.getHandle().ascii(), kSource, __LINE__)) {
    return vdmu::ePathInvalid;
  }
  const OdDbObjectId blockId = reference->blockTableRecord();
  const OdDbBlockTableRecordPtr block =
      blockId.openAs<OdDbBlockTableRecord>(OdDb::kForRead, openErased);
  if (!VDM_ASSERT_MSG(!block.isNull(), blockId.getHandle().ascii(), kSource, __LINE__)) {
    return vdmu::ePathInvalid;
  }
  reference.release();
  OdDbDatabase* database = nullptr;
  const vdmu::EVdmPathRes shown = databaseShown(block, database);
  if (shown != vdmu::ePathOk) return shown;
  next = database->getOdDbObjectId(handle);
  return next.isNull() ? vdmu::ePathInvalid : vdmu::ePathOk;
}

// The block in which what the reference shows has to stand; null when it is no block reference.
OdDbObjectId blockShown(const OdDbObjectId& id, bool openErased) {
  const OdDbBlockReferencePtr reference = id.openAs<OdDbBlockReference>(OdDb::kForRead, openErased);
  return reference.isNull() ? OdDbObjectId::kNull
                            : vdmu::getXrefBlock(reference->blockTableRecord());
}

OdDbEntityPtr openLeaf(const OdDbObjectIdArray& ids, bool openErased) {
  return ids.last().openAs<OdDbEntity>(OdDb::kForRead, openErased);
}

}  // namespace

namespace vdmu {

OdDbObjectId getInsertId(const OdDbFullSubentPath& path) {
  return path.objectIds().isEmpty() ? OdDbObjectId::kNull : path.objectIds().first();
}

OdDbObjectId getLeafId(const OdDbFullSubentPath& path) {
  return path.objectIds().isEmpty() ? OdDbObjectId::kNull : path.objectIds().last();
}

bool isSimplePath(const OdDbFullSubentPath& path) { return path.objectIds().size() == 1; }

bool isLongPath(const OdDbFullSubentPath& path) { return path.objectIds().size() > 1; }

bool isSubentPath(const OdDbFullSubentPath& path) { return isSubentId(path.subentId()); }

bool isSubentId(const OdDbSubentId& subent) { return subent.type() != OdDb::kNullSubentType; }

bool isNullObjectLink(const OdDbFullSubentPath& path) { return getInsertId(path).isNull(); }

bool isValidObjectIdPath(const OdArray<OdDbObjectId>& ids, bool allowErased) {
  if (ids.isEmpty()) return false;
  for (OdUInt32 i = 0; i + 1 < ids.size(); ++i) {
    const OdDbObjectId block = blockShown(ids[i], allowErased);
    if (block.isNull() || ids[i + 1].ownerId() != block) return false;
  }
  return !openLeaf(ids, allowErased).isNull();
}

bool doesPathExist(const OdDbFullSubentPath& path, bool allowErased) {
  if (!isValidObjectIdPath(path.objectIds(), allowErased)) return false;
  const OdDbEntityPtr leaf = openLeaf(path.objectIds(), allowErased);
  return !isSubentPath(path) || !leaf->subentPtr(path).isNull();
}

EVdmPathRes makeIdArray(const OdArray<OdDbHandle>& handles, OdArray<OdDbObjectId>& ids,
                        bool openErased) {
  if (ids.isEmpty()) return ePathInvalid;
  OdDbObjectId id = std::as_const(ids).last();
  for (const OdDbHandle& handle : handles) {
    const EVdmPathRes result = resolveStep(id, handle, openErased, id);
    if (result != ePathOk) return result;
    ids.append(id);
  }
  return ePathOk;
}

}  // namespace vdmu
