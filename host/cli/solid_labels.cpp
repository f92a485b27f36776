// What references and features call the parts of solids.
#include "host/cli/solid_labels.h"

#include <algorithm>

#include "host/cli/model_lookup.h"

namespace cli {

SolidLabels::SolidLabels(OdDbDatabase& drawing) {
  for (const vdm_host::ReferenceEntry& entry : vdm_host::listReferences(&drawing)) {
    const OdDbSubentId& subent = entry.now.path.subentId();
    if (!entry.now.resolved() || subent.type() == OdDb::kNullSubentType) continue;
    const OdModelerSubent its{static_cast<OdModelerSubentType>(subent.type()),
                              static_cast<OdUInt32>(subent.index())};
    const ReferenceText text = referenceText(entry);
    if (!text.name.empty()) add(entry.now.solid, its, text.name);
    for (const std::string& watcher : text.watchers) add(entry.now.solid, its, watcher);
  }
}

void SolidLabels::add(const OdDbObjectId& solid, OdModelerSubent subent, const std::string& name) {
  std::vector<std::string>& names = m_names[solid][subent];
  if (std::ranges::find(names, name) == names.end()) names.push_back(name);
}

std::vector<std::string> SolidLabels::of(const OdDbObjectId& solid, OdModelerSubent subent) const {
  const auto names = m_names.find(solid);
  if (names == m_names.end()) return {};
  const auto row = names->second.find(subent);
  return row == names->second.end() ? std::vector<std::string>() : row->second;
}

std::vector<OdModelerSubent> SolidLabels::named(const OdDbObjectId& solid,
                                                const std::string& name) const {
  std::vector<OdModelerSubent> found;
  const auto names = m_names.find(solid);
  if (names == m_names.end()) return found;
  for (const auto& [subent, texts] : names->second) {
    if (std::ranges::find(texts, name) != texts.end()) found.push_back(subent);
  }
  return found;
}

}  // namespace cli
