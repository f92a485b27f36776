// The layers and line types of drawing views.
#include "vdm_db/drafting/vdm_db_layer_helper.h"

#include <algorithm>
#include <array>
#include <iterator>

#include "platform/db/block_table.h"
#include "platform/db/block_table_record.h"
#include "platform/db/database.h"
#include "platform/db/dictionary.h"
#include "platform/db/layer_table.h"
#include "platform/db/linetype_table.h"
#include "platform/db/locked_layers.h"
#include "platform/db/open_upgrade.h"
#include "platform/db/visual_style.h"
#include "vdm_db/drafting/vdm_db_istandard_line_type_loader.h"
#include "vdm_db/drafting/vdm_drafting_layers.h"
#include "vdm_db/drawing_utils/vdm_layer_utils.h"

namespace {

using Type = VdmDbLayerHelper::Type;

// Where the settings of a new layer come from.
struct OlderLayer {
  Type type;
  const OdString& name;
};
const OlderLayer kOlderLayers[] = {
    {VdmDbLayerHelper::kVisible, VM_MECHANICAL_DRAFTING_OBS_ORTHO_VIS_GEOMETRY},
    {VdmDbLayerHelper::kHidden, VM_MECHANICAL_DRAFTING_OBS_ORTHO_HID_GEOMETRY},
    {VdmDbLayerHelper::kTangentVisible, VM_MECHANICAL_DRAFTING_OBS_ORTHO_VIS_GEOMETRY},
    {VdmDbLayerHelper::kTangentHidden, VM_MECHANICAL_DRAFTING_OBS_ORTHO_HID_GEOMETRY},
    {VdmDbLayerHelper::kTrailingVisible, VC_MECHANICAL_MODELING_TRAILING_LINE_GEOMETRY},
    {VdmDbLayerHelper::kThreadVisible, VM_MECHANICAL_DRAFTING_OBS_ORTHO_VIS_GEOMETRY},
    {VdmDbLayerHelper::kThreadHidden, VM_MECHANICAL_DRAFTING_OBS_ORTHO_HID_GEOMETRY},
};

// Line types of hidden edges, by the number in the visual style; null keeps the fallback.
constexpr std::array<const wchar_t*, 12> kHiddenLineTypes = {
    nullptr,     nullptr, L"DASHED", L"HIDDEN2",  L"DASHED2", L"DASHED",
    L"DASHEDX2", L"DEMO", L"DEMO",   L"HIDDENX2", L"HIDDEN",  L"DOTX2"};

constexpr const wchar_t* kContinuous = L"Continuous";
constexpr OdUInt16 kDefaultColor = 7;

bool hasLineTypeOfStyle(Type type) {
  return type == VdmDbLayerHelper::kHidden || type == VdmDbLayerHelper::kOtherHidden ||
         type == VdmDbLayerHelper::kTangentHidden;
}

bool hasColorOfHiddenEdges(Type type) {
  return hasLineTypeOfStyle(type) || type == VdmDbLayerHelper::kThreadHidden;
}

bool isTrailing(const OdString& name) {
  return name.iCompare(VM_MECHANICAL_DRAFTING_VIS_TRAIL_GEOMETRY) == 0 ||
         name.iCompare(VM_MECHANICAL_DRAFTING_HID_TRAIL_GEOMETRY) == 0;
}

// Null when the drawing may hold no older layer of this kind.
const OdString* olderLayerOf(Type type, const OdString& name) {
  if (isTrailing(name)) return &VC_MECHANICAL_MODELING_TRAILING_LINE_GEOMETRY;
  const auto* row = std::find_if(std::begin(kOlderLayers), std::end(kOlderLayers),
                                 [type](const OlderLayer& older) { return older.type == type; });
  return row == std::end(kOlderLayers) ? nullptr : &row->name;
}

OdDbLayerTablePtr openLayers(const OdDbDatabase* database) {
  return database == nullptr ? OdDbLayerTablePtr()
                             : database->getLayerTableId().openAs<OdDbLayerTable>();
}

OdDbVisualStylePtr openStyle(OdDbDatabase* database, const OdString& name) {
  if (database == nullptr || name.isEmpty()) return {};
  const OdDbObjectId dictionaryId =
      database->getVisualStyleDictionaryId(/*createIfNotFound=*/false);
  const auto dictionary = dictionaryId.openAs<OdDbDictionary>();
  if (dictionary.isNull()) return {};
  return dictionary->getAt(name).openAs<OdDbVisualStyle>();
}

void copySettings(OdDbLayerTableRecord& to, const OdDbLayerTableRecord& from) {
  to.setColor(from.color());
  to.setLinetypeObjectId(from.linetypeObjectId());
  to.setLineWeight(from.lineWeight());
  to.setIsPlottable(from.isPlottable());
  to.setIsHidden(from.isHidden());
  to.setIsOff(from.isOff());
  to.setIsFrozen(from.isFrozen());
  to.setIsLocked(from.isLocked());
}

void moveEntities(OdDbDatabase* database, const OdDbObjectId& from, const OdDbObjectId& to) {
  const OdDbLockedLayerAccess access(database);
  const auto blocks = database->getBlockTableId().safeOpenAs<OdDbBlockTable>();
  for (const auto block = blocks->newIterator(); !block->done(); block->step()) {
    const auto record = block->getRecordId().safeOpenAs<OdDbBlockTableRecord>();
    for (const auto it = record->newIterator(); !it->done(); it->step()) {
      const auto entity = it->objectId().openAs<OdDbEntity>();
      if (entity.isNull() || entity->layerId() != from) continue;
      const OdDbOpenUpgrade upgrade(entity);
      entity->setLayer(to);
    }
  }
}

}  // namespace

OdDbObjectId VdmDbLayerHelper::getLayer(Type type, const OdString& name, const OdString& style,
                                        bool& created) {
  created = false;
  if (m_database == nullptr) return OdDbObjectId::kNull;
  if (isTrailing(name)) {
    const OdDbObjectId adopted = adoptTrailingLayer(name);
    if (!adopted.isNull()) {
      created = true;
      return adopted;
    }
  }
  const OdDbObjectId layer =
      vdmu::findOrAddLayer(m_database, name, [&](OdDbLayerTableRecord& record) {
        created = true;
        record.setIsOff(false);
        record.setIsLocked(false);
        record.setIsFrozen(false);
        record.setLinetypeObjectId(getLineTypeFromVisualStyle(type, style));
        record.setColor(getColorFromVisualStyle(type, style));
      });
  const OdString* older = olderLayerOf(type, name);
  if (created && older != nullptr) copyLayerSettings(name, *older);
  if (created && isTrailing(name)) removeTrailingLayer();
  return layer;
}

// Law 3. Null when there is no older layer, and when one of the present layers is there: that one
// may have entities of its own.
OdDbObjectId VdmDbLayerHelper::adoptTrailingLayer(const OdString& name) {
  const OdDbLayerTablePtr table = openLayers(m_database);
  if (table.isNull() || table->has(VM_MECHANICAL_DRAFTING_VIS_TRAIL_GEOMETRY) ||
      table->has(VM_MECHANICAL_DRAFTING_HID_TRAIL_GEOMETRY)) {
    return OdDbObjectId::kNull;
  }
  const auto older = OdDbLayerTableRecord::cast(
      table->getAt(VC_MECHANICAL_MODELING_TRAILING_LINE_GEOMETRY, OdDb::kForWrite));
  if (older.isNull()) return OdDbObjectId::kNull;
  older->setName(VM_MECHANICAL_DRAFTING_VIS_TRAIL_GEOMETRY);
  const OdDbObjectId hidden =
      vdmu::findOrAddLayer(m_database, VM_MECHANICAL_DRAFTING_HID_TRAIL_GEOMETRY,
                           [&](OdDbLayerTableRecord& record) { copySettings(record, *older); });
  return name.iCompare(VM_MECHANICAL_DRAFTING_HID_TRAIL_GEOMETRY) == 0 ? hidden : older->objectId();
}

void VdmDbLayerHelper::removeTrailingLayer() {
  const OdDbLayerTablePtr table = openLayers(m_database);
  const OdDbObjectId older = table->getAt(VC_MECHANICAL_MODELING_TRAILING_LINE_GEOMETRY);
  if (older.isNull()) return;
  moveEntities(m_database, older, table->getAt(VM_MECHANICAL_DRAFTING_VIS_TRAIL_GEOMETRY));
  older.safeOpenObject(OdDb::kForWrite)->erase();
}

OdResult VdmDbLayerHelper::copyLayerSettings(const OdString& to, const OdString& from) {
  const OdDbLayerTablePtr table = openLayers(m_database);
  if (table.isNull()) return eNoDatabase;
  const auto source = table->getAt(from).openAs<OdDbLayerTableRecord>();
  const auto target = table->getAt(to).openAs<OdDbLayerTableRecord>(OdDb::kForWrite);
  if (source.isNull() || target.isNull()) return eKeyNotFound;
  if (source != target) copySettings(*target, *source);
  return eOk;
}

OdDbObjectId VdmDbLayerHelper::getLineType(const OdString& name) {
  if (m_database == nullptr) return OdDbObjectId::kNull;
  const auto find = [&] {
    const auto table = m_database->getLinetypeTableId().openAs<OdDbLinetypeTable>();
    return table.isNull() ? OdDbObjectId::kNull : table->getAt(name);
  };
  const OdDbObjectId present = find();
  VdmDbIStandardLineTypeLoader* loader = VdmDbIStandardLineTypeLoader::getInstance();
  if (!present.isNull() || loader == nullptr) return present;
  loader->load(m_database, name);
  return find();
}

OdDbObjectId VdmDbLayerHelper::getLineTypeFromVisualStyle(Type type, const OdString& style) {
  const OdDbVisualStylePtr visualStyle = openStyle(m_database, style);
  const wchar_t* name = nullptr;
  if (visualStyle.isNull()) {
    if (type == kThreadHidden) name = kVdmHiddenLinetype.c_str();
  } else if (hasLineTypeOfStyle(type)) {
    const std::size_t number = visualStyle->edgeStyle().obscuredLinetype;
    if (number < kHiddenLineTypes.size()) name = kHiddenLineTypes[number];
  }
  const OdDbObjectId chosen = name == nullptr ? OdDbObjectId::kNull : getLineType(name);
  return chosen.isNull() ? getLineType(kContinuous) : chosen;
}

OdCmColor VdmDbLayerHelper::getColorFromVisualStyle(Type type, const OdString& style) const {
  const OdDbVisualStylePtr visualStyle = openStyle(m_database, style);
  if (visualStyle.isNull()) return OdCmColor::fromIndex(kDefaultColor);
  const OdGiEdgeStyle edges = visualStyle->edgeStyle();
  // Hidden edges without a colour of their own have that of all edges.
  const bool isHidden = hasColorOfHiddenEdges(type) && !edges.obscuredColor.isNone();
  const OdCmColor color = isHidden ? edges.obscuredColor : edges.edgeColor;
  return color.isByColor() || color.isByACI() ? color : OdCmColor::fromIndex(kDefaultColor);
}
