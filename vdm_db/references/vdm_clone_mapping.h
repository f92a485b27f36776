// From the blocks and paths of what was cloned to those of the clones.
#pragma once

#include <optional>
#include <unordered_map>

#include "platform/base/array.h"
#include "platform/cloning/id_mapping.h"
#include "platform/filer/object_id.h"
#include "vdm_db/common/vdm_db_export.h"
#include "vdm_db/common/vdm_object_id_hash.h"
#include "vdm_db/drawing_utils/vdm_db_id_mapping.h"

class OdDbBlockTableRecord;
class OdDbDatabase;

// A clone operation maps what it cloned. That is not all that clones refer to: a cloned reference
// may show a block that the destination has already, under the same name, and whose entities were
// therefore not cloned. Here such blocks are paired, and a path through cloned references becomes
// the path that leads to the same place below the clones.
namespace vdmu {

/// Blocks that hold clones, or are clones, each once in the order of the mapping.
[[nodiscard]] VDM_DB_EXPORT OdArray<OdDbObjectId> getClonedBTRs(OdDbIdMapping& mapping);

/// Two blocks hold the same: as many entities that are not erased, in their order of the same
/// classes and with the same extents (within OdGeTol::kDefault of their size), references with the
/// same placement. Blocks that are shown within are not compared.
[[nodiscard]] VDM_DB_EXPORT bool isEqualBTR(const OdDbBlockTableRecord* a,
                                            const OdDbBlockTableRecord* b);
/// The block of `destination` that has the name of the source's block: of the block itself, or of
/// the one that holds the source. Null without one, for anonymous blocks and layouts, when that is
/// the source's block itself, and when the source is a block with a clone of its own.
[[nodiscard]] VDM_DB_EXPORT OdDbObjectId findBTRMappingByName(OdDbDatabase* destination,
                                                              const OdDbIdPair& pair);
/// Pairs blocks with their counterparts at the clones, and nested blocks with those nested at the
/// same places. Blocks are paired when they are shown by a reference and its clone, when they have
/// one name, or when one was cloned from the other, and only when they are equal (isEqualBTR). The
/// first pair of a block stays. References at different places of equal blocks are reported as
/// assertions.
VDM_DB_EXPORT void buildBtrMapping(OdDbIdMapping& mapping, VdmDbIdMapping& blocks);

/// For a source block, what stands for each of its entities in the block that it is paired with.
using VdmBlockElements = std::unordered_map<OdDbObjectId, VdmDbIdMapping, OdDbObjectIdHash>;
/// The elements of all blocks that `blocks` pairs, entity by entity in their order. One walk over
/// these blocks; made once for all paths of an operation.
[[nodiscard]] VDM_DB_EXPORT VdmBlockElements mapBlockElements(const VdmDbIdMapping& blocks);

/// The path that leads from the clone of `source`'s first element to what `source` leads to:
///
/// 1. The first element becomes its clone.
/// 2. Each further one becomes what stands for it in the block that the reference before it shows
///    now: the same element when that is the same block, its counterpart by `elements`, its clone,
///    or in an external drawing the entity of the same handle.
/// 3. An element without any of these is kept as it is with `keepUnmapped`; otherwise the path
///    cannot be mapped.
/// 4. A path in which nothing became a clone cannot be mapped, except in the context
///    OdDb::kDcInsertCopy.
///
/// False, with `target` unchanged, for a path that cannot be mapped and for an empty one.
VDM_DB_EXPORT bool mapObjectPath(OdDbIdMapping& mapping, const VdmDbIdMapping& blocks,
                                 const OdArray<OdDbObjectId>& source, OdArray<OdDbObjectId>& target,
                                 const VdmBlockElements& elements, bool keepUnmapped);

/// Maps many paths of one clone operation: what all of them need is made when the first is asked
/// for. The mapping outlives it.
class VDM_DB_EXPORT VdmClonedPaths {
 public:
  explicit VdmClonedPaths(OdDbIdMapping& mapping) : m_mapping(mapping) {}

  /// mapObjectPath() without keeping what is unmapped.
  bool map(const OdArray<OdDbObjectId>& source, OdArray<OdDbObjectId>& target);

 private:
  OdDbIdMapping& m_mapping;
  std::optional<VdmDbIdMapping> m_blocks;
  VdmBlockElements m_elements;
};

}  // namespace vdmu
