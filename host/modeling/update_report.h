// What an edit and its update pass did, and why: plain data for people and programs.
#pragma once

#include <vector>

#include "platform/base/array.h"
#include "platform/base/string.h"
#include "platform/filer/object_id.h"

namespace vdm_host {

/// What came of a feature in a pass. Features that had nothing to do are only counted.
enum class FeatureOutcome {
  kChecked,    ///< looked at and found up to date
  kUpdated,    ///< its solid operations were done anew
  kFailed,     ///< an operation or its update failed
  kCondemned,  ///< erased, since its insert or its solid was erased
  kIdle,       ///< done, and its tools neither took anything away nor added anything
};

/// What was done to a solid on behalf of a feature.
enum class SolidAction { kHealed, kRemoved, kCut, kAdded };

struct SolidStep {
  OdDbObjectId solid;
  SolidAction action = SolidAction::kHealed;
};

struct FeatureReport {
  OdDbObjectId feature;
  OdString name;
  OdString component;  ///< name of its block; empty for features without
  FeatureOutcome outcome = FeatureOutcome::kChecked;
  OdString reason;  ///< why it took part
  OdString text;    ///< what went wrong; empty when nothing did
  std::vector<SolidStep> steps;

  [[nodiscard]] bool needsAttention() const {
    return outcome == FeatureOutcome::kFailed || outcome == FeatureOutcome::kIdle;
  }
};

/// A reference that leads to something else than before, or is resolved in another way.
struct ReferenceReport {
  OdDbObjectId reference;
  OdString before;  ///< grade before and after: "exact", "by lineage", "split", "merged",
  OdString after;   ///< "by signature", "ambiguous", "lost"
  OdString text;    ///< what decided
  bool needsAttention = false;   ///< it is ambiguous or lost now
  OdDbObjectIdArray replacedBy;  ///< references that replaced it, when it was erased
};

/// A boolean on a solid of the drawing: how much of its body the modeller looked at.
struct SolidWorkReport {
  OdDbObjectId solid;
  OdUInt32 numFacesSeen = 0;  ///< faces near the tools; not counted where all were looked at
  OdUInt32 numFaces = 0;      ///< of the body before
  OdString wholeBecause;      ///< why all were looked at; empty where these faces were enough
};

struct PhaseReport {
  OdString phase;
  double seconds = 0.0;
};

/// How a solid whose body was replaced without a history was read, in words.
struct ReadingReport {
  OdDbObjectId solid;
  OdString text;             ///< "turned by 90 deg about (0, 0, 1) through (5, 5, 0)"
  std::size_t readings = 1;  ///< that explain the new body as well; 1 when there is no other
};

struct UpdateReport {
  std::vector<FeatureReport> features;  ///< those that took part, in the order of the pass
  OdUInt32 numSkipped = 0;              ///< features that had nothing to do
  OdUInt32 numRounds = 0;               ///< passes until nothing was new
  std::vector<ReferenceReport> references;
  std::vector<ReadingReport> readings;
  std::vector<SolidWorkReport> solidWork;  ///< in the order in which it was done
  std::vector<PhaseReport> phases;  ///< summed over all rounds, in the order of first appearance
  double seconds = 0.0;             ///< of the whole edit
  double passSeconds = 0.0;         ///< of that, after the change itself
  double modelerSeconds = 0.0;      ///< of that, in healing and booleans
  bool rolledBack = false;          ///< the drawing is as it was before
  OdString rollbackReason;

  /// Nothing failed or had no effect, and no reference became lost or ambiguous.
  [[nodiscard]] bool isSound() const;
  /// The feature's entry, made when it is missing.
  FeatureReport& feature(const OdDbObjectId& id);
  void addPhase(const OdString& phase, double seconds);
};

[[nodiscard]] OdString toText(FeatureOutcome outcome);
[[nodiscard]] OdString toText(SolidAction action);

}  // namespace vdm_host
