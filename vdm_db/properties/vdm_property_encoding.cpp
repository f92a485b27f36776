// Encodings of single elements, the limit of nesting, and the encodings of all types but maps.
//
// A value is encoded by its static type: VdmValueEncoding<T> of the header takes an array or a map
// apart into elements, VdmElementEncoding<E> files one element by one primitive of the filer. Only
// a nested value chooses its type as it runs, and it alone recurses; VdmNestingGuard counts these
// levels for the thread, so that damaged data can neither exhaust the stack nor make a value that
// could not be written again. Every count is compared with the bytes that are left before memory
// is reserved by it, and what is reserved is bounded where the filer cannot tell what is left. A
// value under construction replaces the old one only when it is complete. Each encoding takes one
// pass; a map read in order is inserted at its end without a search.
#include "vdm_db/properties/vdm_property_encoding.h"

#include <string>

#include "vdm_db/properties/vdm_property_type_rows.h"
#include "vdm_utils/vdmc_assert.h"

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
  if (size > kMaxUncheckedSize && filer->bytesLeft() == ~OdUInt64{0}) {
    throw OdError(eCorruptData, OdString("a blob of " + std::to_string(size) + " bytes"));
  }
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

// ---- Reports

void vdmReportWrongType(const char* expectation, int line) {
  vdmcCallAssert(expectation, OdString(), "vdm_db/vdm_properties", line);
}

// ---- Instantiations

#define VDM_INSTANTIATE_ENCODING(T) template struct VDM_DB_EXPORT VdmPropertyEncoding<T>;
VDM_SINGLE_AND_ARRAY_TYPE_ROWS(VDM_INSTANTIATE_ENCODING)
#undef VDM_INSTANTIATE_ENCODING
