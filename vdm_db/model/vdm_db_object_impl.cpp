// State of model objects, and its record.
#include "vdm_db/model/vdm_db_object_impl.h"

#include "vdm_db/common/vdm_constants.h"
#include "vdm_db/properties/vdm_dwg_utils.h"

namespace {

// Versions of the record.
constexpr OdUInt8 kFirstWithProperties = 3;
constexpr OdUInt8 kFirstWithAttributes = 4;
constexpr OdUInt8 kFirstWithTypedProperties = 5;
constexpr OdUInt8 kPresentVersion = 5;

bool filesTransform(const OdDbDwgFiler* filer) {
  return filer->filerType() == OdDbDwgFiler::kPageFiler ||
         filer->filerType() == OdDbDwgFiler::kUndoFiler;
}

}  // namespace

VdmDbObjectImpl::VdmDbObjectImpl() { mapMembers(); }

void VdmDbObjectImpl::mapMembers() {
  m_properties.mapProperty<OdString>(kVdmObjectName, &name);
  m_properties.mapProperty(kVdmPersIdDependencies, &persIdDependencies.array(),
                           OdDb::kSoftPointerRef);
}

// ---- Record
//
//   transform    16 doubles, row after row    undo and page filers only
//   open         bool                         the same
//   version      uint8                        5
//   constraint   int32 count, hard ownership ids
//   entity       soft pointer
//   properties   bag: "NAME", "PersIdDependencies"
//   attributes   index map
//   mark         0, see vdmu::wrMark
//
// Versions below 3 have neither properties nor attributes, 3 has no attributes; 3 and 4 have the
// properties as strings. Above 5 nothing is read.

void VdmDbObjectImpl::writeTransform(OdDbDwgFiler* filer, bool isOpen) const {
  const double* entry = transform.getElements();
  for (int i = 0; i < 16; ++i) filer->wrDouble(entry[i]);
  filer->wrBool(isOpen);
}

void VdmDbObjectImpl::readTransform(OdDbDwgFiler* filer) {
  double* entry = transform.getElements();
  for (int i = 0; i < 16; ++i) entry[i] = filer->rdDouble();
  isTransformOpen = filer->rdBool();
}

void VdmDbObjectImpl::dwgOutFields(OdDbDwgFiler* filer) const {
  if (filesTransform(filer)) writeTransform(filer, isTransformOpen);
  filer->wrUInt8(kPresentVersion);
  vdmu::writeHardOwnershipIdArray(filer, constraintDependencies.ids());
  filer->wrSoftPointerId(attachedEntity);
  VdmDbPropertiesBase::dwgOutFields(filer);
  attributes.dwgOutFields(filer);
  vdmu::wrMark(filer, 0);
}

OdResult VdmDbObjectImpl::dwgInFields(OdDbDwgFiler* filer) {
  if (filesTransform(filer)) readTransform(filer);
  const OdUInt8 version = filer->rdUInt8();
  if (version > kPresentVersion) return eCorruptData;
  vdmu::readHardOwnershipIdArray(filer, constraintDependencies.array());
  attachedEntity = filer->rdSoftPointerId();
  const OdResult result = readProperties(filer, version);
  listsReplaced();
  if (result != eOk) return result;
  if (version >= kFirstWithAttributes) {
    attributes.dwgInFields(filer);
  } else {
    attributes.clear();
  }
  vdmu::rdMark(filer, 0);
  return eOk;
}

OdResult VdmDbObjectImpl::readProperties(OdDbDwgFiler* filer, OdUInt8 version) {
  if (version >= kFirstWithTypedProperties) return VdmDbPropertiesBase::dwgInFields(filer);
  name.empty();
  persIdDependencies.array().clear();
  OdResult result = eOk;
  if (version >= kFirstWithProperties) {
    result = vdmu::dwgInOldPropertyMap(filer, m_properties);
  } else {
    m_properties.clear();
  }
  mapMembers();  // a name among the strings becomes the member
  return result;
}

void VdmDbObjectImpl::listsReplaced() {
  constraintDependencies.replaced();
  persIdDependencies.replaced();
  constraintPaths.invalidate();
  persIdPaths.invalidate();
  if (!persIdDependencies.contains(lastDependency)) lastDependency.setNull();
}
