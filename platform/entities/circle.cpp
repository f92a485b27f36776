// OdDbCircle: a circle.
#include "platform/entities/circle.h"

#include "platform/db/field_list.h"

OD_RX_DEFINE_DB(OdDbCircle, OdDbCurve, L"OdDbCircle", 0, 0, 0, L"CIRCLE", OdString())

// Fields:
//
//   field       binary    groups
//   version     uint8
//   centre      point     10       drawing units, coordinates of the block
//   radius      double    40       positive
//   thickness   double    39
//   normal      vector    210      unit length

template <class Fields, class Self>
void OdDbCircle::fields(Fields& fields, Self& self) {
  roundFields(fields, self);
}

OD_DB_DEFINE_FILING(OdDbCircle, OdDbCurve)
