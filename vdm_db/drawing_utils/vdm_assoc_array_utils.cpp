// Associative arrays: blocks that an array action fills with items.
#include "vdm_db/drawing_utils/vdm_assoc_array_utils.h"

#include <algorithm>

#include "platform/db/block_table_record.h"
#include "platform/db/proxy_object.h"
#include "platform/rx/rx_class.h"
#include "vdm_db/drawing_utils/vdm_iterator_utils.h"

namespace {

constexpr const wchar_t* kArrayActionClass = L"OdDbAssocArrayActionBody";

OdDbBlockTableRecordPtr blockOf(const OdDbObject* object) {
  if (const OdDbBlockReferencePtr insert = OdDbBlockReference::cast(object); !insert.isNull()) {
    return insert->blockTableRecord().openAs<OdDbBlockTableRecord>();
  }
  return OdDbBlockTableRecord::cast(object);
}

bool isArrayAction(const OdDbObjectId& id) {
  const OdRxClass* cls = id.objectClass();
  if (cls == nullptr || id.isErased()) return false;
  if (cls->isDerivedFrom(OdDbProxyObject::desc())) {
    const OdSmartPtr<OdDbProxyObject> proxy = id.openAs<OdDbProxyObject>();
    return !proxy.isNull() && proxy->originalClassName() == kArrayActionClass;
  }
  for (; cls != nullptr; cls = cls->myParent()) {
    if (cls->name() == kArrayActionClass) return true;
  }
  return false;
}

// An item shows a block of its own drawing.
bool isItem(const OdDbBlockReferencePtr& entity) {
  if (entity.isNull()) return false;
  const OdDbBlockTableRecordPtr block = entity->blockTableRecord().openAs<OdDbBlockTableRecord>();
  return !block.isNull() && !block->isLayout() && !block->isFromExternalReference();
}

bool isArrayBlock(const OdDbBlockTableRecordPtr& block) {
  if (block.isNull()) return false;
  const OdDbObjectIdArray reactors = block->getPersistentReactors();
  if (std::none_of(reactors.begin(), reactors.end(), isArrayAction)) return false;
  for (OdDbObjectIteratorPtr it = block->newIterator(); !it->done(); it->step()) {
    if (!isItem(vdmu::getPtrFromIterator<OdDbBlockReference>(it))) return false;
  }
  return true;
}

OdDbBlockReferencePtr firstReferenceIn(const OdDbBlockTableRecordPtr& block) {
  if (block.isNull()) return {};
  for (OdDbObjectIteratorPtr it = block->newIterator(); !it->done(); it->step()) {
    OdDbBlockReferencePtr found = vdmu::getPtrFromIterator<OdDbBlockReference>(it);
    if (!found.isNull()) return found;
  }
  return {};
}

}  // namespace

namespace vdmu {

OdDbObjectId getAssocArrayBlock(const OdDbObject* object) {
  const OdDbBlockTableRecordPtr block = blockOf(object);
  return isArrayBlock(block) ? block->objectId() : OdDbObjectId::kNull;
}

bool isAssociativeArray(const OdDbObject* object) { return isArrayBlock(blockOf(object)); }

bool isAssocArrayElement(const OdDbObject* object) {
  const OdDbBlockTableRecordPtr block = OdDbBlockTableRecord::cast(object);
  if (block.isNull()) return false;
  const OdDbObjectIdArray references = block->getBlockReferenceIds();
  return !references.isEmpty() && isAssociativeArray(references[0].ownerId().openObject());
}

OdSmartPtr<OdDbBlockReference> getAssocArraySourceBlockRef(const OdDbObject* object) {
  const OdDbBlockTableRecordPtr array = blockOf(object);
  if (!isArrayBlock(array)) return {};
  const OdDbBlockReferencePtr item = firstReferenceIn(array);
  return item.isNull() ? OdDbBlockReferencePtr() : firstReferenceIn(blockOf(item));
}

}  // namespace vdmu
