// Filing of single values: plain types, arrays, and the choice of a type by its number.
#include "vdm_db/properties/vdm_property_data.h"

#include <string>

#include "vdm_db/properties/vdm_property_encoding.h"
#include "vdm_utils/vdmc_assert.h"

VdmPropertyData::~VdmPropertyData() = default;

bool VdmPropertyData::isMapped() const { return false; }
bool VdmPropertyData::isOutOfDate() const { return true; }
void VdmPropertyData::updateMapped() {}
bool VdmPropertyData::reset() { return false; }

// ---- Nesting

namespace {

thread_local int nestingDepth = 0;

}  // namespace

VdmNestingGuard::VdmNestingGuard(OdResult codeBeyondLimit) {
  if (nestingDepth >= VdmPropertyData::kMaxNesting) {
    throw OdError(codeBeyondLimit,
                  OdString("property values nest deeper than " +
                           std::to_string(VdmPropertyData::kMaxNesting) + " levels"));
  }
  ++nestingDepth;
}

VdmNestingGuard::~VdmNestingGuard() { --nestingDepth; }

// ---- Elements that are more than one primitive

bool vdmIsLeftOut(const OdDbDwgFiler* filer, const OdDbObjectId& id, int config) {
  constexpr int kDropErased = 1;
  return (config & kDropErased) != 0 && filer->filerType() == OdDbDwgFiler::kFileFiler &&
         !id.isNull() && id.isErased();
}

template <>
void VdmElementEncoding<OdDbTypedId>::write(OdDbDwgFiler* filer, const OdDbTypedId& value,
                                            int config) {
  filer->wrInt8(static_cast<OdInt8>(value.type));
  const OdDbObjectId id = vdmIsLeftOut(filer, value.id, config) ? OdDbObjectId() : value.id;
  switch (value.type) {
    case OdDb::kSoftPointerRef:
      return filer->wrSoftPointerId(id);
    case OdDb::kHardPointerRef:
      return filer->wrHardPointerId(id);
    case OdDb::kSoftOwnershipRef:
      return filer->wrSoftOwnershipId(id);
    case OdDb::kHardOwnershipRef:
      return filer->wrHardOwnershipId(id);
  }
}

template <>
OdDbTypedId VdmElementEncoding<OdDbTypedId>::read(OdDbDwgFiler* filer, int) {
  const OdInt8 type = filer->rdInt8();
  switch (type) {
    case OdDb::kSoftPointerRef:
      return {filer->rdSoftPointerId(), OdDb::kSoftPointerRef};
    case OdDb::kHardPointerRef:
      return {filer->rdHardPointerId(), OdDb::kHardPointerRef};
    case OdDb::kSoftOwnershipRef:
      return {filer->rdSoftOwnershipId(), OdDb::kSoftOwnershipRef};
    case OdDb::kHardOwnershipRef:
      return {filer->rdHardOwnershipId(), OdDb::kHardOwnershipRef};
    default:
      throw OdError(eCorruptData, OdString("reference type " + std::to_string(type) +
                                           " of a typed id, not 0 to 3"));
  }
}

template <>
void VdmElementEncoding<VdmBlob>::write(OdDbDwgFiler* filer, const VdmBlob& value, int) {
  filer->wrInt32(static_cast<OdInt32>(value.size()));
  if (!value.empty()) filer->wrBytes(value.data(), static_cast<OdUInt32>(value.size()));
}

template <>
VdmBlob VdmElementEncoding<VdmBlob>::read(OdDbDwgFiler* filer, int) {
  // Where the filer cannot tell what is left, a size beyond this is taken for damage.
  constexpr OdUInt32 kMaxUncheckedSize = 1u << 28;
  const OdUInt32 size = filer->rdCount(1);
  if (size > kMaxUncheckedSize && filer->bytesLeft() == ~OdUInt64{0})
    throw OdError(eCorruptData, OdString("a blob of " + std::to_string(size) + " bytes"));
  VdmBlob blob(size);
  if (size > 0) filer->rdBytes(blob.data(), size);
  return blob;
}

template <>
void VdmElementEncoding<VdmPropertyDataPtr>::write(OdDbDwgFiler* filer,
                                                   const VdmPropertyDataPtr& value, int config) {
  if (value.isNull()) return filer->wrInt8(0);
  const VdmNestingGuard guard(eLimitExceeded);
  value->writeToDwg(filer, config);
}

template <>
VdmPropertyDataPtr VdmElementEncoding<VdmPropertyDataPtr>::read(OdDbDwgFiler* filer, int config) {
  const VdmNestingGuard guard(eCorruptData);
  return VdmPropertyData::createFromDwg(filer, config);
}

// ---- Whole values

void vdmReportWrongType(const char* expectation, int line) {
  vdmcCallAssert(expectation, OdString(), "vdm_db/vdm_properties", line);
}

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
    if constexpr (VdmPlainType<K>)
      return vdmMakeMap<K>(valueType);
    else
      return nullptr;
  });
}

VdmPropertyData* makeElement(OdInt8 type) {
  return vdmMakeByNumber(type, []<class E>() -> VdmPropertyData* {
    if constexpr (VdmPropertyValue<E>)
      return new VdmPropertyDataContainer<E>;
    else
      return nullptr;
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

// ---- Instantiations

template struct VDM_DB_EXPORT VdmPropertyEncoding<OdString>;
template struct VDM_DB_EXPORT VdmPropertyEncoding<OdLong>;
template struct VDM_DB_EXPORT VdmPropertyEncoding<double>;
template struct VDM_DB_EXPORT VdmPropertyEncoding<bool>;
template struct VDM_DB_EXPORT VdmPropertyEncoding<signed char>;
template struct VDM_DB_EXPORT VdmPropertyEncoding<OdDbHandle>;
template struct VDM_DB_EXPORT VdmPropertyEncoding<OdDbTypedId>;
template struct VDM_DB_EXPORT VdmPropertyEncoding<VdmBlob>;
template struct VDM_DB_EXPORT VdmPropertyEncoding<VdmArray<VdmPropertyDataPtr>>;
template struct VDM_DB_EXPORT VdmPropertyEncoding<VdmArray<OdString>>;
template struct VDM_DB_EXPORT VdmPropertyEncoding<VdmArray<OdLong>>;
template struct VDM_DB_EXPORT VdmPropertyEncoding<VdmArray<double>>;
template struct VDM_DB_EXPORT VdmPropertyEncoding<VdmArray<bool>>;
template struct VDM_DB_EXPORT VdmPropertyEncoding<VdmArray<signed char>>;
template struct VDM_DB_EXPORT VdmPropertyEncoding<VdmArray<OdDbHandle>>;
template struct VDM_DB_EXPORT VdmPropertyEncoding<VdmArray<OdDbTypedId>>;
template struct VDM_DB_EXPORT VdmPropertyEncoding<VdmArray<VdmBlob>>;
