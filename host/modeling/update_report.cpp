// What an edit and its update pass did, and why: plain data for people and programs.
#include "host/modeling/update_report.h"

#include <algorithm>

namespace vdm_host {

bool UpdateReport::isSound() const {
  return !rolledBack && std::ranges::none_of(features, &FeatureReport::needsAttention) &&
         std::ranges::none_of(references, &ReferenceReport::needsAttention);
}

FeatureReport& UpdateReport::feature(const OdDbObjectId& id) {
  const auto found = std::ranges::find(features, id, &FeatureReport::feature);
  if (found != features.end()) return *found;
  features.emplace_back().feature = id;
  return features.back();
}

void UpdateReport::addPhase(const OdString& phase, double phaseSeconds) {
  const auto found = std::ranges::find(phases, phase, &PhaseReport::phase);
  if (found != phases.end()) {
    found->seconds += phaseSeconds;
    return;
  }
  phases.push_back({phase, phaseSeconds});
}

OdString toText(FeatureOutcome outcome) {
  static const wchar_t* const kNames[] = {L"up to date", L"updated", L"failed", L"erased",
                                          L"without effect"};
  return OdString(kNames[static_cast<std::size_t>(outcome)]);
}

OdString toText(SolidAction action) {
  static const wchar_t* const kNames[] = {L"healed", L"removed from", L"cut into", L"added to"};
  return OdString(kNames[static_cast<std::size_t>(action)]);
}

}  // namespace vdm_host
