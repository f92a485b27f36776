// The stored form of constraints, within the record of their manager.
#include <algorithm>

#include "platform/base/error.h"
#include "vdm_db/common/vdm_constants.h"
#include "vdm_db/constraints/vdm_constraint.h"
#include "vdm_db/properties/vdm_dwg_utils.h"

namespace {

constexpr OdInt16 kVersion = 3;
constexpr OdInt16 kMapVersion = 2;
// Ids may take no bytes in a stream, so that its length does not limit a count of them.
constexpr OdUInt32 kMaxArguments = 1u << 20;
constexpr OdUInt32 kMaxReserve = 1u << 12;

OdUInt32 readArgumentCount(OdDbDwgFiler* filer) {
  const OdUInt32 count = filer->rdCount(0);
  if (count <= kMaxArguments) return count;
  throw OdError(eCorruptData, OdString().format(L"%u arguments of a constraint, more than %u",
                                                count, kMaxArguments));
}

}  // namespace

// A reader that does not know a soft version sees type 0 and leaves the constraint alone.
OdLong VdmConstraint::streamType() const {
  OdLong softVersion = 0;
  OdLong exType = 0;
  const bool isMarked = m_properties.getProperty(kVdmSoftVersion, softVersion) && softVersion > 0 &&
                        m_properties.getProperty(kVdmExType, exType);
  return isMarked && (m_type == 0 || m_type == exType) ? 0 : m_type;
}

// ---- Record
//
//   1  version      wrInt16          3
//   2  name         wrString
//   3  stream type  wrInt32          0 where only a newer reader understands the constraint
//   4  reserved     wrInt32          kept as it was read
//   5  value        wrDouble
//   6  count        wrInt32          of arguments
//   7  arguments    wrHardPointerId  each; read as soft pointers
//   8               wrHardPointerId  null; read as a soft pointer and dropped
//   9  enabled      wrBool
//   10 properties   VdmProperties::dwgOutFields
//
// Version 2 has the properties as a map of strings, older ones have none.

void VdmConstraint::dwgOutFields(OdDbDwgFiler* filer) const {
  filer->wrInt16(kVersion);
  filer->wrString(m_name);
  filer->wrInt32(streamType());
  filer->wrInt32(m_fileReserved);
  filer->wrDouble(m_userValue);
  filer->wrInt32(static_cast<OdInt32>(m_arguments.size()));
  for (const OdDbObjectId& argument : m_arguments) filer->wrHardPointerId(argument);
  filer->wrHardPointerId(OdDbObjectId::kNull);
  filer->wrBool(m_enabled);
  m_properties.dwgOutFields(filer);
}

OdResult VdmConstraint::dwgInFields(OdDbDwgFiler* filer) {
  const OdInt16 version = filer->rdInt16();
  if (version > kVersion) return eCorruptData;
  m_name = filer->rdString();
  m_type = filer->rdInt32();
  m_fileReserved = filer->rdInt32();
  m_userValue = filer->rdDouble();
  const OdUInt32 count = readArgumentCount(filer);
  m_arguments.clear();
  m_arguments.reserve(std::min(count, kMaxReserve));
  for (OdUInt32 i = 0; i < count; ++i) m_arguments.append(filer->rdSoftPointerId());
  static_cast<void>(filer->rdSoftPointerId());
  m_enabled = filer->rdBool();
  if (const OdResult result = readProperties(filer, version); result != eOk) return result;
  restoreGeometryTypes();
  restoreType();
  return eOk;
}

OdResult VdmConstraint::readProperties(OdDbDwgFiler* filer, OdInt16 version) {
  if (version > kMapVersion) return m_properties.dwgInFields(filer);
  m_nodeId = 0;
  m_properties.clear();
  const bool isRead =
      version < kMapVersion || vdmu::dwgInOldPropertyMap(filer, m_properties) == eOk;
  m_properties.removeProperty(nodeIdKey());
  m_properties.mapProperty(nodeIdKey(), &m_nodeId);
  return isRead ? eOk : eCorruptData;
}

void VdmConstraint::restoreGeometryTypes() {
  m_defaultGeometry.clear();
  if (m_properties.getProperty(kVdmArrayRefCsType, m_defaultGeometry)) return;
  m_defaultGeometry.resize(m_arguments.size(), static_cast<OdLong>(vdmu::kDefaultGeometryNone));
}

void VdmConstraint::restoreType() {
  OdLong exType = 0;
  if (m_type != 0 || !m_properties.getProperty(kVdmExType, exType)) return;
  if (isSupportedVersion() && exType <= kNewestType) m_type = exType;
}
