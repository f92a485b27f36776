// Features are code of others: what one raises fails that feature and nothing else.
#pragma once

#include "platform/base/string.h"
#include "platform/filer/object_id.h"
#include "vdm_db/common/vdm_db_export.h"

class VdmUpdateObserver;

/// The text of the error that is being handled, of any type. Only in a handler.
OdString vdmRaisedErrorText();

/// Reports the error that is being handled as a failure of the feature, or of the pass where the id
/// is null: as an assertion, and to the observer, which may be null. Only in a handler.
VDM_DB_EXPORT void vdmReportRaisedError(const OdDbObjectId& feature, VdmUpdateObserver* observer);

/// The result of `step`, which works for one feature. An error of any type that it raises is
/// reported, and the result is then false.
template <class Step>
bool vdmGuardFeature(const OdDbObjectId& feature, VdmUpdateObserver* observer, const Step& step) {
  try {
    return step();
  } catch (...) {
    vdmReportRaisedError(feature, observer);
    return false;
  }
}
