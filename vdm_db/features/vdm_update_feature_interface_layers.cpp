// VdmUpdateFeatureInterface: solids that cut and fill by the layer on which they stand.
#include "vdm_db/features/vdm_update_feature_interface.h"

#include <algorithm>
#include <unordered_map>

#include "platform/db/block_table_record.h"
#include "platform/db/database.h"
#include "platform/db/layer_table.h"
#include "platform/entities/block_reference.h"
#include "vdm_db/common/vdm_constants.h"
#include "vdm_db/drawing_utils/vdm_assoc_array_utils.h"
#include "vdm_db/drawing_utils/vdm_iterator_utils.h"
#include "vdm_db/drawing_utils/vdm_long_transaction_utils.h"
#include "vdm_db/drawing_utils/vdm_xref_utils.h"

namespace {

using LayerSet = VdmUpdateFeatureInterface::LayerSet;

const OdStringArray& subtractLayers() {
  static const OdStringArray names{kVdmSubtractLayer, kVdmSubtractLayer2};
  return names;
}

const OdStringArray& uniteLayers() {
  static const OdStringArray names{kVdmUniteLayer, kVdmUniteLayer2};
  return names;
}

const OdStringArray& dedicatedLayers() {
  static const OdStringArray names = [] {
    OdStringArray joined(subtractLayers());
    return joined.append(uniteLayers());
  }();
  return names;
}

const OdArray<OdGeMatrix3d>& identityMatrix() {
  static const OdArray<OdGeMatrix3d> matrices{OdGeMatrix3d::kIdentity};
  return matrices;
}

// ---- Layers by name

/// The layer table that names the layers of a block, and what its names may carry in front.
struct LayerScope {
  OdDbDatabase* database = nullptr;
  OdString prefix;  ///< of an external drawing; one that was opened by itself has names without
  bool stripCheckedOut = false;
};

OdDbBlockTableRecordPtr namingBlock(const OdDbObjectId& blockId) {
  OdDbBlockTableRecordPtr block =
      blockId.openAs<OdDbBlockTableRecord>(OdDb::kForRead, /*openErased=*/true);
  if (block.isNull() || !vdmu::isAssociativeArray(block)) return block;
  const OdDbBlockReferencePtr source = vdmu::getAssocArraySourceBlockRef(block);
  if (source.isNull()) return block;
  return source->blockTableRecord().openAs<OdDbBlockTableRecord>();
}

OdString prefixOf(const OdDbBlockTableRecordPtr& block) {
  return block->getName() + OdString(L"|");
}

LayerScope scopeOf(const OdDbBlockTableRecordPtr& block) {
  if (OdDbDatabase* external = block->xrefDatabase(); external != nullptr) {
    return {external, prefixOf(block), false};
  }
  LayerScope scope{block->database(), {}, false};
  if (scope.database == nullptr) return scope;
  const OdDbBlockTableRecordPtr attached =
      scope.database->xrefBlockId().openAs<OdDbBlockTableRecord>();
  if (!attached.isNull()) {
    scope.prefix = prefixOf(attached);
  } else {
    scope.stripCheckedOut = vdmu::isInLongTransaction(scope.database);
  }
  return scope;
}

// "$3$WALLS" is the layer WALLS, checked out.
OdString withoutCheckOut(const OdString& name) {
  if (name.isEmpty() || name.getAt(0) != L'$') return name;
  const int second = name.find(L'$', 1);
  return second < 0 ? name : name.mid(second + 1);
}

void findByName(const OdDbLayerTable* table, const OdStringArray& names, const OdString& prefix,
                LayerSet& found) {
  for (const OdString& name : names) {
    if (const OdDbObjectId id = table->getAt(name); !id.isNull()) found.insert(id);
    if (prefix.isEmpty()) continue;
    if (const OdDbObjectId id = table->getAt(prefix + name); !id.isNull()) found.insert(id);
  }
}

// Several layers may be the same one, checked out.
void findCheckedOut(const OdDbLayerTable* table, const OdStringArray& names, LayerSet& found) {
  for (OdDbSymbolTableIteratorPtr it = table->newIterator(); !it->done(); it->step()) {
    const OdString name = withoutCheckOut(it->getRecordName());
    if (std::any_of(names.begin(), names.end(),
                    [&name](const OdString& wanted) { return name.iCompare(wanted) == 0; })) {
      found.insert(it->getRecordId());
    }
  }
}

// ---- Solids of arrays

bool isOn(const OdDbEntityPtr& entity, const LayerSet* layers) {
  return layers == nullptr || layers->count(entity->layerId()) != 0;
}

/// Gathers solids, each once, with the transforms of its occurrences.
class SolidCollector {
 public:
  explicit SolidCollector(VdmSolidOccurrences& out) : m_out(out) {}

  void addItems(const OdDbObjectId& array, const OdGeMatrix3d& transform, const LayerSet* layers) {
    forEachEntity(array, [&](const OdDbEntityPtr& entity) {
      if (const OdDbBlockReferencePtr item = OdDbBlockReference::cast(entity); !item.isNull()) {
        addElement(item->blockTableRecord(), transform * item->blockTransform(), layers);
      }
    });
  }

 private:
  // The solids of an element, and those of the source that it holds. A source that is itself on one
  // of the layers counts with all its solids.
  void addElement(const OdDbObjectId& block, const OdGeMatrix3d& transform,
                  const LayerSet* layers) {
    forEachEntity(block, [&](const OdDbEntityPtr& entity) {
      addSolid(entity, transform, layers);
      const OdDbBlockReferencePtr source = OdDbBlockReference::cast(entity);
      if (source.isNull()) return;
      const LayerSet* inside = layers != nullptr && isOn(entity, layers) ? nullptr : layers;
      const OdGeMatrix3d placed = transform * source->blockTransform();
      forEachEntity(vdmu::getXrefBlock(source->blockTableRecord()),
                    [&](const OdDbEntityPtr& solid) { addSolid(solid, placed, inside); });
    });
  }

  void addSolid(const OdDbEntityPtr& entity, const OdGeMatrix3d& transform,
                const LayerSet* layers) {
    if (OdDb3dSolid::cast(entity).isNull() || !isOn(entity, layers)) return;
    const OdDbObjectId id = entity->objectId();
    const auto [place, isNew] = m_places.try_emplace(id, m_out.size());
    if (isNew) m_out.append({id, OdArray<OdGeMatrix3d>()});
    m_out[place->second].second.append(transform);
  }

  template <class Visit>
  static void forEachEntity(const OdDbObjectId& block, Visit visit) {
    const OdDbBlockTableRecordPtr record = block.openAs<OdDbBlockTableRecord>();
    if (record.isNull()) return;
    for (OdDbObjectIteratorPtr it = record->newIterator(); !it->done(); it->step()) {
      if (const OdDbEntityPtr entity = it->entity(); !entity.isNull()) visit(entity);
    }
  }

  VdmSolidOccurrences& m_out;
  std::unordered_map<OdDbObjectId, OdUInt32> m_places;
};

// External drawings are read-only: for gathering, reading is enough.
OdDbBlockTableRecordPtr openForGathering(const OdDbObjectId& blockId, bool forWrite) {
  OdDbBlockTableRecordPtr block = vdmu::openXrefBlock(blockId, forWrite);
  return block.isNull() && forWrite ? vdmu::openXrefBlock(blockId, /*forWrite=*/false) : block;
}

OdGeMatrix3d placementOf(const OdDbObject* object) {
  const OdDbBlockReferencePtr insert = OdDbBlockReference::cast(object);
  return insert.isNull() ? OdGeMatrix3d::kIdentity : insert->blockTransform();
}

}  // namespace

// ---- Names

OdStringArray VdmUpdateFeatureInterface::layersToHide() const { return dedicatedLayers(); }
OdStringArray VdmUpdateFeatureInterface::layersToShow() const { return {}; }
OdStringArray VdmUpdateFeatureInterface::layersToHideOnInsert() const { return {}; }
OdStringArray VdmUpdateFeatureInterface::layersToShowOnInsert() const { return layersToHide(); }

VdmUpdateFeatureInterface::LayerSet VdmUpdateFeatureInterface::findLayersByName(
    const OdDbObjectId& blockId, const OdStringArray& names) {
  LayerSet found;
  const OdDbBlockTableRecordPtr block = namingBlock(blockId);
  if (block.isNull() || names.isEmpty()) return found;
  const LayerScope scope = scopeOf(block);
  if (scope.database == nullptr) return found;
  const OdDbLayerTablePtr table = scope.database->getLayerTableId().openAs<OdDbLayerTable>();
  if (table.isNull()) return found;
  if (scope.stripCheckedOut) {
    findCheckedOut(table, names, found);
  } else {
    findByName(table, names, scope.prefix, found);
  }
  return found;
}

// ---- Solids

VdmSolidOccurrences VdmUpdateFeatureInterface::getObjectsFromLayers(const OdDbObjectId& blockId,
                                                                    const LayerSet& layers,
                                                                    bool forWrite) {
  VdmSolidOccurrences out;
  if (layers.empty()) return out;
  const OdDbBlockTableRecordPtr block = openForGathering(blockId, forWrite);
  if (block.isNull() || getSolidsFromArray(block, out, &layers)) return out;
  for (OdDbObjectIteratorPtr it = block->newIterator(); !it->done(); it->step()) {
    const OdDbEntityPtr entity = it->entity();
    if (entity.isNull()) continue;
    const bool onLayer = isOn(entity, &layers);
    if (!OdDb3dSolid::cast(entity).isNull()) {
      if (onLayer) out.append({entity->objectId(), identityMatrix()});
    } else if (!OdDbBlockReference::cast(entity).isNull()) {
      getSolidsFromArray(entity, out, onLayer ? nullptr : &layers);
    }
  }
  return out;
}

bool VdmUpdateFeatureInterface::getSolidsFromArray(const OdDbObject* object,
                                                   VdmSolidOccurrences& out,
                                                   const LayerSet* layers) {
  const OdDbObjectId array = vdmu::getAssocArrayBlock(object);
  if (array.isNull()) return false;
  SolidCollector(out).addItems(array, placementOf(object), layers);
  return true;
}

VdmSolidOccurrences VdmUpdateFeatureInterface::getObjectsFromSubtractLayer(
    const OdDbObjectId& blockId, bool forWrite) {
  return getObjectsFromLayers(blockId, findLayersByName(blockId, subtractLayers()), forWrite);
}

VdmSolidOccurrences VdmUpdateFeatureInterface::getObjectsFromUniteLayer(const OdDbObjectId& blockId,
                                                                        bool forWrite) {
  return getObjectsFromLayers(blockId, findLayersByName(blockId, uniteLayers()), forWrite);
}

VdmSolidOccurrences VdmUpdateFeatureInterface::getSubtractorsOnDedicatedLayer(
    const OdDbObjectId& blockId, bool forWrite) {
  return getObjectsFromSubtractLayer(blockId, forWrite);
}

VdmSolidOccurrences VdmUpdateFeatureInterface::getAdditionsOnDedicatedLayer(
    const OdDbObjectId& blockId, bool forWrite) {
  return getObjectsFromUniteLayer(blockId, forWrite);
}

bool VdmUpdateFeatureInterface::hasSubtrsOrUnitors(OdDbObjectId insert) {
  const OdDbBlockReferencePtr reference = insert.openAs<OdDbBlockReference>();
  if (reference.isNull()) return false;
  const OdDbObjectId block = reference->blockTableRecord();
  return !getObjectsFromSubtractLayer(block, /*forWrite=*/false).isEmpty() ||
         !getObjectsFromUniteLayer(block, /*forWrite=*/false).isEmpty();
}
