// The halves that one-way filers refuse.
#include "platform/filer/one_way_filer.h"

#include "platform/base/error.h"

namespace {

[[noreturn]] void refuseRead() {
  throw OdError(eNotImplementedForClass, OdString("reading from a filer that only writes"));
}
[[noreturn]] void refuseWrite() {
  throw OdError(eNotImplementedForClass, OdString("writing to a filer that only reads"));
}

}  // namespace

void OdDbWriteOnlyFiler::seek(OdInt64, OdDb::FilerSeekType) { refuseRead(); }
void OdDbWriteOnlyFiler::rdBytes(void*, OdUInt32) { refuseRead(); }
void OdDbReadOnlyFiler::wrBytes(const void*, OdUInt32) { refuseWrite(); }

#define OD_DWG_VALUE(Name, Value, Argument)              \
  Value OdDbWriteOnlyFiler::rd##Name() { refuseRead(); } \
  void OdDbReadOnlyFiler::wr##Name(Argument) { refuseWrite(); }
#include "platform/filer/dwg_primitive_rows.inc"
