// VdmUpdateObserver: hears what an update pass does.
#include "vdm_db/update/vdm_update_observer.h"

#include "platform/base/error.h"

VdmUpdateObserver::~VdmUpdateObserver() = default;
