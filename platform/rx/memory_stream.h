// Streams over memory: one that grows, and one over memory of the caller.
#pragma once

#include "platform/rx/stream_buf.h"

/// A stream that grows in memory as it is written.
class OD_API OdMemoryStream : public OdStreamBuf {
  OD_RX_DECLARE_MEMBERS(OdMemoryStream)

  /// Grows in multiples of `pageSize` bytes at least; raises OdError(eInvalidInput) for 0.
  static OdSmartPtr<OdMemoryStream> createNew(OdUInt32 pageSize = 0x800);

  /// The bytes in one piece; null when there are none. Valid until the next write.
  [[nodiscard]] virtual const OdUInt8* data() const = 0;
  virtual void reserve(OdUInt64 size) = 0;
};
using OdMemoryStreamPtr = OdSmartPtr<OdMemoryStream>;

/// A stream over memory of the caller, which must outlive it. Its length is fixed; truncate()
/// raises OdError(eNotImplementedForClass).
class OD_API OdFlatMemStream : public OdStreamBuf {
  OD_RX_DECLARE_MEMBERS(OdFlatMemStream)

  static OdSmartPtr<OdFlatMemStream> createNew(void* memory, OdUInt64 size);
};
using OdFlatMemStreamPtr = OdSmartPtr<OdFlatMemStream>;
