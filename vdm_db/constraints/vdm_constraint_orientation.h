// Side conditions of constraints: their values, and the record of which ones a constraint offers.
#pragma once

#include <array>
#include <cstddef>
#include <vector>

#include "platform/base/types.h"
#include "vdm_db/common/vdm_db_export.h"

/// Which side of an argument counts. Filed as one letter: "0", "+", "-", "K".
enum HalfSpaceOrientation : OdInt32 {
  kHalfSpaceNotSpecified = 0,
  kHalfSpacePositive = 1,
  kHalfSpaceNegative = 2,
  kHalfSpaceKeep = 3,  ///< as the drawing shows; also the letter where nothing was set
};

/// How two directions align. The numbers are stored.
enum AlignmentOrientation : OdInt32 {
  kAlignmentNotSpecified = 0,  ///< to be read from the drawing
  kAlignmentFirst = 1,
  kAlignmentSecond = 2,
  kAlignmentKeep = 3,  ///< to be read from the drawing
};

namespace VdmConstraintPropertiesUtils {

/// Direction of an angle's argument. Filed as one letter: "+", "-".
enum AngleArgumentOrientation : OdInt32 { kAnglePositive = 0, kAngleNegative = 1 };

/// What of an argument is measured. The numbers are stored; others are up to the solver's module.
enum MeasurementMode : OdInt32 { kMeasureDefault = 0, kMeasureCentralPoint = 2 };

/// The value that a dialog shows for a mode; up to the solver's module.
enum MeasurementModeGUI : OdInt32 { kMeasureGuiNone = 2 };

/// A mode with its value in dialogs.
struct MeasurementModeEx {
  MeasurementMode mode = kMeasureDefault;
  MeasurementModeGUI gui = kMeasureGuiNone;
};

}  // namespace VdmConstraintPropertiesUtils

/// Which side conditions a constraint offers, as a whole and by argument. A plain value; nothing is
/// offered at first. Questions about an argument beyond the number that a condition knows (two;
/// three for angle orientations) are answered with no; storing for one raises OdError_InvalidIndex.
class VDM_DB_EXPORT VdmConstraintOrientationProperties {
 public:
  using MeasurementModes = std::vector<VdmConstraintPropertiesUtils::MeasurementModeEx>;
  static constexpr unsigned maxNumberOfMeasurementModes = 3;

  /// Arguments that the constraint's type takes.
  [[nodiscard]] OdUInt32 getNumberOfConstraintArguments() const { return m_numberOfArguments; }
  void setNumberOfConstraintArguments(OdUInt32 count) { m_numberOfArguments = count; }

  // Of the constraint.
  [[nodiscard]] bool checkConstraintSupportsMeasurementModes() const { return m_measurementModes; }
  [[nodiscard]] bool checkConstraintSupportsHalfSpaces() const { return m_halfSpaces; }
  [[nodiscard]] bool checkConstraintSupportsAlignment() const { return m_alignment; }
  [[nodiscard]] bool checkConstraintSupportsAngleArgumentOrientation() const {
    return m_angleOrientation;
  }
  void setConstraintSupportsMeasurementModes(bool supports) { m_measurementModes = supports; }
  void setConstraintSupportsHalfSpaces(bool supports) { m_halfSpaces = supports; }
  void setConstraintSupportsAlignment(bool supports) { m_alignment = supports; }
  void setConstraintSupportsAngleArgumentOrientation(bool supports) {
    m_angleOrientation = supports;
  }

  // Of an argument; nothing is offered while the constraint does not offer it.
  [[nodiscard]] MeasurementModes checkArgumentSupportsMeasurementModes(unsigned argument) const;
  [[nodiscard]] bool checkArgumentSupportsHalfSpaces(unsigned argument) const;
  /// Half spaces, and that the side may be left open.
  [[nodiscard]] bool checkArgumentSupportsNotSpecifiedHalfSpace(unsigned argument) const;
  [[nodiscard]] bool checkArgumentSupportsAngleArgumentOrientation(unsigned argument) const;
  void setArgumentSupportsMeasurementModes(unsigned argument, const MeasurementModes& modes);
  void setArgumentSupportsHalfSpaces(unsigned argument, bool supports);
  void setArgumentSupportsNotSpecifiedHalfSpace(unsigned argument, bool supports);
  void setArgumentSupportsAngleArgumentOrientation(unsigned argument, bool supports);

 private:
  OdUInt32 m_numberOfArguments = 0;
  bool m_measurementModes = false;
  bool m_halfSpaces = false;
  bool m_alignment = false;
  bool m_angleOrientation = false;
  std::array<MeasurementModes, 2> m_argumentModes;
  std::array<bool, 2> m_argumentHalfSpaces{};
  std::array<bool, 2> m_argumentNotSpecified{};
  std::array<bool, 3> m_argumentAngles{};
};
