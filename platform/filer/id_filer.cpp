// OdDbIdFiler: values are counted, ids kept.
#include "platform/filer/id_filer.h"

void OdDbIdFiler::seek(OdInt64, OdDb::FilerSeekType) {}

void OdDbIdFiler::keep(const OdDbObjectId& id, OdDb::ReferenceType type) {
  ++m_position;
  if (!id.isNull()) m_ids.push_back({id, type});
}

void OdDbIdFiler::wrBytes(const void*, OdUInt32) { ++m_position; }

#define OD_DWG_VALUE(Name, Value, Argument) \
  void OdDbIdFiler::wr##Name(Argument) { ++m_position; }
#define OD_DWG_ID(Name, type) \
  void OdDbIdFiler::wr##Name(const OdDbObjectId& value) { keep(value, type); }
#include "platform/filer/dwg_primitive_rows.inc"
