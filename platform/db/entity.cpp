// OdDbEntity: properties, transforming, filing.
#include "platform/db/entity.h"

#include <string>

#include "platform/base/error.h"
#include "platform/db/database.h"
#include "platform/db/field_list.h"
#include "platform/db/layer_table.h"
#include "platform/ge/finite.h"
#include "platform/gi/sub_entity_traits.h"

OD_RX_DEFINE_ABSTRACT(OdDbEntity, OdDbObject, L"OdDbEntity")

namespace {

constexpr const wchar_t* kDefaultLayer = L"0";

bool isLineWeight(OdInt16 weight) {
  return weight >= OdDb::kLnWtByLwDefault && weight <= OdDb::kLnWt211;
}

OdString entityText(const OdDbEntity* entity) {
  return OdString("entity ") + entity->getDbHandle().ascii();
}

}  // namespace

// ---- Properties

OdDbObjectId OdDbEntity::layerId() const {
  assertReadEnabled();
  return m_layerId;
}

OdString OdDbEntity::layer() const {
  const OdDbLayerTableRecordPtr record = layerId().openAs<OdDbLayerTableRecord>();
  return record.isNull() ? OdString(kDefaultLayer) : record->getName();
}

void OdDbEntity::setLayer(const OdString& name) {
  if (database() == nullptr) {
    throw OdError(eNoDatabase, OdString("layer '") + name + "' of an entity");
  }
  const OdDbLayerTablePtr table = database()->getLayerTableId().openAs<OdDbLayerTable>();
  const OdDbObjectId id = table.isNull() ? OdDbObjectId::kNull : table->getAt(name);
  if (id.isNull()) throw OdError(eKeyNotFound, OdString("layer '") + name + "'");
  setLayer(id);
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
  if (id == m_layerId) return;
  assertWriteEnabled();
  m_layerId = id;
  noteGraphicsModified();
}

OdCmColor OdDbEntity::color() const {
  assertReadEnabled();
  return m_color;
}

void OdDbEntity::setColor(const OdCmColor& color) {
  if (color == m_color) return;
  assertWriteEnabled();
  m_color = color;
  noteGraphicsModified();
}

OdDbObjectId OdDbEntity::linetypeId() const {
  assertReadEnabled();
  return m_linetypeId;
}

void OdDbEntity::setLinetype(const OdDbObjectId& id) {
  if (id == m_linetypeId) return;
  assertWriteEnabled();
  m_linetypeId = id;
  noteGraphicsModified();
}

OdDb::LineWeight OdDbEntity::lineWeight() const {
  assertReadEnabled();
  return m_lineWeight;
}

void OdDbEntity::setLineWeight(OdDb::LineWeight weight) {
  if (!isLineWeight(weight)) {
    throw OdError(eInvalidInput,
                  OdString("pen " + std::to_string(weight) + " of ") + entityText(this));
  }
  if (weight == m_lineWeight) return;
  assertWriteEnabled();
  m_lineWeight = weight;
  noteGraphicsModified();
}

OdDb::Visibility OdDbEntity::visibility() const {
  assertReadEnabled();
  return m_visibility;
}

void OdDbEntity::setVisibility(OdDb::Visibility visibility) {
  if (visibility == m_visibility) return;
  assertWriteEnabled();
  m_visibility = visibility;
  noteGraphicsModified();
}

OdDbObjectId OdDbEntity::materialId() const {
  assertReadEnabled();
  return m_materialId;
}

void OdDbEntity::setMaterial(const OdDbObjectId& id) {
  if (id == m_materialId) return;
  assertWriteEnabled();
  m_materialId = id;
  noteGraphicsModified();
}

void OdDbEntity::setDatabaseDefaults(OdDbDatabase* database) {
  if (database == nullptr || !m_layerId.isNull()) return;
  assertWriteEnabled();
  m_layerId = database->getLayerZeroId();
}

void OdDbEntity::setPropertiesFrom(const OdDbEntity* source) {
  if (source == nullptr) throw OdError(eNullPointer, OdString("source of entity properties"));
  if (!source->layerId().isNull()) setLayer(source->layerId());
  setColor(source->color());
  setLinetype(source->linetypeId());
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
  const OdResult result = copy->transformBy(transform);
  if (result != eOk) copy = nullptr;
  return result;
}

OdResult OdDbEntity::getGeomExtents(OdGeExtents3d&) const { return eNotApplicable; }
OdResult OdDbEntity::explode(OdRxObjectPtrArray&) const { return eNotApplicable; }

// ---- Drawing

bool OdDbEntity::subSetAttributes(OdGiSubEntityTraits* traits) const {
  assertReadEnabled();
  traits->setLayer(m_layerId);
  traits->setTrueColor(m_color);
  traits->setLineType(m_linetypeId);
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

void OdDbEntity::subAppended() { setDatabaseDefaults(database()); }

// ---- Filing
//
//   version        uint8
//   layer          hard pointer   null: "0"
//   colour         4 x uint8      see OdCmColor
//   line type      hard pointer   null: by layer
//   pen            int16          hundredths of a millimetre; negative: see OdDb::LineWeight
//   visibility     uint8          0 shown, 1 not
//   material       hard pointer   null: by layer

template <class Fields, class Self>
void OdDbEntity::fields(Fields& fields, Self& self) {
  const auto isVisibility = [](OdUInt8 number) { return number <= OdDb::kInvisible; };
  fields.version(1);
  fields.template pointer<OdDb::kHardPointerRef>(340, self.m_layerId);
  fields.value(420, self.m_color);
  fields.template pointer<OdDb::kHardPointerRef>(341, self.m_linetypeId);
  fields.template number<OdInt16>(370, self.m_lineWeight, isLineWeight);
  fields.template number<OdUInt8>(280, self.m_visibility, isVisibility);
  fields.template pointer<OdDb::kHardPointerRef>(347, self.m_materialId);
}

void OdDbEntity::dwgOutFields(OdDbDwgFiler* filer) const {
  OdDbObject::dwgOutFields(filer);
  OdDbFieldFiling::dwgOut(filer, *this);
}

OdResult OdDbEntity::dwgInFields(OdDbDwgFiler* filer) {
  const OdResult result = OdDbObject::dwgInFields(filer);
  return result == eOk ? OdDbFieldFiling::dwgIn(filer, *this) : result;
}

void OdDbEntity::dxfOutFields(OdDbDxfFiler* filer) const {
  OdDbObject::dxfOutFields(filer);
  OdDbFieldFiling::dxfOut(filer, *this);
}

OdResult OdDbEntity::dxfInFields(OdDbDxfFiler* filer) {
  const OdResult result = OdDbObject::dxfInFields(filer);
  return result == eOk ? OdDbFieldFiling::dxfIn(filer, *this) : result;
}
