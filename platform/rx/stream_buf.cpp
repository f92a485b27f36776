// The interface of byte streams.
#include "platform/rx/stream_buf.h"

#include <algorithm>

OD_RX_DEFINE_ABSTRACT(OdStreamBuf, OdRxObject, L"OdStreamBuf")

OdString OdStreamBuf::fileName() const { return OdString(); }

void OdStreamBuf::copyDataTo(OdStreamBuf* target, OdUInt64 count) {
  OdUInt8 block[4096];
  while (count > 0) {
    const OdUInt64 part = std::min<OdUInt64>(count, sizeof(block));
    getBytes(block, part);
    target->putBytes(block, part);
    count -= part;
  }
}
