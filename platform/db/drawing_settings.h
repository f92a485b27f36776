// Drawing settings: their table, and the values of one drawing.
#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/base/result.h"
#include "platform/base/string.h"
#include "platform/filer/res_buf.h"

/// One setting. Its value is a number: an integer, a double, a switch, or the handle of an object
/// of the drawing.
struct OdDbSettingRow {
  enum class Kind : OdUInt8 { kInt16, kDouble, kBool, kHandle };

  const char* name;  ///< upper case, ASCII
  Kind kind;
  double defaultValue;
  double min;
  double max;
};

/// Values of all settings of one drawing, and which of them differ from their defaults.
class OdDbDrawingSettings {
 public:
  OdDbDrawingSettings();

  [[nodiscard]] static std::span<const OdDbSettingRow> rows();
  /// Null for an unknown name. Case does not matter.
  [[nodiscard]] static const OdDbSettingRow* find(const OdString& name);

  /// The value, as a buffer with code 70 (integer), 40 (double), 290 (switch) or 5
  /// (handle).
  [[nodiscard]] OdResBufPtr get(const OdDbSettingRow* row) const;
  [[nodiscard]] double number(const OdDbSettingRow* row) const { return m_values[indexOf(row)]; }
  /// Takes any buffer that holds a number. eInvalidInput, with `reason` naming the setting, the
  /// value and the limits, when it does not fit; nothing changes then.
  OdResult set(const OdDbSettingRow* row, const OdResBuf* value, OdString* reason = nullptr);
  OdResult setNumber(const OdDbSettingRow* row, double value, OdString* reason = nullptr);

  /// Names of the settings that differ from their defaults, in the order of the table.
  [[nodiscard]] std::vector<const OdDbSettingRow*> changed() const;

  // Stored form: kind (one byte: 1 integer, 2 double, 3 switch, 4 handle), then the value,
  // little-endian: int16, double, one byte or uint64.
  [[nodiscard]] std::string serialise(const OdDbSettingRow* row) const;
  /// eCorruptData for bytes of another form, eInvalidInput for a value outside the limits.
  OdResult deserialise(const OdDbSettingRow* row, std::string_view bytes,
                       OdString* reason = nullptr);

 private:
  [[nodiscard]] static std::size_t indexOf(const OdDbSettingRow* row);

  std::vector<double> m_values;
};
