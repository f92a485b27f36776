// OdDbVisualStyle: how a view shows solids.
#pragma once

#include "platform/db/filing_macros.h"
#include "platform/db/named_style.h"
#include "platform/gi/edge_style.h"

/// A named visual style in the drawing's visual style dictionary. It holds what drawing views read:
/// the style of edges.
class OdDbVisualStyle : public OdDbNamedStyle {
 public:
  OD_RX_DECLARE_MEMBERS(OdDbVisualStyle)

  [[nodiscard]] OdGiEdgeStyle edgeStyle() const;
  /// Raises eInvalidInput for a number that is no enumerator, and for a crease angle outside 0 to
  /// 180 degrees.
  void setEdgeStyle(const OdGiEdgeStyle& style);

 private:
  OdGiEdgeStyle m_edges;

  OD_DB_DECLARE_FILING()
};
using OdDbVisualStylePtr = OdSmartPtr<OdDbVisualStyle>;
