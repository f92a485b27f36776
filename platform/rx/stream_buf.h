// The interface of byte streams.
#pragma once

#include "platform/base/export.h"
#include "platform/base/string.h"
#include "platform/rx/rx_macros.h"

namespace OdDb {
/// What an offset counts from.
enum FilerSeekType { kSeekFromStart = 0, kSeekFromCurrent = 1, kSeekFromEnd = 2 };
}  // namespace OdDb

/// A sequence of bytes with one position for reading and writing. One thread at a time.
class OD_API OdStreamBuf : public OdRxObject {
  OD_RX_DECLARE_MEMBERS(OdStreamBuf)

  [[nodiscard]] virtual OdString fileName() const;
  [[nodiscard]] virtual bool isEof() const = 0;
  /// The position, and the number of bytes in all.
  [[nodiscard]] virtual OdUInt64 tell() const = 0;
  [[nodiscard]] virtual OdUInt64 length() const = 0;
  /// Moves the position and returns it. Raises OdError(eInvalidInput), and stays, for a position
  /// before the start; OdError(eEndOfStream) for one after the end.
  virtual OdUInt64 seek(OdInt64 offset, OdDb::FilerSeekType whence) = 0;
  void rewind() { seek(0, OdDb::kSeekFromStart); }

  /// Reading what is not there raises OdError(eEndOfStream), and the position stays.
  virtual OdUInt8 getByte() = 0;
  virtual void getBytes(void* buffer, OdUInt64 count) = 0;
  virtual void putByte(OdUInt8 value) = 0;
  /// A stream that cannot take all the bytes takes none and raises: a flat stream eEndOfStream, a
  /// growing one eOutOfMemory.
  virtual void putBytes(const void* buffer, OdUInt64 count) = 0;
  /// Cuts the stream at the position.
  virtual void truncate() = 0;
};
using OdStreamBufPtr = OdSmartPtr<OdStreamBuf>;
