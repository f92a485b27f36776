// OdDbIdFiler: collects the ids that an object refers to.
#pragma once

#include <vector>

#include "platform/filer/memory_filer.h"
#include "platform/filer/one_way_filer.h"

/// A filer that drops all values and keeps every id that is not null, in the order of writing and
/// with how it was referred to. For walking references without knowing classes:
///
///   OdDbIdFiler filer(database);
///   object->dwgOutFields(&filer);
///   for (const OdDbFiledId& reference : filer.ids()) ...
class OdDbIdFiler : public OdStaticRxObject<OdDbWriteOnlyFiler> {
 public:
  explicit OdDbIdFiler(OdDbDatabase* database = nullptr) : m_database(database) {}

  [[nodiscard]] const std::vector<OdDbFiledId>& ids() const { return m_ids; }
  /// Begins anew; the memory is kept.
  void clear() {
    m_ids.clear();
    m_position = 0;
  }

  [[nodiscard]] FilerType filerType() const override { return kIdFiler; }
  [[nodiscard]] OdDbDatabase* database() const override { return m_database; }
  /// Number of primitives written.
  [[nodiscard]] OdUInt64 tell() const override { return m_position; }
  /// There is nothing to go back to: does nothing.
  void seek(OdInt64 offset, OdDb::FilerSeekType from) override;

#define OD_DWG_VALUE(Name, Value, Argument) void wr##Name(Argument value) override;
#include "platform/filer/dwg_primitive_rows.inc"
  void wrBytes(const void* buffer, OdUInt32 size) override;

 private:
  void keep(const OdDbObjectId& id, OdDb::ReferenceType type);

  OdDbDatabase* m_database;
  std::vector<OdDbFiledId> m_ids;
  OdUInt64 m_position = 0;
};
