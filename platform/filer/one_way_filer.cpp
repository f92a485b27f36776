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
bool OdDbWriteOnlyFiler::rdBool() { refuseRead(); }
OdString OdDbWriteOnlyFiler::rdString() { refuseRead(); }
void OdDbWriteOnlyFiler::rdBytes(void*, OdUInt32) { refuseRead(); }
OdInt8 OdDbWriteOnlyFiler::rdInt8() { refuseRead(); }
OdUInt8 OdDbWriteOnlyFiler::rdUInt8() { refuseRead(); }
OdInt16 OdDbWriteOnlyFiler::rdInt16() { refuseRead(); }
OdInt32 OdDbWriteOnlyFiler::rdInt32() { refuseRead(); }
OdInt64 OdDbWriteOnlyFiler::rdInt64() { refuseRead(); }
double OdDbWriteOnlyFiler::rdDouble() { refuseRead(); }
OdDbHandle OdDbWriteOnlyFiler::rdDbHandle() { refuseRead(); }
OdDbObjectId OdDbWriteOnlyFiler::rdSoftOwnershipId() { refuseRead(); }
OdDbObjectId OdDbWriteOnlyFiler::rdHardOwnershipId() { refuseRead(); }
OdDbObjectId OdDbWriteOnlyFiler::rdSoftPointerId() { refuseRead(); }
OdDbObjectId OdDbWriteOnlyFiler::rdHardPointerId() { refuseRead(); }
OdGePoint2d OdDbWriteOnlyFiler::rdPoint2d() { refuseRead(); }
OdGePoint3d OdDbWriteOnlyFiler::rdPoint3d() { refuseRead(); }
OdGeVector2d OdDbWriteOnlyFiler::rdVector2d() { refuseRead(); }
OdGeVector3d OdDbWriteOnlyFiler::rdVector3d() { refuseRead(); }
OdGeScale3d OdDbWriteOnlyFiler::rdScale3d() { refuseRead(); }

void OdDbReadOnlyFiler::wrBool(bool) { refuseWrite(); }
void OdDbReadOnlyFiler::wrString(const OdString&) { refuseWrite(); }
void OdDbReadOnlyFiler::wrBytes(const void*, OdUInt32) { refuseWrite(); }
void OdDbReadOnlyFiler::wrInt8(OdInt8) { refuseWrite(); }
void OdDbReadOnlyFiler::wrUInt8(OdUInt8) { refuseWrite(); }
void OdDbReadOnlyFiler::wrInt16(OdInt16) { refuseWrite(); }
void OdDbReadOnlyFiler::wrInt32(OdInt32) { refuseWrite(); }
void OdDbReadOnlyFiler::wrInt64(OdInt64) { refuseWrite(); }
void OdDbReadOnlyFiler::wrDouble(double) { refuseWrite(); }
void OdDbReadOnlyFiler::wrDbHandle(const OdDbHandle&) { refuseWrite(); }
void OdDbReadOnlyFiler::wrSoftOwnershipId(const OdDbObjectId&) { refuseWrite(); }
void OdDbReadOnlyFiler::wrHardOwnershipId(const OdDbObjectId&) { refuseWrite(); }
void OdDbReadOnlyFiler::wrSoftPointerId(const OdDbObjectId&) { refuseWrite(); }
void OdDbReadOnlyFiler::wrHardPointerId(const OdDbObjectId&) { refuseWrite(); }
void OdDbReadOnlyFiler::wrPoint2d(const OdGePoint2d&) { refuseWrite(); }
void OdDbReadOnlyFiler::wrPoint3d(const OdGePoint3d&) { refuseWrite(); }
void OdDbReadOnlyFiler::wrVector2d(const OdGeVector2d&) { refuseWrite(); }
void OdDbReadOnlyFiler::wrVector3d(const OdGeVector3d&) { refuseWrite(); }
void OdDbReadOnlyFiler::wrScale3d(const OdGeScale3d&) { refuseWrite(); }
