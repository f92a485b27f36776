// Translation of stream primitives to DXF groups.
#include "vdm_db/properties/vdm_trans_dwg_filer.h"

#include <algorithm>
#include <array>

namespace {

enum GroupCode : int {
  kText = 1,
  kHandle = 5,
  kReal = 40,
  kInt16 = 70,
  kInt32 = 90,
  kInt64 = 160,
  kInt8 = 280,
  kBool = 290,
  kChunk = 310,
};

// The group of an object id, by OdDb::ReferenceType.
constexpr std::array<int, 4> kIdGroups = {
    330,  // kSoftPointerRef
    340,  // kHardPointerRef
    350,  // kSoftOwnershipRef
    360,  // kHardOwnershipRef
};

}  // namespace

void TransDwgFiler::seek(OdInt64, OdDb::FilerSeekType) {}

// ---- Numbers: whatever group comes next is read

#define VDM_TRANS_NUMBER(Name, Value, code) \
  Value TransDwgFiler::rd##Name() {         \
    m_filer->nextItem();                    \
    return m_filer->rd##Name();             \
  }                                         \
  void TransDwgFiler::wr##Name(Value value) { m_filer->wr##Name(code, value); }
VDM_TRANS_NUMBER(Bool, bool, kBool)
VDM_TRANS_NUMBER(Int8, OdInt8, kInt8)
VDM_TRANS_NUMBER(UInt8, OdUInt8, kInt8)
VDM_TRANS_NUMBER(Int16, OdInt16, kInt16)
VDM_TRANS_NUMBER(Int32, OdInt32, kInt32)
VDM_TRANS_NUMBER(Int64, OdInt64, kInt64)
#undef VDM_TRANS_NUMBER

// ---- Reading

OdString TransDwgFiler::rdString() {
  return m_filer->nextItem() == kText ? m_filer->rdString() : OdString();
}

void TransDwgFiler::rdBytes(void* buffer, OdUInt32 size) {
  m_filer->nextItem();
  OdBinaryData chunk;
  m_filer->rdBinaryChunk(chunk);
  if (size != 0 && chunk.size() == size) {
    std::copy(chunk.cbegin(), chunk.cend(), static_cast<OdUInt8*>(buffer));
  }
}

double TransDwgFiler::rdDouble() {
  return m_filer->nextItem() == kReal ? m_filer->rdDouble() : 0.0;
}

OdDbHandle TransDwgFiler::rdDbHandle() {
  return m_filer->nextItem() == kHandle ? m_filer->rdHandle() : OdDbHandle();
}

// ---- Writing

void TransDwgFiler::wrString(const OdString& value) { m_filer->wrString(kText, value); }
void TransDwgFiler::wrBytes(const void* buffer, OdUInt32 size) {
  m_filer->wrBinaryChunk(kChunk, static_cast<const OdUInt8*>(buffer), size);
}
void TransDwgFiler::wrDouble(double value) { m_filer->wrDouble(kReal, value); }
void TransDwgFiler::wrDbHandle(const OdDbHandle& value) { m_filer->wrHandle(kHandle, value); }

// ---- Ids

OdDbObjectId TransDwgFiler::readId(OdDb::ReferenceType type) {
  return m_filer->nextItem() == kIdGroups[type] ? m_filer->rdObjectId() : OdDbObjectId();
}

#define OD_DWG_VALUE(Name, Value, Argument)
#define OD_DWG_GEOMETRY(Name, Value)
#define OD_DWG_ID(Name, type)                                     \
  OdDbObjectId TransDwgFiler::rd##Name() { return readId(type); } \
  void TransDwgFiler::wr##Name(const OdDbObjectId& value) {       \
    m_filer->wrObjectId(kIdGroups[type], value);                  \
  }
#include "platform/filer/dwg_primitive_rows.inc"
