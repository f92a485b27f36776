// OdDbTextDxfFiler: groups as pairs of text lines.
#pragma once

#include <string>
#include <string_view>

#include "platform/filer/dxf_filer.h"
#include "platform/filer/res_buf.h"
#include "platform/rx/rx_object.h"
#include "platform/rx/stream_buf.h"

/// Reads and writes groups as text: one line with the code, one with the value, UTF-8, lines ended
/// by a line feed (a carriage return before it is ignored on reading).
///
///   kind of code (OdResBuf::kindOf)   value line
///   string                            the text; ^J ^M ^@ for line feed, return, null, "^ " for ^
///   bool, integers                    decimal
///   real, coordinate                  shortest decimal form that reads back the same bits
///   handle, object id                 hexadecimal handle
///   binary                            hexadecimal, two digits a byte; longer data in several
///                                     groups of at most 127 bytes each, the last one shorter
///
/// Which form a value has is the code's, not the call's: writing a value under a code of another
/// kind raises eInvalidInput. Text that is not of the form, or a value that is read as another kind
/// or does not fit, raises eCorruptData naming the line. Object ids are looked up by the resolver
/// on reading; without one they read as null. Binary data that fills its last group is closed by an
/// empty one, so that two chunks in a row stay two.
class OdDbTextDxfFiler : public OdStaticRxObject<OdDbDxfFiler> {
 public:
  static constexpr OdUInt32 kBinaryGroupBytes = 127;

  /// Turns a handle into an id; null results are legal.
  using HandleResolver = OdDbObjectId (*)(void* context, const OdDbHandle& handle);

  /// For writing.
  explicit OdDbTextDxfFiler(OdDbDatabase* database = nullptr) : m_database(database) {}
  /// For reading a text.
  OdDbTextDxfFiler(std::string text, OdDbDatabase* database, HandleResolver resolver = nullptr,
                   void* context = nullptr);
  /// For reading a stream from its position to its end; it is read here and not kept.
  OdDbTextDxfFiler(OdStreamBuf* stream, OdDbDatabase* database, HandleResolver resolver = nullptr,
                   void* context = nullptr);

  /// What was written, or is read.
  [[nodiscard]] const std::string& text() const { return m_text; }
  /// Reads from the beginning.
  void rewind();

  [[nodiscard]] OdDbDatabase* database() const override { return m_database; }
  [[nodiscard]] bool atEOF() override;
  int nextItem() override;
  void pushBackItem() override;

  OdString rdString() override;
  bool rdBool() override;
  OdInt8 rdInt8() override;
  OdUInt8 rdUInt8() override;
  OdInt16 rdInt16() override;
  OdInt32 rdInt32() override;
  OdInt64 rdInt64() override;
  double rdDouble() override;
  void rdBinaryChunk(OdBinaryData& value) override;
  OdDbHandle rdHandle() override;
  OdDbObjectId rdObjectId() override;

  void wrString(int code, const OdString& value) override;
  void wrBool(int code, bool value) override;
  void wrInt8(int code, OdInt8 value) override;
  void wrUInt8(int code, OdUInt8 value) override;
  void wrInt16(int code, OdInt16 value) override;
  void wrInt32(int code, OdInt32 value) override;
  void wrInt64(int code, OdInt64 value) override;
  void wrDouble(int code, double value, int precision = kDfltPrec) override;
  void wrBinaryChunk(int code, const OdUInt8* data, OdUInt32 size) override;
  void wrHandle(int code, const OdDbHandle& value) override;
  void wrObjectId(int code, const OdDbObjectId& value) override;

 private:
  struct Place {
    std::size_t offset = 0;
    OdUInt32 line = 1;  ///< of the next line to be read
  };

  std::string_view nextLine();
  [[nodiscard]] std::string_view valueOf(OdResBuf::Kind kind, const char* asked) const;
  OdInt64 integer(OdInt64 min, OdInt64 max, const char* asked) const;
  [[noreturn]] void raiseCorrupt(const std::string& what) const;
  void write(int code, OdResBuf::Kind kind, std::string_view value);
  void writeInteger(int code, OdInt64 value);
  bool appendBinary(OdBinaryData& value) const;

  OdDbDatabase* m_database;
  HandleResolver m_resolver = nullptr;
  void* m_context = nullptr;
  std::string m_text;
  Place m_next;
  Place m_item;              // start of the present group, for stepping back
  int m_code = -1;           // of the present group, -1 before the first
  std::string_view m_value;  // of the present group, within m_text
};
