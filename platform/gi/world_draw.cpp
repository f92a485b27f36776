// Classes of the drawing context.
#include "platform/gi/world_draw.h"

OD_RX_DEFINE_ABSTRACT(OdGiSubEntityTraits, OdRxObject, L"OdGiSubEntityTraits")
OD_RX_DEFINE_ABSTRACT(OdGiWorldDraw, OdRxObject, L"OdGiWorldDraw")
