// What a small hole costs in a part of many faces: by the faces that it concerns, beside the same
// cut of the whole body.
#include "bench/update/cut_parts.h"
#include "bench/update/figures.h"
#include "platform/modeler_occt/occt_modeler.h"

namespace {

constexpr double kMs = 1e3;
constexpr const char* kPlate = "plate";

void measurePart(const CutPart& part, OdModeler& local, OdModeler& whole, std::size_t rounds,
                 std::vector<Figure>& figures) {
  std::vector<double> ours;
  std::vector<double> peer;
  OdModelerBodyPtr now = part.body;
  for (std::size_t round = 0; round < rounds; ++round) {
    const OdModelerBodyPtr tool =
        part.name == kPlate ? pinBetweenHoles(local, round) : toolFor(local, *part.body, round);
    OdModelerBodyPtr next;
    ours.push_back(secondsOf([&] { next = cutFrom(local, now, {tool}); }));
    peer.push_back(secondsOf([&] { (void)cutFrom(whole, now, {tool}); }));
    now = next;
  }
  figures.push_back(
      {"a hole cut, " + part.name + ", " + std::to_string(part.body->numFaces()) + " faces",
       "the whole body cut", kMs * medianOf(ours), kMs * medianOf(peer), "ms"});
}

}  // namespace

std::vector<Figure> measureCuts(const FigureOptions& options) {
  const std::shared_ptr<OdModeler> local = odCreateOcctModeler();
  const std::shared_ptr<OdModeler> whole = odCreateOcctModeler({OdOcctReach::kWhole, {}});
  std::vector<CutPart> parts;
  for (const std::size_t faces : {300U, 600U, 1000U, 3000U}) {
    parts.push_back({kPlate, plateOf(*local, faces)});
  }
  addFiles(*local, parts);
  std::vector<Figure> figures;
  for (const CutPart& part : parts) measurePart(part, *local, *whole, options.rounds, figures);
  return figures;
}
