// TransDwgFiler: code that files to streams, translated to groups of a DXF filer.
#pragma once

#include "platform/filer/dwg_filer.h"
#include "platform/filer/dxf_filer.h"
#include "vdm_db/common/vdm_db_export.h"

// A local object of the call that uses it; borrows the DXF filer. Each primitive is one group:
//
//   bool 290, string 1, bytes 310, int8 and uint8 280, int16 70, int32 90, int64 160, double 40,
//   handle 5, ids: soft ownership 350, hard ownership 360, soft pointer 330, hard pointer 340
//
// Each read takes the next group. Where its code is not the one above, strings, doubles, handles
// and ids read as empty, 0 or null; bool and integers take the value whatever the code. Bytes are
// copied only when the chunk has exactly the size asked for. Points, vectors and scales do not
// pass: nothing is written, zero (a scale of 1) is read.
class VDM_DB_EXPORT TransDwgFiler : public OdStaticRxObject<OdDbDwgFiler> {
 public:
  explicit TransDwgFiler(OdDbDxfFiler* filer) : m_filer(filer) {}

  [[nodiscard]] FilerType filerType() const override { return kFileFiler; }
  [[nodiscard]] OdInt32 dwgVersion() const override { return m_filer->dwgVersion(); }
  [[nodiscard]] OdDbDatabase* database() const override { return m_filer->database(); }
  void seek(OdInt64 offset, OdDb::FilerSeekType from) override;
  [[nodiscard]] OdUInt64 tell() const override { return 0; }

#define OD_DWG_VALUE(Name, Value, Argument) \
  Value rd##Name() override;                \
  void wr##Name(Argument value) override;
#define OD_DWG_GEOMETRY(Name, Value)            \
  Value rd##Name() override { return Value(); } \
  void wr##Name(const Value&) override {}
#include "platform/filer/dwg_primitive_rows.inc"
  void rdBytes(void* buffer, OdUInt32 size) override;
  void wrBytes(const void* buffer, OdUInt32 size) override;

 private:
  OdDbObjectId readId(OdDb::ReferenceType type);

  OdDbDxfFiler* m_filer;
};
