// OdDbPolyline: a light-weight polyline.
#include "platform/entities/polyline.h"

#include "platform/db/field_list.h"

OD_RX_DEFINE_DB(OdDbPolyline, OdDbCurve, L"OdDbPolyline", 0, 0, 0, L"LWPOLYLINE", OdString())

// Fields:
//
//   field       binary                    groups
//   version     uint8
//   elevation   double                    38         drawing units, along the normal
//   thickness   double                    39
//   normal      vector                    210        unit length
//   closed      bool                      290
//   vertices    int32 count, 2d points    10, 20     in the frame of the normal
//   bulges      int32 count, doubles      42         one for each vertex, none when all are 0
//   widths      int32 count, doubles      40         start and end for each, none when all are 0

template <class Fields, class Self>
void OdDbPolyline::fields(Fields& fields, Self& self) {
  runFields(fields, self);
}

OD_DB_DEFINE_FILING(OdDbPolyline, OdDbCurve)
