// OdDbEntity: properties, transforming, filing.
#include "platform/db/entity.h"

#include <cmath>
#include <string>

#include "platform/base/error.h"
#include "platform/db/database.h"
#include "platform/db/field_list.h"
#include "platform/db/layer_table.h"
#include "platform/db/linetype_table.h"
#include "platform/ge/finite.h"
#include "platform/gi/sub_entity_traits.h"

OD_RX_DEFINE_ABSTRACT(OdDbEntity, OdDbObject, L"OdDbEntity")

namespace {

constexpr const wchar_t* kDefaultLayer = L"0";
constexpr const wchar_t* kDefaultLinetype = L"ByLayer";

bool isLineWeight(OdInt16 weight) {
  return weight >= OdDb::kLnWtByLwDefault && weight <= OdDb::kLnWt211;
}

bool isLinetypeScale(double scale) { return std::isfinite(scale) && scale > 0.0; }

OdString entityText(const OdDbEntity* entity) {
  return OdString("entity ") + entity->getDbHandle().ascii();
}

// The record of a table of the entity's database.
OdDbObjectId recordOf(const OdDbDatabase* database, OdDbObjectId (OdDbDatabase::*table)() const,
                      const char* what, const OdString& name) {
  const OdString text = OdString(what) + " '" + name + "'";
  if (database == nullptr) throw OdError(eNoDatabase, text + " of an entity");
  const OdDbSymbolTablePtr records = (database->*table)().openAs<OdDbSymbolTable>();
  const OdDbObjectId id = records.isNull() ? OdDbObjectId::kNull : records->getAt(name);
  if (id.isNull()) throw OdError(eKeyNotFound, text);
  return id;
}

}  // namespace

// ---- Properties

OdDbObjectId OdDbEntity::layerId() const { return read(m_layerId); }

OdString OdDbEntity::layer() const {
  const OdDbLayerTableRecordPtr record = layerId().openAs<OdDbLayerTableRecord>();
  return record.isNull() ? OdString(kDefaultLayer) : record->getName();
}

void OdDbEntity::setLayer(const OdString& name) {
  setLayer(recordOf(database(), &OdDbDatabase::getLayerTableId, "layer", name));
}

void OdDbEntity::setLayer(const OdDbObjectId& id) {
  if (id.isNull()) throw OdError(eNullObjectId, OdString("layer of ") + entityText(this));
  const OdRxClass* layerClass = id.objectClass();
  if (layerClass == nullptr || !layerClass->isDerivedFrom(OdDbLayerTableRecord::desc())) {
    throw OdError(eWrongObjectType, OdString("object ") + id.getHandle().ascii() + " as layer of " +
                                        entityText(this));
  }
  if (database() != nullptr && id.database() != database()) {
    throw OdError(eWrongDatabase,
                  OdString("layer ") + id.getHandle().ascii() + " of " + entityText(this));
  }
  change(m_layerId, id);
}

OdCmColor OdDbEntity::color() const { return read(m_color); }

void OdDbEntity::setColor(const OdCmColor& color) { change(m_color, color); }

OdDbObjectId OdDbEntity::linetypeId() const { return read(m_linetypeId); }

void OdDbEntity::setLinetype(const OdDbObjectId& id) { change(m_linetypeId, id); }

OdString OdDbEntity::linetype() const {
  const OdDbLinetypeTableRecordPtr record = linetypeId().openAs<OdDbLinetypeTableRecord>();
  return record.isNull() ? OdString(kDefaultLinetype) : record->getName();
}

void OdDbEntity::setLinetype(const OdString& name) {
  setLinetype(recordOf(database(), &OdDbDatabase::getLinetypeTableId, "line type", name));
}

double OdDbEntity::linetypeScale() const { return read(m_linetypeScale); }

void OdDbEntity::setLinetypeScale(double scale) {
  if (!isLinetypeScale(scale)) {
    throw OdError(eInvalidInput,
                  OdString("pattern scale " + std::to_string(scale) + " of ") + entityText(this));
  }
  change(m_linetypeScale, scale);
}

OdDb::LineWeight OdDbEntity::lineWeight() const { return read(m_lineWeight); }

void OdDbEntity::setLineWeight(OdDb::LineWeight weight) {
  if (!isLineWeight(weight)) {
    throw OdError(eInvalidInput,
                  OdString("pen " + std::to_string(weight) + " of ") + entityText(this));
  }
  change(m_lineWeight, weight);
}

OdDb::Visibility OdDbEntity::visibility() const { return read(m_visibility); }

void OdDbEntity::setVisibility(OdDb::Visibility visibility) { change(m_visibility, visibility); }

OdDbObjectId OdDbEntity::materialId() const { return read(m_materialId); }

void OdDbEntity::setMaterial(const OdDbObjectId& id) { change(m_materialId, id); }

void OdDbEntity::setDatabaseDefaults(OdDbDatabase* database) {
  if (database == nullptr || !m_layerId.isNull()) return;
  assertWriteEnabled();
  m_layerId = database->getCLAYER();
  m_color.setColorIndex(database->getCECOLOR());
  const OdDbObjectId linetype = database->getCELTYPE();
  if (linetype != database->getLinetypeByLayerId()) m_linetypeId = linetype;
  m_linetypeScale = database->getCELTSCALE();
  m_lineWeight = database->getCELWEIGHT();
}

void OdDbEntity::setPropertiesFrom(const OdDbEntity* source) {
  if (source == nullptr) throw OdError(eNullPointer, OdString("source of entity properties"));
  if (!source->layerId().isNull()) setLayer(source->layerId());
  setColor(source->color());
  setLinetype(source->linetypeId());
  setLinetypeScale(source->linetypeScale());
  setLineWeight(source->lineWeight());
  setVisibility(source->visibility());
  setMaterial(source->materialId());
}

// ---- Geometry

OdResult OdDbEntity::transformBy(const OdGeMatrix3d& transform) {
  if (!odgeIsFinite(transform)) return eInvalidInput;
  if (transform.isSingular()) return eDegenerateGeometry;
  assertWriteEnabled();
  const OdResult result = subTransformBy(transform);
  if (result == eOk) noteGraphicsModified();
  return result;
}

OdResult OdDbEntity::subTransformBy(const OdGeMatrix3d&) { return eNotApplicable; }

OdResult OdDbEntity::getTransformedCopy(const OdGeMatrix3d& transform, OdDbEntityPtr& copy) const {
  assertReadEnabled();
  copy = OdDbEntity::cast(clone());
  if (copy.isNull()) return eNotApplicable;
  OdResult result = copy->transformBy(transform);
  if (result == eCannotScaleNonUniformly) {
    copy = subMoreGeneral();
    if (copy.isNull()) return result;
    copy->setPropertiesFrom(this);
    result = copy->transformBy(transform);
  }
  if (result != eOk) copy = nullptr;
  return result;
}

OdDbEntityPtr OdDbEntity::subMoreGeneral() const { return OdDbEntityPtr(); }

OdResult OdDbEntity::getGeomExtents(OdGeExtents3d&) const { return eNotApplicable; }
OdResult OdDbEntity::explode(OdRxObjectPtrArray&) const { return eNotApplicable; }

// ---- Drawing

bool OdDbEntity::subSetAttributes(OdGiSubEntityTraits* traits) const {
  assertReadEnabled();
  traits->setLayer(m_layerId);
  traits->setTrueColor(m_color);
  traits->setLineType(m_linetypeId);
  traits->setLineTypeScale(m_linetypeScale);
  traits->setLineWeight(m_lineWeight);
  traits->setMaterial(m_materialId);
  return m_visibility == OdDb::kVisible;
}

// ---- Subentities

OdDbEntityPtr OdDbEntity::subentPtr(const OdDbFullSubentPath&) const { return OdDbEntityPtr(); }

OdResult OdDbEntity::getGsMarkersAtSubentPath(const OdDbFullSubentPath&,
                                              OdArray<OdGsMarker>&) const {
  return eNotApplicable;
}

OdResult OdDbEntity::getSubentPathsAtGsMarker(OdDb::SubentType, OdGsMarker,
                                              OdDbFullSubentPathArray&,
                                              const OdDbObjectIdArray*) const {
  return eNotApplicable;
}

OdDbObjectId OdDbEntity::insertedBlock() const { return OdDbObjectId::kNull; }

void OdDbEntity::recordGraphicsModified(bool modified) {
  if (modified) noteGraphicsModified();
}

// ---- Hooks of the block

void OdDbEntity::subCheckAppend(const OdDbObjectId& block) const {
  // Clones are in their database already, and their ids wait for translation.
  if (database() != nullptr || m_layerId.isNull()) return;
  if (m_layerId.database() != block.database()) {
    throw OdError(eWrongDatabase, OdString("layer '") + layer() + "' of an entity for block " +
                                      block.getHandle().ascii());
  }
}

void OdDbEntity::subAppended() {
  if (database() == nullptr || !m_layerId.isNull()) return;
  assertWriteEnabled();
  m_layerId = database()->getLayerZeroId();
}

// ---- Filing
//
//   version        uint8          2 with a pattern scale, else 1
//   layer          hard pointer   null: "0"
//   colour         4 x uint8      see OdCmColor
//   line type      hard pointer   null: by layer
//   pen            int16          hundredths of a millimetre; negative: see OdDb::LineWeight
//   visibility     uint8          0 shown, 1 not
//   material       hard pointer   null: by layer
//   pattern scale  double         version 2: factor on the line type, greater than 0; 1 before

template <class Fields, class Self>
void OdDbEntity::fields(Fields& fields, Self& self) {
  const auto isVisibility = [](OdUInt8 number) { return number <= OdDb::kInvisible; };
  fields.version(1, 2, self.m_linetypeScale != 1.0);
  fields.template pointer<OdDb::kHardPointerRef>(340, self.m_layerId);
  fields.value(420, self.m_color);
  fields.template pointer<OdDb::kHardPointerRef>(341, self.m_linetypeId);
  fields.template number<OdInt16>(370, self.m_lineWeight, isLineWeight);
  fields.template number<OdUInt8>(280, self.m_visibility, isVisibility);
  fields.template pointer<OdDb::kHardPointerRef>(347, self.m_materialId);
  fields.from(2, self, [](auto& entity) { entity.m_linetypeScale = 1.0; });
  fields.value(48, self.m_linetypeScale, isLinetypeScale);
}

OD_DB_DEFINE_FILING(OdDbEntity, OdDbObject)
