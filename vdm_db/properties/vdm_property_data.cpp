// Filing of single values, and the choice of a type by its number.
#include "vdm_db/properties/vdm_property_data.h"

#include "vdm_db/properties/vdm_property_encoding.h"

VDM_DECLARE_ENCODINGS

VdmPropertyData::~VdmPropertyData() = default;

bool VdmPropertyData::isMapped() const { return false; }
bool VdmPropertyData::isOutOfDate() const { return true; }
void VdmPropertyData::updateMapped() {}
bool VdmPropertyData::reset() { return false; }

void VdmPropertyData::writeToDwg(OdDbDwgFiler* filer, int config) const {
  filer->wrInt8(static_cast<OdInt8>(m_type));
  writeValue(filer, config);
}

bool VdmPropertyData::readFromDwg(OdDbDwgFiler* filer, int config) {
  if (filer->rdInt8() != static_cast<OdInt8>(m_type)) {
    vdmReportWrongType("type == this->type()", 1450);
    return false;
  }
  const bool read = readValue(filer, config);
  updateMapped();
  return read;
}

namespace {

VdmPropertyData* makeArray(OdInt8 elementType) {
  return vdmMakeByNumber(elementType, []<class E>() -> VdmPropertyData* {
    return new VdmPropertyDataContainer<VdmArray<E>>;
  });
}

VdmPropertyData* makeMap(OdInt8 keyType, OdInt8 valueType) {
  return vdmMakeByNumber(keyType, [&]<class K>() -> VdmPropertyData* {
    if constexpr (VdmPlainType<K>) {
      return vdmMakeMap<K>(valueType);
    } else {
      return nullptr;
    }
  });
}

VdmPropertyData* makeElement(OdInt8 type) {
  return vdmMakeByNumber(type, []<class E>() -> VdmPropertyData* {
    if constexpr (VdmPropertyValue<E>) {
      return new VdmPropertyDataContainer<E>;
    } else {
      return nullptr;
    }
  });
}

// An empty container of the type whose further bytes follow in the filer; null for an unknown one.
VdmPropertyData* makeContainer(OdDbDwgFiler* filer, OdInt8 type) {
  switch (type) {
    case static_cast<OdInt8>(VdmPropertyType::kArray):
      return makeArray(filer->rdInt8());
    case static_cast<OdInt8>(VdmPropertyType::kMap): {
      const OdInt8 keyType = filer->rdInt8();
      return makeMap(keyType, filer->rdInt8());
    }
    default:
      return makeElement(type);
  }
}

}  // namespace

VdmPropertyDataPtr VdmPropertyData::createFromDwg(OdDbDwgFiler* filer, int config) {
  return createFromDwg(filer, config, filer->rdInt8());
}

VdmPropertyDataPtr VdmPropertyData::createFromDwg(OdDbDwgFiler* filer, int config, OdInt8 type) {
  VdmPropertyDataPtr created(makeContainer(filer, type));
  if (created.isNull() || !created->readValue(filer, config)) return VdmPropertyDataPtr();
  return created;
}
