// VdmOpenUpgrade: write access to an open object for a scope.
#pragma once

#include "platform/db/open_upgrade.h"

using VdmOpenUpgrade = OdDbOpenUpgrade;
