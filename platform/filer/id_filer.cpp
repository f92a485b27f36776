// OdDbIdFiler: values are counted, ids kept.
#include "platform/filer/id_filer.h"

void OdDbIdFiler::seek(OdInt64, OdDb::FilerSeekType) {}

void OdDbIdFiler::keep(const OdDbObjectId& id, OdDb::ReferenceType type) {
  ++m_position;
  if (!id.isNull()) m_ids.push_back({id, type});
}

void OdDbIdFiler::wrSoftOwnershipId(const OdDbObjectId& value) {
  keep(value, OdDb::kSoftOwnershipRef);
}
void OdDbIdFiler::wrHardOwnershipId(const OdDbObjectId& value) {
  keep(value, OdDb::kHardOwnershipRef);
}
void OdDbIdFiler::wrSoftPointerId(const OdDbObjectId& value) { keep(value, OdDb::kSoftPointerRef); }
void OdDbIdFiler::wrHardPointerId(const OdDbObjectId& value) { keep(value, OdDb::kHardPointerRef); }

void OdDbIdFiler::wrBool(bool) { ++m_position; }
void OdDbIdFiler::wrString(const OdString&) { ++m_position; }
void OdDbIdFiler::wrBytes(const void*, OdUInt32) { ++m_position; }
void OdDbIdFiler::wrInt8(OdInt8) { ++m_position; }
void OdDbIdFiler::wrUInt8(OdUInt8) { ++m_position; }
void OdDbIdFiler::wrInt16(OdInt16) { ++m_position; }
void OdDbIdFiler::wrInt32(OdInt32) { ++m_position; }
void OdDbIdFiler::wrInt64(OdInt64) { ++m_position; }
void OdDbIdFiler::wrDouble(double) { ++m_position; }
void OdDbIdFiler::wrDbHandle(const OdDbHandle&) { ++m_position; }
void OdDbIdFiler::wrPoint2d(const OdGePoint2d&) { ++m_position; }
void OdDbIdFiler::wrPoint3d(const OdGePoint3d&) { ++m_position; }
void OdDbIdFiler::wrVector2d(const OdGeVector2d&) { ++m_position; }
void OdDbIdFiler::wrVector3d(const OdGeVector3d&) { ++m_position; }
void OdDbIdFiler::wrScale3d(const OdGeScale3d&) { ++m_position; }
