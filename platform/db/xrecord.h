// OdDbXrecord: an application's own values, kept as a chain of result buffers.
#pragma once

#include "platform/db/db_object.h"

/// A list of coded values. Ids are filed by what their codes say (see OdResBuf), so that saving,
/// cloning and purging follow them.
class OdDbXrecord : public OdDbObject {
 public:
  OD_RX_DECLARE_MEMBERS(OdDbXrecord)

  /// A copy of the chain; null when there is none.
  [[nodiscard]] OdResBufPtr rbChain() const;
  /// Takes over a copy. Codes of structure (0 and below, 100), of extended data (1000 and above)
  /// and those without a kind of value give eInvalidInput, and nothing changes.
  OdResult setFromRbChain(const OdResBuf* chain);
  [[nodiscard]] OdDb::DuplicateRecordCloning mergeStyle() const;
  void setMergeStyle(OdDb::DuplicateRecordCloning style);

  OdResult dwgInFields(OdDbDwgFiler* filer) override;
  void dwgOutFields(OdDbDwgFiler* filer) const override;
  OdResult dxfInFields(OdDbDxfFiler* filer) override;
  void dxfOutFields(OdDbDxfFiler* filer) const override;
  [[nodiscard]] std::size_t approximateSize() const override;

 private:
  OdResBufPtr m_chain;
  OdDb::DuplicateRecordCloning m_mergeStyle = OdDb::kDrcIgnore;
};
using OdDbXrecordPtr = OdSmartPtr<OdDbXrecord>;
