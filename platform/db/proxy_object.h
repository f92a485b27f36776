// OdDbProxyObject: an object whose class is not registered.
#pragma once

#include <vector>

#include "platform/db/db_object.h"
#include "platform/filer/file_filer.h"
#include "platform/filer/memory_filer.h"

struct OdDbClassEntry;

/// Stands in for an object of an unknown class. It keeps every byte and every reference of the
/// record, takes part in saving, cloning, undo and erasing, and can be given reactors, extended
/// data and an extension dictionary like any object. When its class is registered and nobody has it
/// open, the next open turns it into the real object.
class OdDbProxyObject : public OdDbObject {
 public:
  OD_RX_DECLARE_MEMBERS(OdDbProxyObject)

  /// Name, DXF name and application text of the class it stands for.
  [[nodiscard]] OdString originalClassName() const;
  [[nodiscard]] OdString originalDxfName() const;
  [[nodiscard]] OdString applicationDescription() const;
  [[nodiscard]] OdInt32 proxyFlags() const;
  [[nodiscard]] OdUInt32 classId() const { return m_classId; }
  /// Number of the same class in this drawing, for a clone that came from another one.
  void setClassId(OdUInt32 id) { m_classId = id; }
  /// Ids that the unknown fields refer to, in the order of the record.
  [[nodiscard]] std::vector<OdDbFiledId> references() const;

  OdResult dwgInFields(OdDbDwgFiler* filer) override;
  void dwgOutFields(OdDbDwgFiler* filer) const override;
  [[nodiscard]] std::size_t approximateSize() const override;

  // The runtime's own use.
  /// Takes over a record: the base fields are read, everything after them is kept as it is.
  void readRecord(OdUInt32 classId, OdDbFileReader& reader);
  /// The record as the file is to hold it; byte for byte the one read while the base fields are the
  /// same.
  void writeRecord(std::vector<OdUInt8>& record) const;

 private:
  [[nodiscard]] const OdDbClassEntry* classEntry() const;

  OdUInt32 m_classId = 0;
  std::vector<OdDbFiledId> m_references;  ///< all of the record, base fields included
  OdUInt32 m_baseReferences = 0;          ///< how many of them the base fields use
  std::vector<OdUInt8> m_fields;          ///< what follows the base fields
};
