// OdDbMemoryFiler: state of live objects in memory, for undo, copies, paging and clones.
#pragma once

#include <cstring>
#include <memory>
#include <vector>

#include "platform/filer/dwg_filer.h"
#include "platform/rx/rx_object.h"

/// Storage that memory filers append to and read from. One buffer may hold many records one after
/// the other; strings are kept by reference, so that filing them costs no copy of characters.
struct OdDbFilerBuffer {
  std::vector<OdUInt8> bytes;
  std::vector<OdString> strings;
  std::vector<std::shared_ptr<const void>> shared;  ///< see OdDbMemoryFiler::wrShared

  void clear() {
    bytes.clear();
    strings.clear();
    shared.clear();
  }
};

/// An id met while writing, with how it was referred to.
struct OdDbFiledId {
  OdDbObjectId id;
  OdDb::ReferenceType type = OdDb::kSoftPointerRef;
};

/// Filer over an OdDbFilerBuffer, for records that never leave the process: ids are kept as the
/// pointers they are, numbers in the machine's own form. Writing appends at the end of the buffer;
/// reading runs from the position given to startReading(). Lives on the stack of its user; the
/// buffer must outlive it.
class OdDbMemoryFiler : public OdStaticRxObject<OdDbDwgFiler> {
 public:
  /// Maps each id that is read; `context` is the pointer handed to setIdTranslator().
  using IdTranslator = OdDbObjectId (*)(void* context, OdDbObjectId id, OdDb::ReferenceType type);

  OdDbMemoryFiler(FilerType type, OdDbFilerBuffer& buffer, OdDbDatabase* database = nullptr)
      : m_type(type),
        m_buffer(&buffer),
        m_database(database),
        m_begin(buffer.bytes.size()),
        m_stringBegin(buffer.strings.size()) {}

  /// Reads from a position that was the end of the buffer when the record was begun, up to an end
  /// (by default the present one).
  void startReading(std::size_t byteBegin, std::size_t stringBegin);
  void startReading(std::size_t byteBegin, std::size_t stringBegin, std::size_t byteEnd);
  void setIdTranslator(IdTranslator translator, void* context) {
    m_translator = translator;
    m_context = context;
  }
  /// Whether values that never change may be filed by reference, with wrShared() and rdShared(); no
  /// at first. Writer and reader of a record agree.
  void setSharing(bool sharing) { m_sharing = sharing; }
  [[nodiscard]] bool isSharing() const { return m_sharing; }
  void wrShared(std::shared_ptr<const void> value);
  /// Of the type that was written. Raises eCorruptData for a place where nothing was.
  std::shared_ptr<const void> rdShared();
  /// Collects every id that is not null, in the order of writing; null stops collecting.
  void collectIds(std::vector<OdDbFiledId>* ids) { m_collected = ids; }

  [[nodiscard]] FilerType filerType() const override { return m_type; }
  [[nodiscard]] OdDbDatabase* database() const override { return m_database; }
  /// Position within the record: relative to where reading or writing began.
  void seek(OdInt64 offset, OdDb::FilerSeekType from) override;
  [[nodiscard]] OdUInt64 tell() const override {
    return (m_reading ? m_read : m_buffer->bytes.size()) - m_begin;
  }
  [[nodiscard]] OdUInt64 bytesLeft() const override { return m_end - m_read; }

  bool rdBool() override { return take<OdUInt8>() != 0; }
  OdString rdString() override;
  void rdBytes(void* buffer, OdUInt32 size) override;
  OdInt8 rdInt8() override { return take<OdInt8>(); }
  OdUInt8 rdUInt8() override { return take<OdUInt8>(); }
  OdInt16 rdInt16() override { return take<OdInt16>(); }
  OdInt32 rdInt32() override { return take<OdInt32>(); }
  OdInt64 rdInt64() override { return take<OdInt64>(); }
  double rdDouble() override { return take<double>(); }
  OdDbHandle rdDbHandle() override { return OdDbHandle(take<OdUInt64>()); }
  OdDbObjectId rdSoftOwnershipId() override { return takeId(OdDb::kSoftOwnershipRef); }
  OdDbObjectId rdHardOwnershipId() override { return takeId(OdDb::kHardOwnershipRef); }
  OdDbObjectId rdSoftPointerId() override { return takeId(OdDb::kSoftPointerRef); }
  OdDbObjectId rdHardPointerId() override { return takeId(OdDb::kHardPointerRef); }
  OdGePoint2d rdPoint2d() override { return take<OdGePoint2d>(); }
  OdGePoint3d rdPoint3d() override { return take<OdGePoint3d>(); }
  OdGeVector2d rdVector2d() override { return take<OdGeVector2d>(); }
  OdGeVector3d rdVector3d() override { return take<OdGeVector3d>(); }
  OdGeScale3d rdScale3d() override { return take<OdGeScale3d>(); }

  void wrBool(bool value) override { put<OdUInt8>(value ? 1 : 0); }
  void wrString(const OdString& value) override;
  void wrBytes(const void* buffer, OdUInt32 size) override;
  void wrInt8(OdInt8 value) override { put(value); }
  void wrUInt8(OdUInt8 value) override { put(value); }
  void wrInt16(OdInt16 value) override { put(value); }
  void wrInt32(OdInt32 value) override { put(value); }
  void wrInt64(OdInt64 value) override { put(value); }
  void wrDouble(double value) override { put(value); }
  void wrDbHandle(const OdDbHandle& value) override { put(static_cast<OdUInt64>(value)); }
  void wrSoftOwnershipId(const OdDbObjectId& value) override {
    putId(value, OdDb::kSoftOwnershipRef);
  }
  void wrHardOwnershipId(const OdDbObjectId& value) override {
    putId(value, OdDb::kHardOwnershipRef);
  }
  void wrSoftPointerId(const OdDbObjectId& value) override { putId(value, OdDb::kSoftPointerRef); }
  void wrHardPointerId(const OdDbObjectId& value) override { putId(value, OdDb::kHardPointerRef); }
  void wrPoint2d(const OdGePoint2d& value) override { put(value); }
  void wrPoint3d(const OdGePoint3d& value) override { put(value); }
  void wrVector2d(const OdGeVector2d& value) override { put(value); }
  void wrVector3d(const OdGeVector3d& value) override { put(value); }
  void wrScale3d(const OdGeScale3d& value) override { put(value); }

 private:
  template <class T>
  T take() {
    if (m_end - m_read < sizeof(T)) [[unlikely]]
      raiseEnd(sizeof(T));
    T value;
    std::memcpy(&value, m_buffer->bytes.data() + m_read, sizeof(T));
    m_read += sizeof(T);
    return value;
  }
  template <class T>
  void put(const T& value) {
    std::vector<OdUInt8>& bytes = m_buffer->bytes;
    const std::size_t at = bytes.size();
    bytes.resize(at + sizeof(T));
    std::memcpy(bytes.data() + at, &value, sizeof(T));
  }
  OdDbObjectId takeId(OdDb::ReferenceType type);
  void putId(const OdDbObjectId& id, OdDb::ReferenceType type);
  [[noreturn]] void raiseEnd(std::size_t wanted) const;

  FilerType m_type;
  OdDbFilerBuffer* m_buffer;
  OdDbDatabase* m_database;
  IdTranslator m_translator = nullptr;
  void* m_context = nullptr;
  std::vector<OdDbFiledId>* m_collected = nullptr;
  bool m_reading = false;
  bool m_sharing = false;
  std::size_t m_begin;
  std::size_t m_read = 0;
  std::size_t m_end = 0;
  std::size_t m_stringBegin;
};
