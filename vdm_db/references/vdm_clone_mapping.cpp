// From the blocks and paths of what was cloned to those of the clones.
//
// Pairing blocks. A pair of equal blocks has as many entities in the same order, so its entities
// correspond by position, and so do the blocks that references at one position show. The walk keeps
// the pairs that wait in a list and begins with those that the mapping gives. A pair is taken once:
// the set of finished pairs ends it, since there are finitely many, also where blocks are damaged
// and contain each other. A block is paired with one other only, the first; it costs one walk over
// the entities of each pair, extents included.
//
// Mapping a path. The invariant: the path that was built so far is one of the target, and each of
// its references shows the block that the next element must lie in. A candidate for the next
// element is therefore taken only when it lies in that block. So what comes out leads somewhere, or
// nothing comes out, and no element is ever replaced by one that merely looks like it.
#include "vdm_db/references/vdm_clone_mapping.h"

#include <algorithm>
#include <set>
#include <unordered_set>
#include <utility>
#include <vector>

#include "platform/db/block_table.h"
#include "platform/db/database.h"
#include "platform/entities/block_reference.h"
#include "vdm_db/drawing_utils/vdm_block_utils.h"
#include "vdm_db/drawing_utils/vdm_object_id_class.h"
#include "vdm_db/drawing_utils/vdm_xref_utils.h"
#include "vdm_utils/vdmc_assert.h"

namespace {

constexpr const char* kSource = "vdm_db/vdm_clone_utils";

using BlockPair = std::pair<OdDbObjectId, OdDbObjectId>;

template <class Visit>
void forEachCloned(OdDbIdMapping& mapping, const Visit& visit) {
  OdDbIdPair pair;
  for (const OdDbIdMappingIterPtr it = mapping.newIterator(); !it->done(); it->next()) {
    if (it->getMap(pair) && pair.isCloned()) visit(pair);
  }
}

OdDbObjectId shownBlock(const OdDbObjectId& reference) {
  if (!vdmu::isIdOf<OdDbBlockReference>(reference)) return OdDbObjectId::kNull;
  const OdDbBlockReferencePtr opened = reference.openAs<OdDbBlockReference>();
  return opened.isNull() ? OdDbObjectId::kNull : opened->blockTableRecord();
}

OdGeExtents3d extentsOf(const OdDbObjectId& id) {
  OdGeExtents3d extents;
  const OdDbEntityPtr entity = id.openAs<OdDbEntity>();
  if (entity.isNull() || entity->getGeomExtents(extents) != eOk) return OdGeExtents3d();
  return extents;
}

// References are compared by their placement: what they show is a block of its own.
bool arePlacedAlike(const OdDbBlockReference* a, const OdDbBlockReference* b) {
  return a->blockTransform().isEqualTo(b->blockTransform());
}

bool haveSameExtents(const OdDbObjectId& a, const OdDbObjectId& b) {
  const OdGeExtents3d first = extentsOf(a);
  const OdGeExtents3d second = extentsOf(b);
  if (!first.isValidExtents() || !second.isValidExtents()) {
    return first.isValidExtents() == second.isValidExtents();
  }
  const double size = std::max(1.0, first.diagonal().length());
  return first.isEqualTo(second, OdGeTol(OdGeTol::kDefault.equalPoint() * size));
}

bool isEqualEntity(const OdDbObjectId& a, const OdDbObjectId& b) {
  if (a.objectClass() != b.objectClass()) return false;
  if (!vdmu::isIdOf<OdDbBlockReference>(a)) return haveSameExtents(a, b);
  const OdDbBlockReferencePtr first = a.openAs<OdDbBlockReference>();
  const OdDbBlockReferencePtr second = b.openAs<OdDbBlockReference>();
  return !first.isNull() && !second.isNull() && arePlacedAlike(first, second);
}

/// Pairs blocks, beginning with those that are offered.
class BlockPairing {
 public:
  explicit BlockPairing(VdmDbIdMapping& blocks) : m_blocks(blocks) {}

  void offer(const OdDbObjectId& source, const OdDbObjectId& clone) {
    m_waiting.push_back({source, clone});
    while (!m_waiting.empty()) {
      const BlockPair pair = m_waiting.back();
      m_waiting.pop_back();
      take(pair);
    }
  }

 private:
  void take(const BlockPair& pair) {
    if (pair.first.isNull() || pair.second.isNull() || pair.first == pair.second) return;
    const OdDbBlockTableRecordPtr source = pair.first.openAs<OdDbBlockTableRecord>();
    const OdDbBlockTableRecordPtr clone = pair.second.openAs<OdDbBlockTableRecord>();
    if (source.isNull() || clone.isNull() || !m_finished.insert(pair).second) return;
    if (!vdmu::isEqualBTR(source, clone) || !m_blocks.add(pair.first, pair.second)) return;
    pairNested(source, clone);
  }

  void pairNested(const OdDbBlockTableRecord* source, const OdDbBlockTableRecord* clone) {
    const std::size_t first = m_waiting.size();
    const OdDbObjectIteratorPtr it1 = source->newIterator();
    const OdDbObjectIteratorPtr it2 = clone->newIterator();
    for (; !it1->done() && !it2->done(); it1->step(), it2->step()) {
      const OdDbObjectId shown1 = shownBlock(it1->objectId());
      const OdDbObjectId shown2 = shownBlock(it2->objectId());
      vdmAssert(shown1.isNull() == shown2.isNull(), "!!pBR1.get() == !!pBR2.get()",
                OdString::kEmpty, kSource, __LINE__);
      m_waiting.push_back({shown1, shown2});
    }
    vdmAssert(it1->done() && it2->done(), "pIt1->done() && pIt2->done()", OdString::kEmpty, kSource,
              __LINE__);
    std::reverse(m_waiting.begin() + static_cast<std::ptrdiff_t>(first), m_waiting.end());
  }

  VdmDbIdMapping& m_blocks;
  std::set<BlockPair> m_finished;
  std::vector<BlockPair> m_waiting;
};

/// Builds the path at the clones, element by element.
class PathMapping {
 public:
  PathMapping(OdDbIdMapping& mapping, const VdmDbIdMapping& blocks,
              const vdmu::VdmBlockElements& elements)
      : m_mapping(mapping), m_blocks(blocks), m_elements(elements) {}

  bool append(const OdDbObjectId& element, bool keepUnmapped) {
    OdDbObjectId mapped = m_path.isEmpty() ? vdmu::findClone(m_mapping, element) : within(element);
    if (mapped.isNull()) {
      if (!keepUnmapped) return false;
      mapped = element;
    }
    m_hasClone = m_hasClone || mapped != element;
    m_path.append(mapped);
    return true;
  }

  [[nodiscard]] bool hasClone() const { return m_hasClone; }
  [[nodiscard]] const OdDbObjectIdArray& path() const { return m_path; }

 private:
  /// What stands for the element in the block that the last reference of the path shows.
  OdDbObjectId within(const OdDbObjectId& element) const {
    const OdDbObjectId block = vdmu::getXrefBlock(shownBlock(m_path.last()));
    const auto lies = [&block](const OdDbObjectId& id) {
      return !id.isNull() && id.ownerId() == block;
    };
    if (block.isNull()) return OdDbObjectId::kNull;
    if (lies(element)) return element;
    if (const OdDbObjectId counterpart = counterpartOf(element); lies(counterpart)) {
      return counterpart;
    }
    if (const OdDbObjectId clone = vdmu::findClone(m_mapping, element); lies(clone)) return clone;
    const OdDbObjectId other = sameInExternalDrawing(element, block);
    return lies(other) ? other : OdDbObjectId::kNull;
  }

  OdDbObjectId counterpartOf(const OdDbObjectId& element) const {
    const OdDbObjectId source = element.ownerId();
    const auto found = m_elements.find(source);
    if (found == m_elements.end() || m_blocks.find(source).isNull()) return OdDbObjectId::kNull;
    return found->second.find(element);
  }

  // Two loads of one external drawing have the same handles; other drawings need not.
  static OdDbObjectId sameInExternalDrawing(const OdDbObjectId& element,
                                            const OdDbObjectId& block) {
    const OdDbDatabase* from = element.originalDatabase();
    const OdDbDatabase* to = block.originalDatabase();
    const bool isOneFile = from != nullptr && !from->xrefBlockId().isNull() &&
                           !to->xrefBlockId().isNull() && from->getFilename() == to->getFilename();
    return isOneFile ? to->getOdDbObjectId(element.getHandle()) : OdDbObjectId::kNull;
  }

  OdDbIdMapping& m_mapping;
  const VdmDbIdMapping& m_blocks;
  const vdmu::VdmBlockElements& m_elements;
  OdDbObjectIdArray m_path;
  bool m_hasClone = false;
};

}  // namespace

namespace vdmu {

// ---- Blocks

OdArray<OdDbObjectId> getClonedBTRs(OdDbIdMapping& mapping) {
  OdArray<OdDbObjectId> blocks;
  std::unordered_set<OdDbObjectId, OdDbObjectIdHash> seen;
  forEachCloned(mapping, [&](const OdDbIdPair& pair) {
    const OdDbObjectId clone = pair.value();
    if (clone.isErased()) return;
    const OdDbObjectId block = isIdOf<OdDbEntity>(clone) ? clone.ownerId() : clone;
    if (isIdOf<OdDbBlockTableRecord>(block) && !block.isErased() && seen.insert(block).second) {
      blocks.append(block);
    }
  });
  return blocks;
}

bool isEqualBTR(const OdDbBlockTableRecord* a, const OdDbBlockTableRecord* b) {
  if (a == nullptr || b == nullptr) return false;
  if (a == b) return true;
  const OdDbObjectIteratorPtr it1 = a->newIterator();
  const OdDbObjectIteratorPtr it2 = b->newIterator();
  for (; !it1->done() && !it2->done(); it1->step(), it2->step()) {
    if (!isEqualEntity(it1->objectId(), it2->objectId())) return false;
  }
  return it1->done() && it2->done();
}

OdDbObjectId findBTRMappingByName(OdDbDatabase* destination, const OdDbIdPair& pair) {
  if (destination == nullptr || isIdOf<OdDbBlockTableRecord>(pair.value())) {
    return OdDbObjectId::kNull;
  }
  const OdDbObjectId sourceBlock = getOwningBlock(pair.key());
  const OdDbBlockTableRecordPtr source = sourceBlock.openAs<OdDbBlockTableRecord>();
  if (source.isNull() || source->isLayout() || source->isAnonymous()) return OdDbObjectId::kNull;
  const OdDbBlockTablePtr table = destination->getBlockTableId().openAs<OdDbBlockTable>();
  const OdDbObjectId found = table.isNull() ? OdDbObjectId::kNull : table->getAt(source->getName());
  return found == sourceBlock ? OdDbObjectId::kNull : found;
}

void buildBtrMapping(OdDbIdMapping& mapping, VdmDbIdMapping& blocks) {
  BlockPairing pairing(blocks);
  forEachCloned(mapping, [&](const OdDbIdPair& pair) {
    pairing.offer(shownBlock(pair.key()), shownBlock(pair.value()));
  });
  std::unordered_set<OdDbObjectId, OdDbObjectIdHash> lookedFor;
  forEachCloned(mapping, [&](const OdDbIdPair& pair) {
    const OdDbObjectId source = getOwningBlock(pair.key());
    if (source.isNull() || isIdOf<OdDbBlockTableRecord>(pair.value())) return;
    if (!lookedFor.insert(source).second) return;
    pairing.offer(source, findBTRMappingByName(mapping.destDb(), pair));
  });
  forEachCloned(mapping, [&](const OdDbIdPair& pair) { pairing.offer(pair.key(), pair.value()); });
}

VdmBlockElements mapBlockElements(const VdmDbIdMapping& blocks) {
  VdmBlockElements elements;
  for (const auto& [source, clone] : blocks) {
    const OdDbBlockTableRecordPtr first = source.openAs<OdDbBlockTableRecord>();
    const OdDbBlockTableRecordPtr second = clone.openAs<OdDbBlockTableRecord>();
    if (first.isNull() || second.isNull()) continue;
    VdmDbIdMapping& ofBlock = elements[source];
    const OdDbObjectIteratorPtr it1 = first->newIterator();
    const OdDbObjectIteratorPtr it2 = second->newIterator();
    for (; !it1->done() && !it2->done(); it1->step(), it2->step()) {
      ofBlock.add(it1->objectId(), it2->objectId());
    }
  }
  return elements;
}

// ---- Paths

bool mapObjectPath(OdDbIdMapping& mapping, const VdmDbIdMapping& blocks,
                   const OdArray<OdDbObjectId>& source, OdArray<OdDbObjectId>& target,
                   const VdmBlockElements& elements, bool keepUnmapped) {
  if (source.isEmpty()) return false;
  PathMapping path(mapping, blocks, elements);
  for (const OdDbObjectId& element : source) {
    if (!path.append(element, keepUnmapped)) return false;
  }
  if (!path.hasClone() && mapping.deepCloneContext() != OdDb::kDcInsertCopy) return false;
  target = path.path();
  return true;
}

bool VdmClonedPaths::map(const OdArray<OdDbObjectId>& source, OdArray<OdDbObjectId>& target) {
  if (!m_blocks) {
    buildBtrMapping(m_mapping, m_blocks.emplace());
    m_elements = mapBlockElements(*m_blocks);
  }
  return mapObjectPath(m_mapping, *m_blocks, source, target, m_elements, /*keepUnmapped=*/false);
}

}  // namespace vdmu
