// OdDbFileFiler: the compact, self-contained form of one object's record in a drawing file.
#pragma once

#include <string_view>
#include <vector>

#include "platform/filer/one_way_filer.h"
#include "platform/rx/rx_object.h"

/// One reference of a record: how it refers, and the handle of the object.
struct OdDbFileReference {
  OdDb::ReferenceType type = OdDb::kSoftPointerRef;
  OdUInt64 handle = 0;
};

/// The parts of a record. Bytes after the references are the object's own fields.
///
///   record     := varint referenceCount, reference*, field bytes
///   reference  := varint (handle * 4 + type); type 0 soft pointer, 1 hard pointer,
///                 2 soft ownership, 3 hard ownership
///
/// Fields: bool, int8, uint8 one byte; int16, int32, int64 zigzag varint; double 8 bytes
/// little-endian; string varint byte count and UTF-8; bytes as they are; handle varint; point,
/// vector, scale their doubles; an id is the varint number of its reference, counted from 1, and 0
/// for a null id. A reader that does not know the class thus knows
/// every reference.
///
/// varint: seven bits a byte, low bits first, the top bit set in all but the last; at most 10
/// bytes. Handles of 2^62 and more do not fit a reference and are refused on writing.
class OdDbFileWriter : public OdStaticRxObject<OdDbWriteOnlyFiler> {
 public:
  explicit OdDbFileWriter(OdDbDatabase* database, OdInt32 dwgVersion = OdDb::kDwgVersionCurrent)
      : m_database(database), m_version(dwgVersion) {}

  /// Begins the next record; the buffers keep their memory.
  void clear();
  /// Appends the finished record to `record`.
  void assemble(std::vector<OdUInt8>& record) const;
  /// Puts a record together from its parts, for objects whose class is not known.
  static void assemble(const std::vector<OdDbFileReference>& references, const OdUInt8* fields,
                       std::size_t fieldSize, std::vector<OdUInt8>& record);

  [[nodiscard]] const std::vector<OdDbFileReference>& references() const { return m_references; }
  /// Puts a list in place of the references written so far; later ids are numbered after it.
  void presetReferences(std::vector<OdDbFileReference> references) {
    m_references = std::move(references);
  }

  [[nodiscard]] FilerType filerType() const override { return kFileFiler; }
  [[nodiscard]] OdInt32 dwgVersion() const override { return m_version; }
  [[nodiscard]] OdDbDatabase* database() const override { return m_database; }
  [[nodiscard]] OdUInt64 tell() const override { return m_fields.size(); }

#define OD_DWG_VALUE(Name, Value, Argument) void wr##Name(Argument value) override;
#include "platform/filer/dwg_primitive_rows.inc"
  void wrBytes(const void* buffer, OdUInt32 size) override;

 private:
  template <class T>
  void put(const T& value);
  void putString(const OdString& value);
  void putId(const OdDbObjectId& id, OdDb::ReferenceType type);

  OdDbDatabase* m_database;
  OdInt32 m_version;
  std::vector<OdDbFileReference> m_references;
  std::vector<OdUInt8> m_fields;
};

/// Reads one record; the bytes are borrowed and must outlive the filer. Every read is bounds
/// checked and raises eEndOfStream or eCorruptData; nothing is allocated by a count that cannot
/// fit.
class OdDbFileReader : public OdStaticRxObject<OdDbReadOnlyFiler> {
 public:
  /// Turns a handle of the record into an id; null results are legal.
  using HandleResolver = OdDbObjectId (*)(void* context, OdUInt64 handle);

  OdDbFileReader(const OdUInt8* data, std::size_t size, OdDbDatabase* database,
                 HandleResolver resolver, void* context);

  [[nodiscard]] const std::vector<OdDbFileReference>& references() const { return m_references; }
  [[nodiscard]] OdDbObjectId resolve(std::size_t index) const {
    return m_resolver(m_context, m_references[index].handle);
  }
  /// Greatest reference number that was read so far, 0 for none.
  [[nodiscard]] OdUInt32 greatestReferenceRead() const { return m_greatestRead; }
  /// Bytes of the fields that are not read yet, for objects whose class is not known.
  [[nodiscard]] const OdUInt8* fieldBytes() const { return m_data; }
  [[nodiscard]] std::size_t fieldSize() const { return static_cast<std::size_t>(m_end - m_data); }

  [[nodiscard]] FilerType filerType() const override { return kFileFiler; }
  [[nodiscard]] OdDbDatabase* database() const override { return m_database; }
  void seek(OdInt64 offset, OdDb::FilerSeekType from) override;
  [[nodiscard]] OdUInt64 tell() const override {
    return static_cast<OdUInt64>(m_data - m_fieldsBegin);
  }
  [[nodiscard]] OdUInt64 bytesLeft() const override { return fieldSize(); }

#define OD_DWG_VALUE(Name, Value, Argument) Value rd##Name() override;
#include "platform/filer/dwg_primitive_rows.inc"
  void rdBytes(void* buffer, OdUInt32 size) override;
  OdString rdKey() override;
  OdString rdKeyLike(const OdString& expected) override;
  bool rdStringBytes(std::string_view& utf8) override {
    utf8 = rdStringView();
    return true;
  }
  /// The UTF-8 bytes of a string field without making a string; valid while the record is.
  std::string_view rdStringView();

 private:
  template <class T>
  T take();
  OdUInt8 takeByte();
  OdUInt64 takeVarint();
  OdUInt64 takeLongVarint();
  OdDbObjectId takeId(OdDb::ReferenceType type);
  [[noreturn]] void raiseEnd(std::size_t wanted) const;

  const OdUInt8* m_data;
  const OdUInt8* m_end;
  const OdUInt8* m_fieldsBegin;
  OdDbDatabase* m_database;
  HandleResolver m_resolver;
  void* m_context;
  OdUInt32 m_greatestRead = 0;
  std::vector<OdDbFileReference> m_references;
};
