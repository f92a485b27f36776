// OdDbBlockTable: the blocks of a drawing.
#pragma once

#include <utility>
#include <vector>

#include "platform/db/block_table_record.h"
#include "platform/db/symbol_table.h"

/// The table of blocks. Model space and paper space are always there.
class OdDbBlockTable : public OdDbSymbolTableOf<OdDbBlockTableRecord> {
 public:
  OD_RX_DECLARE_MEMBERS(OdDbBlockTable)

  static constexpr const wchar_t* kModelSpaceName = L"*Model_Space";
  static constexpr const wchar_t* kPaperSpaceName = L"*Paper_Space";

  /// Null only in a damaged drawing.
  [[nodiscard]] OdDbObjectId getModelSpaceId() const;
  [[nodiscard]] OdDbObjectId getPaperSpaceId() const;

  /// A record with an anonymous name without a number ("*U", "*D", "*A", ...) gets one: above all
  /// that the table has with this letter, and has given out since it was loaded.
  OdDbObjectId add(OdDbSymbolTableRecord* record) override;

 private:
  [[nodiscard]] OdUInt64 nextNumber(const OdString& prefix) const;

  // Greatest number given out with each anonymous prefix, known since the prefix was first used.
  mutable std::vector<std::pair<OdString, OdUInt64>> m_numbers;
};
using OdDbBlockTablePtr = OdSmartPtr<OdDbBlockTable>;
