// OdDbVisualStyle: how a view shows solids.
#pragma once

#include "platform/db/db_object.h"
#include "platform/db/filing_macros.h"
#include "platform/gi/edge_style.h"

/// A named visual style in the drawing's visual style dictionary. It holds what drawing views read:
/// the style of edges.
class OdDbVisualStyle : public OdDbObject {
 public:
  OD_RX_DECLARE_MEMBERS(OdDbVisualStyle)

  [[nodiscard]] OdString name() const;
  /// Names are given when the style is put into the dictionary; this is kept beside it.
  void setName(const OdString& name);
  [[nodiscard]] OdString description() const;
  void setDescription(const OdString& description);
  [[nodiscard]] OdGiEdgeStyle edgeStyle() const;
  /// Raises eInvalidInput for a number that is no enumerator, and for a crease angle outside 0 to
  /// 180 degrees.
  void setEdgeStyle(const OdGiEdgeStyle& style);

 private:
  OdString m_name;
  OdString m_description;
  OdGiEdgeStyle m_edges;

  OD_DB_DECLARE_FILING()
};
using OdDbVisualStylePtr = OdSmartPtr<OdDbVisualStyle>;
