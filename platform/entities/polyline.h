// OdDbPolyline: a light-weight polyline.
#pragma once

#include "platform/db/filing_macros.h"
#include "platform/entities/vertex_run.h"

/// A run of vertices without further marks: the usual polyline.
class OdDbPolyline : public OdDbVertexRun {
 public:
  OD_RX_DECLARE_MEMBERS(OdDbPolyline)

  OD_DB_DECLARE_FILING()
};
using OdDbPolylinePtr = OdSmartPtr<OdDbPolyline>;
