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

  void wrBool(bool value) override;
  void wrString(const OdString& value) override;
  void wrBytes(const void* buffer, OdUInt32 size) override;
  void wrInt8(OdInt8 value) override;
  void wrUInt8(OdUInt8 value) override;
  void wrInt16(OdInt16 value) override;
  void wrInt32(OdInt32 value) override;
  void wrInt64(OdInt64 value) override;
  void wrDouble(double value) override;
  void wrDbHandle(const OdDbHandle& value) override;
  void wrSoftOwnershipId(const OdDbObjectId& value) override;
  void wrHardOwnershipId(const OdDbObjectId& value) override;
  void wrSoftPointerId(const OdDbObjectId& value) override;
  void wrHardPointerId(const OdDbObjectId& value) override;
  void wrPoint2d(const OdGePoint2d& value) override;
  void wrPoint3d(const OdGePoint3d& value) override;
  void wrVector2d(const OdGeVector2d& value) override;
  void wrVector3d(const OdGeVector3d& value) override;
  void wrScale3d(const OdGeScale3d& value) override;

 private:
  void keep(const OdDbObjectId& id, OdDb::ReferenceType type);

  OdDbDatabase* m_database;
  std::vector<OdDbFiledId> m_ids;
  OdUInt64 m_position = 0;
};
