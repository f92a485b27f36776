// The side conditions of constraints, read and written by their keys.
#include "vdm_db/constraints/vdm_constraint_properties_utils.h"

#include <algorithm>
#include <string_view>

#include "vdm_db/common/vdm_constants.h"
#include "vdm_db/constraints/vdm_constraint.h"
#include "vdm_db/parameters/vdm_assoc_variable_ext.h"
#include "vdm_utils/vdmc_assert.h"

namespace VdmConstraintPropertiesUtils {

// ---- One letter for each argument

namespace {

/// A condition that is a string with one letter for each argument.
struct LetterCondition {
  const OdString& key;
  std::wstring_view letters;  ///< by value
  wchar_t filler;             ///< of arguments that were skipped
};

constexpr int kMaxArguments = 1 << 20;  // as records are limited

LetterCondition angles() { return {kVdmAngleArgsOrientation, L"+-", L'+'}; }
LetterCondition halfSpaces() { return {kVdmHalfSpaceOrientation, L"0+-K", L'K'}; }

bool setLetter(const LetterCondition& condition, VdmConstraint* constraint, int argument,
               OdInt32 value) {
  if (constraint == nullptr || argument < 0 || argument >= kMaxArguments || value < 0 ||
      value >= static_cast<OdInt32>(condition.letters.size())) {
    return false;
  }
  OdString stored;
  constraint->properties().getProperty(condition.key, stored);
  std::wstring letters(stored.c_str());
  const auto place = static_cast<std::size_t>(argument);
  if (place >= letters.size()) letters.resize(place + 1, condition.filler);
  letters[place] = condition.letters[static_cast<std::size_t>(value)];
  constraint->changeProperty(condition.key, OdString(letters.c_str()));
  return true;
}

template <class T>
bool getLetter(const LetterCondition& condition, const VdmConstraint* constraint, int argument,
               T& value) {
  OdString stored;
  if (constraint == nullptr || argument < 0 ||
      !constraint->properties().getProperty(condition.key, stored) ||
      argument >= stored.getLength()) {
    return false;
  }
  const std::size_t found = condition.letters.find(stored[argument]);
  if (found == std::wstring_view::npos) return false;
  value = static_cast<T>(found);
  return true;
}

}  // namespace

bool setAngleArgumentOrientation(VdmConstraint* constraint, int argument,
                                 AngleArgumentOrientation orientation) {
  return setLetter(angles(), constraint, argument, orientation);
}

bool getAngleArgumentOrientation(const VdmConstraint* constraint, int argument,
                                 AngleArgumentOrientation& orientation) {
  return getLetter(angles(), constraint, argument, orientation);
}

bool setHalfSpace(VdmConstraint* constraint, int argument, HalfSpaceOrientation orientation) {
  return setLetter(halfSpaces(), constraint, argument, orientation);
}

bool getHalfSpace(const VdmConstraint* constraint, int argument,
                  HalfSpaceOrientation& orientation) {
  return getLetter(halfSpaces(), constraint, argument, orientation);
}

HalfSpaceOrientation getHalfSpace(const VdmConstraint& constraint, int argument) {
  HalfSpaceOrientation orientation = kHalfSpaceKeep;
  getHalfSpace(&constraint, argument, orientation);
  return orientation;
}

bool getHalfSpacesFromDrawing(const VdmConstraint* constraint,
                              std::vector<HalfSpaceOrientation>& orientations) {
  if (constraint == nullptr) return false;
  const VdmDbConstraintManagerPEPtr pe = constraint->getConstraintManagerPE();
  return !pe.isNull() && pe->getHalfSpacesFromDrawing(constraint, orientations);
}

// ---- Alignment

namespace {

bool getNumber(const VdmConstraint* constraint, const OdString& key, OdLong& number) {
  return constraint != nullptr && constraint->properties().getProperty(key, number);
}

}  // namespace

bool setAlignment(VdmConstraint* constraint, AlignmentOrientation alignment) {
  if (constraint == nullptr || alignment < kAlignmentNotSpecified || alignment > kAlignmentKeep) {
    return false;
  }
  constraint->changeProperty(kVdmAlignmentOrientation, OdLong{alignment});
  return true;
}

bool getAlignment(const VdmConstraint* constraint, AlignmentOrientation& alignment) {
  OdLong number = 0;
  if (!getNumber(constraint, kVdmAlignmentOrientation, number)) return false;
  alignment = static_cast<AlignmentOrientation>(number);
  return true;
}

AlignmentOrientation getAlignment(const VdmConstraint& constraint) {
  AlignmentOrientation alignment = kAlignmentNotSpecified;
  getAlignment(&constraint, alignment);
  return alignment;
}

bool getAlignmentFromDrawing(const VdmConstraint* constraint, AlignmentOrientation& alignment) {
  if (constraint == nullptr) return false;
  const VdmDbConstraintManagerPEPtr pe = constraint->getConstraintManagerPE();
  return !pe.isNull() && pe->getAlignmentFromDrawing(constraint, alignment);
}

// ---- What of the arguments is measured

namespace {

constexpr const char* kSource = "vdm_db/vdm_constraint_properties_utils";

bool isMeasuredArgument(int argument) { return argument == 0 || argument == 1; }
const OdString& measureKey(int argument) {
  return argument == 0 ? kVdmMeasureMode0 : kVdmMeasureMode1;
}
bool hasMeasureKey(const VdmConstraint* constraint, int argument, OdLong& number) {
  return isMeasuredArgument(argument) && getNumber(constraint, measureKey(argument), number);
}

void eraseMeasurementModes(VdmConstraint* constraint) {
  constraint->removeProperty(kVdmMeasureMode0);
  constraint->removeProperty(kVdmMeasureMode1);
}

}  // namespace

bool setMeasurementMode(VdmConstraint* constraint, int argument, MeasurementMode mode) {
  if (constraint == nullptr || !isMeasuredArgument(argument) || mode < kMeasureDefault) {
    return false;
  }
  constraint->removeProperty(kVdmCircleMeasureMode);
  constraint->changeProperty(measureKey(argument), OdLong{mode});
  return true;
}

bool setMeasurementMode(VdmConstraint* constraint, int argument, MeasurementModeGUI gui,
                        const std::vector<MeasurementModeEx>& modes) {
  const auto found = std::find_if(modes.begin(), modes.end(),
                                  [gui](const MeasurementModeEx& row) { return row.gui == gui; });
  return setMeasurementMode(constraint, argument,
                            found == modes.end() ? kMeasureDefault : found->mode);
}

bool setMeasurementModes(VdmConstraint* constraint, const MeasurementMode* modes) {
  if (constraint == nullptr || modes == nullptr || modes[0] < kMeasureDefault ||
      modes[1] < kMeasureDefault) {
    return false;
  }
  const bool isEqual = modes[0] == modes[1];
  if (isEqual && modes[0] == kMeasureDefault) {
    eraseMeasurementModes(constraint);
    constraint->removeProperty(kVdmCircleMeasureMode);
    return true;
  }
  if (isEqual && modes[0] == kMeasureCentralPoint) {
    eraseMeasurementModes(constraint);
    constraint->changeProperty(kVdmCircleMeasureMode, kVdmMeasureModeCentralPoint);
    return true;
  }
  return setMeasurementMode(constraint, 0, modes[0]) && setMeasurementMode(constraint, 1, modes[1]);
}

bool getMeasurementMode(const VdmConstraint* constraint, int argument, MeasurementMode& mode) {
  if (constraint == nullptr) return false;
  mode = kMeasureDefault;
  OdLong number = 0;
  OdString circle;
  if (hasMeasureKey(constraint, argument, number)) {
    mode = static_cast<MeasurementMode>(number);
    return true;
  }
  if (!constraint->properties().getProperty(kVdmCircleMeasureMode, circle)) return false;
  mode = kMeasureCentralPoint;
  return true;
}

MeasurementMode getMeasurementMode(const VdmConstraint* constraint, int argument) {
  MeasurementMode mode = kMeasureDefault;
  getMeasurementMode(constraint, argument, mode);
  return mode;
}

MeasurementModeEx getMeasurementMode(const VdmConstraint* constraint, int argument,
                                     const std::vector<MeasurementModeEx>& modes) {
  const MeasurementMode mode = getMeasurementMode(constraint, argument);
  const auto found = std::find_if(modes.begin(), modes.end(), [mode](const MeasurementModeEx& row) {
    return row.mode == mode;
  });
  if (found != modes.end()) return *found;
  VDM_ASSERT_AT(false, kSource, __LINE__);
  return {};
}

// ---- Elements of an array argument

bool setArraySetSize(VdmConstraint* constraint, int size) {
  if (constraint == nullptr) return false;
  constraint->changeProperty(kVdmArraySetSize, OdLong{size});
  return true;
}

bool getArraySetSize(const VdmConstraint* constraint, int& size) {
  OdLong number = 0;
  if (!getNumber(constraint, kVdmArraySetSize, number)) return false;
  size = number;
  return true;
}

// ---- An attribute of the constraint's variable

namespace {

VdmAssocVariableExtPtr extensionOf(const VdmConstraint* constraint, OdDb::OpenMode mode) {
  if (constraint == nullptr) return {};
  return VdmAssocVariableExt::cast(constraint->userVariable().openAs<OdDbAssocVariable>(mode));
}

}  // namespace

bool getGeometryDriven(const VdmConstraint* constraint) {
  const VdmAssocVariableExtPtr extension = extensionOf(constraint, OdDb::kForRead);
  return !extension.isNull() && extension->isGeometryDriven();
}

bool setGeometryDriven(VdmConstraint* constraint, bool driven) {
  if (constraint == nullptr) return false;
  const VdmAssocVariableExtPtr extension = extensionOf(constraint, OdDb::kForWrite);
  if (extension.isNull()) {
    vdmcCallAssert("VDMC_FAIL", OdString("Constraint variable is not an extended variable."),
                   kSource, __LINE__);
    return false;
  }
  extension->setGeometryDriven(driven);
  return true;
}

}  // namespace VdmConstraintPropertiesUtils
