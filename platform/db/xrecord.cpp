// OdDbXrecord: the chain and its filing.
#include "platform/db/xrecord.h"

#include <string>

#include "platform/base/error.h"

OD_RX_DEFINE_DB(OdDbXrecord, OdDbObject, L"OdDbXrecord", 0, 0, 0, L"XRECORD", OdString())

namespace {

using Kind = OdResBuf::Kind;

constexpr OdUInt8 kVersion = 1;
constexpr int kFirstXDataCode = 1000;
constexpr int kSubclassCode = 100;
constexpr int kMergeStyleCode = 280;

bool isXrecordCode(int code) {
  return code > 0 && code != kSubclassCode && code < kFirstXDataCode &&
         OdResBuf::kindOf(code) != Kind::kNone;
}

bool isMergeStyle(OdInt32 number) {
  return number >= OdDb::kDrcNotApplicable && number <= OdDb::kDrcUnmangleName;
}

// A point is three groups: its code, code + 10 and code + 20.
void writeGroup(OdDbDxfFiler* filer, const OdResBuf& value) {
  const int code = value.restype();
  switch (OdResBuf::kindOf(code)) {
    case Kind::kNone:
      return;
#define OD_RES_BUF_PRIMITIVE(Name, Type, Argument, text) \
  case Kind::k##Name:                                    \
    return filer->wr##Name(code, value.get##Name());
#include "platform/filer/res_buf_rows.inc"
    case Kind::kPoint: {
      const OdGePoint3d point = value.getPoint3d();
      filer->wrDouble(code, point.x);
      filer->wrDouble(code + 10, point.y);
      return filer->wrDouble(code + 20, point.z);
    }
    case Kind::kHandle:
      return filer->wrHandle(code, value.getHandle());
    case Kind::kObjectId:
      return filer->wrObjectId(code, value.getObjectId());
    case Kind::kBinary: {
      const OdBinaryData& bytes = value.getBinaryChunk();
      return filer->wrBinaryChunk(code, bytes.asArrayPtr(), bytes.size());
    }
  }
}

double readCoordinate(OdDbDxfFiler* filer, int code) {
  const int found = filer->nextItem();
  if (found == code) return filer->rdDouble();
  throw OdError(eCorruptData, OdString("code " + std::to_string(found) + " where coordinate " +
                                       std::to_string(code) + " is due"));
}

void readGroup(OdDbDxfFiler* filer, OdResBuf& value) {
  const int code = value.restype();
  switch (OdResBuf::kindOf(code)) {
    case Kind::kNone:
      return;
#define OD_RES_BUF_PRIMITIVE(Name, Type, Argument, text) \
  case Kind::k##Name:                                    \
    return value.set##Name(filer->rd##Name());
#include "platform/filer/res_buf_rows.inc"
    case Kind::kPoint: {
      OdGePoint3d point;
      point.x = filer->rdDouble();
      point.y = readCoordinate(filer, code + 10);
      point.z = readCoordinate(filer, code + 20);
      return value.setPoint3d(point);
    }
    case Kind::kHandle:
      return value.setHandle(filer->rdHandle());
    case Kind::kObjectId:
      return value.setObjectId(filer->rdObjectId());
    case Kind::kBinary: {
      OdBinaryData bytes;
      filer->rdBinaryChunk(bytes);
      return value.setBinaryChunk(bytes);
    }
  }
}

}  // namespace

OdResBufPtr OdDbXrecord::rbChain() const {
  assertReadEnabled();
  return m_chain.isNull() ? OdResBufPtr() : m_chain->copyChain();
}

OdResult OdDbXrecord::setFromRbChain(const OdResBuf* chain) {
  for (OdResBufPtr element = chain; !element.isNull(); element = element->next()) {
    if (!isXrecordCode(element->restype())) return eInvalidInput;
  }
  OdResBufPtr copy = chain == nullptr ? OdResBufPtr() : chain->copyChain();
  assertWriteEnabled();
  m_chain = std::move(copy);
  return eOk;
}

OdDb::DuplicateRecordCloning OdDbXrecord::mergeStyle() const { return read(m_mergeStyle); }

void OdDbXrecord::setMergeStyle(OdDb::DuplicateRecordCloning style) {
  if (!isMergeStyle(style)) {
    throw OdError(eInvalidInput, OdString("merge style " + std::to_string(style)));
  }
  assign(m_mergeStyle, style);
}

// ---- Filing
//
//   version        uint8
//   merge style    uint8     OdDb::DuplicateRecordCloning
//   chain          see OdResBuf::dwgOutChain

void OdDbXrecord::dwgOutFields(OdDbDwgFiler* filer) const {
  OdDbObject::dwgOutFields(filer);
  filer->wrUInt8(kVersion);
  filer->wrUInt8(static_cast<OdUInt8>(m_mergeStyle));
  OdResBuf::dwgOutChain(filer, m_chain);
}

OdResult OdDbXrecord::dwgInFields(OdDbDwgFiler* filer) {
  const OdResult result = OdDbObject::dwgInFields(filer);
  if (result != eOk) return result;
  if (filer->rdUInt8() != kVersion) return eUnsupportedVersion;
  const OdUInt8 style = filer->rdUInt8();
  if (!isMergeStyle(style)) return eCorruptData;
  m_mergeStyle = static_cast<OdDb::DuplicateRecordCloning>(style);
  m_chain = OdResBuf::dwgInChain(filer);
  for (OdResBufPtr element = m_chain; !element.isNull(); element = element->next()) {
    if (!isXrecordCode(element->restype())) return eCorruptData;
  }
  return eOk;
}

// Groups: 280 merge style first, then the elements, to the next 0 or 100 group or the end.

void OdDbXrecord::dxfOutFields(OdDbDxfFiler* filer) const {
  OdDbObject::dxfOutFields(filer);
  filer->wrUInt8(kMergeStyleCode, static_cast<OdUInt8>(m_mergeStyle));
  for (OdResBufPtr element = m_chain; !element.isNull(); element = element->next()) {
    writeGroup(filer, *element);
  }
}

OdResult OdDbXrecord::dxfInFields(OdDbDxfFiler* filer) {
  const OdResult result = OdDbObject::dxfInFields(filer);
  if (result != eOk) return result;
  if (filer->atEOF() || filer->nextItem() != kMergeStyleCode) return eCorruptData;
  const OdUInt8 style = filer->rdUInt8();
  if (!isMergeStyle(style)) return eCorruptData;
  OdResBufPtr head;
  OdResBufPtr tail;
  while (!filer->atEOF()) {
    const int code = filer->nextItem();
    if (code == 0 || code == kSubclassCode) {
      filer->pushBackItem();
      break;
    }
    if (!isXrecordCode(code)) return eCorruptData;
    OdResBufPtr element = OdResBuf::newRb(code);
    readGroup(filer, *element);
    if (tail.isNull()) {
      head = element;
    } else {
      tail->setNext(element);
    }
    tail = element;
  }
  m_mergeStyle = static_cast<OdDb::DuplicateRecordCloning>(style);
  m_chain = head;
  return eOk;
}

std::size_t OdDbXrecord::approximateSize() const {
  std::size_t bytes = OdDbObject::approximateSize();
  for (OdResBufPtr element = m_chain; !element.isNull(); element = element->next()) {
    bytes += sizeof(OdResBuf);
  }
  return bytes;
}
