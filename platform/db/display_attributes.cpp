// How an entity looks once by-layer and by-block rules are settled.
#include "platform/db/display_attributes.h"

#include "platform/db/database.h"
#include "platform/db/layer_table.h"

namespace {

bool isLayerZero(const OdDbObjectId& layer) {
  return layer.isNull() || layer.getHandle() == OdDbHandle(OdDbRootHandles::kLayerZero);
}

// What by-layer values are read from, opened once.
class LayerLook {
 public:
  explicit LayerLook(const OdDbObjectId& id) : m_layer(id.openAs<OdDbLayerTableRecord>()) {}

  [[nodiscard]] bool shows() const {
    return m_layer.isNull() || (!m_layer->isOff() && !m_layer->isFrozen());
  }
  [[nodiscard]] OdCmEntityColor color() const {
    return m_layer.isNull() ? OdCmEntityColor::fromIndex(7) : m_layer->color();
  }
  [[nodiscard]] OdDbObjectId lineType() const {
    return m_layer.isNull() ? OdDbObjectId() : m_layer->linetypeObjectId();
  }
  [[nodiscard]] OdInt16 lineWeight() const {
    return m_layer.isNull() ? OdInt16{OdDb::kLnWtByLwDefault} : OdInt16{m_layer->lineWeight()};
  }

 private:
  OdDbLayerTableRecordPtr m_layer;
};

bool isFrozen(const OdDbObjectId& layer) {
  const OdDbLayerTableRecordPtr record = layer.openAs<OdDbLayerTableRecord>();
  return !record.isNull() && record->isFrozen();
}

bool isRecord(const OdDbObjectId& lineType, OdUInt64 handle) {
  return lineType.getHandle() == OdDbHandle(handle);
}

OdDbObjectId settleLineType(const OdDbObjectId& own, const LayerLook& layer,
                            const OdDbDisplayAttributes& outer) {
  if (own.isNull() || isRecord(own, OdDbRootHandles::kLinetypeByLayer)) return layer.lineType();
  return isRecord(own, OdDbRootHandles::kLinetypeByBlock) ? outer.lineType : own;
}

OdInt16 settleLineWeight(OdInt16 own, const LayerLook& layer, const OdDbDisplayAttributes& outer) {
  if (own == OdDb::kLnWtByLayer) return layer.lineWeight();
  return own == OdDb::kLnWtByBlock ? outer.lineWeight : own;
}

OdCmEntityColor settleColor(const OdCmEntityColor& own, const LayerLook& layer,
                            const OdDbDisplayAttributes& outer) {
  if (own.isByColor() || own.isByACI()) return own;
  return own.isByBlock() ? outer.color : layer.color();
}

OdDbDisplayAttributes outsideOfBlocks() {
  OdDbDisplayAttributes attributes;
  attributes.lineWeight = OdDb::kLnWtByLwDefault;
  return attributes;
}

}  // namespace

OdDbDisplayAttributes oddbSettleDisplay(const OdGiSubEntityTraits& own,
                                        const OdDbDisplayAttributes* block) {
  const OdDbDisplayAttributes outer = block == nullptr ? outsideOfBlocks() : *block;
  OdDbDisplayAttributes settled;
  settled.layer = block != nullptr && isLayerZero(own.layer()) ? block->layer : own.layer();
  const LayerLook layer(settled.layer);
  settled.color = settleColor(own.trueColor(), layer, outer);
  settled.lineType = settleLineType(own.lineType(), layer, outer);
  settled.lineWeight = settleLineWeight(own.lineWeight(), layer, outer);
  settled.material = own.material();
  settled.visible = layer.shows() && (block == nullptr || !isFrozen(block->layer));
  return settled;
}
