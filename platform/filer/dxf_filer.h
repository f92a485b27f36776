// OdDbDxfFiler: grouped reading and writing, a numeric group code before each value.
#pragma once

#include "platform/base/array.h"
#include "platform/base/handle.h"
#include "platform/base/string.h"
#include "platform/base/types.h"
#include "platform/filer/object_id.h"
#include "platform/rx/rx_macros.h"
#include "platform/rx/rx_object.h"
#include "platform/rx/smart_ptr.h"

/// Abstract grouped filer. Reading: nextItem() moves to the next group and returns its code, one of
/// the rd calls then takes the value of that group (and may be repeated). Writing: each
/// wr call makes one group.
class OdDbDxfFiler : public OdRxObject {
 public:
  OD_RX_DECLARE_MEMBERS(OdDbDxfFiler)

  static constexpr int kDfltPrec = -1;

  [[nodiscard]] virtual OdInt32 dwgVersion() const { return 33; }
  [[nodiscard]] virtual OdDbDatabase* database() const { return nullptr; }
  /// No further group.
  [[nodiscard]] virtual bool atEOF() = 0;
  /// Moves to the next group and returns its code; raises eEndOfStream at the end.
  virtual int nextItem() = 0;
  /// Steps back by one group, once.
  virtual void pushBackItem() = 0;

  virtual OdString rdString() = 0;
  virtual bool rdBool() = 0;
  virtual OdInt8 rdInt8() = 0;
  virtual OdUInt8 rdUInt8() = 0;
  virtual OdInt16 rdInt16() = 0;
  virtual OdInt32 rdInt32() = 0;
  virtual OdInt64 rdInt64() = 0;
  virtual double rdDouble() = 0;
  virtual void rdBinaryChunk(OdBinaryData& value) = 0;
  virtual OdDbHandle rdHandle() = 0;
  virtual OdDbObjectId rdObjectId() = 0;

  virtual void wrString(int code, const OdString& value) = 0;
  virtual void wrBool(int code, bool value) = 0;
  virtual void wrInt8(int code, OdInt8 value) = 0;
  virtual void wrUInt8(int code, OdUInt8 value) = 0;
  virtual void wrInt16(int code, OdInt16 value) = 0;
  virtual void wrInt32(int code, OdInt32 value) = 0;
  virtual void wrInt64(int code, OdInt64 value) = 0;
  virtual void wrDouble(int code, double value, int precision = kDfltPrec) = 0;
  virtual void wrBinaryChunk(int code, const OdUInt8* data, OdUInt32 size) = 0;
  virtual void wrHandle(int code, const OdDbHandle& value) = 0;
  virtual void wrObjectId(int code, const OdDbObjectId& value) = 0;
};
using OdDbDxfFilerPtr = OdSmartPtr<OdDbDxfFiler>;
