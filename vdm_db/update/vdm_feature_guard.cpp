// Features are code of others: what one raises fails that feature and nothing else.
#include "vdm_db/update/vdm_feature_guard.h"

#include "platform/base/error.h"
#include "vdm_db/update/vdm_update_observer.h"
#include "vdm_utils/vdmc_assert.h"

OdString vdmRaisedErrorText() {
  try {
    throw;
  } catch (const OdError& error) {
    return error.description();
  } catch (const std::exception& error) {
    return OdString::fromUtf8(error.what());
  } catch (...) {
    return OdString(L"an error of an unknown type was raised");
  }
}

void vdmReportRaisedError(const OdDbObjectId& feature, VdmUpdateObserver* observer) {
  const OdString who =
      feature.isNull() ? OdString("update pass") : "feature " + feature.getHandle().ascii();
  const OdString text = who + ": " + vdmRaisedErrorText();
  vdmcCallAssert("false", text, "vdm_db/vdm_feature_update_data", __LINE__);
  if (observer != nullptr) observer->featureFailed(feature, text);
}
