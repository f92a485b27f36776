// OdResBuf: linked result buffers, one coded value each.
#pragma once

#include <variant>

#include "platform/base/array.h"
#include "platform/base/handle.h"
#include "platform/base/string.h"
#include "platform/base/types.h"
#include "platform/filer/object_id.h"
#include "platform/ge/point3d.h"
#include "platform/rx/rx_macros.h"
#include "platform/rx/rx_object.h"
#include "platform/rx/smart_ptr.h"

class OdDbDwgFiler;
class OdResBuf;
using OdResBufPtr = OdSmartPtr<OdResBuf>;

/// One value with a group code and a link to the next buffer. Shared by reference count; a chain is
/// owned through its first element. Reading a value as another type than the code's raises
/// eInvalidInput naming the code.
class OdResBuf : public OdRxObject {
 public:
  OD_RX_DECLARE_MEMBERS(OdResBuf)

  /// Codes of extended data.
  enum Code : OdInt32 {
    kDxfXdAsciiString = 1000,
    kDxfRegAppName = 1001,
    kDxfXdControlString = 1002,
    kDxfXdLayerName = 1003,
    kDxfXdBinaryChunk = 1004,
    kDxfXdHandle = 1005,
    kDxfXdXCoord = 1010,
    kDxfXdReal = 1040,
    kDxfXdInteger16 = 1070,
    kDxfXdInteger32 = 1071,
  };
  /// What a code holds.
  enum class Kind : OdUInt8 {
    kNone,
#define OD_RES_BUF_VALUE(Held, Name, Type, Result, Argument, text) k##Held,
#include "platform/filer/res_buf_rows.inc"
  };

  OdResBuf();
  ~OdResBuf() override;  // releases long chains without recursion
  static OdResBufPtr newRb(int code = 0);
  static OdResBufPtr newRb(int code, const OdString& value);
  static OdResBufPtr newRb(int code, OdInt32 value);
  static OdResBufPtr newRb(int code, double value);
  static OdResBufPtr newRb(int code, const OdGePoint3d& value);
  static OdResBufPtr newRb(int code, const OdDbHandle& value);
  static OdResBufPtr newRb(int code, const OdDbObjectId& value);
  [[nodiscard]] static Kind kindOf(int code);

  [[nodiscard]] int restype() const { return m_code; }
  void setRestype(int code);
  [[nodiscard]] OdResBufPtr next() const;
  /// Last element of the chain that starts here; this one when there is no next.
  [[nodiscard]] OdResBufPtr last() const;
  /// Returns `next` for chaining. A chain that would contain itself raises eCircularReference.
  OdResBuf* setNext(const OdResBuf* next);
  /// Inserts after this element.
  OdResBuf* insert(OdResBuf* element);
  /// Copy of this element alone, with no next.
  [[nodiscard]] OdResBufPtr copyElement() const;
  /// Deep copy of the whole chain.
  [[nodiscard]] OdResBufPtr copyChain() const;
  [[nodiscard]] bool valueEquals(const OdResBuf& other) const;

  // The accessors of each kind, such as `OdString getString() const` and
  // `void setString(const OdString& value)`.
#define OD_RES_BUF_VALUE(Held, Name, Type, Result, Argument, text) \
  [[nodiscard]] Result get##Name() const;                          \
  void set##Name(Argument value);
#include "platform/filer/res_buf_rows.inc"

  /// How an object id under a code refers: 340 to 349, 390 to 399 and 480 to 489 hard pointer, 350
  /// to 359 soft owner, 360 to 369 hard owner; soft pointer for every other code of ids.
  [[nodiscard]] static OdDb::ReferenceType referenceOf(int code);

  /// Files the chain that starts at `first` (may be null): a count (int32), then code (int16) and
  /// value of each. Object ids go out as referenceOf() says, so that they are translated; handles
  /// of extended data are plain handles. Reading raises eCorruptData for a code without a kind.
  static void dwgOutChain(OdDbDwgFiler* filer, const OdResBuf* first);
  static OdResBufPtr dwgInChain(OdDbDwgFiler* filer);

 private:
  using Value = std::variant<std::monostate
#define OD_RES_BUF_VALUE(Held, Name, Type, Result, Argument, text) , Type
#include "platform/filer/res_buf_rows.inc"
                             >;
  template <class T>
  static OdResBufPtr made(int code, Kind kind, const T& value);
  template <class T>
  const T& get(Kind kind) const;
  template <class T>
  void put(Kind kind, const T& value);
  void fillEmpty();
  void dwgOutValue(OdDbDwgFiler* filer) const;
  void dwgInValue(OdDbDwgFiler* filer);

  int m_code = 0;
  Value m_value;
  OdSmartPtr<OdResBuf> m_next;
};
