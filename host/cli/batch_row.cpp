// Computes rows of a batch: the edit, the figures, the files, the record.
#include "host/cli/batch_row.h"

#include <algorithm>
#include <chrono>
#include <new>

#include "host/batch/drawing_figures.h"
#include "host/cli/batch_records.h"
#include "host/cli/model_lookup.h"
#include "host/cli/operation.h"
#include "host/cli/parameter_changes.h"
#include "host/cli/text_lines.h"
#include "host/naming/reference_query.h"
#include "host/parameters/configurations.h"
#include "host/parameters/parameter_query.h"
#include "host/rendering/render.h"
#include "platform/base/error.h"
#include "platform/db/read_faults.h"
#include "platform/db/units.h"
#include "platform/modeler/step_drawing.h"

namespace cli {

namespace {

using Json = nlohmann::ordered_json;
using Clock = std::chrono::steady_clock;
using vdm_host::FeatureReport;
using vdm_host::ReferenceReport;

constexpr int kMostRowsInTrial = 100;

Json pointJson(const OdGePoint3d& point) { return {point.x, point.y, point.z}; }

OdWorkBudget memoryBudget(const BatchOptions& options) {
  constexpr double kMebibyte = 1024.0 * 1024.0;
  return {.seconds = 0, .bytes = static_cast<std::uint64_t>(options.memory * kMebibyte)};
}

Json parametersJson(const OdDbObjectId& block) {
  Json list = Json::array();
  for (const auto& info : vdm_host::listParameters(block, vdm_host::ParameterDetail::kValue)) {
    Json one{{"name", str(info.name)}};
    if (info.isText) {
      one["text"] = str(info.text);
    } else {
      one["value"] = info.shown.number;
      one["unit"] = str(info.shown.unit);
    }
    list.push_back(std::move(one));
  }
  return list;
}

Json failedFeatures(const vdm_host::UpdateReport& report) {
  Json list = Json::array();
  for (const FeatureReport& feature : report.features) {
    if (!feature.needsAttention()) continue;
    std::string text = str(feature.text);
    if (text.empty()) text = str(vdm_host::toText(feature.outcome));
    list.push_back({{"name", str(feature.name)}, {"text", std::move(text)}});
  }
  return list;
}

/// The references of the drawing, and by name those that lead nowhere while something refers to
/// them.
struct References {
  std::vector<OdDbObjectId> all;
  Json lost = Json::array();
  Json ambiguous = Json::array();
};

References referencesOf(OdDbDatabase& drawing) {
  References references;
  for (const vdm_host::ReferenceEntry& entry : vdm_host::listReferences(&drawing)) {
    references.all.push_back(entry.now.dependency);
    if (entry.now.resolved()) continue;
    const ReferenceText text = referenceText(entry);
    if (text.isExpected) continue;
    std::string name = text.handle;
    if (!text.name.empty()) name = text.name + " (" + text.handle + ")";
    const bool isAmbiguous = entry.now.grade == vdm_host::ReferenceGrade::kAmbiguous;
    (isAmbiguous ? references.ambiguous : references.lost).push_back(std::move(name));
  }
  return references;
}

/// Whether a pass replaced, lost or doubted references. Those of suppressed components wait.
bool changesReferences(const vdm_host::UpdateReport& report) {
  return std::ranges::any_of(report.references, [](const ReferenceReport& reference) {
    const bool leads = reference.after == L"exact" || reference.after == L"by lineage";
    return !reference.replacedBy.isEmpty() ||
           (!leads && !referenceText(reference.reference).isExpected);
  });
}

double densityIn(const OdDbObjectId& block, const std::string& text) {
  const OdDbObjectId parameter = vdm_host::findParameter(block, OdString(text));
  if (!parameter.isNull()) return vdm_host::describeParameter(parameter).value;
  double value = 0.0;
  OdExpression::Dimension dimension;
  OdString error;
  static_cast<void>(vdm_host::readConstant(OdString(text), vdm_host::unitsOfBlock(block), value,
                                           dimension, error));
  return value;
}

}  // namespace

/// What becomes the record.
struct BatchRowComputer::Result {
  Json record = Json::object();
  std::string message;
  bool isDone = false;  ///< there are figures
  bool isSound = true;
  bool handsOn = false;  ///< the next row may begin with the drawing as it is now

  void note(const std::string& text) { message += (message.empty() ? "" : "; ") + text; }
};

BatchRowComputer::BatchRowComputer(const SessionSettings& settings, const BatchOptions& options,
                                   const BatchPlan& plan)
    : m_settings(settings), m_options(options), m_plan(plan), m_limit(memoryBudget(options)) {
  m_settings.readFaults = &m_readFaults;
}

BatchRowComputer::~BatchRowComputer() = default;

void BatchRowComputer::compute(std::size_t index) {
  const BatchRow& row = m_plan.rows[index];
  const Clock::time_point begin = Clock::now();
  removeFiles(row);
  OdWorkBoard* board = odWorkBoard();
  if (board != nullptr) board->outOfMemory = false;
  Result result;
  computeInto(row, result);
  if (board != nullptr && board->outOfMemory) {
    if (!m_isFresh) throw CliError("out of memory");
    result.isSound = false;
    if (result.message.find("out of memory") == std::string::npos) result.note("out of memory");
  }
  m_isFresh = false;
  const char* const done = result.isSound ? kRowSound : kRowNotSound;
  result.record["status"] = result.isDone ? done : kRowFailed;
  result.record["message"] = result.message;
  result.record["files"] = writtenFiles(row);
  result.record["seconds"] = std::chrono::duration<double>(Clock::now() - begin).count();
  BatchRecords::write(m_plan, row, std::move(result.record));
  if (!result.handsOn || m_options.fresh || ++m_rowsInTrial == kMostRowsInTrial) takeBack();
}

void BatchRowComputer::computeInto(const BatchRow& row, Result& result) {
  try {
    if (!m_drawing) open();
    apply(row, result);
    if (result.isDone) measure(result);
    if (result.isDone) writeFiles(row, result);
    return;
  } catch (const std::bad_alloc&) {
    result = {};
    result.note("out of memory");
  } catch (const std::exception& error) {
    result = {};
    result.note(error.what());
  }
  m_trial.reset();
  m_drawing.reset();
}

void BatchRowComputer::open() {
  const OdWorkNote note("opening ", m_options.input);
  m_drawing = std::make_unique<OpenedDrawing>(m_settings, m_options.input,
                                              DrawingSession::Access::kRead, Modules::kRequired);
  if (!m_plan.drawing.isUnchanged(m_options.input)) {
    throw CliError("file " + quote(m_options.input) + " was changed since the batch began");
  }
  m_references = referencesOf(**m_drawing).all;
  m_trial = std::make_unique<OdDbTrial>(&**m_drawing);
}

void BatchRowComputer::takeBack() {
  m_rowsInTrial = 0;
  if (!m_drawing) return;
  m_trial.reset();
  m_trial = std::make_unique<OdDbTrial>(&**m_drawing);
}

void BatchRowComputer::apply(const BatchRow& row, Result& result) {
  OdDbDatabase& drawing = **m_drawing;
  const OdDbObjectId block = findBlock(drawing, m_options.block);
  vdm_host::ModelEditor editor(&drawing);
  const vdm_host::EditResult edit = editor.edit(OdString("row " + row.name), [&] {
    OdStatus status;
    if (!row.configuration.empty()) {
      status = vdm_host::selectConfiguration(findConfigurationTable(block, m_plan.table),
                                             OdString(row.configuration));
    }
    return status.ok() && !row.values.empty() ? vdm_host::setParameters(block, row.values) : status;
  });
  try {
    requireEdited(edit);
  } catch (const CliError& error) {
    result.note(error.what());
    result.handsOn = true;  // it is as it was before
    return;
  }
  result.isDone = true;
  result.record["parameters"] = parametersJson(block);
  result.record["failed"] = failedFeatures(edit.report);
  result.record["modeler_seconds"] = edit.report.modelerSeconds;
  result.isSound = result.record["failed"].empty();
  for (const Json& feature : result.record["failed"]) {
    result.note("feature " + quote(feature["name"].get<std::string>()) + ": " +
                feature["text"].get<std::string>());
  }
  result.handsOn = result.isSound && !changesReferences(edit.report);
}

void BatchRowComputer::measure(Result& result) {
  OdDbDatabase& drawing = **m_drawing;
  const OdDbObjectId block = findBlock(drawing, m_options.block);
  const batch::DrawingFigures figures = batch::measureDrawing(drawing);
  Json& record = result.record;
  record["units"] = str(oddbUnitsSymbol(drawing.getINSUNITS()));
  record["solids"] = figures.solids;
  record["volume"] = figures.volume;
  record["area"] = figures.area;
  if (figures.box.isValidExtents()) {
    record["box"] = {pointJson(figures.box.minPoint()), pointJson(figures.box.maxPoint())};
  }
  if (figures.volume > 0.0) record["centre"] = pointJson(figures.centre);
  if (!m_plan.density.empty()) {
    record["mass"] = figures.volume * densityIn(block, m_plan.density);
  }
  References references = referencesOf(drawing);
  result.handsOn = result.handsOn && references.all == m_references;
  for (const auto& [list, what] :
       {std::pair(&references.lost, "lost: "), std::pair(&references.ambiguous, "ambiguous: ")}) {
    for (const Json& name : *list) result.note(what + name.get<std::string>());
  }
  result.isSound = result.isSound && references.lost.empty() && references.ambiguous.empty();
  record["lost"] = std::move(references.lost);
  record["ambiguous"] = std::move(references.ambiguous);
  for (const std::string& fault : linesOf(oddbReadFaults(&drawing))) {
    result.note("unreadable: " + fault);
    result.isSound = false;
  }
}

void BatchRowComputer::writeFiles(const BatchRow& row, Result& result) {
  OdDbDatabase& drawing = **m_drawing;
  const auto require = [&result](const std::string& failure) {
    if (failure.empty()) return;
    result.note(failure);
    result.isSound = false;
  };
  if (!row.exportTo.empty()) {
    const OdWorkNote note("writing ", row.exportTo);
    OdStepExportOptions options;  // without a date: the same row gives the same bytes
    options.originatingSystem = OdString(std::string("vdm ") + VDM_VERSION);
    OdStepReport report;
    const OdStatus status =
        exportStepFromDatabase(&drawing, OdString(row.exportTo), &report, options);
    if (!status.ok()) require(str(status.text));
  }
  std::vector<std::string> warnings;
  rendering::RenderOptions look = m_plan.look;
  look.warnings = &warnings;
  if (!row.renderTo.empty()) {
    const OdWorkNote note("drawing ", row.renderTo);
    require(rendering::renderFile(drawing, row.renderTo, look));
  }
  if (!row.tile.empty()) {
    const OdWorkNote note("drawing ", row.tile);
    look.width = m_plan.tile.width;
    look.height = m_plan.tile.height;
    require(rendering::renderPng(drawing, row.tile, look));
  }
  for (const std::string& warning : warnings) require(warning);
}

}  // namespace cli
