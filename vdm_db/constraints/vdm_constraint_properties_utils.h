// VdmConstraintPropertiesUtils: the side conditions of constraints, read and written by their keys.
#pragma once

#include <vector>

#include "vdm_db/common/vdm_db_export.h"
#include "vdm_db/constraints/vdm_constraint_orientation.h"

class VdmConstraint;

/// The side conditions that the bag of a constraint holds. What reads gives false, and leaves its
/// output unchanged unless the comment says otherwise, for a null constraint and where the
/// condition is not stored or is stored as a value of another kind. What writes gives false and
/// changes nothing for a null constraint, an argument that the condition does not know, and a value
/// that it does not have; otherwise it replaces what was there, with the signals of a change.
/// Arguments are numbered from 0.
namespace VdmConstraintPropertiesUtils {

// ---- One letter for each argument

/// Arguments that are skipped get the positive direction.
VDM_DB_EXPORT bool setAngleArgumentOrientation(VdmConstraint* constraint, int argument,
                                               AngleArgumentOrientation orientation);
VDM_DB_EXPORT bool getAngleArgumentOrientation(const VdmConstraint* constraint, int argument,
                                               AngleArgumentOrientation& orientation);
/// Arguments that are skipped keep their side.
VDM_DB_EXPORT bool setHalfSpace(VdmConstraint* constraint, int argument,
                                HalfSpaceOrientation orientation);
VDM_DB_EXPORT bool getHalfSpace(const VdmConstraint* constraint, int argument,
                                HalfSpaceOrientation& orientation);
/// kHalfSpaceKeep where nothing is stored.
[[nodiscard]] VDM_DB_EXPORT HalfSpaceOrientation getHalfSpace(const VdmConstraint& constraint,
                                                              int argument);
/// Asked of the VdmDbConstraintManagerPE; false without one.
VDM_DB_EXPORT bool getHalfSpacesFromDrawing(const VdmConstraint* constraint,
                                            std::vector<HalfSpaceOrientation>& orientations);

// ---- Alignment

VDM_DB_EXPORT bool setAlignment(VdmConstraint* constraint, AlignmentOrientation alignment);
VDM_DB_EXPORT bool getAlignment(const VdmConstraint* constraint, AlignmentOrientation& alignment);
/// kAlignmentNotSpecified where nothing is stored.
[[nodiscard]] VDM_DB_EXPORT AlignmentOrientation getAlignment(const VdmConstraint& constraint);
/// Asked of the VdmDbConstraintManagerPE; false without one.
VDM_DB_EXPORT bool getAlignmentFromDrawing(const VdmConstraint* constraint,
                                           AlignmentOrientation& alignment);

// ---- What of the arguments 0 and 1 is measured
//
// Each has a key of its own, "MM0" and "MM1", except when setMeasurementModes sets both to the
// central point: then there is the key "Circle measure mode" alone, and answers for any argument.

VDM_DB_EXPORT bool setMeasurementMode(VdmConstraint* constraint, int argument,
                                      MeasurementMode mode);
/// The mode with that value in dialogs; kMeasureDefault when `modes` has none.
VDM_DB_EXPORT bool setMeasurementMode(VdmConstraint* constraint, int argument,
                                      MeasurementModeGUI gui,
                                      const std::vector<MeasurementModeEx>& modes);
/// `modes` are two. Two defaults erase what is stored.
VDM_DB_EXPORT bool setMeasurementModes(VdmConstraint* constraint, const MeasurementMode* modes);
/// `mode` is kMeasureDefault where nothing is stored.
VDM_DB_EXPORT bool getMeasurementMode(const VdmConstraint* constraint, int argument,
                                      MeasurementMode& mode);
[[nodiscard]] VDM_DB_EXPORT MeasurementMode getMeasurementMode(const VdmConstraint* constraint,
                                                               int argument);
/// The stored mode with its value in dialogs. When `modes` does not have it, that is reported as an
/// assertion, and the answer is a MeasurementModeEx as it is made.
[[nodiscard]] VDM_DB_EXPORT MeasurementModeEx getMeasurementMode(
    const VdmConstraint* constraint, int argument, const std::vector<MeasurementModeEx>& modes);

// ---- Elements of an array argument

VDM_DB_EXPORT bool setArraySetSize(VdmConstraint* constraint, int size);
VDM_DB_EXPORT bool getArraySetSize(const VdmConstraint* constraint, int& size);

// ---- An attribute of the constraint's variable

/// False without a variable.
[[nodiscard]] VDM_DB_EXPORT bool getGeometryDriven(const VdmConstraint* constraint);
/// Without a variable that is reported as an assertion "VDMC_FAIL" with the message "Constraint
/// variable is not an extended variable.", and the answer is false.
VDM_DB_EXPORT bool setGeometryDriven(VdmConstraint* constraint, bool driven);

}  // namespace VdmConstraintPropertiesUtils
