// VdmFlatFiler: filer over plain memory, for bags and objects that travel as bytes.
#pragma once

#include <vector>

#include "platform/filer/dwg_filer.h"
#include "platform/filer/res_buf.h"
#include "platform/rx/stream_buf.h"
#include "vdm_db/common/vdm_db_export.h"

// The bytes of the primitives, little-endian but for handles:
//
//   bool, int8, uint8   1       int16 2, int32 4, int64 8
//   double              8       IEEE 754
//   point, vector       16, 24  two or three doubles; a scale has three
//   string              2 + n   length n as int16, then n bytes of UTF-8
//   bytes               n       without their length
//   handle              8       the most significant byte first
//   ids                 0       not kept: they read as null, so a handle is what keeps a reference
//
// Reading takes a double that is zero, subnormal, infinite or not a number as 0.0, each coordinate
// by itself. A string of 32768 bytes or more cannot be read back: OdError(eCorruptData); of 65536
// bytes or more it is not written: OdError(eLimitExceeded). Reading past the end raises
// OdError(eEndOfStream).
//
// A local object of the call that uses it. It has no stream at first: clear(), setBinaryData(),
// setBinaryChunk() or setStream() give it one. A class derived from it that overrides wrInt16 and
// wrBytes sees strings go through them.
class VDM_DB_EXPORT VdmFlatFiler : public OdStaticRxObject<OdDbDwgFiler> {
 public:
  // From this size on bytes do not travel in extended data.
  static constexpr OdUInt32 kMaxChunkSize = 16000;

  VdmFlatFiler();
  ~VdmFlatFiler() override;

  // Reads a copy of the bytes.
  void setBinaryData(const char* data, unsigned int size);
  // Reads the bytes of the records of code 1004 from `rb` on, up to the first of another code.
  // False, nothing being changed, when they hold none.
  bool setBinaryChunk(const OdResBuf* rb);
  // Begins an empty stream for writing; gives this filer.
  OdDbDwgFiler* clear();
  void setStream(OdStreamBuf* stream) { m_stream = stream; }

  // All bytes of the stream; the position is at the end afterwards.
  [[nodiscard]] std::vector<char> getBinaryData();
  [[nodiscard]] unsigned int getBinaryDataSize() const;
  // Appends the bytes to the chain as one record of code 1004. Nothing
  // happens when `rb` is null or there are kMaxChunkSize bytes or more.
  void appendToResBuf(OdResBuf* rb);
  [[nodiscard]] OdStreamBuf& io() const { return *m_stream; }
  // A string that cannot be read back was written.
  [[nodiscard]] bool hasUnreadableString() const { return m_hasUnreadableString; }

  [[nodiscard]] FilerType filerType() const override { return kCopyFiler; }
  [[nodiscard]] OdDbFilerController* controller() const override { return nullptr; }
  void seek(OdInt64 offset, OdDb::FilerSeekType from) override;
  // Cut to 32 bits.
  [[nodiscard]] OdUInt64 tell() const override;
  [[nodiscard]] OdUInt64 bytesLeft() const override;

#define OD_DWG_VALUE(Name, Value, Argument) \
  Value rd##Name() override;                \
  void wr##Name(Argument value) override;
#include "platform/filer/dwg_primitive_rows.inc"
  void rdBytes(void* buffer, OdUInt32 size) override;
  void wrBytes(const void* buffer, OdUInt32 size) override;

 private:
  template <class T>
  T take();
  template <class T>
  T takeCoordinates();
  template <class T>
  void put(const T& value);

  OdStreamBufPtr m_stream;
  std::vector<char> m_buffer;  // what is being read
  bool m_hasUnreadableString = false;
};
