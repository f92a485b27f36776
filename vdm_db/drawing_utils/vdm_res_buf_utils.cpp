// Chains of result buffers.
#include "vdm_db/drawing_utils/vdm_res_buf_utils.h"

namespace vdmu {

void clearRbSequence(OdSmartPtr<OdResBuf>& chain) {
  while (!chain.isNull()) chain = chain->next();
}

}  // namespace vdmu
