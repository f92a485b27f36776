// Bases of filers that only write or only read: the other half raises eNotImplementedForClass.
#pragma once

#include "platform/filer/dwg_filer.h"

/// Reading raises.
class OdDbWriteOnlyFiler : public OdDbDwgFiler {
 public:
  void seek(OdInt64 offset, OdDb::FilerSeekType from) override;
#define OD_DWG_VALUE(Name, Value, Argument) Value rd##Name() override;
#include "platform/filer/dwg_primitive_rows.inc"
  void rdBytes(void* buffer, OdUInt32 size) override;
};

/// Writing raises.
class OdDbReadOnlyFiler : public OdDbDwgFiler {
 public:
#define OD_DWG_VALUE(Name, Value, Argument) void wr##Name(Argument value) override;
#include "platform/filer/dwg_primitive_rows.inc"
  void wrBytes(const void* buffer, OdUInt32 size) override;
};
