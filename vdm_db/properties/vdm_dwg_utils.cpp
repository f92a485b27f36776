// Marks, id arrays and the old property map of streams.
#include "vdm_db/properties/vdm_dwg_utils.h"

#include <algorithm>
#include <array>

#include "platform/base/error.h"
#include "vdm_db/common/vdm_constants.h"
#include "vdm_db/properties/vdm_properties.h"

namespace vdmu {

// ---- Marks

void wrMark(OdDbDwgFiler* filer, short mark) {
  if (filer->filerType() != OdDbDwgFiler::kFileFiler) filer->wrInt16(mark);
}

void rdMark(OdDbDwgFiler* filer, short mark) {
  if (filer->filerType() == OdDbDwgFiler::kFileFiler || filer->rdInt16() == mark) return;
  throw OdError(
      OdString("Corrupted dwg stream: wrong mark found in dbFiler. Application can be unstable"));
}

// ---- Id arrays

namespace {

using WriteId = void (OdDbDwgFiler::*)(const OdDbObjectId&);
using ReadId = OdDbObjectId (OdDbDwgFiler::*)();

void writeIds(OdDbDwgFiler* filer, const OdDbObjectIdArray& ids, WriteId writeId) {
  filer->wrInt32(static_cast<OdInt32>(ids.size()));
  for (const OdDbObjectId& id : ids) (filer->*writeId)(id);
}

void readIds(OdDbDwgFiler* filer, OdDbObjectIdArray& ids, ReadId readId) {
  // A count that the filer cannot check reserves no more than this. Ids may take no bytes.
  constexpr OdUInt32 kMaxReserve = 1u << 16;
  const OdUInt32 count = filer->rdCount(0);
  ids.clear();
  ids.reserve(std::min(count, kMaxReserve));
  for (OdUInt32 i = 0; i < count; ++i) {
    const OdDbObjectId id = (filer->*readId)();
    if (!id.isNull()) ids.append(id);
  }
}

}  // namespace

void writeHardOwnershipIdArray(OdDbDwgFiler* filer, const OdDbObjectIdArray& ids) {
  writeIds(filer, ids, &OdDbDwgFiler::wrHardOwnershipId);
}
void writeSoftPointerIdArray(OdDbDwgFiler* filer, const OdDbObjectIdArray& ids) {
  writeIds(filer, ids, &OdDbDwgFiler::wrSoftPointerId);
}
void readHardOwnershipIdArray(OdDbDwgFiler* filer, OdDbObjectIdArray& ids) {
  readIds(filer, ids, &OdDbDwgFiler::rdHardOwnershipId);
}
void readSoftPointerIdArray(OdDbDwgFiler* filer, OdDbObjectIdArray& ids) {
  readIds(filer, ids, &OdDbDwgFiler::rdSoftPointerId);
}

// ---- Old property map

namespace {

void readOldPropertyMap(OdDbDwgFiler* filer, VdmProperties& properties) {
  // By position in the string that takes their place.
  static const std::array<OdString, 3> kOrientationKeys = {OdString("AngleFirstArgOrientation"),
                                                           OdString("AngleSecondArgOrientation"),
                                                           OdString("AngleThirdArgOrientation")};
  static const OdString kNegative("Negative");

  properties.clear();
  const OdInt32 count = filer->rdInt32();
  OdString orientations("+++");
  bool hasOrientation = false;
  for (OdInt32 i = 0; i < count; ++i) {
    const OdString key = filer->rdKey();
    const OdString value = filer->rdString();
    if (key.isEmpty()) continue;
    const auto known = std::find(kOrientationKeys.begin(), kOrientationKeys.end(), key);
    if (known == kOrientationKeys.end()) {
      properties.setProperty(key, value);
      continue;
    }
    hasOrientation = true;
    orientations.setAt(static_cast<int>(known - kOrientationKeys.begin()),
                       value == kNegative ? L'-' : L'+');
  }
  if (hasOrientation) properties.setProperty(kVdmAngleArgsOrientation, orientations);
}

}  // namespace

OdResult dwgInOldPropertyMap(OdDbDwgFiler* filer, VdmProperties& properties) {
  try {
    readOldPropertyMap(filer, properties);
    return eOk;
  } catch (const OdError&) {
    return eCorruptData;
  }
}

}  // namespace vdmu
