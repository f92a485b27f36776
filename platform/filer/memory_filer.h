// OdDbMemoryFiler: state of live objects in memory, for undo, copies, paging and clones.
#pragma once

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

#define OD_DWG_VALUE(Name, Value, Argument) \
  Value rd##Name() override;                \
  void wr##Name(Argument value) override;
#include "platform/filer/dwg_primitive_rows.inc"
  void rdBytes(void* buffer, OdUInt32 size) override;
  void wrBytes(const void* buffer, OdUInt32 size) override;

 private:
  template <class T>
  T take();
  template <class T>
  void put(const T& value);
  OdString takeString();
  void putString(const OdString& value);
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
