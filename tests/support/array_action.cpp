// The action that makes a block an associative array.
#include "tests/support/array_action.h"

OD_RX_DEFINE_DB(ArrayAction, OdDbObject, L"OdDbAssocArrayActionBody", 33, 55, 0, L"ARRAYACTION",
                L"tests")
