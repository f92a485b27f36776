// What it costs to know that the body an edit leaves is sound, beside the edit.
#include "bench/update/cut_parts.h"
#include "bench/update/figures.h"
#include "platform/modeler_occt/occt_body.h"
#include "platform/modeler_occt/occt_modeler.h"

namespace {

constexpr double kMs = 1e3;

/// One hole more in the part: the quick check of what came of it, with the topology that it needs,
/// and the modeller's full check of the same, each against the cut that has the quick one in it.
void measurePart(const CutPart& part, OdModeler& modeler, std::size_t rounds,
                 std::vector<Figure>& figures) {
  std::vector<double> quick;
  std::vector<double> full;
  std::vector<double> edit;
  OdModelerBodyPtr now = part.body;
  for (std::size_t round = 0; round < rounds; ++round) {
    const OdModelerBodyPtr tool = toolFor(modeler, *part.body, round);
    OdModelerBodyPtr next;
    edit.push_back(secondsOf([&] { next = cutFrom(modeler, now, {tool}); }));
    const od_occt::Body& base = od_occt::asOcct(*now);
    const auto outcome = od_occt::bodyOf(od_occt::asOcct(*next).shape());
    (void)outcome->topology();  // which the edit needs as well
    quick.push_back(secondsOf([&] { (void)od_occt::checkOutcome(*outcome, base); }));
    full.push_back(secondsOf([&] { (void)outcome->check(); }));
    now = next;
  }
  const std::string where = part.name + ", " + std::to_string(part.body->numFaces()) + " faces";
  const double cut = kMs * medianOf(edit);
  figures.push_back({"check of a cut, " + where, "the cut", kMs * medianOf(quick), cut, "ms"});
  figures.push_back({"full check, " + where, "the cut", kMs * medianOf(full), cut, "ms"});
}

}  // namespace

std::vector<Figure> measureChecks(const FigureOptions& options) {
  const std::shared_ptr<OdModeler> modeler = odCreateOcctModeler();
  std::vector<CutPart> parts;
  for (const std::size_t faces : {300U, 400U, 635U}) {
    parts.push_back({"plate", plateOf(*modeler, faces)});
  }
  addFiles(*modeler, parts);
  std::vector<Figure> figures;
  for (const CutPart& part : parts) measurePart(part, *modeler, options.rounds, figures);
  return figures;
}
