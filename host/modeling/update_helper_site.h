// One solid in a pass: what UpdateHelper keeps of it.
#pragma once

#include "host/modeling/update_helper.h"

namespace vdm_host {

struct UpdateHelper::Site {
  OdDbObjectId solid;
  ResidueLedger ledger;
  bool isFilled = false;

  Site(const OdDbObjectId& id, PieceReader reader, ResidueLedger::ToolMaker toolMaker)
      : solid(id), ledger(std::move(reader), std::move(toolMaker)) {}
};

}  // namespace vdm_host
