// OdDbDwgFiler: what all filers share.
#include "platform/filer/dwg_filer.h"

#include <string>

#include "platform/base/error.h"
#include "platform/filer/dxf_filer.h"

OD_RX_DEFINE_ABSTRACT(OdDbDwgFiler, OdRxObject, L"OdDbDwgFiler")
OD_RX_DEFINE_ABSTRACT(OdDbDxfFiler, OdRxObject, L"OdDbDxfFiler")

OdUInt32 OdDbDwgFiler::rdCount(OdUInt32 minBytes) {
  const OdInt32 count = rdInt32();
  if (count < 0) throw OdError(eCorruptData, OdString("count " + std::to_string(count)));
  const OdUInt64 wanted = static_cast<OdUInt64>(count) * minBytes;
  if (wanted > bytesLeft()) {
    throw OdError(eCorruptData, OdString("count " + std::to_string(count) + " of items of " +
                                         std::to_string(minBytes) + " bytes, " +
                                         std::to_string(bytesLeft()) + " bytes are left"));
  }
  return static_cast<OdUInt32>(count);
}

void OdDbDwgFiler::wrId(OdDb::ReferenceType type, const OdDbObjectId& value) {
  switch (type) {
    case OdDb::kSoftPointerRef:
      return wrSoftPointerId(value);
    case OdDb::kHardPointerRef:
      return wrHardPointerId(value);
    case OdDb::kSoftOwnershipRef:
      return wrSoftOwnershipId(value);
    case OdDb::kHardOwnershipRef:
      return wrHardOwnershipId(value);
  }
  throw OdError(eInvalidInput, OdString("reference type " + std::to_string(type)));
}

OdDbObjectId OdDbDwgFiler::rdId(OdDb::ReferenceType type) {
  switch (type) {
    case OdDb::kSoftPointerRef:
      return rdSoftPointerId();
    case OdDb::kHardPointerRef:
      return rdHardPointerId();
    case OdDb::kSoftOwnershipRef:
      return rdSoftOwnershipId();
    case OdDb::kHardOwnershipRef:
      return rdHardOwnershipId();
  }
  throw OdError(eInvalidInput, OdString("reference type " + std::to_string(type)));
}
