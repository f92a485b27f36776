// The association attribute of an entity: its record, reading and writing.
//
// Extended data of the application "VdmAssoc": the application's name (1001), then the bytes of a
// VdmFlatFiler (1004):
//
//   | field         | primitive |                          |
//   |---------------|-----------|--------------------------|
//   | major version | int32     | 1                        |
//   | minor version | int32     | 2                        |
//   | dependency    | handle    | not null                 |
//   | ...           |           | fields of derived classes |
#include "vdm_db/associations/vdm_entity_assoc_attribute.h"

#include "platform/base/error.h"
#include "platform/db/database.h"
#include "platform/rx/memory_stream.h"
#include "platform/rx/rx_class.h"
#include "vdm_db/common/vdm_constants.h"
#include "vdm_db/drawing_utils/vdm_open_upgrade.h"
#include "vdm_db/properties/vdm_flat_filer.h"

namespace vdm_assoc {

OD_RX_DEFINE(EntityAssocAttribute, OdRxObject, L"EntityAssocAttribute")

namespace {
constexpr OdInt32 kMajorVersion = 1;
constexpr OdInt32 kMinorVersion = 2;
}  // namespace

EntityAssocAttribute::EntityAssocAttribute() = default;
EntityAssocAttribute::~EntityAssocAttribute() = default;

EntityAssocAttributePtr EntityAssocAttribute::createObject(const OdSmartPtr<OdDbEntity>& entity,
                                                           const OdDbHandle& depHandle) {
  EntityAssocAttributePtr attribute = createObject();
  attribute->m_entity = entity;
  attribute->m_depHandle = depHandle;
  attribute->m_minorVersionRead = kMinorVersion;
  attribute->m_storedMajorVersion = kMajorVersion;
  return attribute;
}

OdLong EntityAssocAttribute::minorVersion() const { return kMinorVersion; }

// ---- The record

OdResult EntityAssocAttribute::dwgInFields(OdDbDwgFiler* filer) {
  m_storedMajorVersion = filer->rdInt32();
  if (m_storedMajorVersion < kMajorVersion) return eNotApplicable;
  m_minorVersionRead = filer->rdInt32();
  m_depHandle = filer->rdDbHandle();
  return m_depHandle.isNull() ? eNullHandle : eOk;
}

void EntityAssocAttribute::dwgOutFields(OdDbDwgFiler* filer) const {
  filer->wrInt32(kMajorVersion);
  filer->wrInt32(kMinorVersion);
  filer->wrDbHandle(m_depHandle);
}

OdResBufPtr EntityAssocAttribute::convertToResBuf() {
  VdmFlatFiler filer;
  dwgOutFields(filer.clear());
  if (filer.hasUnreadableString()) return {};
  OdResBufPtr chain = OdResBuf::newRb(OdResBuf::kDxfRegAppName, kVdmAssoc);
  filer.appendToResBuf(chain);
  return chain->next().isNull() ? OdResBufPtr() : chain;
}

OdResult EntityAssocAttribute::convertFromResBuf(OdResBuf* chain) {
  VdmFlatFiler filer;
  return filer.setBinaryChunk(chain) ? dwgInFields(&filer) : eNoBinaryData;
}

// ---- At the entity

EntityAssocAttributePtr EntityAssocAttribute::readAttributeFromEntity(
    OdString className,  // NOLINT(performance-unnecessary-value-param): the interface has it so
    const OdSmartPtr<OdDbEntity>& entity) {
  if (entity.isNull()) return {};
  const OdResBufPtr data = entity->xData(kVdmAssoc);
  if (data.isNull()) return {};
  const OdRxClass* cls = odrxClassDictionary()->getAt(className);
  if (cls == nullptr || cls->isAbstract()) return {};
  EntityAssocAttributePtr attribute = cast(cls->create().get());
  if (attribute.isNull()) return {};
  try {
    if (attribute->convertFromResBuf(data->next().get()) != eOk) return {};
  } catch (const OdError&) {  // a record that is too short, or a text in it is damaged
    return {};
  }
  attribute->m_entity = entity;
  return attribute;
}

OdResult EntityAssocAttribute::writeXData() {
  if (m_entity.isNull()) return eNoEntity;
  if (m_entity->objectId().isNull()) return eEntityNotInDrawing;
  if (m_depHandle.isNull()) return eNoReference;
  const OdResBufPtr chain = convertToResBuf();
  if (chain.isNull()) return eNoExtendedData;
  const VdmOpenUpgrade upgrade(m_entity);
  m_entity->database()->newRegApp(kVdmAssoc);
  m_entity->setXData(chain);
  return eOk;
}

}  // namespace vdm_assoc
