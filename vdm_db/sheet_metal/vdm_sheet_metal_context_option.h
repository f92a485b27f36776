// VdmISheetMetalContextOption: one group of settings of a sheet-metal context.
#pragma once

#include "platform/base/result.h"
#include "vdm_db/common/vdm_db_export.h"
#include "vdm_db/properties/vdm_properties.h"
#include "vdm_db/sheet_metal/vdm_sheet_metal_types.h"

class VdmDbISettings;

/// Base of the option classes, which hold data only: the context owns them and files their fields
/// with its bag. An option follows the open state of its context: change one that
/// optionForWrite...() of an open context gave.
///
/// Results: 5 for a value that is refused, nothing being changed; 417 where there is nothing to
/// take values from.
class VDM_DB_EXPORT VdmISheetMetalContextOption {
 public:
  VdmISheetMetalContextOption() = default;
  virtual ~VdmISheetMetalContextOption();
  VdmISheetMetalContextOption(const VdmISheetMetalContextOption&) = delete;
  VdmISheetMetalContextOption& operator=(const VdmISheetMetalContextOption&) = delete;

  /// Maps the fields to their keys; the bag lives as long as the option.
  virtual void bind(VdmProperties& bag) = 0;
  /// Takes over all fields. 417 and a failed assertion for an option of another class or null.
  virtual OdResult copyFrom(const VdmISheetMetalContextOption* other) = 0;
  /// Takes the values of the program. Null gives 417 and the fallbacks, with a failed assertion for
  /// thickness, bend radius, relief, miter, hem and junction.
  virtual OdResult setDefaultValue(const VdmDbISettings* settings) = 0;
};

/// Whether null settings are reported as a failed assertion.
enum class VdmWithoutSettings { kIsReported, kIsSilent };

/// The fields of an option are one structure whose member initialisers are the fallbacks. It says
/// in `kWithoutSettings` what null settings mean, and the source of this class names its fields one
/// by one with their keys and settings.
template <class Fields>
class VDM_DB_EXPORT VdmSheetMetalContextOptionOf : public VdmISheetMetalContextOption {
 public:
  void bind(VdmProperties& bag) override;
  OdResult copyFrom(const VdmISheetMetalContextOption* other) override;
  OdResult setDefaultValue(const VdmDbISettings* settings) override;

 protected:
  /// What does not follow the common rule: called after the fields were read.
  virtual void settingsWereRead(const VdmDbISettings& /*settings*/) {}

  Fields m_fields;
};
