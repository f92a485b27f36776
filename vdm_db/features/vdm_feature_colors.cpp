// GetFEATURECOLORS: the host's switch of the feature colours.
#include "vdm_db/features/vdm_feature_colors.h"

namespace vdmu {

bool (*GetFEATURECOLORS::m_pMethodGetValue)() = nullptr;

bool GetFEATURECOLORS::getValue() { return m_pMethodGetValue != nullptr && m_pMethodGetValue(); }

void GetFEATURECOLORS::setImpl(bool (*method)()) { m_pMethodGetValue = method; }

}  // namespace vdmu
