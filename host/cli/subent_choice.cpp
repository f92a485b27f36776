// Faces, edges and vertices by number or by selector.
#include "host/cli/subent_choice.h"

#include "host/cli/cli_error.h"
#include "host/cli/drawing_facts.h"
#include "host/cli/model_lookup.h"
#include "host/cli/solid_labels.h"
#include "host/cli/text_output.h"
#include "host/inspect/selector.h"
#include "host/naming/subent_name.h"

namespace cli {

namespace {

/// Begins with the kind of a selector, or is a number such as f_12.
bool choosesInSolid(std::string_view text) {
  OdModelerSubent subent;
  if (vdm_host::parseSubentName(OdString(std::string(text)), subent)) return true;
  for (const std::string_view kind : {"face", "edge", "vertex"}) {
    if (!text.starts_with(kind)) continue;
    const std::size_t colon = text.find_first_not_of(' ', kind.size());
    if (colon != std::string_view::npos && text[colon] == ':') return true;
  }
  return false;
}

/// The place of the slash between solid and choice; none where the text is a choice alone.
std::size_t slashOf(const std::string& text) {
  if (choosesInSolid(text)) return std::string::npos;
  const std::size_t slash = text.find('/');
  if (slash == std::string::npos || slash == 0) return std::string::npos;
  return choosesInSolid(std::string_view(text).substr(slash + 1)) ? slash : std::string::npos;
}

OdDbObjectId onlySolid(OdDbDatabase& drawing, const std::string& text) {
  const std::vector<OdDbObjectId> solids = partSolids(drawing);
  if (solids.size() == 1) return solids.front();
  if (solids.empty()) throw CliError("the drawing has no solid to choose " + quote(text) + " in");
  throw CliError("the drawing has " + counted(solids.size(), "solid") +
                     ", say which one: " + quote(handleOf(solids.front()) + "/" + text),
                 kWrongUsage);
}

}  // namespace

bool isSubentChoice(const std::string& text) {
  return choosesInSolid(text) || slashOf(text) != std::string::npos;
}

SubentChoice chooseSubents(OdDbDatabase& drawing, const std::string& text) {
  const std::size_t slash = slashOf(text);
  const std::string choice = slash == std::string::npos ? text : text.substr(slash + 1);
  const OdDbObjectId solid = slash == std::string::npos ? onlySolid(drawing, text)
                                                        : findSolid(drawing, text.substr(0, slash));
  return {solid, chooseSubents(drawing, solid, choice)};
}

std::vector<OdModelerSubent> chooseSubents(OdDbDatabase& drawing, const OdDbObjectId& solid,
                                           const std::string& text) {
  const OdModelerBodyPtr body = bodyOfSolid(solid);
  OdModelerSubent subent;
  if (vdm_host::parseSubentName(OdString(text), subent)) {
    if (body->hasSubent(subent)) return {subent};
    throw CliError("solid " + solidText(solid) + " has no " + text + ": it has " +
                   counted(body->numFaces(), "face") + ", " + counted(body->numEdges(), "edge") +
                   " and " + std::to_string(body->numVertices()) + " vertices");
  }
  std::optional<vdm_host::Selector> selector;
  const OdStatus parsed = vdm_host::Selector::parse(text, OdModelerSubentType::kNull, selector);
  if (!parsed.ok())
    throw CliError("selector " + quote(text) + ", " + str(parsed.text), kWrongUsage);
  const SolidLabels labels(drawing);
  vdm_host::BodyFacts facts(body);
  std::vector<OdModelerSubent> found;
  const OdStatus status = selector->select(
      facts, [&](const std::string& name) { return labels.named(solid, name); }, found);
  if (!status.ok()) throw CliError("solid " + solidText(solid) + ": " + str(status.text));
  return found;
}

OdModelerSubent onlyOne(const std::vector<OdModelerSubent>& subents, const std::string& text) {
  if (subents.size() == 1) return subents.front();
  throw CliError(quote(text) + " chooses " + std::to_string(subents.size()) + ", among them " +
                 str(vdm_host::subentName(subents[0])) + " and " +
                 str(vdm_host::subentName(subents[1])) + ", one is needed");
}

}  // namespace cli
