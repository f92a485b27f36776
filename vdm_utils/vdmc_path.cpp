// File paths as texts.
#include "vdm_utils/vdmc_path.h"

#include <algorithm>

OdString VdmcPath::extractBasename(const OdString& path) {
  const int separator = std::max(path.reverseFind(L'/'), path.reverseFind(L'\\'));
  const OdString name = path.mid(separator + 1);
  const int dot = name.reverseFind(L'.');
  return dot > 0 ? name.left(dot) : name;
}
