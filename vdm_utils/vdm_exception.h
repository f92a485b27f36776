// The system's own exception.
#pragma once

#include "platform/base/error.h"

/// Raised where the system itself, not the runtime under it, finds a programming fault.
class OD_API VdmException : public OdError {
 public:
  explicit VdmException(const OdString& message) : OdError(message) {}
  VdmException(OdResult code, const OdString& message) : OdError(code, message) {}
  VdmException(const VdmException&) noexcept = default;
  ~VdmException() override;
};
