// VdmDbIDeveloperSettings: named switches for developers.
#pragma once

#include <map>

#include "platform/base/string.h"
#include "vdm_db/common/vdm_db_export.h"

/// One switch: a name and a value. A host makes and registers switches at start; one takes itself
/// off the registry when it dies. Names are compared exactly.
class VDM_DB_EXPORT VdmDbIDeveloperSettings {
 public:
  VdmDbIDeveloperSettings(const OdString& name, const OdString& value)
      : m_name(name), m_value(value) {}
  virtual ~VdmDbIDeveloperSettings();
  VdmDbIDeveloperSettings(const VdmDbIDeveloperSettings&) = delete;
  VdmDbIDeveloperSettings& operator=(const VdmDbIDeveloperSettings&) = delete;

  [[nodiscard]] const OdString& name() const { return m_name; }
  [[nodiscard]] const OdString& value() const { return m_value; }

  /// The switch of a name. An unknown one gives null and a failed assertion.
  [[nodiscard]] static VdmDbIDeveloperSettings* getInstance(const OdString& name);
  /// True for "1", "true", "on" and "yes", false for "0", "false", "off" and "no", without regard
  /// to case. The fallback for any other value and for an unknown name.
  [[nodiscard]] static bool getAsBool(const OdString& name, bool fallback);
  /// Registers a switch, which the caller keeps, under a name; null takes the name off.
  static void setInstance(VdmDbIDeveloperSettings* settings, const OdString& name);

 private:
  static std::map<OdString, VdmDbIDeveloperSettings*>& registered();

  OdString m_name;
  OdString m_value;
};
