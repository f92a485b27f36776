// Bases of filers that only write or only read: the other half raises eNotImplementedForClass.
#pragma once

#include "platform/filer/dwg_filer.h"

/// Reading raises.
class OdDbWriteOnlyFiler : public OdDbDwgFiler {
 public:
  void seek(OdInt64 offset, OdDb::FilerSeekType from) override;
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
  OdGePoint2d rdPoint2d() override;
  OdGePoint3d rdPoint3d() override;
  OdGeVector2d rdVector2d() override;
  OdGeVector3d rdVector3d() override;
  OdGeScale3d rdScale3d() override;
};

/// Writing raises.
class OdDbReadOnlyFiler : public OdDbDwgFiler {
 public:
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
  void wrPoint2d(const OdGePoint2d& value) override;
  void wrPoint3d(const OdGePoint3d& value) override;
  void wrVector2d(const OdGeVector2d& value) override;
  void wrVector3d(const OdGeVector3d& value) override;
  void wrScale3d(const OdGeScale3d& value) override;
};
