// TransDwgFiler: field code of streams, spoken through groups of a DXF filer.
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

  FilerType filerType() const override { return kFileFiler; }
  OdInt32 dwgVersion() const override { return m_filer->dwgVersion(); }
  OdDbDatabase* database() const override { return m_filer->database(); }
  void seek(OdInt64 offset, OdDb::FilerSeekType from) override;
  OdUInt64 tell() const override { return 0; }

  bool rdBool() override;
  OdString rdString() override;
  void rdBytes(void* buffer, OdUInt32 size) override;
  OdInt8 rdInt8() override;
  OdUInt8 rdUInt8() override;
  OdInt16 rdInt16() override;
  OdInt32 rdInt32() override;
  OdInt64 rdInt64() override;
  double rdDouble() override;
  OdDbHandle rdDbHandle() override;
  OdDbObjectId rdSoftOwnershipId() override;
  OdDbObjectId rdHardOwnershipId() override;
  OdDbObjectId rdSoftPointerId() override;
  OdDbObjectId rdHardPointerId() override;
  OdGePoint2d rdPoint2d() override { return OdGePoint2d(); }
  OdGePoint3d rdPoint3d() override { return OdGePoint3d(); }
  OdGeVector2d rdVector2d() override { return OdGeVector2d(); }
  OdGeVector3d rdVector3d() override { return OdGeVector3d(); }
  OdGeScale3d rdScale3d() override { return OdGeScale3d(1.0, 1.0, 1.0); }

  void wrBool(bool value) override;
  void wrString(const OdString& value) override;
  void wrBytes(const void* buffer, OdUInt32 size) override;
  void wrInt8(OdInt8 value) override;
  void wrUInt8(OdUInt8 value) override;
  void wrInt16(OdInt16 value) override;
  void wrInt32(OdInt32 value) override;
  void wrInt64(OdInt64 value) override;
  void wrDouble(double value) override;
  void wrDbHandle(const OdDbHandle& value) override;
  void wrSoftOwnershipId(const OdDbObjectId& value) override;
  void wrHardOwnershipId(const OdDbObjectId& value) override;
  void wrSoftPointerId(const OdDbObjectId& value) override;
  void wrHardPointerId(const OdDbObjectId& value) override;
  void wrPoint2d(const OdGePoint2d&) override {}
  void wrPoint3d(const OdGePoint3d&) override {}
  void wrVector2d(const OdGeVector2d&) override {}
  void wrVector3d(const OdGeVector3d&) override {}
  void wrScale3d(const OdGeScale3d&) override {}

 private:
  OdDbObjectId readId(int code);

  OdDbDxfFiler* m_filer;
};
