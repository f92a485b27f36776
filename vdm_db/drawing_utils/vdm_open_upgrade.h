// VdmOpenUpgrade: write access to an object that is open in some other way, for a scope.
#pragma once

#include "platform/db/open_upgrade.h"

using VdmOpenUpgrade = OdDbOpenUpgrade;
