// Associative arrays: blocks that an array action fills with items.
#pragma once

#include "platform/entities/block_reference.h"
#include "platform/filer/object_id.h"
#include "vdm_db/common/vdm_db_export.h"

class OdDbObject;

/// An associative array is a block. It holds one block reference per item; each shows the element
/// block of the array (items that were replaced by hand show others), and an element block holds
/// the reference of the source. The action that fills the block is among the block's persistent
/// reactors; it is known by its class "OdDbAssocArrayActionBody", whether that is registered, a
/// parent of the action's, or only the name that the drawing has of it.
namespace vdmu {

/// The block, or the block that the reference shows, is an associative array: it has the action as
/// a reactor, and all its entities are references to blocks of the same drawing.
[[nodiscard]] VDM_DB_EXPORT bool isAssociativeArray(const OdDbObject* object);
/// A block whose first reference stands in an associative array.
[[nodiscard]] VDM_DB_EXPORT bool isAssocArrayElement(const OdDbObject* object);
/// The reference of the source, open for read: the first one in the element block of the first
/// item. Null for anything else than an associative array, and for one without items.
[[nodiscard]] VDM_DB_EXPORT OdSmartPtr<OdDbBlockReference> getAssocArraySourceBlockRef(
    const OdDbObject* object);
/// The block of an associative array, given as the block or a reference to it; null otherwise.
[[nodiscard]] VDM_DB_EXPORT OdDbObjectId getAssocArrayBlock(const OdDbObject* object);

}  // namespace vdmu
