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

// ---- Reading

bool TransDwgFiler::rdBool() {
  m_filer->nextItem();
  return m_filer->rdBool();
}

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

OdInt8 TransDwgFiler::rdInt8() {
  m_filer->nextItem();
  return m_filer->rdInt8();
}

OdUInt8 TransDwgFiler::rdUInt8() {
  m_filer->nextItem();
  return m_filer->rdUInt8();
}

OdInt16 TransDwgFiler::rdInt16() {
  m_filer->nextItem();
  return m_filer->rdInt16();
}

OdInt32 TransDwgFiler::rdInt32() {
  m_filer->nextItem();
  return m_filer->rdInt32();
}

OdInt64 TransDwgFiler::rdInt64() {
  m_filer->nextItem();
  return m_filer->rdInt64();
}

double TransDwgFiler::rdDouble() {
  return m_filer->nextItem() == kReal ? m_filer->rdDouble() : 0.0;
}

OdDbHandle TransDwgFiler::rdDbHandle() {
  return m_filer->nextItem() == kHandle ? m_filer->rdHandle() : OdDbHandle();
}

// ---- Writing

void TransDwgFiler::wrBool(bool value) { m_filer->wrBool(kBool, value); }
void TransDwgFiler::wrString(const OdString& value) { m_filer->wrString(kText, value); }
void TransDwgFiler::wrBytes(const void* buffer, OdUInt32 size) {
  m_filer->wrBinaryChunk(kChunk, static_cast<const OdUInt8*>(buffer), size);
}
void TransDwgFiler::wrInt8(OdInt8 value) { m_filer->wrInt8(kInt8, value); }
void TransDwgFiler::wrUInt8(OdUInt8 value) { m_filer->wrUInt8(kInt8, value); }
void TransDwgFiler::wrInt16(OdInt16 value) { m_filer->wrInt16(kInt16, value); }
void TransDwgFiler::wrInt32(OdInt32 value) { m_filer->wrInt32(kInt32, value); }
void TransDwgFiler::wrInt64(OdInt64 value) { m_filer->wrInt64(kInt64, value); }
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
