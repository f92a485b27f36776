// GetFEATURECOLORS: the host's switch of the feature colours.
#pragma once

#include "vdm_db/common/vdm_db_export.h"

namespace vdmu {

/// The host's switch that turns feature colours on. Off until the host sets a function, which it
/// does before drawing begins.
class VDM_DB_EXPORT GetFEATURECOLORS {
 public:
  GetFEATURECOLORS() = delete;

  [[nodiscard]] static bool getValue();
  /// Null turns the switch off.
  static void setImpl(bool (*method)());

 private:
  static bool (*m_pMethodGetValue)();
};

}  // namespace vdmu
