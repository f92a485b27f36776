// The class of test objects.
#include "tests/platform/db/clone_testing.h"

OD_RX_DEFINE_DB(CloneNode, OdDbObject, L"CloneNode", 0, 0, kOdRxEraseAllowed, L"CLONE_NODE",
                L"Clone tests")
