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
  switch (outcome) {
    case FeatureOutcome::kChecked:
      return OdString(L"up to date");
    case FeatureOutcome::kUpdated:
      return OdString(L"updated");
    case FeatureOutcome::kFailed:
      return OdString(L"failed");
    case FeatureOutcome::kCondemned:
      return OdString(L"erased");
    case FeatureOutcome::kIdle:
      return OdString(L"without effect");
  }
  return {};
}

OdString toText(SolidAction action) {
  switch (action) {
    case SolidAction::kHealed:
      return OdString(L"healed");
    case SolidAction::kRemoved:
      return OdString(L"removed from");
    case SolidAction::kCut:
      return OdString(L"cut into");
    case SolidAction::kAdded:
      return OdString(L"added to");
  }
  return {};
}

}  // namespace vdm_host
