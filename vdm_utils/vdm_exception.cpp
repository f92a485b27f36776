// The system's own exception.
#include "vdm_utils/vdm_exception.h"

VdmException::~VdmException() = default;
