// OdDbValueRecord: the value of a variable as a partial undo step keeps it.
#pragma once

#include "platform/assoc/assoc_status.h"
#include "platform/filer/dwg_filer.h"
#include "platform/filer/object_id.h"

/// Steps of a network, by their first byte.
enum class OdDbNetworkStep : OdUInt8 { kValues = 1, kListed = 2 };

/// What evaluation changes of an action.
struct OdDbValueRecord {
  OdDbObjectId action;
  double number = 0.0;
  OdDbAssocStatus status = kAssocUpToDate;

  static void beginList(OdDbDwgFiler* filer, OdInt32 count) {
    filer->wrUInt8(static_cast<OdUInt8>(OdDbNetworkStep::kValues));
    filer->wrInt32(count);
  }
  void dwgOut(OdDbDwgFiler* filer) const {
    filer->wrSoftPointerId(action);
    filer->wrDouble(number);
    filer->wrUInt8(status);
  }
  static OdDbValueRecord dwgIn(OdDbDwgFiler* filer) {
    OdDbValueRecord record;
    record.action = filer->rdSoftPointerId();
    record.number = filer->rdDouble();
    record.status = static_cast<OdDbAssocStatus>(filer->rdUInt8());
    return record;
  }
};
