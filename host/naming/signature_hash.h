// The hash that signatures are made of.
#pragma once

#include "platform/base/types.h"

namespace vdm_host {

/// A bijection of 32-bit words that spreads each bit over all. Stored in records: never changes.
[[nodiscard]] constexpr OdUInt32 mixBits(OdUInt32 word) {
  word = (word ^ (word >> 16)) * 0x7FEB352DU;
  word = (word ^ (word >> 15)) * 0x846CA68BU;
  return word ^ (word >> 16);
}

}  // namespace vdm_host
