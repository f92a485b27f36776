// `vdm render`: a picture or a model file of a drawing.
#include "host/cli/render_command.h"

#include <charconv>

#include "host/cli/model_lookup.h"
#include "host/cli/opened_drawing.h"
#include "host/cli/operation.h"
#include "host/cli/report.h"
#include "host/rendering/render.h"
#include "platform/db/block_table.h"
#include "vdm_db/features/vdm_feature_colors.h"

namespace cli {

namespace {

struct ViewRow {
  const char* name;
  double x, y, z;  ///< from the model to the eye
};
constexpr ViewRow kViews[] = {{"iso", 1.0, -1.0, 1.0},    {"top", 0.0, 0.0, 1.0},
                              {"bottom", 0.0, 0.0, -1.0}, {"front", 0.0, -1.0, 0.0},
                              {"back", 0.0, 1.0, 0.0},    {"right", 1.0, 0.0, 0.0},
                              {"left", -1.0, 0.0, 0.0}};

rendering::Renderer rendererFor(const std::string& path) {
  const rendering::Renderer renderer = rendering::rendererFor(path);
  if (renderer != nullptr) return renderer;
  throw CliError("output " + quote(path) + " ends in none of .png, .svg and .glb", kWrongUsage);
}

OdGeVector3d viewDirection(const std::string& view) {
  for (const ViewRow& row : kViews) {
    if (view == row.name) return {row.x, row.y, row.z};
  }
  const std::optional<OdGePoint3d> point = parsePoint(view);
  if (point && !OdGeVector3d(point->x, point->y, point->z).isZeroLength()) {
    return {point->x, point->y, point->z};
  }
  throw CliError(
      "view " + quote(view) + " is none of iso, top, bottom, front, back, right, left and x,y,z",
      kWrongUsage);
}

void readSize(const std::string& text, rendering::RenderOptions& options) {
  constexpr int kSmallest = 16;
  constexpr int kLargest = 8192;
  const char* const end = text.data() + text.size();
  const auto [times, first] = std::from_chars(text.data(), end, options.width);
  const bool hasTimes = first == std::errc() && times != end && *times == 'x';
  bool good = false;
  if (hasTimes) {
    const auto [rest, second] = std::from_chars(times + 1, end, options.height);
    good = second == std::errc() && rest == end;
  }
  const auto fits = [](int pixels) { return pixels >= kSmallest && pixels <= kLargest; };
  if (good && fits(options.width) && fits(options.height)) return;
  throw CliError("size " + quote(text) + " is not WIDTHxHEIGHT with 16 to 8192 pixels",
                 kWrongUsage);
}

// Labels.

/// Certain references are dark, decided ones orange.
rendering::RenderColor labelColor(vdm_host::ReferenceGrade grade) {
  return grade == vdm_host::ReferenceGrade::kExact ? rendering::RenderColor{20, 60, 110}
                                                   : rendering::RenderColor{180, 80, 0};
}

/// A point that can be seen: on the face, half way along the edge.
OdGePoint3d anchorOf(const OdModelerBody& body, const OdDbSubentId& subent) {
  const auto index = static_cast<OdUInt32>(subent.index());
  switch (subent.type()) {
    case OdDb::kFaceSubentType:
      return body.face(index).pointOnFace;
    case OdDb::kEdgeSubentType:
      return body.edge(index).midPoint;
    default:
      return body.vertex(index).point;
  }
}

/// Labels for the named references into solids of the block itself.
void addLabels(OdDbDatabase& drawing, const OdDbObjectId& block,
               rendering::RenderOptions& options) {
  const OdDbObjectId space = block.isNull() ? drawing.getModelSpaceId() : block;
  for (const vdm_host::ReferenceEntry& entry : vdm_host::listReferences(&drawing)) {
    const OdDbSubentId& subent = entry.now.path.subentId();
    const bool isShown = entry.now.resolved() && subent.type() != OdDb::kNullSubentType &&
                         entry.now.path.objectIds().size() == 1 &&
                         entry.now.solid.ownerId() == space;
    if (!isShown) continue;
    const ReferenceText text = referenceText(entry);
    if (text.name.empty()) continue;
    const bool isCertain = entry.now.grade == vdm_host::ReferenceGrade::kExact;
    options.labels.push_back({anchorOf(*bodyOfSolid(entry.now.solid), subent),
                              oneLine(text.name) + (isCertain ? "" : " (" + text.grade + ")"),
                              labelColor(entry.now.grade)});
  }
}

bool colorsOff() { return false; }

}  // namespace

rendering::RenderOptions lookOf(const std::string& size, const std::string& view) {
  rendering::RenderOptions look;
  look.viewDirection = viewDirection(view);
  readSize(size, look);
  return look;
}

int runRender(const SessionSettings& settings, const RenderCommandOptions& options) {
  const rendering::Renderer write = rendererFor(options.output.path);
  rendering::RenderOptions picture = lookOf(options.size, options.view);
  if (options.labels) requireModules(settings);
  checkInput(options.input);
  const OdNameClaim claim = claimOutput(options.output, {options.input});
  const OpenedDrawing drawing(settings, options.input, DrawingSession::Access::kRead);
  if (options.noFeatureColors && !settings.noModules) vdmu::GetFEATURECOLORS::setImpl(&colorsOff);
  std::vector<std::string> warnings;
  picture.block = options.block.empty() ? OdDbObjectId() : findBlock(*drawing, options.block);
  picture.warnings = &warnings;
  if (options.labels) addLabels(*drawing, picture.block, picture);
  withProgress("drawing " + options.output.path, [&] {
    const std::string failure = write(*drawing, options.output.path, picture);
    if (!failure.empty()) throw CliError(failure);
  });
  Report(options.input + " drawn into " + options.output.path)
      .add("file", options.output.path)
      .add("labels", std::uint64_t{picture.labels.size()})
      .add("bytes", std::uint64_t{fileSize(options.output.path)})
      .addLines("warnings", warnings)
      .print(settings.json);
  return exitCodeFor(warnings.empty());
}

}  // namespace cli
