// What an operation and its update pass did.
#include "host/cli/step_output.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <map>
#include <nlohmann/json.hpp>

#include "host/cli/model_lookup.h"
#include "host/cli/text_output.h"

namespace cli {

namespace {

using Json = nlohmann::ordered_json;
using vdm_host::FeatureOutcome;
using vdm_host::FeatureReport;
using vdm_host::ReferenceReport;
using vdm_host::UpdateReport;

/// Phases that are shorter would read as 0.0 ms.
constexpr double kShownSeconds = 5e-5;

std::string milliseconds(double seconds) {
  std::array<char, 32> text{};
  std::snprintf(text.data(), text.size(), "%.1f ms", seconds * 1e3);
  return text.data();
}

/// "healed 21, cut into 21".
std::string stepsText(const FeatureReport& feature) {
  std::string text;
  for (const vdm_host::SolidStep& step : feature.steps) {
    if (!text.empty()) text += ", ";
    text += str(vdm_host::toText(step.action)) + " " + solidText(step.solid);
  }
  return text;
}

std::string featureLine(const FeatureReport& feature) {
  std::string line = str(feature.name);
  if (line.empty()) line = "feature";
  line += " (" + handleOf(feature.feature) + ")";
  if (!feature.component.isEmpty()) line += " of " + quote(feature.component.utf8());
  line += ": " + str(vdm_host::toText(feature.outcome));
  if (!feature.reason.isEmpty()) line += ", " + str(feature.reason);
  if (const std::string steps = stepsText(feature); !steps.empty()) line += "; " + steps;
  if (!feature.text.isEmpty()) line += "; " + str(feature.text);
  return line;
}

/// The name of a reference, or of what it was split into.
std::string nameOfReference(const ReferenceReport& report, const ReferenceText& text) {
  if (!text.name.empty() || report.replacedBy.isEmpty()) return text.name;
  return referenceText(report.replacedBy.first()).name;
}

std::string referenceLine(const ReferenceReport& report) {
  const ReferenceText text = referenceText(report.reference);
  const std::string name = nameOfReference(report, text);
  std::string line = name.empty() ? text.handle : name + " (" + text.handle + ")";
  if (!text.subent.empty()) line += " " + text.subent;
  line += ": " + str(report.before);
  if (report.before != report.after) line += " -> " + str(report.after);
  if (!report.text.isEmpty()) line += ", " + str(report.text);
  for (const OdDbObjectId& id : report.replacedBy) {
    const ReferenceText its = referenceText(id);
    line += (id == report.replacedBy.first() ? "; now " : ", ") + its.handle + " " + its.subent;
  }
  return line;
}

/// One entry a reference, however many rounds it went through: from the first state to the last.
std::vector<ReferenceReport> mergedByReference(const UpdateReport& report) {
  std::vector<ReferenceReport> merged;
  std::map<OdDbObjectId, std::size_t> places;
  for (const ReferenceReport& entry : report.references) {
    const auto [place, isNew] = places.emplace(entry.reference, merged.size());
    if (isNew) {
      merged.push_back(entry);
      continue;
    }
    ReferenceReport& known = merged[place->second];
    const OdString before = known.before;
    known = entry;
    known.before = before;
  }
  return merged;
}

/// Became ambiguous or lost, and something refers to it.
bool isLoss(const ReferenceReport& report) {
  return report.needsAttention && !referenceText(report.reference).isExpected;
}

bool isSoundPass(const UpdateReport& report) {
  return !report.rolledBack &&
         std::ranges::none_of(report.features, &FeatureReport::needsAttention) &&
         std::ranges::none_of(mergedByReference(report), isLoss);
}

bool isWorthALine(const ReferenceReport& report, bool explain) {
  return explain || report.before != report.after || report.needsAttention;
}

bool isWorthALine(const FeatureReport& feature, bool explain) {
  return explain || feature.outcome != FeatureOutcome::kChecked;
}

std::string summaryLine(const UpdateReport& report) {
  std::array<std::uint64_t, 5> counts{};
  for (const FeatureReport& feature : report.features) {
    ++counts[static_cast<std::size_t>(feature.outcome)];
  }
  std::string line;
  for (const FeatureOutcome outcome : {FeatureOutcome::kUpdated, FeatureOutcome::kFailed,
                                       FeatureOutcome::kCondemned, FeatureOutcome::kIdle}) {
    const std::uint64_t count = counts[static_cast<std::size_t>(outcome)];
    if (count == 0 && outcome != FeatureOutcome::kUpdated) continue;
    line += std::to_string(count) + " " + str(vdm_host::toText(outcome)) + ", ";
  }
  const std::uint64_t skipped =
      report.numSkipped + counts[static_cast<std::size_t>(FeatureOutcome::kChecked)];
  return "features: " + line + std::to_string(skipped) + " had nothing to do";
}

std::string bullet(const std::string& line) {
  const std::string text = wrapped(oneLine(line), "    ");
  return "  - " + text.substr(4);
}

/// Said of every body that was replaced, but for one that is where it was.
std::string readingLine(const vdm_host::ReadingReport& reading) {
  std::string line = "body of " + handleOf(reading.solid) + " read as: " + str(reading.text);
  if (reading.readings > 1) {
    line += ", or in " + std::to_string(reading.readings - 1) + " other " +
            (reading.readings == 2 ? "way" : "ways") + " that explain it as well";
  }
  return line;
}

bool isWorthALine(const vdm_host::ReadingReport& reading, bool explain) {
  return explain || reading.readings > 1 || reading.text != L"nothing moved";
}

std::string solidWorkLine(const vdm_host::SolidWorkReport& work) {
  const std::string solid = "solid " + handleOf(work.solid) + ": ";
  if (!work.wholeBecause.isEmpty()) {
    return solid + "the modeller looked at all of its " + counted(work.numFaces, "face") + ", " +
           str(work.wholeBecause);
  }
  return solid + "the modeller looked at " + std::to_string(work.numFacesSeen) + " of " +
         counted(work.numFaces, "face");
}

std::string updateText(const UpdateReport& report, bool explain) {
  const bool tellsReadings = std::ranges::any_of(
      report.readings, [explain](const auto& reading) { return isWorthALine(reading, explain); });
  if (!explain && !tellsReadings && report.features.empty() && report.references.empty()) return {};
  std::string text = wrapped(summaryLine(report), "  ");
  for (const FeatureReport& feature : report.features) {
    if (isWorthALine(feature, explain)) text += bullet(featureLine(feature));
  }
  for (const vdm_host::ReadingReport& reading : report.readings) {
    if (isWorthALine(reading, explain)) text += bullet(readingLine(reading));
  }
  std::string references;
  std::uint64_t count = 0;
  for (const ReferenceReport& reference : mergedByReference(report)) {
    if (!isWorthALine(reference, explain)) continue;
    references += bullet(referenceLine(reference));
    ++count;
  }
  if (count != 0) text += "  references changed: " + std::to_string(count) + "\n" + references;
  if (!explain) return text;
  text += "  took " + milliseconds(report.seconds) + ", of that " +
          milliseconds(report.modelerSeconds) + " in the modeller, in " +
          counted(report.numRounds, "round") + "\n";
  for (const vdm_host::SolidWorkReport& work : report.solidWork) {
    text += bullet(solidWorkLine(work));
  }
  for (const vdm_host::PhaseReport& phase : report.phases) {
    if (phase.seconds < kShownSeconds) continue;
    text += bullet(str(phase.phase) + ": " + milliseconds(phase.seconds));
  }
  return text;
}

// JSON.

Json featureJson(const FeatureReport& feature) {
  Json steps = Json::array();
  for (const vdm_host::SolidStep& step : feature.steps) {
    steps.push_back(
        {{"action", str(vdm_host::toText(step.action))}, {"solid", handleOf(step.solid)}});
  }
  return {{"feature", handleOf(feature.feature)},
          {"name", str(feature.name)},
          {"component", str(feature.component)},
          {"outcome", str(vdm_host::toText(feature.outcome))},
          {"reason", str(feature.reason)},
          {"text", str(feature.text)},
          {"steps", std::move(steps)}};
}

Json referenceJson(const ReferenceReport& report) {
  const ReferenceText text = referenceText(report.reference);
  Json replacedBy = Json::array();
  for (const OdDbObjectId& id : report.replacedBy) replacedBy.push_back(handleOf(id));
  return {{"reference", text.handle},
          {"name", nameOfReference(report, text)},
          {"solid", text.solid},
          {"subentity", text.subent},
          {"before", str(report.before)},
          {"after", str(report.after)},
          {"decided_by", str(report.text)},
          {"replaced_by", std::move(replacedBy)},
          {"needs_attention", isLoss(report)}};
}

Json solidWorkJson(const vdm_host::SolidWorkReport& work) {
  return {{"solid", handleOf(work.solid)},
          {"faces_seen", work.wholeBecause.isEmpty() ? work.numFacesSeen : work.numFaces},
          {"faces", work.numFaces},
          {"whole_because", str(work.wholeBecause)}};
}

Json updateJson(const UpdateReport& report) {
  Json features = Json::array();
  for (const FeatureReport& feature : report.features) features.push_back(featureJson(feature));
  Json references = Json::array();
  for (const ReferenceReport& r : mergedByReference(report)) references.push_back(referenceJson(r));
  Json readings = Json::array();
  for (const vdm_host::ReadingReport& reading : report.readings) {
    readings.push_back({{"solid", handleOf(reading.solid)},
                        {"motion", str(reading.text)},
                        {"readings", reading.readings}});
  }
  Json solids = Json::array();
  for (const auto& work : report.solidWork) solids.push_back(solidWorkJson(work));
  Json phases = Json::array();
  for (const vdm_host::PhaseReport& phase : report.phases) {
    phases.push_back({{"phase", str(phase.phase)}, {"seconds", phase.seconds}});
  }
  return {{"features", std::move(features)},
          {"skipped", report.numSkipped},
          {"rounds", report.numRounds},
          {"references", std::move(references)},
          {"readings", std::move(readings)},
          {"solids", std::move(solids)},
          {"phases", std::move(phases)},
          {"seconds", report.seconds},
          {"modeler_seconds", report.modelerSeconds},
          {"sound", isSoundPass(report)}};
}

}  // namespace

bool isSound(const StepResult& step) {
  return step.sound && (!step.report || isSoundPass(*step.report));
}

std::string stepText(const StepResult& step, bool explain) {
  std::string text = wrapped(oneLine(step.headline), "");
  for (const std::string& note : step.notes) text += bullet(note);
  if (step.report) text += updateText(*step.report, explain);
  return text;
}

Json stepJson(const StepResult& step) {
  Json json{{"headline", step.headline}};
  for (const auto& [name, value] : step.values) json[name] = value;
  if (!step.notes.empty()) json["notes"] = step.notes;
  json["sound"] = isSound(step);
  if (step.report) json["update"] = updateJson(*step.report);
  return json;
}

}  // namespace cli
