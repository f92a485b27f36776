// OdDbDwgFiler: the primitives through which every object writes and reads its state.
#pragma once

#include <string_view>

#include "platform/base/array.h"
#include "platform/base/handle.h"
#include "platform/base/result.h"
#include "platform/base/string.h"
#include "platform/base/types.h"
#include "platform/filer/object_id.h"
#include "platform/ge/matrix3d.h"
#include "platform/ge/point2d.h"
#include "platform/ge/point3d.h"
#include "platform/ge/scale3d.h"
#include "platform/ge/vector2d.h"
#include "platform/ge/vector3d.h"
#include "platform/rx/rx_macros.h"
#include "platform/rx/rx_object.h"
#include "platform/rx/smart_ptr.h"
#include "platform/rx/stream_buf.h"

class OdDbFilerController;

namespace OdDb {

/// Drawing versions that a filer can file for. Numbers are compared.
enum DwgVersion : OdInt32 {
  kDwgVersion29 = 29,
  kDwgVersion31 = 31,
  kDwgVersion33 = 33,
  kDwgVersionCurrent = kDwgVersion33,
};

}  // namespace OdDb

/// Abstract filer. Not owned by the objects that use it. Each write has its read; what a primitive
/// becomes in bytes is the concrete filer's own. Ids go through the typed primitives only, so that
/// saving, cloning, purging and proxies can follow and translate them.
/// Reads raise OdError (eEndOfStream, eCorruptData) when the data does not hold what is asked for.
class OdDbDwgFiler : public OdRxObject {
 public:
  OD_RX_DECLARE_MEMBERS(OdDbDwgFiler)

  /// The numbers are compared by classes that file differently for different purposes.
  enum FilerType {
    kFileFiler = 0,
    kCopyFiler = 1,
    kUndoFiler = 2,
    kBagFiler = 3,
    kIdXlateFiler = 4,
    kPageFiler = 5,
    kDeepCloneFiler = 6,
    kIdFiler = 7,
    kPurgeFiler = 8,
    kWblockCloneFiler = 9,
  };

  [[nodiscard]] virtual FilerType filerType() const = 0;
  [[nodiscard]] virtual OdInt32 dwgVersion() const { return OdDb::kDwgVersionCurrent; }
  /// Database that is filed, null where there is none.
  [[nodiscard]] virtual OdDbDatabase* database() const { return nullptr; }
  [[nodiscard]] virtual OdDbFilerController* controller() const { return nullptr; }

  virtual void seek(OdInt64 offset, OdDb::FilerSeekType from) = 0;
  [[nodiscard]] virtual OdUInt64 tell() const = 0;

#define OD_DWG_VALUE(Name, Value, Argument) \
  virtual Value rd##Name() = 0;             \
  virtual void wr##Name(Argument value) = 0;
#include "platform/filer/dwg_primitive_rows.inc"
  virtual void rdBytes(void* buffer, OdUInt32 size) = 0;
  virtual void wrBytes(const void* buffer, OdUInt32 size) = 0;

  /// rdString for strings that repeat from record to record, such as the keys of property bags:
  /// equal keys read by one thread share one buffer where the filer would otherwise copy.
  virtual OdString rdKey() { return rdString(); }
  /// rdKey where the reader knows which string probably comes next: if it is that one, the result
  /// shares its buffer.
  virtual OdString rdKeyLike(const OdString& /*expected*/) { return rdKey(); }
  /// The UTF-8 bytes of a string, for readers that make the string later; valid until the next
  /// read. False, nothing being read, where the filer does not hold them.
  virtual bool rdStringBytes(std::string_view& /*utf8*/) { return false; }

  /// An id through the primitive of its reference type.
  void wrId(OdDb::ReferenceType type, const OdDbObjectId& value);
  OdDbObjectId rdId(OdDb::ReferenceType type);

  /// Bytes that are certainly left to read, or a large number where the filer cannot tell.
  /// Readers of counted lists refuse a count that cannot fit: see rdCount.
  [[nodiscard]] virtual OdUInt64 bytesLeft() const { return ~OdUInt64{0}; }
  /// Reads a count by rdInt32 and raises eCorruptData when it is negative or when `count` items of
  /// at least `minBytes` each cannot be left. Call it before any allocation by count.
  OdUInt32 rdCount(OdUInt32 minBytes = 1);
};
using OdDbDwgFilerPtr = OdSmartPtr<OdDbDwgFiler>;
