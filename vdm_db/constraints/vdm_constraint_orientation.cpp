// The record of the side conditions that a constraint offers.
#include "vdm_db/constraints/vdm_constraint_orientation.h"

#include "platform/base/error.h"

namespace {

template <std::size_t count>
bool flagOf(const std::array<bool, count>& flags, unsigned argument) {
  return argument < count && flags[argument];
}

template <class T, std::size_t count>
T& entryOf(std::array<T, count>& entries, unsigned argument) {
  if (argument >= count) throw OdError_InvalidIndex(argument, static_cast<OdInt64>(count));
  return entries[argument];
}

}  // namespace

VdmConstraintOrientationProperties::MeasurementModes
VdmConstraintOrientationProperties::checkArgumentSupportsMeasurementModes(unsigned argument) const {
  if (!m_measurementModes || argument >= m_argumentModes.size()) return {};
  return m_argumentModes[argument];
}

bool VdmConstraintOrientationProperties::checkArgumentSupportsHalfSpaces(unsigned argument) const {
  return m_halfSpaces && flagOf(m_argumentHalfSpaces, argument);
}

bool VdmConstraintOrientationProperties::checkArgumentSupportsNotSpecifiedHalfSpace(
    unsigned argument) const {
  return checkArgumentSupportsHalfSpaces(argument) && flagOf(m_argumentNotSpecified, argument);
}

bool VdmConstraintOrientationProperties::checkArgumentSupportsAngleArgumentOrientation(
    unsigned argument) const {
  return m_angleOrientation && flagOf(m_argumentAngles, argument);
}

void VdmConstraintOrientationProperties::setArgumentSupportsMeasurementModes(
    unsigned argument, const MeasurementModes& modes) {
  entryOf(m_argumentModes, argument) = modes;
}

void VdmConstraintOrientationProperties::setArgumentSupportsHalfSpaces(unsigned argument,
                                                                       bool supports) {
  entryOf(m_argumentHalfSpaces, argument) = supports;
}

void VdmConstraintOrientationProperties::setArgumentSupportsNotSpecifiedHalfSpace(unsigned argument,
                                                                                  bool supports) {
  entryOf(m_argumentNotSpecified, argument) = supports;
}

void VdmConstraintOrientationProperties::setArgumentSupportsAngleArgumentOrientation(
    unsigned argument, bool supports) {
  entryOf(m_argumentAngles, argument) = supports;
}
