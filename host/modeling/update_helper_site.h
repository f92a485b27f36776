// One solid in a pass: what UpdateHelper keeps of it.
#pragma once

#include "host/modeling/update_helper.h"

namespace vdm_host {

struct UpdateHelper::Site {
  OdDbObjectId solid;
  ResidueLedger ledger;
  bool isFilled = false;

  Site(const OdDbObjectId& id, PieceReader reader) : solid(id), ledger(std::move(reader)) {}
};

}  // namespace vdm_host
