// One hole more in parts of some hundred faces: with the modeller behind a wall, and without.
#include <stdexcept>

#include "bench/update/cut_parts.h"
#include "bench/update/figures.h"
#include "platform/modeler/modeler.h"
#include "platform/modeler_occt/occt_modeler.h"
#include "platform/modeler_wall/walled_modeler.h"

namespace {

Figure measurePart(const std::string& name, const OdModelerBodyPtr& part, OdModeler& plain,
                   OdModeler& walled, std::size_t rounds) {
  std::vector<double> ours;
  std::vector<double> peer;
  OdModelerBodyPtr plainBody = part;
  OdModelerBodyPtr walledBody = part;
  for (std::size_t round = 0; round < rounds; ++round) {
    const OdModelerBodyPtr tool = toolFor(plain, *part, round);
    OdBinaryData bytes;
    (void)tool->serialise(bytes);  // as a component's tool is, whose body is stored
    peer.push_back(secondsOf([&] { plainBody = cutFrom(plain, plainBody, {tool}); }));
    ours.push_back(secondsOf([&] { walledBody = cutFrom(walled, walledBody, {tool}); }));
    if (walledBody->numFaces() != plainBody->numFaces()) throw std::runtime_error("other faces");
  }
  constexpr double kMs = 1e3;
  return {
      "one hole cut behind the wall, " + name + ", " + std::to_string(part->numFaces()) + " faces",
      "the same without it", kMs * medianOf(ours), kMs * medianOf(peer), "ms"};
}

}  // namespace

std::vector<Figure> measureWall(const FigureOptions& options) {
  const std::shared_ptr<OdModeler> plain = odCreateOcctModeler();
  const std::shared_ptr<OdModeler> walled = odCreateWalledModeler(odCreateOcctModeler());
  std::vector<CutPart> parts{{"plate", plateOf(*plain, 300)}, {"plate", plateOf(*plain, 700)}};
  addFiles(*plain, parts);
  std::vector<Figure> figures;
  for (const CutPart& part : parts) {
    figures.push_back(measurePart(part.name, part.body, *plain, *walled, options.rounds));
  }
  return figures;
}
