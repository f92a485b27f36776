// Named switches for developers.
#include "vdm_db/drafting/vdm_db_ideveloper_settings.h"

#include <algorithm>
#include <iterator>

#include "vdm_utils/vdmc_assert.h"

namespace {

struct Word {
  const wchar_t* text;
  bool value;
};
constexpr Word kWords[] = {{L"1", true},  {L"true", true},   {L"on", true},   {L"yes", true},
                           {L"0", false}, {L"false", false}, {L"off", false}, {L"no", false}};

}  // namespace

std::map<OdString, VdmDbIDeveloperSettings*>& VdmDbIDeveloperSettings::registered() {
  static std::map<OdString, VdmDbIDeveloperSettings*> settings;
  return settings;
}

VdmDbIDeveloperSettings::~VdmDbIDeveloperSettings() {
  std::erase_if(registered(), [this](const auto& entry) { return entry.second == this; });
}

VdmDbIDeveloperSettings* VdmDbIDeveloperSettings::getInstance(const OdString& name) {
  const auto found = registered().find(name);
  if (found != registered().end()) return found->second;
  vdmcCallAssert("VDMC_FAIL", "VdmDbIDeveloperSettings::getInstance(\"" + name + "\") failed",
                 "vdm_db/vdm_db_ideveloper_settings", 27);
  return nullptr;
}

bool VdmDbIDeveloperSettings::getAsBool(const OdString& name, bool fallback) {
  const auto found = registered().find(name);
  if (found == registered().end()) return fallback;
  const OdString& value = found->second->value();
  const auto* word = std::find_if(std::begin(kWords), std::end(kWords), [&value](const Word& row) {
    return value.iCompare(row.text) == 0;
  });
  return word == std::end(kWords) ? fallback : word->value;
}

void VdmDbIDeveloperSettings::setInstance(VdmDbIDeveloperSettings* settings, const OdString& name) {
  if (settings == nullptr) {
    registered().erase(name);
  } else {
    registered()[name] = settings;
  }
}
