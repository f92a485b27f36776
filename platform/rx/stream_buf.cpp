// The interface of byte streams.
#include "platform/rx/stream_buf.h"

OD_RX_DEFINE_ABSTRACT(OdStreamBuf, OdRxObject, L"OdStreamBuf")

OdString OdStreamBuf::fileName() const { return OdString(); }
